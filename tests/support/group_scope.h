#pragma once

#include <string>

namespace test_support {

/// Enters a group of a document and leaves it at the end of the block.
/// The key has one segment: leaving goes one level up, whatever the key that was entered.
template <typename Document>
class GroupScope
{
public:
    GroupScope(Document& document, const std::string& key) : m_document(document) { m_document.beginGroup(key); }
    ~GroupScope() { m_document.endGroup(); }
    GroupScope(const GroupScope&) = delete;
    GroupScope& operator=(const GroupScope&) = delete;

private:
    Document& m_document;
};

} // namespace test_support
