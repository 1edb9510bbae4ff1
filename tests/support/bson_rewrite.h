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

/// The document of a text in extended JSON. @throws std::invalid_argument when it is none
Bytes bsonFromJson(const std::string& json);

/// What a document must be turned into before a server that is stricter than MongoDB takes it.
enum class BsonRewrite
{
    /// Array elements are renumbered 0, 1, 2, ..., elements of kind undefined are left out, at every depth.
    Arrays,
    /// `roles` and `customData` at the top level become empty.
    UserData,
    ArraysAndUserData, ///< both
};

/// Rewrites one BSON document.
/// Neither recursion nor libbson's own limits are involved: the depth of nesting is bounded by the length alone.
/// @returns the rewritten bytes; nothing when the document needs no change or is not well formed, and should then go on
///          byte for byte. Linear in @p length.
std::optional<Bytes> rewriteBson(const std::uint8_t* document, std::size_t length, BsonRewrite rewrite);

} // namespace test_support
