#pragma once

/// @file
/// JSON text to document. Plain JSON and the extended forms "$oid", "$date", "$regex", "$binary" and so on.

#include "database_client_export.h"

#include <string>

class ObjectProperties;

/// Reads JSON text into a document by way of BSON; the fields are added at the document's cursor. Stateless.
class DATABASE_CLIENT_API JsonToProperties
{
public:
    /// Reads @p json up to its first zero byte.
    /// @return false, and nothing done, when @p properties is null or the text is not valid JSON; otherwise true
    /// @throws std::bad_alloc
    static bool convert(const std::string& json, ObjectProperties* properties);
    /// The same without the test for null.
    static bool json_to_properties(const std::string& json, ObjectProperties* properties);
};
