#pragma once

/// @file
/// BSON to document. Format: the BSON specification, version 1.1.

#include "database_client_export.h"

// The driver's inline functions warn under a caller's strict flags, where its folder is no system folder.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#include <bson/bson.h>
#pragma GCC diagnostic pop

class ObjectProperties;

/// Reads BSON into a document through the document's public operations. The fields are added at the document's cursor,
/// next to what is there. Stateless.
///
/// Undefined, null, DBPointer, code, code with scope, timestamp, decimal128, min key and max key are left out; a symbol
/// becomes a String; the subtype of a binary is dropped; texts end at their first zero byte.
class DATABASE_CLIENT_API BsonToProperties
{
public:
    /// @return false, and nothing done, when a pointer is null or the header of @p bson is not valid; otherwise true,
    ///         also when the bytes are corrupt further inside: what stood before that is then kept
    /// @throws std::bad_alloc; what was read before is kept and the cursor may stand inside an open group
    static bool convert(const bson_t* bson, ObjectProperties* properties);
    /// The same without the test for null.
    static bool bson_to_properties(const bson_t* bson, ObjectProperties* properties);
    /// Reads @p iter to its end. Depth is limited by memory only, not by the stack.
    /// @return true
    static bool parse(bson_iter_t& iter, ObjectProperties* properties);
};
