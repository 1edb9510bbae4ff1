// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

using Bytes = std::vector<std::uint8_t>;

/// Parses a document in Extended JSON. @throws std::invalid_argument if it is invalid
Bytes bsonFromJson(const std::string& json);

/// Changes to a document for a server that accepts fewer documents than MongoDB.
enum class BsonRewrite
{
    /// Renumbers array elements to 0, 1, 2 ... and removes elements of type undefined, at every depth.
    Arrays,
    /// Empties `roles` and `customData` at the top level.
    UserData,
    ArraysAndUserData, ///< Both.
};

/// Rewrites one BSON document of any depth. Takes time proportional to @p length.
/// @return the rewritten bytes. Empty if the document needs no change or is not valid: send it unchanged then
std::optional<Bytes> rewriteBson(const std::uint8_t* document, std::size_t length, BsonRewrite rewrite);

} // namespace test_support
