// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "dbc/build.h"
#include "dbc/database.h"
#include "dbc/value.h"
#include "dbc/values.h"
#include "failure.h"
#include "input.h"
#include "object_properties.h"
#include "query_words.h"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

struct UserCommand
{
    std::string database;
    std::string name;
    std::string newPasswordFile;
    std::vector<std::string> roles;
    std::string customData = "{}";
};

std::string newPassword(const UserCommand& command)
{
    if (!command.newPasswordFile.empty())
        return readSecretFile(command.newPasswordFile);
    if (const char* password = std::getenv("DBC_NEW_PASSWORD"))
        return password;
    const std::string password = promptSecret("New password of " + command.name + ": ");
    if (promptSecret("Repeat the password: ") != password)
        throw Failure(UsageError, "the passwords do not match");
    return password;
}

// Parses "readWrite" for the user's database, "readWrite@shop" for another one.
ObjectProperties rolesOf(const UserCommand& command)
{
    std::vector<dbc::Field> roles;
    for (std::size_t index = 0; index < command.roles.size(); ++index)
    {
        const std::string& role = command.roles[index];
        const std::size_t at = role.find('@');
        dbc::Value value = role;
        if (at != std::string::npos)
            value = dbc::object({{"role", role.substr(0, at)}, {"db", role.substr(at + 1)}});
        roles.emplace_back(dbc::elementKey(index, command.roles.size()), std::move(value));
    }
    return dbc::document(roles);
}

ObjectProperties customDataOf(const UserCommand& command)
{
    return toProperties(parseDocument(command.customData, "--data"), "--data");
}

int report(const GlobalOptions& global, const char* what, const UserCommand& command)
{
    if (!global.connection.quiet)
        std::cerr << what << ' ' << command.name << '\n';
    return Success;
}

int add(const GlobalOptions& global, const UserCommand& command)
{
    connect(global.connection)
        ->addUser(command.database, command.name, newPassword(command), rolesOf(command), customDataOf(command));
    return report(global, "added", command);
}

int changePassword(const GlobalOptions& global, const UserCommand& command)
{
    connect(global.connection)->changeUserPassword(command.database, command.name, newPassword(command));
    return report(global, "changed the password of", command);
}

int update(const GlobalOptions& global, const UserCommand& command)
{
    connect(global.connection)->updateUser(command.database, command.name, rolesOf(command), customDataOf(command));
    return report(global, "updated", command);
}

int remove(const GlobalOptions& global, const UserCommand& command)
{
    connect(global.connection)->removeUser(command.database, command.name);
    return report(global, "removed", command);
}

int list(const GlobalOptions& global, const UserCommand& command)
{
    const auto client = connect(global.connection);
    const auto users = dbc::Database(*client, command.database).users();
    for (const dbc::UserInfo& user : users)
    {
        std::cout << user.name;
        for (const dbc::Role& role : user.roles) // as --role takes them
            std::cout << "  " << role.name << (role.database == user.database ? "" : "@" + role.database);
        std::cout << '\n';
    }
    return users.empty() ? NothingFound : Success;
}

using Action = int (*)(const GlobalOptions&, const UserCommand&);

CLI::App* addCommand(CLI::App& users, const GlobalOptions& global, Work& work, const char* name, const char* help,
                     const std::shared_ptr<UserCommand>& command, Action action)
{
    CLI::App* app = users.add_subcommand(name, help);
    app->add_option("database", command->database, "Database of the user")->required();
    if (action != &list)
        app->add_option("name", command->name, "Name of the user")->required();
    setWork(*app, global, work, command, action);
    return app;
}

void addPasswordOption(CLI::App& app, UserCommand& command)
{
    app.add_option("--new-password-file", command.newPasswordFile,
                   "File whose first line is the new password; default: DBC_NEW_PASSWORD or a prompt")
        ->type_name("FILE");
}

void addRoleOptions(CLI::App& app, UserCommand& command)
{
    app.add_option("--role", command.roles, "A role, or ROLE@DATABASE; may be given several times");
    app.add_option("--data", command.customData, "Custom data of the user, as JSON");
}

} // namespace

void addUserCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    CLI::App* users = program.add_subcommand("users", "Users of a database")->require_subcommand(1);
    const auto command = std::make_shared<UserCommand>();
    CLI::App* app = addCommand(*users, global, work, "add", "Create a user", command, add);
    addPasswordOption(*app, *command);
    addRoleOptions(*app, *command);
    addPasswordOption(
        *addCommand(*users, global, work, "passwd", "Change the password of a user", command, changePassword),
        *command);
    addRoleOptions(*addCommand(*users, global, work, "update",
                               "Replace the roles and the custom data of a user; without an option, removes them",
                               command, update),
                   *command);
    addCommand(*users, global, work, "rm", "Remove a user", command, remove);
    addCommand(*users, global, work, "ls", "List the users of a database with their roles", command, list);
}
