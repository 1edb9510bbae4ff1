// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Converts a document to JSON text in libbson's legacy extended form: { "t" : { "$date" : 0 } }.

#include "database_client_export.h"

#include <string>

class ObjectProperties;

/// Converts a document to BSON and the BSON to JSON text. Stateless.
/// @since 1.0
class DATABASE_CLIENT_API PropertiesToJson
{
public:
    /// Replaces @p json by the JSON text of the document. Sets it to the empty string if a string in the document is
    /// not valid UTF-8.
    /// @return true
    /// @throws std::bad_alloc
    static bool convert(const ObjectProperties& properties, std::string& json);
    /// The same as convert().
    static bool properties_to_json(const ObjectProperties& properties, std::string& json);
};
