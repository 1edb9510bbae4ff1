#pragma once

#include "object_properties.h"

#include <list>

namespace test_support {

/// Results of a query, deleted at the end of the block.
class ResultList
{
public:
    ResultList() = default;
    ~ResultList()
    {
        for (const ObjectProperties* const document : m_documents)
            delete document;
    }
    ResultList(const ResultList&) = delete;
    ResultList& operator=(const ResultList&) = delete;

    std::list<ObjectProperties*>& get() { return m_documents; }
    std::size_t size() const { return m_documents.size(); }
    const ObjectProperties& front() const { return *m_documents.front(); }
    auto begin() const { return m_documents.begin(); }
    auto end() const { return m_documents.end(); }

private:
    std::list<ObjectProperties*> m_documents;
};

} // namespace test_support
