#include "commands.h"

#include "dbc/errors.h"
#include "doctor.h"
#include "failure.h"
#include "input.h"
#include "interrupt.h"
#include "losses.h"
#include "progress.h"
#include "query_words.h"
#include "raw_collection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct InspectCommand
{
    std::string collection;
    std::vector<std::string> query;
    std::int64_t sample = 1000;
};

// --- check ---------------------------------------------------------------------------------------------------------

int check(const GlobalOptions& global, const InspectCommand& command)
{
    const BsonPointer query = parseQuery(command.query);
    RawCollection collection(connectionString(global.connection), command.collection);
    LossCounter losses(LossPolicy::Count);
    std::uint64_t done = 0;
    {
        const bool isShown = Progress::isShown(global.connection.quiet);
        Progress progress("checking", isShown ? collection.count(*query.get()) : 0, global.connection.quiet);
        collection.find(*query.get(), {}, [&](const RawCollection::Document& document) {
            losses.look(*document.bson, ++done);
            progress.show(done);
        });
    }
    losses.print(std::cout);
    if (!losses.foundAny() && !global.connection.quiet)
        std::cout << done << " documents come back as they are\n";
    return losses.foundAny() ? ServerRefused : Success;
}

// --- schema --------------------------------------------------------------------------------------------------------

const char* nameOfType(bson_type_t type)
{
    switch (type)
    {
    case BSON_TYPE_DOUBLE:
        return "double";
    case BSON_TYPE_UTF8:
        return "string";
    case BSON_TYPE_DOCUMENT:
        return "object";
    case BSON_TYPE_ARRAY:
        return "array";
    case BSON_TYPE_BINARY:
        return "binary";
    case BSON_TYPE_UNDEFINED:
        return "undefined";
    case BSON_TYPE_OID:
        return "id";
    case BSON_TYPE_BOOL:
        return "bool";
    case BSON_TYPE_DATE_TIME:
        return "time";
    case BSON_TYPE_NULL:
        return "null";
    case BSON_TYPE_REGEX:
        return "regex";
    case BSON_TYPE_DBPOINTER:
        return "dbpointer";
    case BSON_TYPE_CODE:
        return "code";
    case BSON_TYPE_SYMBOL:
        return "symbol";
    case BSON_TYPE_CODEWSCOPE:
        return "code with scope";
    case BSON_TYPE_INT32:
        return "int32";
    case BSON_TYPE_TIMESTAMP:
        return "timestamp";
    case BSON_TYPE_INT64:
        return "int64";
    case BSON_TYPE_DECIMAL128:
        return "decimal128";
    case BSON_TYPE_MAXKEY:
        return "max key";
    case BSON_TYPE_MINKEY:
        return "min key";
    case BSON_TYPE_EOD:
        break;
    }
    return "unknown";
}

// What is known of one path in one type.
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

// Of texts and arrays it is the length.
std::optional<double> measure(const bson_iter_t& iter)
{
    std::uint32_t length = 0;
    bson_iter_t child;
    switch (bson_iter_type(&iter))
    {
    case BSON_TYPE_DOUBLE:
    case BSON_TYPE_INT32:
    case BSON_TYPE_INT64:
        return bson_iter_as_double(&iter);
    case BSON_TYPE_DATE_TIME:
        return static_cast<double>(bson_iter_date_time(&iter));
    case BSON_TYPE_UTF8:
        bson_iter_utf8(&iter, &length);
        return length;
    case BSON_TYPE_ARRAY:
        if (bson_iter_recurse(&iter, &child))
            while (bson_iter_next(&child))
                ++length;
        return length;
    case BSON_TYPE_EOD:
    case BSON_TYPE_DOCUMENT:
    case BSON_TYPE_BINARY:
    case BSON_TYPE_UNDEFINED:
    case BSON_TYPE_OID:
    case BSON_TYPE_BOOL:
    case BSON_TYPE_NULL:
    case BSON_TYPE_REGEX:
    case BSON_TYPE_DBPOINTER:
    case BSON_TYPE_CODE:
    case BSON_TYPE_SYMBOL:
    case BSON_TYPE_CODEWSCOPE:
    case BSON_TYPE_TIMESTAMP:
    case BSON_TYPE_DECIMAL128:
    case BSON_TYPE_MAXKEY:
    case BSON_TYPE_MINKEY:
        break;
    }
    return std::nullopt;
}

// A server refuses documents that are nested deeper than this, so the recursion is bounded.
constexpr int deepestLevel = 200;

void addToSchema(bson_iter_t& iter, const std::string& path, bool isArray, int level, Schema& schema)
{
    while (bson_iter_next(&iter))
    {
        const std::string key = isArray ? "[]" : bson_iter_key(&iter);
        std::string below = path;
        below.append(path.empty() ? "" : ".").append(key);
        Column& column = schema[{below, nameOfType(bson_iter_type(&iter))}];
        ++column.count;
        if (const auto value = measure(iter))
            column.add(*value);
        bson_iter_t child;
        const bool nestedArray = BSON_ITER_HOLDS_ARRAY(&iter);
        if ((nestedArray || BSON_ITER_HOLDS_DOCUMENT(&iter)) && level < deepestLevel &&
            bson_iter_recurse(&iter, &child))
            addToSchema(child, below, nestedArray, level + 1, schema);
    }
}

std::string dayOf(double milliseconds)
{
    const auto seconds = static_cast<std::time_t>(std::floor(milliseconds / 1000));
    std::tm time = {};
    std::ostringstream text;
    if (::gmtime_r(&seconds, &time))
        text << std::put_time(&time, "%Y-%m-%dT%H:%M:%SZ");
    return text.str();
}

std::string rangeOf(const std::string& type, const Column& column)
{
    if (!column.smallest)
        return "";
    if (type == "time")
        return "  " + dayOf(*column.smallest) + " .. " + dayOf(*column.largest);
    std::ostringstream text;
    text << (type == "string" || type == "array" ? "  length " : "  ") << std::setprecision(15) << *column.smallest
         << " .. " << *column.largest;
    return text.str();
}

void addDocument(const RawCollection::Document& document, Schema& schema)
{
    bson_iter_t iter;
    if (bson_iter_init(&iter, document.bson))
        addToSchema(iter, "", false, 0, schema);
}

// False when the server does not choose documents at random, and why. Every failure of another sort is the caller's.
bool visitAtRandom(RawCollection& collection, const bson_t& query, std::int64_t size, const RawCollection::Visit& visit,
                   std::string& reason)
{
    OwnedBson pipeline;
    bson_t stage;
    BSON_APPEND_DOCUMENT_BEGIN(pipeline.get(), "0", &stage);
    BSON_APPEND_DOCUMENT(&stage, "$match", &query);
    bson_append_document_end(pipeline.get(), &stage);
    BSON_APPEND_DOCUMENT_BEGIN(pipeline.get(), "1", &stage);
    bson_t sample;
    BSON_APPEND_DOCUMENT_BEGIN(&stage, "$sample", &sample);
    BSON_APPEND_INT64(&sample, "size", size);
    bson_append_document_end(&stage, &sample);
    bson_append_document_end(pipeline.get(), &stage);
    bool any = false;
    try
    {
        collection.aggregate(*pipeline.get(), [&](const RawCollection::Document& document) {
            any = true;
            visit(document);
        });
        return true;
    }
    catch (const Failure&)
    {
        throw;
    }
    catch (const std::runtime_error& error)
    {
        const auto info = dbc::describe(error);
        if (any || isInterrupted() || info.kind != dbc::ErrorKind::Other)
            throw;
        reason = info.text;
        return false;
    }
}

struct Sample
{
    Schema schema;
    std::uint64_t documents = 0;
    std::string choice; ///< how the documents were chosen
};

Sample takeSample(const GlobalOptions& global, const InspectCommand& command)
{
    const BsonPointer query = parseQuery(command.query);
    RawCollection collection(connectionString(global.connection), command.collection);
    const bool isCounted = command.sample == 0 && Progress::isShown(global.connection.quiet);
    Progress progress("reading",
                      isCounted ? collection.count(*query.get()) : static_cast<std::uint64_t>(command.sample),
                      global.connection.quiet);
    Sample result;
    const auto visit = [&](const RawCollection::Document& document) {
        addDocument(document, result.schema);
        progress.show(++result.documents);
    };
    std::string reason;
    if (command.sample > 0 && visitAtRandom(collection, *query.get(), command.sample, visit, reason))
        result.choice = "chosen at random by the server";
    else
    {
        RawCollection::FindOptions options;
        options.limit = command.sample;
        collection.find(*query.get(), options, visit);
        result.choice = "the first ones, since the server does not choose at random: " + reason;
    }
    if (command.sample == 0 || result.documents < static_cast<std::uint64_t>(command.sample))
        result.choice = "all that there are";
    return result;
}

int schema(const GlobalOptions& global, const InspectCommand& command)
{
    const Sample sample = takeSample(global, command);
    std::size_t width = 4;
    for (const auto& entry : sample.schema)
        width = std::max(width, entry.first.first.size());
    for (const auto& [place, column] : sample.schema)
        std::cout << std::left << std::setw(static_cast<int>(width)) << place.first << "  " << std::setw(10)
                  << place.second << "  " << std::right << std::setw(8) << column.count << rangeOf(place.second, column)
                  << '\n';
    if (!global.connection.quiet)
    {
        std::cout << sample.documents << " documents\n" << std::flush;
        std::cerr << "sample: " << sample.choice << '\n';
    }
    return sample.documents > 0 ? Success : NothingFound;
}

} // namespace

void addInspectionCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<InspectCommand>();
    CLI::App* app = program.add_subcommand("check", "Name what the library's document model would drop or bend");
    app->add_option("collection", command->collection, "DATABASE.COLLECTION")->required();
    app->add_option("query", command->query, queryHelp);
    app->callback([=, &global, &work] { work = [=, &global] { return check(global, *command); }; });

    app = program.add_subcommand("schema", "Print paths, types, counts and ranges of a sample of documents");
    app->add_option("collection", command->collection, "DATABASE.COLLECTION")->required();
    app->add_option("query", command->query, queryHelp);
    app->add_option("--sample", command->sample,
                    "Documents to look at, chosen at random where the server can do that ($sample), else the first "
                    "ones; 1000 unless given, 0 for all")
        ->check(CLI::NonNegativeNumber);
    app->callback([=, &global, &work] { work = [=, &global] { return schema(global, *command); }; });

    app = program.add_subcommand(
        "doctor", "Walk each host's address, port and TLS, then login and server, and say what is wrong");
    app->callback([&global, &work] { work = [&global] { return examineConnection(global); }; });
}
