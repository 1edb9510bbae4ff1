#pragma once

/// @file
/// Document to JSON text, in the driver library's legacy extended form: { "t" : { "$date" : 0 } }.

#include "database_client_export.h"

#include <string>

class ObjectProperties;

/// Writes a document as JSON text by way of BSON. Stateless.
class DATABASE_CLIENT_API PropertiesToJson
{
public:
    /// Replaces @p json by the text of the document; by an empty text when a text in the document is not UTF-8.
    /// @return true
    /// @throws std::bad_alloc
    static bool convert(const ObjectProperties& properties, std::string& json);
    /// The same as convert().
    static bool properties_to_json(const ObjectProperties& properties, std::string& json);
};
