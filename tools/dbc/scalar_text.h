#pragma once

#include "dbc/value.h"

#include <optional>
#include <string>
#include <string_view>

/// Whether the text has the form of a date, 2023-01-31, or of a date with a time: 2023-01-31T12:30, with a space
/// instead of the T, seconds, a fraction of a second and a zone (Z, +01:00) as one likes.
bool looksLikeTime(std::string_view text);

/// The time of a text of that form; UTC unless it has a zone, midnight unless it has a time. A fraction beyond
/// milliseconds is cut off. Empty for any other text, and where there is no such day or hour.
std::optional<dbc::Time> parseTime(std::string_view text);

/// 2023-01-31T00:00:00.000Z; empty for years that do not have four digits.
std::string timeText(dbc::Time time);

/// Whether the text is 24 hexadecimal digits.
bool isObjectIdText(std::string_view text);

/// Whether 24 hexadecimal digits in the field are an object id: it is named "_id", or ends in it.
bool isIdField(std::string_view field);

/// The double of a text such as "1.5", "-0", "1e300", "NaN", "Infinity"; empty for any other.
std::optional<double> parseDouble(std::string_view text);

/// The shortest text from which parseDouble() makes the same number; with a ".0" or an exponent if it is whole.
std::string doubleText(double number);
