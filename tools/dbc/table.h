#pragma once

#include "csv.h"
#include "dbc/value.h"
#include "input.h"

#include <cstdint>
#include <list>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Documents as the rows of a table. A column is a field; "address.city" is the field "city" of the object "address".

/// What the values of a column are.
enum class ColumnType
{
    Any, ///< What each value looks like; docs/guide/dbc.md has the rules.
    String,
    Int,
    Long,
    Double,
    Decimal,
    Bool,
    Date,
    ObjectId,
    Json ///< JSON that keeps every type, for any value.
};

struct Column
{
    std::string path;
    ColumnType type = ColumnType::Any;
};

/// The columns of a header: names, or "name:type". @throws Failure for an empty name, and one that is there twice
std::vector<Column> parseHeader(const std::vector<Cell>& header);
/// The same, of a text such as "name,total:double,when:date".
std::vector<Column> parseHeader(const std::string& header);

/// Reads the rows of a file as documents. An empty value is a field that the document does not have.
class TableReader : public DocumentReader
{
public:
    /// @param header  the columns; unless given, the first record names them
    TableReader(InputFile& input, char separator, const std::string& header);

    std::optional<dbc::Value> next() override;
    bool skip() override;
    std::uint64_t line() const override { return m_records.line(); }

private:
    [[noreturn]] void fail(const std::string& reason) const;
    dbc::Value valueOf(const Column& column, const Cell& cell) const;
    void place(dbc::Value& document, const std::string& path, dbc::Value value) const;

    InputFile& m_input;
    CsvReader m_records;
    std::vector<Column> m_columns;
    std::vector<Cell> m_cells;
};

/// Finds the columns that take documents without loss: objects are spread over columns, and a column of values of
/// several types, or of such as have no type of their own, holds JSON.
class ColumnFinder
{
public:
    /// @throws Failure for a document that has no form as a row: a key with a dot in it, or twice
    void look(const dbc::Value& document, std::uint64_t number);
    /// In an order that is that of the fields in the documents, as far as these agree.
    std::vector<Column> columns() const { return {m_columns.begin(), m_columns.end()}; }

private:
    std::list<Column> m_columns;
    std::unordered_map<std::string, std::list<Column>::iterator> m_places;
};

/// Writes documents as rows.
class TableWriter
{
public:
    struct Format
    {
        char separator = ',';
        bool hasTypes = true;   ///< in the header
        bool isComplete = true; ///< whether a field without a column is an error
    };

    /// Writes the header.
    TableWriter(std::ostream& stream, const std::vector<Column>& columns, const Format& format);

    /// @throws Failure when a value does not fit its column, and when something could not be written
    void write(const dbc::Value& document, std::uint64_t number);
    /// @throws Failure when something could not be written
    void finish();

private:
    void writeRecord(const std::string& record);

    std::ostream& m_stream;
    const std::vector<Column> m_columns;
    const Format m_format;
    std::unordered_map<std::string, std::size_t> m_places;
    std::vector<Cell> m_cells;
};
