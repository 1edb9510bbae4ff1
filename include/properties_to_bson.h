#pragma once

/// @file
/// Document to BSON. Format: the BSON specification, version 1.1.

#include "database_client_export.h"
#include "property.h"

#include <memory>

class ObjectProperties;
/// A BSON document of libbson. Declared ahead: callers that never touch BSON need no driver header.
typedef struct _bson_t bson_t;

/// Writes a document as BSON, fields in key order. Always from the root, wherever the cursor stands. Stateless.
class DATABASE_CLIENT_API PropertiesToBson
{
public:
    /// Initialises @p bson, which must hold nothing to be freed, and fills it. The caller frees it with bson_destroy(),
    /// also when this throws.
    /// @return false, and nothing done, when @p bson is null; otherwise true
    /// @throws std::bad_alloc
    static bool convert(const ObjectProperties& properties, bson_t* bson);
    /// The same without the test for null.
    static bool properties_to_bson(const ObjectProperties& properties, bson_t* bson);
    /// Appends the children of @p node to @p bson. Depth is limited by memory only, not by the stack.
    /// Nodes of kind None, of a kind above Regex, and binaries without bytes leave no field.
    /// @return true
    static bool parse(std::shared_ptr<Property> node, bson_t* bson);
};
