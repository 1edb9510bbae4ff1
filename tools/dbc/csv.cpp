// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "csv.h"

#include "failure.h"
#include "interrupt.h"
#include "json_syntax.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace {

// A limit, because a record without its closing quote extends to the end of the input.
constexpr std::size_t longestRecord = std::size_t{128} * 1024 * 1024;

} // namespace

bool CsvReader::next(std::vector<Cell>& cells)
{
    cells.clear();
    m_begin = m_line;
    m_size = 0;
    if (m_input.peek() == InputFile::end)
        return false;
    for (bool isLast = false; !isLast;)
    {
        Cell& cell = cells.emplace_back();
        if (m_input.peek() == '"')
            readQuoted(cell);
        int character = take();
        while (!endsValue(character) && !endsRecord(character))
        {
            if (cell.isQuoted)
                fail(quotedCharacter(static_cast<char>(character)) + " follows the closing quote of a value");
            cell.text += static_cast<char>(character);
            character = take();
        }
        if (character == InputFile::end && isInterrupted())
            return false;
        isLast = !endsValue(character);
        if (validUtf8Length(cell.text) < cell.text.size())
            fail("value " + std::to_string(cells.size()) + " is not UTF-8");
    }
    return true;
}

int CsvReader::take()
{
    const int character = m_input.get();
    m_line += character == '\n' ? 1U : 0U;
    if (++m_size > longestRecord)
        fail("the record that begins here does not end within 128 MiB: a quote is missing");
    return character;
}

void CsvReader::readQuoted(Cell& cell)
{
    cell.isQuoted = true;
    take();
    for (;;)
    {
        const int character = take();
        if (character == InputFile::end)
        {
            throwIfInterrupted();
            fail("a value in this record has no closing quote");
        }
        if (character == '"')
        {
            if (m_input.peek() != '"')
                return;
            take(); // a doubled quote is one quote
        }
        cell.text += static_cast<char>(character);
    }
}

bool CsvReader::endsValue(int character) const
{
    return character == static_cast<unsigned char>(m_separator);
}

// A carriage return without a line feed is part of the value.
bool CsvReader::endsRecord(int character)
{
    if (character == '\r' && m_input.peek() == '\n')
    {
        take();
        return true;
    }
    return character == '\n' || character == InputFile::end;
}

void CsvReader::fail(const std::string& reason) const
{
    throw Failure(UsageError, m_input.name() + ": line " + std::to_string(m_begin) + ": " + reason);
}

void appendCsv(std::string& record, std::string_view text, char separator, bool isQuoted)
{
    const std::string_view special = separator == '\t' ? "\t\"\r\n" : ",\"\r\n";
    if (!isQuoted && text.find_first_of(special) == std::string_view::npos)
    {
        record += text;
        return;
    }
    record += '"';
    for (const char character : text)
        record.append(character == '"' ? 2 : 1, character);
    record += '"';
}
