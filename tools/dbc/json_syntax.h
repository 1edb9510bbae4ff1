#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The first place at which a text is not JSON.
struct JsonFault
{
    std::size_t offset; ///< bytes in front of it
    std::string reason; ///< what is wrong there
};

/// Why a text is not one JSON value, for people. Empty if it is one.
std::optional<JsonFault> findJsonFault(std::string_view text);

/// Whether the text is a number of JSON: no plus sign, no leading zeros.
bool isJsonNumber(std::string_view text);

/// The character for a message: in quotes, or as a number if it cannot be printed.
std::string quotedCharacter(char character);

/// Bytes up to the first one that is not UTF-8.
std::size_t validUtf8Length(std::string_view text) noexcept;
