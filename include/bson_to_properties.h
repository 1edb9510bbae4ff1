// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Converts BSON to a document. Format: the BSON specification, version 1.1.

#include "database_client_export.h"

// libbson's inline functions cause warnings under strict flags if its folder is not a system include folder.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#include <bson/bson.h>
#pragma GCC diagnostic pop

class ObjectProperties;

/// Converts BSON to a document. It calls only the public functions of the document. The fields are added at the
/// document's cursor, next to the fields that are there. Stateless.
///
/// Fields of type undefined, null, DBPointer, code, code with scope, timestamp, decimal128, min key and max key are
/// left out. A symbol becomes a String. A binary loses its subtype. A string ends at its first zero byte.
/// @since 1.0
class DATABASE_CLIENT_API BsonToProperties
{
public:
    /// @return false if a pointer is null or the header of @p bson is invalid; nothing is done then. Otherwise true,
    ///         also if the bytes are corrupt further inside; the fields before the corrupt bytes are kept
    /// @throws std::bad_alloc  the fields read so far are kept, and the cursor may be inside an open group
    static bool convert(const bson_t* bson, ObjectProperties* properties);
    /// The same as convert(), without the null checks.
    static bool bson_to_properties(const bson_t* bson, ObjectProperties* properties);
    /// Converts the fields from @p iter to its end. The depth is limited by memory, not by the stack.
    /// @return true
    static bool parse(bson_iter_t& iter, ObjectProperties* properties);
};
