// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "output.h"

#include "dbc/value.h"
#include "failure.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace {

// Colours of the terminal's palette, because they are readable with any background.
constexpr std::string_view keyColor = "\x1b[34;1m";
constexpr std::string_view stringColor = "\x1b[32m";
constexpr std::string_view numberColor = "\x1b[33m";
constexpr std::string_view wordColor = "\x1b[35m"; // true, false, null
constexpr std::string_view noColor = "\x1b[0m";

constexpr std::string_view spaces = " \t\r\n";

/// Formats valid JSON text.
class JsonStyle
{
public:
    JsonStyle(std::string_view json, bool isPretty, bool isColored)
        : m_json(json), m_isPretty(isPretty), m_isColored(isColored)
    {}

    std::string apply()
    {
        while (m_next < m_json.size())
        {
            const char character = m_json[m_next];
            if (spaces.find(character) != std::string_view::npos)
            {
                if (!m_isPretty)
                    m_result += character;
                ++m_next;
            }
            else if (character == '{' || character == '[')
                open();
            else if (character == '}' || character == ']')
                close();
            else if (character == ',' || character == ':')
                separate(character);
            else
                token();
        }
        return std::move(m_result);
    }

private:
    // Starts a line for each item, unless the container is empty or represents one value, such as {"$date": ...}.
    void open()
    {
        const std::size_t inside = std::min(m_json.find_first_not_of(spaces, m_next + 1), m_json.size() - 1);
        const bool isEmpty = m_json[inside] == '}' || m_json[inside] == ']';
        const bool isInline = isEmpty || isWithinInline() || m_json.compare(inside, 2, "\"$") == 0;
        m_result += m_json[m_next++];
        m_open += isInline ? 'i' : 'l';
        breakLine();
    }

    void close()
    {
        const bool isInline = isWithinInline();
        m_open.pop_back();
        if (!isInline)
            breakLine();
        m_result += m_json[m_next++];
    }

    void separate(char character)
    {
        m_result += character;
        ++m_next;
        if (!m_isPretty)
            return;
        if (character == ':' || isWithinInline())
            m_result += ' ';
        else
            breakLine();
    }

    bool isWithinInline() const { return !m_open.empty() && m_open.back() == 'i'; }

    void breakLine()
    {
        if (!m_isPretty || isWithinInline())
            return;
        m_result += '\n';
        m_result.append(2 * m_open.size(), ' ');
    }

    void token()
    {
        const std::size_t begin = m_next;
        if (m_json[begin] == '"')
        {
            for (++m_next; m_next < m_json.size() && m_json[m_next] != '"'; ++m_next)
                m_next += m_json[m_next] == '\\' ? 1 : 0;
            m_next = std::min(m_next + 1, m_json.size());
        }
        else
            m_next = std::min(m_json.find_first_of(" \t\r\n,:{}[]\"", begin), m_json.size());
        if (m_isColored)
            m_result += colorOf(begin);
        m_result += m_json.substr(begin, m_next - begin);
        if (m_isColored)
            m_result += noColor;
    }

    // A string before a colon is a key.
    std::string_view colorOf(std::size_t begin) const
    {
        if (m_json[begin] == '"')
        {
            const std::size_t behind = m_json.find_first_not_of(spaces, m_next);
            return behind != std::string_view::npos && m_json[behind] == ':' ? keyColor : stringColor;
        }
        return std::string_view("tfn").find(m_json[begin]) == std::string_view::npos ? numberColor : wordColor;
    }

    const std::string_view m_json;
    const bool m_isPretty;
    const bool m_isColored;
    std::size_t m_next = 0;
    std::string m_open; // one letter per level: "i" if it stays on its line
    std::string m_result;
};

} // namespace

bool OutputOptions::colorsStandardOutput() const
{
    switch (color)
    {
    case ColorMode::Always:
        return true;
    case ColorMode::Never:
        return false;
    case ColorMode::Auto:
        break;
    }
    const char* const refusal = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && (!refusal || *refusal == '\0') && terminal &&
           std::string_view(terminal) != "dumb";
}

std::string toJson(const dbc::Value& value, Dialect dialect)
{
    try
    {
        return value.toJson(dialect);
    }
    catch (const std::invalid_argument& error)
    {
        throw Failure(ServerRefused, std::string("a document cannot be written as JSON: ") + error.what());
    }
}

std::string styledJson(std::string_view json, bool isPretty, bool isColored)
{
    return JsonStyle(json, isPretty, isColored).apply();
}

void DocumentWriter::write(const dbc::Value& value)
{
    if (m_asArray)
        m_stream << (m_isFirst ? "[\n" : ",\n");
    const std::string json = toJson(value, m_dialect);
    m_stream << (m_isPretty || m_isColored ? styledJson(json, m_isPretty, m_isColored) : json);
    if (!m_asArray)
        m_stream << '\n';
    m_isFirst = false;
    throwIfBroken();
}

void DocumentWriter::finish()
{
    if (m_asArray)
        m_stream << (m_isFirst ? "[]\n" : "\n]\n");
    m_stream.flush();
    throwIfBroken();
}

void DocumentWriter::throwIfBroken() const
{
    if (!m_stream)
        throw Failure(UsageError, "the output cannot be written");
}
