// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Converts a document to BSON. Format: the BSON specification, version 1.1.

#include "database_client_export.h"
#include "property.h"

#include <memory>

class ObjectProperties;
/// A BSON document of libbson. Forward declaration: callers that do not use BSON need no driver header.
typedef struct _bson_t bson_t;

/// Converts a document to BSON, with the fields in key order. It always starts at the root; the cursor does not matter.
/// Stateless.
/// @since 1.0
class DATABASE_CLIENT_API PropertiesToBson
{
public:
    /// Initializes @p bson and fills it. The caller frees it with bson_destroy(), also after an exception.
    /// @param bson  must not own memory: its old content is not freed
    /// @return false if @p bson is null; nothing is done then. Otherwise true
    /// @throws std::bad_alloc
    static bool convert(const ObjectProperties& properties, bson_t* bson);
    /// The same as convert(), without the null check.
    static bool properties_to_bson(const ObjectProperties& properties, bson_t* bson);
    /// Appends the children of @p node to @p bson. The depth is limited by memory, not by the stack. Nodes of type
    /// None, nodes of a type above Regex and binaries without bytes are left out. Adds nothing if @p node is empty.
    /// @return true
    static bool parse(std::shared_ptr<Property> node, bson_t* bson);
};
