// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/bulk.h"

#include <bson/bson.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace dbc {

/// The operations of a Bulk. Their documents are stored as BSON, one after the other.
struct Bulk::State
{
    enum class Type
    {
        InsertOne,
        UpdateOne,
        UpdateMany,
        ReplaceOne,
        RemoveOne,
        RemoveMany
    };
    struct Operation
    {
        Type type;
        // Offsets in bytes. A part that the type does not use is an empty document.
        std::size_t filter;
        std::size_t document;
        std::size_t options;
    };

    void add(Type type, const bson_t* filter, const bson_t* document, const bson_t* options);

    std::vector<Operation> operations;
    std::vector<unsigned char> bytes;
};

/// A document of a Bulk. libbson wrote it, so it begins with its length.
struct StoredBson
{
    StoredBson(const Bulk::State& bulk, std::size_t offset)
    {
        std::uint32_t length = 0;
        std::memcpy(&length, bulk.bytes.data() + offset, sizeof(length));
        bson_init_static(&bson, bulk.bytes.data() + offset, BSON_UINT32_FROM_LE(length));
    }
    bson_t bson;
};

/// Access to the operations of a Bulk, for Collection.
class BulkAccess
{
public:
    static const Bulk::State& stateOf(const Bulk& bulk) { return *bulk.d; }
};

} // namespace dbc
