// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "table.h"

#include "csv.h"
#include "dbc/value.h"
#include "dbc/value_type.h"
#include "dbc/values.h"
#include "failure.h"
#include "input.h"
#include "json_syntax.h"
#include "scalar_text.h"
#include "texts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {

constexpr std::array<std::pair<std::string_view, ColumnType>, 9> typeNames{{{"string", ColumnType::String},
                                                                            {"int", ColumnType::Int},
                                                                            {"long", ColumnType::Long},
                                                                            {"double", ColumnType::Double},
                                                                            {"decimal", ColumnType::Decimal},
                                                                            {"bool", ColumnType::Bool},
                                                                            {"date", ColumnType::Date},
                                                                            {"objectId", ColumnType::ObjectId},
                                                                            {"json", ColumnType::Json}}};

std::string_view nameOf(ColumnType type)
{
    for (const auto& [name, candidate] : typeNames)
    {
        if (candidate == type)
            return name;
    }
    return {};
}

// Returns the type that keeps the value without loss.
ColumnType typeOf(const dbc::Value& value)
{
    switch (value.type())
    {
    case dbc::Type::String:
        return ColumnType::String;
    case dbc::Type::Int32:
        return ColumnType::Int;
    case dbc::Type::Int64:
        return ColumnType::Long;
    case dbc::Type::Double:
        return ColumnType::Double;
    case dbc::Type::Decimal128:
        return ColumnType::Decimal;
    case dbc::Type::Bool:
        return ColumnType::Bool;
    case dbc::Type::Time:
        return timeText(*value.get<dbc::Time>()).empty() ? ColumnType::Json : ColumnType::Date;
    case dbc::Type::ObjectId:
        return ColumnType::ObjectId;
    case dbc::Type::Object:
    case dbc::Type::Array:
    case dbc::Type::Binary:
    case dbc::Type::Undefined:
    case dbc::Type::Null:
    case dbc::Type::RegularExpression:
    case dbc::Type::DbPointer:
    case dbc::Type::Code:
    case dbc::Type::Symbol:
    case dbc::Type::CodeWithScope:
    case dbc::Type::Timestamp:
    case dbc::Type::MaxKey:
    case dbc::Type::MinKey:
        break;
    }
    return ColumnType::Json;
}

template <typename Integer>
std::optional<Integer> parseInteger(std::string_view text)
{
    Integer number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = !text.empty() && result.ptr == text.data() + text.size();
    return isWhole && result.ec == std::errc() ? std::optional<Integer>(number) : std::nullopt;
}

// Converts a value without quotes in a column without a type.
dbc::Value guessed(std::string_view field, const std::string& text)
{
    if (text == "true" || text == "false")
        return text == "true";
    if (text == "null")
        return nullptr;
    if (isJsonNumber(text))
    {
        if (const auto number = parseInteger<std::int32_t>(text))
            return *number;
        if (const auto number = parseInteger<std::int64_t>(text))
            return *number;
        const auto number = parseDouble(text);
        if (number && text.find_first_of(".eE") != std::string::npos)
            return *number;
    }
    if (const auto time = parseTime(text))
        return *time;
    if (isIdField(field) && isObjectIdText(text))
        return dbc::ObjectId{text};
    return text;
}

// Deeper objects become JSON, which limits the recursion.
constexpr int deepestColumn = 16;

bool isSpread(const dbc::Value& value, int level)
{
    if (!value.isObject() || value.empty() || level >= deepestColumn)
        return false;
    std::unordered_set<std::string_view> keys;
    return std::all_of(value.fields().begin(), value.fields().end(), [&keys](const dbc::Field& field) {
        return !field.key().empty() && field.key().find('.') == std::string_view::npos &&
               keys.insert(field.key()).second;
    });
}

// Calls visit with the path of each field. If visit returns false, the fields inside are visited too.
template <typename Visit>
void visitFields(const dbc::Value& object, const std::string& prefix, int level, const Visit& visit)
{
    for (const auto& [key, value] : object.fields())
    {
        const std::string path = prefix + std::string(key);
        if (!visit(path, value, isSpread(value, level)))
            visitFields(value, path + ".", level + 1, visit);
    }
}

std::string place(std::uint64_t number)
{
    return "document " + std::to_string(number);
}

void checkRow(const dbc::Value& document, std::uint64_t number)
{
    std::unordered_set<std::string_view> keys;
    for (const auto& [key, value] : document.fields())
    {
        const bool isColumn = !key.empty() && key.find('.') == std::string_view::npos;
        if (!isColumn || !keys.insert(key).second)
        {
            throw Failure(ServerRefused, place(number) + " cannot be a row: " +
                                             (isColumn ? "it has the field \"" + std::string(key) + "\" twice"
                                                       : "the field \"" + std::string(key) + "\" cannot be a column") +
                                             "; export it as JSON");
        }
    }
}

std::string jsonText(const dbc::Value& value, dbc::JsonFormat format, const std::string& what)
{
    try
    {
        return value.toJson(format);
    }
    catch (const std::invalid_argument& error)
    {
        throw Failure(ServerRefused, what + " cannot be written: " + error.what());
    }
}

bool isExact(const std::string& json, const dbc::Value& value)
{
    try
    {
        return dbc::Value{{"", dbc::Value::fromJson(json)}}.toBson() == dbc::Value{{"", value}}.toBson();
    }
    catch (const dbc::FormatError& /*error*/)
    {
        return false; // a time in the year 10000 or later
    }
}

// Uses relaxed JSON if it keeps the value, because it is easier to read.
std::string exactJson(const dbc::Value& value, const std::string& what)
{
    const std::string relaxed = jsonText(value, dbc::JsonFormat::Relaxed, what);
    return isExact(relaxed, value) ? relaxed : jsonText(value, dbc::JsonFormat::Canonical, what);
}

// In a column without a type, values that guessed() reads unchanged are written without quotes.
Cell cellOfAny(const std::string& path, const dbc::Value& value, const std::string& what)
{
    const ColumnType type = typeOf(value);
    switch (type)
    {
    case ColumnType::String: {
        const std::string text = *value.get<std::string>();
        return {text, text.empty() || !guessed(path, text).isString()};
    }
    case ColumnType::Int:
    case ColumnType::Long:
        return {std::to_string(*value.get<std::int64_t>())};
    case ColumnType::Double:
        return {doubleText(*value.get<double>())};
    case ColumnType::Decimal:
        return {value.get<dbc::Decimal128>()->text()};
    case ColumnType::Bool:
        return {*value.get<bool>() ? "true" : "false"};
    case ColumnType::Date:
        return {timeText(*value.get<dbc::Time>())};
    case ColumnType::ObjectId:
        return {value.get<dbc::ObjectId>()->text};
    case ColumnType::Any:
    case ColumnType::Json:
        break;
    }
    return {jsonText(value, dbc::JsonFormat::Relaxed, what)};
}

// Empty if the value is of another type.
std::optional<Cell> cellOf(const Column& column, const dbc::Value& value, const std::string& what)
{
    switch (column.type)
    {
    case ColumnType::Any:
        return cellOfAny(column.path, value, what);
    case ColumnType::Json:
        return Cell{exactJson(value, what)};
    case ColumnType::String:
        if (const auto text = value.get<std::string>())
            return Cell{*text, text->empty()};
        return std::nullopt;
    case ColumnType::Int:
        if (const auto number = value.get<std::int32_t>())
            return Cell{std::to_string(*number)};
        return std::nullopt;
    case ColumnType::Long:
        if (const auto number = value.get<std::int64_t>())
            return Cell{std::to_string(*number)};
        return std::nullopt;
    case ColumnType::Double:
        if (const auto number = value.get<double>())
            return Cell{doubleText(*number)};
        return std::nullopt;
    case ColumnType::Decimal:
    case ColumnType::Bool:
    case ColumnType::Date:
    case ColumnType::ObjectId:
        break;
    }
    return typeOf(value) == column.type ? std::optional<Cell>(cellOfAny(column.path, value, what)) : std::nullopt;
}

} // namespace

// --- the header ----------------------------------------------------------------------------------------------------

std::vector<Column> parseHeader(const std::vector<Cell>& header)
{
    std::vector<Column> columns;
    std::unordered_set<std::string> paths;
    for (const Cell& cell : header)
    {
        Column column{cell.text};
        const std::size_t colon = cell.text.rfind(':');
        for (const auto& [name, type] : typeNames)
        {
            if (colon != std::string::npos && cell.text.compare(colon + 1, std::string::npos, name) == 0)
                column = {cell.text.substr(0, colon), type};
        }
        const std::string& path = column.path;
        if (path.empty() || path.front() == '.' || path.back() == '.' || path.find("..") != std::string::npos)
        {
            throw Failure(UsageError,
                          "column " + std::to_string(columns.size() + 1) + " has no name: \"" + path + "\"");
        }
        if (!paths.insert(path).second)
            throw Failure(UsageError, "two columns have the name " + path);
        columns.push_back(std::move(column));
    }
    return columns;
}

std::vector<Column> parseHeader(const std::string& header)
{
    std::vector<Cell> cells(1);
    for (const char character : header)
    {
        if (character == ',')
            cells.emplace_back();
        else
            cells.back().text += character;
    }
    return parseHeader(cells);
}

// --- TableReader ---------------------------------------------------------------------------------------------------

TableReader::TableReader(InputFile& input, char separator, const std::string& header)
    : m_input(input), m_records(input, separator)
{
    if (!header.empty())
        m_columns = parseHeader(header);
    else if (m_records.next(m_cells))
        m_columns = parseHeader(m_cells);
}

// An empty line is not a record, unless there is only one column.
bool TableReader::skip()
{
    do
    {
        if (!m_records.next(m_cells))
            return false;
    } while (m_columns.size() > 1 && m_cells.size() == 1 && m_cells[0].text.empty());
    return true;
}

std::optional<dbc::Value> TableReader::next()
{
    if (!skip())
        return std::nullopt;
    if (m_cells.size() != m_columns.size())
        fail(counted(m_cells.size(), "value") + " for " + counted(m_columns.size(), "column"));
    dbc::Value document;
    for (std::size_t index = 0; index < m_cells.size(); ++index)
    {
        const Column& column = m_columns[index];
        const Cell& cell = m_cells[index];
        const bool keepsEmpty = cell.isQuoted && (column.type == ColumnType::Any || column.type == ColumnType::String);
        if (!cell.text.empty() || keepsEmpty)
            place(document, column.path, valueOf(column, cell));
    }
    return document;
}

void TableReader::fail(const std::string& reason) const
{
    throw Failure(UsageError, m_input.name() + ": line " + std::to_string(m_records.line()) + ": " + reason);
}

dbc::Value TableReader::valueOf(const Column& column, const Cell& cell) const
{
    const std::string& text = cell.text;
    switch (column.type)
    {
    case ColumnType::Any:
        return cell.isQuoted ? dbc::Value(text) : guessed(column.path, text);
    case ColumnType::String:
        return text;
    case ColumnType::Int:
        if (const auto number = parseInteger<std::int32_t>(text))
            return *number;
        break;
    case ColumnType::Long:
        if (const auto number = parseInteger<std::int64_t>(text))
            return *number;
        break;
    case ColumnType::Double:
        if (const auto number = parseDouble(text))
            return *number;
        break;
    case ColumnType::Decimal:
        try
        {
            return dbc::Decimal128::parse(text);
        }
        catch (const std::invalid_argument& /*error*/)
        {
            break;
        }
    case ColumnType::Bool:
        if (text == "true" || text == "false")
            return text == "true";
        break;
    case ColumnType::Date:
        if (const auto time = parseTime(text))
            return *time;
        break;
    case ColumnType::ObjectId:
        if (isObjectIdText(text))
            return dbc::ObjectId{text};
        break;
    case ColumnType::Json:
        return parseJson(text, m_input.name() + ": line " + std::to_string(m_records.line()) + ": " + column.path);
    }
    fail(column.path + ": \"" + text.substr(0, 40) + "\" is not of type " + std::string(nameOf(column.type)));
}

void TableReader::place(dbc::Value& document, const std::string& path, dbc::Value value) const
{
    dbc::Value* object = &document;
    std::size_t begin = 0;
    for (std::size_t dot = 0; (dot = path.find('.', begin)) != std::string::npos; begin = dot + 1)
    {
        const std::string key = path.substr(begin, dot - begin);
        dbc::Value* const inside = object->find(key);
        object = inside ? inside : &object->append(key, dbc::Value());
        if (!object->isObject())
            fail(path + " is a field of " + path.substr(0, dot) + ", which has a value");
    }
    const std::string key = path.substr(begin);
    if (object->contains(key))
        fail(path + " has both a value and fields");
    object->append(key, std::move(value));
}

// --- ColumnFinder --------------------------------------------------------------------------------------------------

void ColumnFinder::look(const dbc::Value& document, std::uint64_t number)
{
    checkRow(document, number);
    std::vector<Column> fields;
    visitFields(document, "", 0, [&fields](const std::string& path, const dbc::Value& value, bool isSpread) {
        if (!isSpread)
            fields.push_back({path, typeOf(value)});
        return !isSpread;
    });
    // Inserts a new column before the next field of the document that already has a column.
    auto next = m_columns.end();
    for (auto field = fields.rbegin(); field != fields.rend(); ++field)
    {
        const auto known = m_places.find(field->path);
        if (known == m_places.end())
        {
            next = m_columns.insert(next, *field);
            m_places.emplace(field->path, next);
            continue;
        }
        next = known->second;
        if (next->type != field->type)
            next->type = ColumnType::Json;
    }
}

// --- TableWriter ---------------------------------------------------------------------------------------------------

TableWriter::TableWriter(std::ostream& stream, const std::vector<Column>& columns, const Format& format)
    : m_stream(stream), m_columns(columns), m_format(format), m_cells(columns.size())
{
    std::string record;
    for (std::size_t index = 0; index < m_columns.size(); ++index)
    {
        m_places.emplace(m_columns[index].path, index);
        std::string name = m_columns[index].path;
        if (m_format.hasTypes && m_columns[index].type != ColumnType::Any)
            name.append(":").append(nameOf(m_columns[index].type));
        if (index > 0)
            record += m_format.separator;
        appendCsv(record, name, m_format.separator, false);
    }
    writeRecord(record);
}

void TableWriter::write(const dbc::Value& document, std::uint64_t number)
{
    std::fill(m_cells.begin(), m_cells.end(), Cell());
    if (m_format.isComplete)
        checkRow(document, number);
    visitFields(document, "", 0, [&](const std::string& path, const dbc::Value& value, bool isSpread) {
        const auto place = m_places.find(path);
        const bool hasColumn = place != m_places.end() && !(m_format.isComplete && isSpread);
        if (!hasColumn && m_format.isComplete && !isSpread)
        {
            throw Failure(ServerRefused,
                          ::place(number) + " has the field " + path +
                              ", which no document had when the columns were determined; name them with --columns");
        }
        if (!hasColumn)
            return !isSpread;
        const Column& column = m_columns[place->second];
        const std::string what = ::place(number) + ": " + path;
        const std::optional<Cell> cell = cellOf(column, value, what);
        if (!cell)
        {
            throw Failure(ServerRefused, what + " is not of type " + std::string(nameOf(column.type)) +
                                             " but of type " + dbc::nameOf(value.type()) + "; a column " + path +
                                             ":json accepts every type");
        }
        m_cells[place->second] = *cell;
        return true;
    });
    std::string record;
    for (std::size_t index = 0; index < m_cells.size(); ++index)
    {
        if (index > 0)
            record += m_format.separator;
        appendCsv(record, m_cells[index].text, m_format.separator, m_cells[index].isQuoted);
    }
    writeRecord(record);
}

void TableWriter::writeRecord(const std::string& record)
{
    m_stream << record << '\n';
    if (!m_stream)
        throw Failure(UsageError, "the output cannot be written");
}

void TableWriter::finish()
{
    if (!m_stream.flush())
        throw Failure(UsageError, "the output cannot be written");
}
