// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "dbc/bulk.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/value.h"
#include "document_walk.h"
#include "failure.h"
#include "input.h"
#include "output.h"
#include "query_words.h"
#include "texts.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

struct FindCommand
{
    std::string collection;
    std::vector<std::string> query;
    std::string sort;
    std::string projection;
    std::int64_t limit = 0;
    std::int64_t skip = 0;
};

struct DistinctCommand
{
    std::string collection;
    std::string field;
    std::vector<std::string> query;
};

struct AggregateCommand
{
    std::string collection;
    std::string pipeline;
};

struct InsertCommand
{
    std::string collection;
    std::vector<std::string> documents;
};

struct RemoveCommand
{
    std::string collection;
    std::vector<std::string> query;
    bool all = false;
};

DocumentWriter writerOf(const GlobalOptions& global)
{
    return {std::cout, global.output, Dialect::Relaxed, global.output.colorsStandardOutput()};
}

// Prints every document and returns the exit status.
template <typename Open>
int print(const GlobalOptions& global, const Open& open)
{
    DocumentWriter writer = writerOf(global);
    const auto found = forEachDocument(open, [&writer](dbc::Cursor& cursor) { writer.write(cursor.value()); });
    writer.finish();
    return found > 0 ? Success : NothingFound;
}

int find(const GlobalOptions& global, const FindCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    dbc::FindOptions options;
    options.sort = parseSort(command.sort);
    options.projection = parseFields(command.projection);
    options.limit = command.limit;
    options.skip = command.skip;
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionOf(*client, command.collection);
    return print(global, [&] { return collection.find(query, options); });
}

int count(const GlobalOptions& global, const FindCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    const auto client = connect(global.connection);
    const auto found = collectionOf(*client, command.collection).count(query);
    std::cout << found << '\n';
    return found > 0 ? Success : NothingFound;
}

int distinct(const GlobalOptions& global, const DistinctCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    const auto client = connect(global.connection);
    const auto values = collectionOf(*client, command.collection).distinct(command.field, query);
    DocumentWriter writer = writerOf(global);
    for (const dbc::Value& value : values)
        writer.write(value);
    writer.finish();
    return values.empty() ? NothingFound : Success;
}

int aggregate(const GlobalOptions& global, const AggregateCommand& command)
{
    const dbc::Value stages = parseJson(command.pipeline, "the pipeline");
    if (!stages.isArray())
        throw Failure(UsageError, "the pipeline is not an array of stages: [{...}, {...}]");
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionOf(*client, command.collection);
    return print(global, [&] { return collection.aggregate(stages); });
}

struct StandardInput
{
    InputFile bytes{""};
    JsonReader documents{bytes};
};

// Returns the documents of the command line, or of standard input if the command line has no documents.
std::function<std::optional<dbc::Value>()> documentsOf(const InsertCommand& command)
{
    if (command.documents.empty() && ::isatty(STDIN_FILENO) == 1)
        std::cerr << "dbc: type JSON documents, then press Ctrl-D\n";
    if (command.documents.empty())
        return [input = std::make_shared<StandardInput>()] { return input->documents.next(); };
    std::vector<dbc::Value> documents; // all are parsed before the first one is sent
    for (const std::string& text : command.documents)
        documents.push_back(parseDocument(text, "the document"));
    return [documents = std::move(documents), next = std::size_t{0}]() mutable {
        return next < documents.size() ? std::optional<dbc::Value>(documents[next++]) : std::nullopt;
    };
}

int insert(const GlobalOptions& global, const InsertCommand& command)
{
    const auto documents = documentsOf(command);
    const auto client = connect(global.connection);
    const bool isQuiet = global.connection.quiet;
    const auto printId = [isQuiet](const dbc::Value& id) {
        if (!isQuiet)
            std::cout << idText(id) << '\n';
    };
    try
    {
        const auto result = collectionOf(*client, command.collection).insertMany(documents);
        if (result.acknowledged)
            std::for_each(result.ids.begin(), result.ids.end(), printId);
        if (!isQuiet && !result.acknowledged)
            std::cerr << "sent " << result.ids.size() << ", not acknowledged\n";
        else if (!isQuiet)
            std::cerr << "inserted " << result.inserted << '\n';
        return Success;
    }
    catch (const dbc::BulkError& error)
    {
        for (const dbc::IndexedId& inserted : error.result().insertedIds)
            printId(inserted.id);
        throw;
    }
}

int remove(const GlobalOptions& global, const RemoveCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    if (query.empty() && !command.all)
        throw Failure(UsageError, "use --all to remove all documents");
    const auto client = connect(global.connection);
    const auto result = collectionOf(*client, command.collection).removeMany(query);
    if (!global.connection.quiet && !result.acknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet)
        std::cout << "removed " << result.removed << '\n';
    return result.removed > 0 || !result.acknowledged ? Success : NothingFound;
}

// Adds a command whose first argument is a collection.
template <typename Command>
CLI::App* addCommand(CLI::App& program, const GlobalOptions& global, Work& work, const char* name, const char* help,
                     const std::shared_ptr<Command>& command, int (*run)(const GlobalOptions&, const Command&))
{
    CLI::App* app = program.add_subcommand(name, help);
    app->add_option("collection", command->collection, collectionHelp)->required();
    setWork(*app, global, work, command, run);
    return app;
}

} // namespace

void addDocumentCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto finding = std::make_shared<FindCommand>();
    CLI::App* app = addCommand(program, global, work, "find", "Print the documents that match a query", finding, &find);
    app->add_option("query", finding->query, queryHelp);
    app->add_option("--sort", finding->sort, sortHelp);
    app->add_option("--fields", finding->projection, fieldsHelp);
    addNumber(*app, "--limit", finding->limit, "Maximum number of documents to print; 0 for all");
    addNumber(*app, "--skip", finding->skip, "Documents to skip first");

    const auto counting = std::make_shared<FindCommand>();
    app = addCommand(program, global, work, "count", "Count the documents that match a query", counting, &count);
    app->add_option("query", counting->query, queryHelp);

    const auto values = std::make_shared<DistinctCommand>();
    app = addCommand(program, global, work, "distinct", "Print the distinct values of a field", values, &distinct);
    app->add_option("field", values->field, "Dotted path of the field")->required();
    app->add_option("query", values->query, queryHelp);

    const auto inserting = std::make_shared<InsertCommand>();
    app = addCommand(program, global, work, "insert", "Insert documents and print their ids", inserting, &insert);
    app->add_option("documents", inserting->documents,
                    "JSON documents; default: standard input, with one document per line or one array");

    const auto removing = std::make_shared<RemoveCommand>();
    app = addCommand(program, global, work, "remove", "Remove the documents that match a query", removing, &remove);
    app->add_option("query", removing->query, queryHelp);
    app->add_flag("--all", removing->all, "Remove all documents; required if there is no query");

    const auto stages = std::make_shared<AggregateCommand>();
    app =
        addCommand(program, global, work, "aggregate", "Run an aggregation and print its results", stages, &aggregate);
    app->add_option("pipeline", stages->pipeline, R"(Stages, as JSON: [{"$match": {...}}, {"$group": {...}}])")
        ->required();
}
