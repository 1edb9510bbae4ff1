#include "commands.h"

#include "document_walk.h"
#include "failure.h"
#include "input.h"
#include "query_words.h"

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
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

dbc::Sort sortOf(const std::string& json)
{
    dbc::Sort sort;
    if (json.empty())
        return sort;
    for (const auto& [field, order] : parseDocument(json, "--sort").fields())
    {
        const double direction = order.get<double>().value_or(0);
        if (direction != 1 && direction != -1)
            throw Failure(UsageError, "--sort takes 1 or -1 for a field: {\"name\": 1, \"age\": -1}");
        sort.push_back({std::string(field), direction > 0 ? dbc::Order::Ascending : dbc::Order::Descending});
    }
    return sort;
}

// Prints every document and returns the exit status.
template <typename Open>
int print(const GlobalOptions& global, const Open& open)
{
    DocumentWriter writer(std::cout, global.dialect.value_or(Dialect::Relaxed), global.asArray);
    const auto found = forEachDocument(open, [&writer](dbc::Cursor& cursor) { writer.write(cursor.value()); });
    writer.finish();
    return found > 0 ? Success : NothingFound;
}

int find(const GlobalOptions& global, const FindCommand& command)
{
    const dbc::Value query = parseQuery(command.query);
    dbc::FindOptions options;
    options.sort = sortOf(command.sort);
    if (!command.projection.empty())
        options.projection = parseDocument(command.projection, "--fields");
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

int aggregate(const GlobalOptions& global, const std::string& name, const std::string& pipeline)
{
    const dbc::Value stages = parseJson(pipeline, "the pipeline");
    if (!stages.isArray())
        throw Failure(UsageError, "the pipeline is not a list of stages: [{...}, {...}]");
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionOf(*client, name);
    return print(global, [&] { return collection.aggregate(stages); });
}

int insert(const GlobalOptions& global, const std::string& name, const std::vector<std::string>& documents)
{
    std::vector<dbc::Value> parsed;
    parsed.reserve(documents.size());
    for (const std::string& text : documents)
        parsed.push_back(parseDocument(text, "the document"));
    const auto client = connect(global.connection);
    const auto result = collectionOf(*client, name).insertMany(parsed);
    if (!global.connection.quiet && !result.acknowledged)
        std::cout << "sent " << parsed.size() << ", not acknowledged\n";
    else if (!global.connection.quiet)
        std::cout << "inserted " << result.inserted << '\n';
    return Success;
}

struct UpdateCommandLine
{
    std::string collection;
    std::vector<std::string> query;
    std::string document;
    std::string operatorText; // empty: the document holds the operators, or replaces the match
    bool multiple = false;
    bool upsert = false;
};

// The update in the form in which the server takes it.
dbc::Value updateOf(const UpdateCommandLine& line)
{
    dbc::Value operand = parseDocument(line.document, "the update");
    if (line.operatorText.empty())
        return operand;
    return {{line.operatorText, std::move(operand)}};
}

bool hasOperators(const dbc::Value& update)
{
    return !update.empty() && update.fields()[0].key().substr(0, 1) == "$";
}

dbc::UpdateResult sendUpdate(dbc::Collection collection, const UpdateCommandLine& line)
{
    const dbc::Value query = parseQuery(line.query);
    const dbc::Value update = updateOf(line);
    if (hasOperators(update))
    {
        dbc::UpdateOptions options;
        options.upsert = line.upsert;
        return line.multiple ? collection.updateMany(query, update, options)
                             : collection.updateOne(query, update, options);
    }
    if (line.multiple)
        throw Failure(UsageError, "a replacement is for one document: leave out --multi, or give operators");
    dbc::ReplaceOptions options;
    options.upsert = line.upsert;
    return collection.replaceOne(query, update, options);
}

int update(const GlobalOptions& global, const UpdateCommandLine& line)
{
    const auto client = connect(global.connection);
    const auto result = sendUpdate(collectionOf(*client, line.collection), line);
    if (!global.connection.quiet && !result.acknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet && result.upsertedId)
        std::cout << "inserted 1\n";
    else if (!global.connection.quiet && result.modified != result.matched)
        std::cout << "updated " << result.modified << " of " << result.matched << " that match\n";
    else if (!global.connection.quiet)
        std::cout << "updated " << result.modified << '\n';
    return result.matched > 0 || result.upsertedId || !result.acknowledged ? Success : NothingFound;
}

int remove(const GlobalOptions& global, const FindCommand& command, bool all)
{
    const dbc::Value query = parseQuery(command.query);
    if (query.empty() && !all)
        throw Failure(UsageError, "to remove every document, give --all");
    const auto client = connect(global.connection);
    const auto result = collectionOf(*client, command.collection).removeMany(query);
    if (!global.connection.quiet && !result.acknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet)
        std::cout << "removed " << result.removed << '\n';
    return result.removed > 0 || !result.acknowledged ? Success : NothingFound;
}

CLI::App* addCommand(CLI::App& program, const char* name, const char* help, std::string& collection)
{
    CLI::App* app = program.add_subcommand(name, help);
    app->add_option("collection", collection, "DATABASE.COLLECTION")->required();
    return app;
}

void addFind(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<FindCommand>();
    CLI::App* app = addCommand(program, "find", "Print the documents that match a query", command->collection);
    app->add_option("query", command->query, queryHelp);
    app->add_option("--sort", command->sort, R"(Order, as JSON: {"name": 1, "age": -1})");
    app->add_option("--fields", command->projection, R"(Fields to print, as JSON: {"name": 1})");
    app->add_option("--limit", command->limit, "Maximum number of documents to print")->check(CLI::NonNegativeNumber);
    app->add_option("--skip", command->skip, "Documents to skip first")->check(CLI::NonNegativeNumber);
    app->callback([=, &global, &work] { work = [=, &global] { return find(global, *command); }; });
}

void addCount(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<FindCommand>();
    CLI::App* app = addCommand(program, "count", "Count the documents that match a query", command->collection);
    app->add_option("query", command->query, queryHelp);
    app->callback([=, &global, &work] { work = [=, &global] { return count(global, *command); }; });
}

void addAggregate(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto collection = std::make_shared<std::string>();
    const auto pipeline = std::make_shared<std::string>();
    CLI::App* app = addCommand(program, "aggregate", "Run an aggregation and print its results", *collection);
    app->add_option("pipeline", *pipeline, R"(Stages, as JSON: [{"$match": {...}}, {"$group": {...}}])")->required();
    app->callback([=, &global, &work] { work = [=, &global] { return aggregate(global, *collection, *pipeline); }; });
}

void addInsert(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto collection = std::make_shared<std::string>();
    const auto documents = std::make_shared<std::vector<std::string>>();
    CLI::App* app = addCommand(program, "insert", "Insert documents; import takes them from a file", *collection);
    app->add_option("documents", *documents, "Documents, as JSON")->required();
    app->callback([=, &global, &work] { work = [=, &global] { return insert(global, *collection, *documents); }; });
}

void addUpdate(CLI::App& program, const GlobalOptions& global, Work& work)
{
    static const std::map<std::string, std::string> operators{
        {"replace", ""},   {"set", "$set"},         {"unset", "$unset"}, {"rename", "$rename"},    {"push", "$push"},
        {"pull", "$pull"}, {"pullAll", "$pullAll"}, {"pop", "$pop"},     {"addToSet", "$addToSet"}};
    const auto line = std::make_shared<UpdateCommandLine>();
    line->operatorText = operators.at("set");
    CLI::App* app = addCommand(program, "update", "Change the first document that matches a query", line->collection);
    app->add_option("query", line->query, queryHelp)->required();
    app->add_option("--document,-d", line->document, "Operand of the operator, as JSON")->required();
    addChoice(*app, "--operator,-o", line->operatorText, operators, "What to do with the operand; set unless given");
    CLI::Option* upsert = app->add_flag("--upsert", line->upsert, "Insert a document when none matches");
    app->add_flag("--multi", line->multiple, "Change every document that matches")->excludes(upsert);
    app->callback([=, &global, &work] { work = [=, &global] { return update(global, *line); }; });
}

void addRemove(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<FindCommand>();
    const auto all = std::make_shared<bool>(false);
    CLI::App* app = addCommand(program, "remove", "Remove the documents that match a query", command->collection);
    app->add_option("query", command->query, queryHelp);
    app->add_flag("--all", *all, "Remove every document, when there is no query");
    app->callback([=, &global, &work] { work = [=, &global] { return remove(global, *command, *all); }; });
}

} // namespace

void addDocumentCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    addFind(program, global, work);
    addCount(program, global, work);
    addInsert(program, global, work);
    addUpdate(program, global, work);
    addRemove(program, global, work);
    addAggregate(program, global, work);
}
