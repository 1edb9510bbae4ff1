// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "dbc/collection.h"
#include "dbc/value.h"
#include "failure.h"
#include "input.h"
#include "query_words.h"

#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

struct UpdateArguments
{
    std::string collection;
    std::vector<std::string> query;
    std::string document;
    std::optional<std::string> operatorText; // empty string: the document replaces the match
    bool multiple = false;
    bool upsert = false;
};

bool hasOperators(const dbc::Value& update)
{
    return update.isArray() || (!update.empty() && update.fields()[0].key().substr(0, 1) == "$");
}

// Returns the update for the server: operators, pipeline stages, or a whole document.
dbc::Value updateOf(const UpdateArguments& command)
{
    dbc::Value operand = parseJson(command.document, "the update");
    if (!operand.isObject() && !operand.isArray())
        throw Failure(UsageError, "the update is not a JSON document: {...}");
    const std::string operatorText = command.operatorText.value_or(hasOperators(operand) ? "" : "$set");
    if (operatorText.empty())
        return operand;
    return {{operatorText, std::move(operand)}};
}

dbc::UpdateResult send(dbc::Collection collection, const UpdateArguments& command)
{
    const dbc::Value query = parseQuery(command.query);
    const dbc::Value update = updateOf(command);
    if (hasOperators(update))
    {
        dbc::UpdateOptions options;
        options.upsert = command.upsert;
        return command.multiple ? collection.updateMany(query, update, options)
                                : collection.updateOne(query, update, options);
    }
    if (command.multiple)
        throw Failure(UsageError, "a replacement changes one document: remove --multi, or use operators");
    dbc::ReplaceOptions options;
    options.upsert = command.upsert;
    return collection.replaceOne(query, update, options);
}

int update(const GlobalOptions& global, const UpdateArguments& command)
{
    const auto client = connect(global.connection);
    const auto result = send(collectionOf(*client, command.collection), command);
    if (!global.connection.quiet && !result.acknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet && result.upsertedId)
        std::cout << "inserted 1\n";
    else if (!global.connection.quiet)
        std::cout << "matched " << result.matched << ", changed " << result.modified << '\n';
    return result.matched > 0 || result.upsertedId || !result.acknowledged ? Success : NothingFound;
}

} // namespace

void addUpdateCommand(CLI::App& program, const GlobalOptions& global, Work& work)
{
    static const std::map<std::string, std::optional<std::string>> operators{
        {"replace", ""},   {"set", "$set"},         {"unset", "$unset"}, {"rename", "$rename"},    {"push", "$push"},
        {"pull", "$pull"}, {"pullAll", "$pullAll"}, {"pop", "$pop"},     {"addToSet", "$addToSet"}};
    const auto command = std::make_shared<UpdateArguments>();
    CLI::App* app = program.add_subcommand("update", "Update the first document that matches a query");
    app->add_option("collection", command->collection, collectionHelp)->required();
    app->add_option("query", command->query, queryHelp)->required();
    app->add_option("--document,-d", command->document,
                    R"(Fields to set, or operators: {"$inc": {"n": 1}}, as JSON; with --operator, its operand)")
        ->required();
    addChoice(*app, "--operator,-o", command->operatorText, operators, "Update operator");
    CLI::Option* upsert = app->add_flag("--upsert", command->upsert, "Insert a document if none matches");
    app->add_flag("--multi", command->multiple, "Update every document that matches")->excludes(upsert);
    setWork(*app, global, work, command, &update);
}
