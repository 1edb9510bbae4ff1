// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The first error in a JSON text.
struct JsonFault
{
    std::size_t offset; ///< number of bytes before the error
    std::string reason; ///< description of the error
};

/// Returns why a text is not one JSON value. Empty if it is valid.
std::optional<JsonFault> findJsonFault(std::string_view text);

/// True if the text is a JSON number: no plus sign, no leading zeros.
bool isJsonNumber(std::string_view text);

/// Returns the character in quotes, or its code if it cannot be printed.
std::string quotedCharacter(char character);

/// Returns the number of bytes before the first one that is not UTF-8.
std::size_t validUtf8Length(std::string_view text) noexcept;
