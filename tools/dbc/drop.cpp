// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "database_client.h"
#include "dbc/collection.h"
#include "dbc/database.h"
#include "failure.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct DropCommand
{
    std::string name;
    bool isDatabase = false;
    bool yes = false;
};

bool contains(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Asks the user to type the name, unless --yes is given, because dropping cannot be undone.
void confirm(const std::string& name, const DropCommand& command)
{
    if (command.yes)
        return;
    if (::isatty(STDIN_FILENO) != 1)
        throw Failure(UsageError, "no terminal to ask for confirmation: use --yes to drop " + name);
    std::cerr << "This drops the " << (command.isDatabase ? "database " : "collection ") << name
              << " and everything in it. Type its name: ";
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != name)
        throw Failure(UsageError, "not dropped");
}

dbc::Collection collectionToDrop(DataBaseClient& client, const std::string& name)
{
    try
    {
        return collectionOf(client, name);
    }
    catch (const Failure& failure)
    {
        throw Failure(failure.status(), std::string(failure.what()) + "; use --database to drop the database " + name);
    }
}

// Checks first whether the database exists, so that no confirmation is needed if it does not exist.
void dropDatabase(const GlobalOptions& global, const DropCommand& command)
{
    const auto client = connect(global.connection);
    if (!contains(dbc::Database::names(*client), command.name))
        throw Failure(NothingFound, "there is no database " + command.name);
    confirm(command.name, command);
    dbc::Database(*client, command.name).drop();
}

void dropCollection(const GlobalOptions& global, const DropCommand& command)
{
    const auto client = connect(global.connection);
    dbc::Collection collection = collectionToDrop(*client, command.name);
    if (!contains(dbc::Database(*client, collection.database()).collectionNames(), collection.name()))
        throw Failure(NothingFound, "there is no collection " + command.name);
    confirm(command.name, command);
    collection.drop();
}

int drop(const GlobalOptions& global, const DropCommand& command)
{
    command.isDatabase ? dropDatabase(global, command) : dropCollection(global, command);
    if (!global.connection.quiet)
        std::cout << "dropped " << command.name << '\n';
    return Success;
}

} // namespace

void addDropCommand(CLI::App& program, const GlobalOptions& global, Work& work)
{
    const auto command = std::make_shared<DropCommand>();
    CLI::App* app = program.add_subcommand("drop", "Drop a collection with its indexes, or a database");
    app->add_option("name", command->name, collectionHelp)->required();
    app->add_flag("--database", command->isDatabase, "Drop a database");
    app->add_flag("-y,--yes", command->yes, "Do not ask");
    setWork(*app, global, work, command, &drop);
}
