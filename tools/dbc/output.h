// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/value.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

/// JSON dialect of the output.
using Dialect = dbc::JsonFormat;

/// When the output has colours.
enum class ColorMode
{
    Auto, ///< On a terminal, unless the environment has NO_COLOR or TERM=dumb.
    Always,
    Never
};

struct OutputOptions
{
    std::optional<Dialect> dialect; ///< every command has its own default
    bool asArray = false;
    bool isPretty = false;
    ColorMode color = ColorMode::Auto;

    /// True if standard output has colours.
    bool colorsStandardOutput() const;
};

/// @throws Failure if the value cannot be written as JSON
std::string toJson(const dbc::Value& value, Dialect dialect);

/// Returns the JSON text with line breaks, with colours, or both. Values such as {"$date": ...} stay on one line.
std::string styledJson(std::string_view json, bool isPretty, bool isColored);

/// Writes documents, one per line or as one array.
class DocumentWriter
{
public:
    /// @param dialect  default dialect
    DocumentWriter(std::ostream& stream, const OutputOptions& options, Dialect dialect, bool isColored)
        : m_stream(stream), m_dialect(options.dialect.value_or(dialect)), m_asArray(options.asArray),
          m_isPretty(options.isPretty), m_isColored(isColored)
    {}

    /// @throws Failure if this or an earlier write failed
    void write(const dbc::Value& value);
    /// Closes the array. @throws Failure if a write failed
    void finish();

private:
    void throwIfBroken() const;

    std::ostream& m_stream;
    const Dialect m_dialect;
    const bool m_asArray;
    const bool m_isPretty;
    const bool m_isColored;
    bool m_isFirst = true;
};
