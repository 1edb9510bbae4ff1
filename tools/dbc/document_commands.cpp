#include "commands.h"

#include "failure.h"
#include "input.h"
#include "query_words.h"
#include "raw_collection.h"

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string>
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

int find(const GlobalOptions& global, const FindCommand& command)
{
    const BsonPointer query = parseQuery(command.query);
    const BsonPointer sort = command.sort.empty() ? nullptr : parseJson(command.sort, "--sort");
    const BsonPointer projection = command.projection.empty() ? nullptr : parseJson(command.projection, "--fields");
    RawCollection collection(connectionString(global.connection), command.collection);
    DocumentWriter writer(std::cout, global.dialect.value_or(Dialect::Relaxed), global.asArray);
    const auto found =
        collection.find(*query.get(), {sort.get(), projection.get(), command.limit, command.skip},
                        [&writer](const RawCollection::Document& document) { writer.write(*document.bson); });
    writer.finish();
    return found > 0 ? Success : NothingFound;
}

int count(const GlobalOptions& global, const FindCommand& command)
{
    const BsonPointer query = parseQuery(command.query);
    const auto found = RawCollection(connectionString(global.connection), command.collection).count(*query.get());
    std::cout << found << '\n';
    return found > 0 ? Success : NothingFound;
}

int aggregate(const GlobalOptions& global, const std::string& name, const std::string& pipeline)
{
    const BsonPointer stages = parseJson(R"({"pipeline": )" + pipeline + "}", "the pipeline");
    bson_iter_t iter;
    if (!bson_iter_init_find(&iter, stages.get(), "pipeline") || !BSON_ITER_HOLDS_ARRAY(&iter))
        throw Failure(UsageError, "the pipeline is not a list of stages: [{...}, {...}]");
    RawCollection collection(connectionString(global.connection), name);
    DocumentWriter writer(std::cout, global.dialect.value_or(Dialect::Relaxed), global.asArray);
    const auto found = collection.aggregate(
        *stages.get(), [&writer](const RawCollection::Document& document) { writer.write(*document.bson); });
    writer.finish();
    return found > 0 ? Success : NothingFound;
}

int insert(const GlobalOptions& global, const std::string& name, const std::vector<std::string>& documents)
{
    std::vector<BsonPointer> parsed;
    parsed.reserve(documents.size());
    for (const std::string& text : documents)
        parsed.push_back(parseJson(text, "the document"));
    const auto result = RawCollection(connectionString(global.connection), name).insert(parsed, false);
    if (!global.connection.quiet && !result.isAcknowledged)
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
BsonPointer updateOf(const UpdateCommandLine& line)
{
    BsonPointer operand = parseJson(line.document, "the update");
    if (line.operatorText.empty())
        return operand;
    BsonPointer update(bson_new());
    if (!BSON_APPEND_DOCUMENT(update.get(), line.operatorText.c_str(), operand.get()))
        throw Failure(UsageError, "the update is too large");
    return update;
}

int update(const GlobalOptions& global, const UpdateCommandLine& line)
{
    using Mode = RawCollection::UpdateMode;
    const BsonPointer query = parseQuery(line.query);
    const BsonPointer update = updateOf(line);
    const Mode mode = line.upsert ? Mode::FirstOrInsert : line.multiple ? Mode::All : Mode::First;
    const auto result =
        RawCollection(connectionString(global.connection), line.collection).update(*query.get(), *update.get(), mode);
    if (!global.connection.quiet && !result.isAcknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet && result.inserted > 0)
        std::cout << "inserted " << result.inserted << '\n';
    else if (!global.connection.quiet && result.modified != result.matched)
        std::cout << "updated " << result.modified << " of " << result.matched << " that match\n";
    else if (!global.connection.quiet)
        std::cout << "updated " << result.modified << '\n';
    return result.matched + result.inserted > 0 || !result.isAcknowledged ? Success : NothingFound;
}

int remove(const GlobalOptions& global, const FindCommand& command, bool all)
{
    const BsonPointer query = parseQuery(command.query);
    if (bson_empty(query.get()) && !all)
        throw Failure(UsageError, "to remove every document, give --all");
    const auto result = RawCollection(connectionString(global.connection), command.collection).remove(*query.get());
    if (!global.connection.quiet && !result.isAcknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet)
        std::cout << "removed " << result.removed << '\n';
    return result.removed > 0 || !result.isAcknowledged ? Success : NothingFound;
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
