#pragma once

#include "dbc/value.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

/// How documents are written as JSON.
using Dialect = dbc::JsonFormat;

/// Whether output has colours.
enum class ColorMode
{
    Auto, ///< On a terminal, unless the environment has NO_COLOR or TERM=dumb.
    Always,
    Never
};

/// What the options in front of every command say of the output.
struct OutputOptions
{
    std::optional<Dialect> dialect; ///< each command has one of its own
    bool asArray = false;
    bool isPretty = false;
    ColorMode color = ColorMode::Auto;

    /// Whether what goes to standard output has colours.
    bool colorsStandardOutput() const;
};

/// @throws Failure if the value has no JSON form
std::string toJson(const dbc::Value& value, Dialect dialect);

/// The JSON text over several lines, with colours for a terminal, or both. Values such as {"$date": ...} stay on one
/// line.
std::string styledJson(std::string_view json, bool isPretty, bool isColored);

/// Writes documents one on a line, or as one array.
class DocumentWriter
{
public:
    /// @param dialect  unless the options name one
    DocumentWriter(std::ostream& stream, const OutputOptions& options, Dialect dialect, bool isColored)
        : m_stream(stream), m_dialect(options.dialect.value_or(dialect)), m_asArray(options.asArray),
          m_isPretty(options.isPretty), m_isColored(isColored)
    {}

    /// @throws Failure when something could not be written, now or before
    void write(const dbc::Value& value);
    /// Closes the array. @throws Failure when something could not be written
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
