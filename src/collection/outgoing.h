// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/document_ref.h"
#include "driver/bson_handles.h"

#include <bson/bson.h>

#include <cstdint>
#include <vector>

namespace dbc {

/// The BSON of a parameter that is sent. Reuses its memory for several documents.
class OutgoingBson
{
public:
    /// Allowed types of a parameter.
    enum class Shape
    {
        Object,
        ObjectOrArray ///< An array is a list of pipeline stages.
    };

    OutgoingBson() = default;
    /// Converts a document. Does not copy the bytes of a BsonView.
    /// @throws std::invalid_argument @p refusal, if the document cannot be sent
    OutgoingBson(const DocumentRef& document, const char* refusal, Shape shape = Shape::Object);
    OutgoingBson(const OutgoingBson&) = delete;
    OutgoingBson& operator=(const OutgoingBson&) = delete;

    /// Converts a document. If it has no "_id", adds a new object id as the first field.
    /// @throws std::invalid_argument @p refusal, if the document cannot be sent
    void convertForInsert(const DocumentRef& document, const char* refusal);

    const bson_t* get() const noexcept { return m_current; }

private:
    OwnedBson m_own;
    std::vector<std::uint8_t> m_bytes;
    bson_t m_view;
    const bson_t* m_current = m_own.get();
};

} // namespace dbc
