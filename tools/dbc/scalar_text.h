// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/value.h"

#include <optional>
#include <string>
#include <string_view>

/// True if the text has the form of a date, 2023-01-31, or of a date with a time, 2023-01-31T12:30. A space may replace
/// the T. Seconds, a fraction of a second and a time zone (Z, +01:00) are optional.
bool looksLikeTime(std::string_view text);

/// Parses a text for which looksLikeTime() returns true. Without a time zone it is UTC, without a time midnight. Digits
/// after the milliseconds are cut off. Empty for any other text, and for a day or hour that does not exist.
std::optional<dbc::Time> parseTime(std::string_view text);

/// Returns 2023-01-31T00:00:00.000Z. Empty for years without four digits.
std::string timeText(dbc::Time time);

/// True if the text is 24 hexadecimal digits.
bool isObjectIdText(std::string_view text);

/// True if 24 hexadecimal digits in the field are an object id: its name ends in "_id".
bool isIdField(std::string_view field);

/// Parses a double such as "1.5", "-0", "1e300", "NaN" or "Infinity". Empty for any other text.
std::optional<double> parseDouble(std::string_view text);

/// Returns the shortest text that parseDouble() converts to the same number. A whole number has ".0" or an exponent.
std::string doubleText(double number);
