// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "json_syntax.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <string_view>

namespace {

constexpr std::string_view spaces = " \t\r\n";
constexpr std::string_view digits = "0123456789";

bool isIn(std::string_view characters, char character)
{
    return characters.find(character) != std::string_view::npos;
}

/// Finds the first error. The open levels are stored in a string, so the depth is not limited by the stack.
class SyntaxWalk
{
public:
    explicit SyntaxWalk(std::string_view text) : m_text(text) {}

    std::optional<JsonFault> fault()
    {
        value();
        while (!m_fault && !m_open.empty())
            afterValue();
        skipSpaces();
        if (!m_fault && m_next < m_text.size())
            fail(m_next, "the value has ended, but " + found() + " follows");
        return m_fault;
    }

private:
    void fail(std::size_t offset, const std::string& reason)
    {
        if (!m_fault)
            m_fault = JsonFault{offset, reason};
        m_next = m_text.size();
    }
    // The character where another one is expected.
    std::string found() const { return m_next < m_text.size() ? quotedCharacter(m_text[m_next]) : "the end"; }
    bool isAt(char character) const { return m_next < m_text.size() && m_text[m_next] == character; }
    void skipSpaces() { m_next = std::min(m_text.find_first_not_of(spaces, m_next), m_text.size()); }

    // Enters containers until a value is complete.
    void value()
    {
        while (!m_fault)
        {
            skipSpaces();
            if (isAt('"'))
                return string();
            if (!isAt('{') && !isAt('['))
                return word();
            const bool isObject = isAt('{');
            ++m_next;
            skipSpaces();
            if (isAt(isObject ? '}' : ']'))
            {
                ++m_next;
                return;
            }
            m_open += isObject ? '}' : ']';
            if (isObject)
                key();
        }
    }

    void key()
    {
        skipSpaces();
        if (!isAt('"'))
            return fail(m_next, "a key in double quotes is expected, not " + found());
        string();
        skipSpaces();
        if (m_fault)
            return;
        if (!isAt(':'))
            return fail(m_next, "\":\" is expected after the key, not " + found());
        ++m_next;
    }

    // Reads a comma and the next value, or the end of the container.
    void afterValue()
    {
        skipSpaces();
        const char close = m_open.back();
        if (isAt(close))
        {
            ++m_next;
            m_open.pop_back();
            return;
        }
        if (!isAt(','))
            return fail(m_next, "\",\" or " + quotedCharacter(close) + " is expected, not " + found());
        const std::size_t comma = m_next++;
        skipSpaces();
        if (isAt(close))
            return fail(comma, "no comma is allowed before " + quotedCharacter(close));
        if (close == '}')
            key();
        value();
    }

    void string()
    {
        const std::size_t begin = m_next++;
        for (; m_next < m_text.size() && m_text[m_next] != '"'; ++m_next)
        {
            const auto byte = static_cast<unsigned char>(m_text[m_next]);
            if (byte < 0x20)
            {
                return fail(m_next, byte == '\n' ? "a line break inside a string is written \\n"
                                                 : "the control character " + quotedCharacter(m_text[m_next]) +
                                                       " must be escaped inside a string");
            }
            if (m_text[m_next] == '\\' && !escape())
                return;
        }
        if (m_next >= m_text.size())
            return fail(begin, "the string that begins here has no closing quote");
        const std::string_view content = m_text.substr(begin, m_next - begin);
        const std::size_t valid = validUtf8Length(content);
        if (valid < content.size())
            return fail(begin + valid, "the byte " + quotedCharacter(content[valid]) + " is not UTF-8");
        ++m_next;
    }

    bool escape()
    {
        const std::size_t begin = m_next++;
        if (m_next >= m_text.size() || isIn("\"\\/bfnrt", m_text[m_next]))
            return true;
        const std::string_view code = m_text.substr(m_next + 1, 4);
        if (isAt('u') && code.size() == 4 && code.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos)
        {
            m_next += 4;
            return true;
        }
        fail(begin, isAt('u') ? "four hexadecimal digits are expected after \\u"
                              : "a backslash and " + found() + " are not an escape sequence");
        return false;
    }

    // Reads a number, or true, false and null.
    void word()
    {
        const std::size_t begin = m_next;
        if (isAt('\''))
            return fail(begin, "strings need double quotes, not single quotes");
        m_next = std::min(m_text.find_first_of(" \t\r\n,:{}[]\"", begin), m_text.size());
        const std::string_view word = m_text.substr(begin, m_next - begin);
        if (word == "true" || word == "false" || word == "null" || isJsonNumber(word))
            return;
        m_next = begin;
        if (word.empty())
            return fail(begin, "a value is expected, not " + found());
        fail(begin, "\"" + std::string(word.substr(0, 40)) +
                        (isIn("-+.0123456789", word.front()) ? "\" is not a number"
                                                             : "\" is not a value; a string needs double quotes"));
    }

    std::string_view m_text;
    std::size_t m_next = 0;
    std::string m_open; // closing brackets of the open levels
    std::optional<JsonFault> m_fault;
};

} // namespace

std::optional<JsonFault> findJsonFault(std::string_view text)
{
    return SyntaxWalk(text).fault();
}

bool isJsonNumber(std::string_view text)
{
    const auto takeDigits = [&text] {
        const std::size_t count = std::min(text.find_first_not_of(digits), text.size());
        text.remove_prefix(count);
        return count;
    };
    const auto take = [&text](std::string_view characters) {
        const bool isThere = !text.empty() && isIn(characters, text.front());
        text.remove_prefix(isThere ? 1 : 0);
        return isThere;
    };
    take("-");
    const bool beginsWithZero = !text.empty() && text.front() == '0';
    const std::size_t whole = takeDigits();
    if (whole == 0 || (beginsWithZero && whole > 1))
        return false;
    if (take(".") && takeDigits() == 0)
        return false;
    if (take("eE"))
    {
        take("+-");
        if (takeDigits() == 0)
            return false;
    }
    return text.empty();
}

std::string quotedCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    if (byte == '"')
        return "a quote";
    if (byte >= 0x20 && byte < 0x7F)
        return std::string("\"") + character + "\"";
    std::array<char, 8> number{};
    std::snprintf(number.data(), number.size(), "0x%02X", byte);
    return number.data();
}

std::size_t validUtf8Length(std::string_view text) noexcept
{
    std::size_t place = 0;
    while (place < text.size())
    {
        const auto first = static_cast<unsigned char>(text[place]);
        const std::size_t length = first < 0x80   ? 1
                                   : first < 0xC2 ? 0
                                   : first < 0xE0 ? 2
                                   : first < 0xF0 ? 3
                                   : first < 0xF5 ? 4
                                                  : 0;
        if (length == 0 || text.size() - place < length)
            return place;
        for (std::size_t next = 1; next < length; ++next)
        {
            if ((static_cast<unsigned char>(text[place + next]) & 0xC0U) != 0x80U)
                return place;
        }
        // Rejects overlong forms, surrogates and values above U+10FFFF.
        const auto second = length > 1 ? static_cast<unsigned char>(text[place + 1]) : 0U;
        if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) || (first == 0xF0 && second < 0x90) ||
            (first == 0xF4 && second > 0x8F))
            return place;
        place += length;
    }
    return place;
}
