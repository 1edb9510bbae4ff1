// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/errors.h"
#include "dbc/value.h"
#include "dbc/value_type.h"
#include "dbc/values.h"
#include "document_walk.h"
#include "failure.h"
#include "interrupt.h"
#include "progress.h"
#include "query_words.h"
#include "texts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct SchemaCommand
{
    std::string collection;
    std::vector<std::string> query;
    std::int64_t sample = 1000;
};

const char* nameOfType(dbc::Type type)
{
    switch (type)
    {
    case dbc::Type::Double:
        return "double";
    case dbc::Type::String:
        return "string";
    case dbc::Type::Object:
        return "object";
    case dbc::Type::Array:
        return "array";
    case dbc::Type::Binary:
        return "binary";
    case dbc::Type::Undefined:
        return "undefined";
    case dbc::Type::ObjectId:
        return "id";
    case dbc::Type::Bool:
        return "bool";
    case dbc::Type::Time:
        return "time";
    case dbc::Type::Null:
        return "null";
    case dbc::Type::RegularExpression:
        return "regex";
    case dbc::Type::DbPointer:
        return "dbpointer";
    case dbc::Type::Code:
        return "code";
    case dbc::Type::Symbol:
        return "symbol";
    case dbc::Type::CodeWithScope:
        return "code with scope";
    case dbc::Type::Int32:
        return "int32";
    case dbc::Type::Timestamp:
        return "timestamp";
    case dbc::Type::Int64:
        return "int64";
    case dbc::Type::Decimal128:
        return "decimal128";
    case dbc::Type::MaxKey:
        return "max key";
    case dbc::Type::MinKey:
        return "min key";
    }
    return "unknown";
}

// Statistics of one path and one type.
struct Column
{
    std::uint64_t count = 0;
    std::optional<double> smallest;
    std::optional<double> largest;

    void add(double value)
    {
        smallest = smallest ? std::min(*smallest, value) : value;
        largest = largest ? std::max(*largest, value) : value;
    }
};

using Schema = std::map<std::pair<std::string, std::string>, Column>;

// The length for strings and arrays.
std::optional<double> measure(const dbc::Value& value)
{
    if (const auto number = value.get<double>())
        return std::isnan(*number) ? std::nullopt : number;
    if (const auto integer = value.get<std::int64_t>())
        return static_cast<double>(*integer); // no double is equal to it
    if (const auto time = value.get<dbc::Time>())
        return static_cast<double>(dbc::millisecondsOf(*time));
    if (const auto text = value.get<std::string_view>())
        return static_cast<double>(text->size());
    if (value.isArray())
        return static_cast<double>(value.size());
    return std::nullopt;
}

// Servers reject deeper documents, so the recursion is bounded.
constexpr int deepestLevel = 200;

void addValue(const dbc::Value& value, const std::string& path, int level, Schema& schema);

void addBelow(const dbc::Value& parent, const std::string& path, int level, Schema& schema)
{
    const std::string prefix = path.empty() ? "" : path + ".";
    for (const auto& [key, value] : parent.fields())
        addValue(value, prefix + std::string(key), level, schema);
    for (const dbc::Value& element : parent.elements())
        addValue(element, prefix + "[]", level, schema);
}

void addValue(const dbc::Value& value, const std::string& path, int level, Schema& schema)
{
    Column& column = schema[{path, nameOfType(value.type())}];
    ++column.count;
    if (const auto size = measure(value))
        column.add(*size);
    if (level < deepestLevel)
        addBelow(value, path, level + 1, schema);
}

std::string rangeOf(const std::string& type, const Column& column)
{
    if (!column.smallest)
        return "";
    if (type == "time")
    {
        const auto text = [](double milliseconds) {
            return dateText(dbc::timeFromMilliseconds(static_cast<long long>(milliseconds)));
        };
        return "  " + text(*column.smallest) + " .. " + text(*column.largest);
    }
    std::ostringstream text;
    text << (type == "string" || type == "array" ? "  length " : "  ") << std::setprecision(15) << *column.smallest
         << " .. " << *column.largest;
    return text.str();
}

// Returns false and sets the reason if the server does not support $sample. Passes on any other error.
template <typename Visit>
bool visitAtRandom(dbc::Collection& collection, const dbc::Value& query, std::int64_t size, const Visit& visit,
                   std::string& reason)
{
    const dbc::Value pipeline = dbc::Value::array({{{"$match", query}}, {{"$sample", {{"size", size}}}}});
    bool any = false;
    try
    {
        forEachDocument([&] { return collection.aggregate(pipeline); },
                        [&](dbc::Cursor& cursor) {
                            any = true;
                            visit(cursor);
                        });
        return true;
    }
    catch (const dbc::ServerError& error)
    {
        if (any || isInterrupted() || error.kind() != dbc::ErrorKind::Other)
            throw;
        reason = dbc::describe(error).text;
        return false;
    }
}

struct Sample
{
    Schema schema;
    std::uint64_t documents = 0;
    std::string choice; ///< how the documents were chosen
};

Sample takeSample(const GlobalOptions& global, const SchemaCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionOf(*client, command.collection);
    const bool isCounted = command.sample == 0 && Progress::isShown(global.connection.quiet);
    Progress progress("reading",
                      isCounted ? documentCount(collection, query) : static_cast<std::uint64_t>(command.sample),
                      global.connection.quiet);
    Sample result;
    const auto visit = [&](dbc::Cursor& cursor) {
        addBelow(cursor.value(), "", 0, result.schema);
        progress.show(++result.documents);
    };
    std::string reason;
    if (command.sample > 0 && visitAtRandom(collection, query, command.sample, visit, reason))
        result.choice = "chosen at random by the server";
    else
    {
        dbc::FindOptions options;
        options.limit = command.sample;
        forEachDocument([&] { return collection.find(query, options); }, visit);
        result.choice = "the first ones, because the server does not support $sample: " + reason;
    }
    if (command.sample == 0 || result.documents < static_cast<std::uint64_t>(command.sample))
        result.choice = "all documents";
    return result;
}

int schema(const GlobalOptions& global, const SchemaCommand& command)
{
    const Sample sample = takeSample(global, command);
    std::size_t width = 4;
    for (const auto& entry : sample.schema)
        width = std::max(width, entry.first.first.size());
    for (const auto& [place, column] : sample.schema)
    {
        std::cout << std::left << std::setw(static_cast<int>(width)) << place.first << "  " << std::setw(10)
                  << place.second << "  " << std::right << std::setw(8) << column.count << rangeOf(place.second, column)
                  << '\n';
    }
    if (!global.connection.quiet)
    {
        std::cout << counted(sample.documents, "document") << '\n' << std::flush;
        std::cerr << "sample: " << sample.choice << '\n';
    }
    return sample.documents > 0 ? Success : NothingFound;
}

} // namespace

void addSchemaCommand(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<SchemaCommand>();
    CLI::App* app = program.add_subcommand("schema", "Print paths, types, counts and ranges of a sample of documents");
    app->add_option("collection", command->collection, collectionHelp)->required();
    app->add_option("query", command->query, queryHelp);
    addNumber(*app, "--sample", command->sample,
              "Number of documents: a random sample if the server supports $sample, otherwise the first ones; default: "
              "1000; 0 for all");
    setWork(*app, global, work, command, &schema);
}
