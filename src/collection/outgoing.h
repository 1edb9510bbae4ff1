#pragma once

#include "dbc/document_ref.h"
#include "driver/bson_handles.h"

#include <bson/bson.h>

#include <cstdint>
#include <vector>

namespace dbc {

/// A parameter as the BSON that is sent. Used for several documents in turn, it uses its memory again.
class OutgoingBson
{
public:
    /// What a parameter may be.
    enum class Shape
    {
        Object,
        ObjectOrArray ///< An array stands for the stages of a pipeline.
    };

    OutgoingBson() = default;
    /// Refers to the bytes of a BsonView. @throws std::invalid_argument @p refusal, when the document cannot be sent
    OutgoingBson(const DocumentRef& document, const char* refusal, Shape shape = Shape::Object);
    OutgoingBson(const OutgoingBson&) = delete;
    OutgoingBson& operator=(const OutgoingBson&) = delete;

    /// The document; a new object id becomes its first field if there is no "_id".
    /// @throws std::invalid_argument @p refusal, when the document cannot be sent
    void convertForInsert(const DocumentRef& document, const char* refusal);

    const bson_t* get() const noexcept { return m_current; }

private:
    OwnedBson m_own;
    std::vector<std::uint8_t> m_bytes;
    bson_t m_view;
    const bson_t* m_current = m_own.get();
};

} // namespace dbc
