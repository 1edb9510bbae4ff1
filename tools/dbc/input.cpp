#include "input.h"

#include "failure.h"
#include "interrupt.h"

#include <cctype>
#include <cstdint>

dbc::Value parseJson(const std::string& text, const std::string& what)
{
    try
    {
        return dbc::Value::fromJson(text);
    }
    catch (const dbc::FormatError& error)
    {
        std::string reason = error.what();
        if (reason.rfind("JSON: ", 0) == 0)
            reason.erase(0, 6);
        throw Failure(UsageError, what + " is not JSON: " + reason);
    }
}

dbc::Value parseDocument(const std::string& text, const std::string& what)
{
    dbc::Value value = parseJson(text, what);
    if (!value.isObject())
        throw Failure(UsageError, what + " is not a JSON document: {...}");
    return value;
}

std::optional<dbc::Value> DocumentReader::next()
{
    const std::uint64_t line = m_line;
    if (!readText())
        return std::nullopt;
    ++m_count;
    return parseJson(m_text, "the document that begins at or behind line " + std::to_string(line));
}

// Takes the text from a "{" at the top to the "}" that closes it. Braces in texts do not count.
bool DocumentReader::readText()
{
    m_text.clear();
    int depth = 0;
    bool inText = false;
    bool escaped = false;
    for (int next = 0; (next = m_stream.get()) != std::istream::traits_type::eof();)
    {
        const char character = std::istream::traits_type::to_char_type(next);
        m_line += character == '\n' ? 1U : 0U;
        if (depth == 0 && character != '{')
        {
            passOver(character);
            continue;
        }
        m_text += character;
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
            return true;
    }
    if (depth > 0 && isInterrupted())
        return false;
    if (depth > 0)
        throw Failure(UsageError, "the input ends inside a document");
    if (m_inArray && !isInterrupted())
        throw Failure(UsageError, "the input ends inside an array");
    return false;
}

// What may stand between documents.
void DocumentReader::passOver(char between)
{
    if (std::isspace(static_cast<unsigned char>(between)) || (m_inArray && between == ','))
        return;
    if (between == (m_inArray ? ']' : '['))
    {
        m_inArray = !m_inArray;
        return;
    }
    throw Failure(UsageError, "line " + std::to_string(m_line) + " does not begin a document");
}
