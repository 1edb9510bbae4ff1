// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "input.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

/// One value of a record.
struct Cell
{
    std::string text;
    bool isQuoted = false; ///< true if the value was in quotes
};

/// Reads records of separated values, quoted as in RFC 4180. Lines end with LF or CR LF. If a value does not begin with
/// a quote, quotes in it are ordinary characters.
class CsvReader
{
public:
    CsvReader(InputFile& input, char separator) : m_input(input), m_separator(separator) { input.skipByteOrderMark(); }

    /// Reads the next record into @p cells. Returns false at the end. @throws Failure for a missing closing quote and
    /// for bytes that are not UTF-8
    bool next(std::vector<Cell>& cells);
    /// The number of the first line of the last record.
    std::uint64_t line() const noexcept { return m_begin; }

private:
    int take();
    void readQuoted(Cell& cell);
    bool endsValue(int character) const;
    bool endsRecord(int character);
    [[noreturn]] void fail(const std::string& reason) const;

    InputFile& m_input;
    const char m_separator;
    std::uint64_t m_begin = 1;
    std::uint64_t m_line = 1;
    std::size_t m_size = 0; // bytes of the record
};

/// Appends a value to a record, with quotes if needed.
void appendCsv(std::string& record, std::string_view text, char separator, bool isQuoted);
