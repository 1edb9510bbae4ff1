// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "dbc/collection.h"
#include "dbc/value.h"
#include "failure.h"
#include "input.h"

#include <chrono>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct IndexCommand
{
    std::string collection;
    std::string keys;
    std::string name;
    bool unique = false;
    bool sparse = false;
    std::optional<std::int64_t> expireAfter;
};

// The type of an index field as JSON.
const std::map<std::string, dbc::IndexType> types{{"1", dbc::IndexType::Ascending},
                                                  {"-1", dbc::IndexType::Descending},
                                                  {"\"text\"", dbc::IndexType::Text},
                                                  {"\"hashed\"", dbc::IndexType::Hashed},
                                                  {"\"2dsphere\"", dbc::IndexType::Sphere2d}};

std::vector<dbc::IndexKey> keysOfJson(const std::string& json)
{
    std::vector<dbc::IndexKey> keys;
    const dbc::Value document = parseDocument(json, "the keys of the index");
    for (const auto& [field, type] : document.fields())
    {
        const auto found = types.find(type.toJson());
        if (found == types.end())
            throw Failure(UsageError, "the type of an index field is 1, -1, \"text\", \"hashed\" or \"2dsphere\"");
        keys.push_back({std::string(field), found->second});
    }
    return keys;
}

std::vector<dbc::IndexKey> keysOfWords(const std::string& words)
{
    std::vector<dbc::IndexKey> keys;
    std::istringstream stream(words);
    for (std::string field; std::getline(stream, field, ',');)
    {
        const bool isDescending = !field.empty() && field.front() == '-';
        field.erase(0, isDescending ? 1 : 0);
        if (field.empty())
            throw Failure(UsageError, "an index field has no name: " + words);
        keys.push_back({field, isDescending ? dbc::IndexType::Descending : dbc::IndexType::Ascending});
    }
    return keys;
}

int list(const GlobalOptions& global, const IndexCommand& command)
{
    const auto client = connect(global.connection);
    const auto indexes = collectionOf(*client, command.collection).indexes();
    for (const dbc::IndexInfo& index : indexes)
    {
        std::cout << index.name << "  " << index.keys << (index.unique ? "  unique" : "")
                  << (index.sparse ? "  sparse" : "");
        if (const auto seconds = index.definition.get<std::int64_t>("expireAfterSeconds"))
            std::cout << "  expires after " << *seconds << " s";
        std::cout << '\n';
    }
    return indexes.empty() ? NothingFound : Success;
}

int create(const GlobalOptions& global, const IndexCommand& command)
{
    const bool isJson = command.keys.find('{') != std::string::npos;
    const auto keys = isJson ? keysOfJson(command.keys) : keysOfWords(command.keys);
    dbc::IndexOptions options;
    options.name = command.name;
    options.unique = command.unique;
    options.sparse = command.sparse;
    if (command.expireAfter)
        options.expireAfter = std::chrono::seconds(*command.expireAfter);
    const auto client = connect(global.connection);
    const std::string name = collectionOf(*client, command.collection).createIndex(keys, options);
    if (!global.connection.quiet)
        std::cout << name << '\n';
    return Success;
}

int drop(const GlobalOptions& global, const IndexCommand& command)
{
    const auto client = connect(global.connection);
    collectionOf(*client, command.collection).dropIndex(command.name);
    if (!global.connection.quiet)
        std::cout << "dropped " << command.name << '\n';
    return Success;
}

using Action = int (*)(const GlobalOptions&, const IndexCommand&);

CLI::App* addCommand(CLI::App& parent, const GlobalOptions& global, Work& work, const char* name, const char* help,
                     const std::shared_ptr<IndexCommand>& command, Action action)
{
    CLI::App* app = parent.add_subcommand(name, help);
    app->add_option("collection", command->collection, collectionHelp)->required();
    setWork(*app, global, work, command, action);
    return app;
}

} // namespace

void addIndexCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<IndexCommand>();
    addCommand(program, global, work, "indexes", "List the indexes of a collection", command, &list);

    CLI::App* index = program.add_subcommand("index", "Create or drop an index")->require_subcommand(1);
    CLI::App* app = addCommand(*index, global, work, "create", "Create an index and print its name", command, &create);
    app->add_option("keys", command->keys,
                    R"(Fields separated by commas, with "-" before a descending one; or JSON: {"place": "2dsphere"})")
        ->required();
    app->add_flag("--unique", command->unique, "Reject a second document with the same values");
    app->add_flag("--sparse", command->sparse, "Leave out documents without the fields");
    addNumber(*app, "--expire-after", command->expireAfter,
              "Seconds after the time in the field at which the server removes a document");
    app->add_option("--name", command->name, "Name of the index; default: made of the fields");
    app = addCommand(*index, global, work, "drop", "Drop an index", command, &drop);
    app->add_option("name", command->name, "Name of the index, as printed by indexes")->required();
}
