// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Converts JSON text to a document. Reads plain JSON and the extended forms "$oid", "$date", "$regex", "$binary" and
/// so on.

#include "database_client_export.h"

#include <string>

class ObjectProperties;

/// Converts JSON text to BSON and the BSON to a document. The fields are added at the document's cursor. Stateless.
/// @since 1.0
class DATABASE_CLIENT_API JsonToProperties
{
public:
    /// Reads @p json up to its first zero byte.
    /// @return false if @p properties is null or @p json is not valid JSON; nothing is done then. Otherwise true
    /// @throws std::bad_alloc
    static bool convert(const std::string& json, ObjectProperties* properties);
    /// The same as convert(), without the null check.
    static bool json_to_properties(const std::string& json, ObjectProperties* properties);
};
