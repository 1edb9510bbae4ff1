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
    bool isQuoted = false; ///< whether it stood in quotes
};

/// Reads records of values with a separator between, quoted as RFC 4180 has it. Lines end with LF or CR LF. A quote
/// inside a value that does not begin with one is a character as any other.
class CsvReader
{
public:
    CsvReader(InputFile& input, char separator) : m_input(input), m_separator(separator) { input.skipByteOrderMark(); }

    /// Puts the next record into @p cells; false at the end. @throws Failure at a quote that is not closed, and at what
    /// is not UTF-8
    bool next(std::vector<Cell>& cells);
    /// The line in which the last record begins.
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

/// Appends a value to a record, in quotes if it needs them.
void appendCsv(std::string& record, std::string_view text, char separator, bool isQuoted);
