// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

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

// Converts documents to rows of a table and back. A column is a field; "address.city" is the field "city" of the object
// "address".

/// Type of the values of a column.
enum class ColumnType
{
    Any, ///< Depends on the form of each value; docs/guide/dbc.md has the rules.
    String,
    Int,
    Long,
    Double,
    Decimal,
    Bool,
    Date,
    ObjectId,
    Json ///< JSON with all types, for any value.
};

struct Column
{
    std::string path;
    ColumnType type = ColumnType::Any;
};

/// Parses the columns of a header: names, or "name:type". @throws Failure for empty and duplicate names
std::vector<Column> parseHeader(const std::vector<Cell>& header);
/// The same for a header line such as "name,total:double,when:date".
std::vector<Column> parseHeader(const std::string& header);

/// Reads the rows of a file as documents. An empty value is a missing field.
class TableReader : public DocumentReader
{
public:
    /// @param header  the columns; by default, those of the first record
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

/// Finds columns for documents without loss. Objects are split into columns. A column is JSON if its values have
/// several types, or a type without a column type.
class ColumnFinder
{
public:
    /// @throws Failure for a document that cannot be a row: a key with a dot, or a duplicate key
    void look(const dbc::Value& document, std::uint64_t number);
    /// The columns in the order of the fields, as far as the documents have the same order.
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
        bool hasTypes = true;   ///< The header has the types of the columns.
        bool isComplete = true; ///< A field without a column is an error.
    };

    /// Writes the header.
    TableWriter(std::ostream& stream, const std::vector<Column>& columns, const Format& format);

    /// @throws Failure if a value does not fit its column, or if a write failed
    void write(const dbc::Value& document, std::uint64_t number);
    /// @throws Failure if a write failed
    void finish();

private:
    void writeRecord(const std::string& record);

    std::ostream& m_stream;
    const std::vector<Column> m_columns;
    const Format m_format;
    std::unordered_map<std::string, std::size_t> m_places;
    std::vector<Cell> m_cells;
};
