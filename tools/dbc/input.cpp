// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "input.h"

#include "dbc/value.h"
#include "failure.h"
#include "interrupt.h"
#include "json_syntax.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace {

// Longer than any document that a server accepts, even in canonical JSON.
constexpr std::size_t longestDocument = std::size_t{128} * 1024 * 1024;

// Returns the reason without the byte offset, because messages have line and column.
std::string reasonOf(const dbc::FormatError& error)
{
    static const std::string before = "JSON: ";
    const std::string after = ", at byte " + std::to_string(error.position());
    std::string reason = error.what();
    if (reason.size() > after.size() && reason.compare(reason.size() - after.size(), after.size(), after) == 0)
        reason.erase(reason.size() - after.size());
    if (reason.compare(0, before.size(), before) == 0)
        reason.erase(0, before.size());
    return reason;
}

// Describes why the text is not JSON, with line and column. "place" is the start of the text.
std::string faultOf(std::string_view text, const dbc::FormatError& error, Place place)
{
    const std::optional<JsonFault> fault = findJsonFault(text);
    place.pass(text.substr(0, fault ? fault->offset : error.position()));
    return place.text() + ": " + (fault ? fault->reason : reasonOf(error));
}

} // namespace

void Place::pass(std::string_view text) noexcept
{
    for (const char character : text)
    {
        if (character == '\n')
        {
            ++line;
            column = 1;
        }
        else if ((static_cast<unsigned char>(character) & 0xC0U) != 0x80U) // not a continuation byte
            ++column;
    }
}

dbc::Value parseJson(std::string_view text, const std::string& what)
{
    try
    {
        return dbc::Value::fromJson(text);
    }
    catch (const dbc::FormatError& error)
    {
        throw Failure(UsageError, what + " is not JSON: " + faultOf(text, error, Place()));
    }
}

dbc::Value parseDocument(std::string_view text, const std::string& what)
{
    dbc::Value document = parseJson(text, what);
    if (!document.isObject())
        throw Failure(UsageError, what + " is not a JSON document, which begins with \"{\"");
    return document;
}

// --- InputFile -----------------------------------------------------------------------------------------------------

InputFile::InputFile(const std::string& path) : m_name(path.empty() ? "standard input" : path)
{
    if (!path.empty())
        m_file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (m_file < 0 || ::fstat(m_file, &status) != 0)
        throw Failure(UsageError, "cannot read " + m_name + ": " + std::generic_category().message(errno));
    if (S_ISREG(status.st_mode))
        m_size = static_cast<std::uint64_t>(status.st_size);
}

InputFile::~InputFile()
{
    if (m_file > 0)
        ::close(m_file);
}

bool InputFile::fill()
{
    ssize_t count = 0;
    do
        count = ::read(m_file, m_buffer.data(), m_buffer.size());
    while (count < 0 && errno == EINTR && !isInterrupted());
    if (count < 0 && !isInterrupted())
        throw Failure(UsageError, "cannot read " + m_name + ": " + std::generic_category().message(errno));
    m_before += m_filled;
    m_next = 0;
    m_filled = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return m_filled > 0;
}

void InputFile::skipByteOrderMark()
{
    static constexpr std::array<unsigned char, 3> mark{0xEF, 0xBB, 0xBF};
    if (peek() != end && m_next == 0 && m_filled >= mark.size() &&
        std::equal(mark.begin(), mark.end(), m_buffer.begin()))
        m_next = mark.size();
}

// --- JsonReader ----------------------------------------------------------------------------------------------------

std::optional<dbc::Value> JsonReader::next()
{
    if (!readText())
        return std::nullopt;
    try
    {
        return dbc::Value::fromJson(m_text);
    }
    catch (const dbc::FormatError& error)
    {
        throw Failure(UsageError, m_input.name() + ": " + faultOf(m_text, error, m_begin));
    }
}

// Reads the text from a "{" to the matching "}". Ignores braces in strings.
bool JsonReader::readText()
{
    m_text.clear();
    int depth = 0;
    bool inText = false;
    bool escaped = false;
    for (int next = 0; (next = m_input.get()) != InputFile::end;)
    {
        const char character = static_cast<char>(next);
        if (depth == 0 && character != '{')
        {
            passOver(character);
            m_place.pass({&character, 1});
            continue;
        }
        if (depth == 0)
            m_begin = m_place;
        m_text += character;
        if (m_text.size() > longestDocument)
            throwUnfinished("does not end within 128 MiB");
        if (inText)
        {
            inText = escaped || character != '"';
            escaped = !escaped && character == '\\';
            continue;
        }
        inText = character == '"';
        if (character == '{')
            ++depth;
        else if (character == '}' && --depth == 0)
        {
            m_place.pass(m_text);
            return true;
        }
    }
    if (isInterrupted())
        return false;
    if (depth > 0)
        throwUnfinished("does not end");
    if (m_inArray)
        throw Failure(UsageError, m_input.name() + " ends inside an array");
    return false;
}

// Reports an error inside the text first, because a wrong bracket can extend a document to the end of the input.
void JsonReader::throwUnfinished(const char* what) const
{
    const std::optional<JsonFault> fault = findJsonFault(m_text);
    Place place = m_begin;
    if (fault && fault->offset < m_text.size())
    {
        place.pass({m_text.data(), fault->offset});
        throw Failure(UsageError, m_input.name() + ": " + place.text() + ": " + fault->reason);
    }
    throw Failure(UsageError, m_input.name() + ": the document that begins at " + place.text() + " " + what);
}

// Skips whitespace, commas and the brackets of an array between documents.
void JsonReader::passOver(char between)
{
    if (std::isspace(static_cast<unsigned char>(between)) || (m_inArray && between == ','))
        return;
    if (between == (m_inArray ? ']' : '['))
    {
        m_inArray = !m_inArray;
        return;
    }
    m_begin = m_place;
    throw Failure(UsageError, m_input.name() + ": " + m_place.text() + ": a document begins with \"{\", not with " +
                                  quotedCharacter(between));
}
