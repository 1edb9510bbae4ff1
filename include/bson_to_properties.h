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

/// Converts BSON to a document. The fields are added at the document's cursor. Fields with other keys stay. Calls only
/// the virtual functions of the document, so a subclass can override them. Stateless: thread-safe for different
/// documents.
///
/// Fields of type undefined, null, DBPointer, code, code with scope, timestamp, decimal128, min key and max key are
/// left out. A symbol becomes a String. A binary loses its subtype. A string ends at its first zero byte. A key is used
/// as a key path of ObjectProperties: "/" separates segments, and the empty key is the root.
/// @since 1.0
class DATABASE_CLIENT_API BsonToProperties
{
public:
    /// Adds the fields of @p bson to @p properties.
    /// @return false if a pointer is null or the header of @p bson is invalid; nothing is done then. Otherwise true,
    ///         also if later bytes are corrupt; the fields before the corrupt bytes are added
    /// @throws std::bad_alloc  the fields read so far stay in the document, and the cursor may be inside a group
    static bool convert(const bson_t* bson, ObjectProperties* properties);
    /// The same as convert(), without the null checks.
    static bool bson_to_properties(const bson_t* bson, ObjectProperties* properties);
    /// Adds the fields after the current one of @p iter, up to the end. The depth is limited by memory, not by the
    /// stack.
    /// @return true
    static bool parse(bson_iter_t& iter, ObjectProperties* properties);
};
