// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/database.h"

#include "collection/bson_reader.h"
#include "collection/bson_value.h"
#include "collection/driver_error.h"
#include "collection/names.h"
#include "collection/options_bson.h"
#include "collection/outgoing.h"
#include "database_client.h"
#include "database_client/client_access.h"
#include "dbc/collection.h"
#include "dbc/document_ref.h"
#include "dbc/options.h"
#include "dbc/value.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace dbc {

struct Database::State
{
    // Makes the checks that every operation starts with, and opens the database.
    DatabaseHandle open() const
    {
        mongoc_client_t* const connected = access.connected().get();
        checkName(name, "Database name");
        return DatabaseHandle(mongoc_client_get_database(connected, name.c_str()));
    }

    ClientAccess access;
    std::string name;
};

namespace {

std::vector<std::string> listed(const BsonTextList& names, const char* message, const bson_error_t& error)
{
    if (!names)
        throwServerError(message, error);
    std::vector<std::string> result;
    for (char** name = names.get(); *name; ++name)
        result.emplace_back(*name);
    return result;
}

// Runs a command that changes users.
void runUserCommand(const DatabaseHandle& database, const bson_t* command, const char* message)
{
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_database_write_command_with_opts(database.get(), command, nullptr, reply.get(), &error))
        throwServerError(message, error, reply.get());
}

void appendRoles(bson_t* command, const std::vector<Role>& roles, const std::string& database)
{
    OwnedBson array;
    std::size_t index = 0;
    for (const Role& role : roles)
    {
        checkNoZeroByte(role.name, "Role name");
        checkNoZeroByte(role.database, "Database name");
        OwnedBson entry;
        BSON_APPEND_UTF8(entry.get(), "role", role.name.c_str());
        BSON_APPEND_UTF8(entry.get(), "db", role.database.empty() ? database.c_str() : role.database.c_str());
        const std::string key = std::to_string(index++);
        BSON_APPEND_DOCUMENT(array.get(), key.c_str(), entry.get());
    }
    BSON_APPEND_ARRAY(command, "roles", array.get());
}

} // namespace

Database::Database(DataBaseClient& client, std::string name) : d(new State{ClientAccess(client), std::move(name)}) {}

Database::Database(Database&& other) noexcept = default;

Database& Database::operator=(Database&& other) noexcept = default;

Database::~Database() = default;

std::vector<std::string> Database::names(DataBaseClient& client)
{
    bson_error_t error{};
    const BsonTextList names(
        mongoc_client_get_database_names_with_opts(ClientAccess(client).connected().get(), nullptr, &error));
    return listed(names, "Listing databases failed", error);
}

const std::string& Database::name() const noexcept { return d->name; }

Collection Database::collection(const std::string& name) const { return Collection(d->access.client(), d->name, name); }

std::vector<std::string> Database::collectionNames()
{
    const DatabaseHandle database = d->open();
    bson_error_t error{};
    const BsonTextList names(mongoc_database_get_collection_names_with_opts(database.get(), nullptr, &error));
    return listed(names, "Listing collections failed", error);
}

Collection Database::createCollection(const std::string& name, const CreateCollectionOptions& options)
{
    const DatabaseHandle database = d->open();
    checkName(name, "Collection name");

    DriverOptions driverOptions;
    if (isSet(options.validator))
    {
        driverOptions.add("validator", options.validator);
        if (options.validationLevel == ValidationLevel::Moderate)
            BSON_APPEND_UTF8(driverOptions.bson(), "validationLevel", "moderate");
        if (options.warnOnly)
            BSON_APPEND_UTF8(driverOptions.bson(), "validationAction", "warn");
    }
    driverOptions.addFlag("capped", options.cappedBytes != 0)
        .addNumber("size", options.cappedBytes)
        .addNumber("max", options.cappedDocuments)
        .add("collation", options.collation);
    bson_error_t error{};
    const CollectionHandle created(
        mongoc_database_create_collection(database.get(), name.c_str(), driverOptions.get(), &error));
    if (!created)
        throwServerError("Creating the collection failed", error);
    return collection(name);
}

void Database::drop()
{
    const DatabaseHandle database = d->open();
    bson_error_t error{};
    if (!mongoc_database_drop_with_opts(database.get(), nullptr, &error))
        throwServerError("Dropping the database failed", error);
}

Value Database::command(const DocumentRef& command, const std::optional<ReadPreference>& preference)
{
    const DatabaseHandle database = d->open();
    const OutgoingBson bson(command, "Bad command");
    if (bson_empty(bson.get())) // the driver aborts for an empty command
        throw std::invalid_argument("Bad command");
    const ReadPreferenceHandle driverPreference = readPreference(preference);
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_database_command_simple(database.get(), bson.get(), driverPreference.get(), reply.get(), &error))
        throwServerError("Command failed", error, reply.get());
    return valueFrom(reply.get());
}

std::vector<UserInfo> Database::users()
{
    const DatabaseHandle database = d->open();
    OwnedBson command;
    BSON_APPEND_INT32(command.get(), "usersInfo", 1);
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_database_read_command_with_opts(database.get(), command.get(), nullptr, nullptr, reply.get(), &error))
        throwServerError("Listing users failed", error, reply.get());

    std::vector<UserInfo> users;
    forEachDocument(reply.get(), "users", [&users](const bson_t* entry) {
        UserInfo user;
        user.name = textField(entry, "user");
        user.database = textField(entry, "db");
        user.definition = valueFrom(entry);
        forEachDocument(entry, "roles", [&user](const bson_t* role) {
            user.roles.push_back({textField(role, "role"), textField(role, "db")});
        });
        users.push_back(std::move(user));
    });
    return users;
}

void Database::addUser(const std::string& name, const std::string& password, const std::vector<Role>& roles)
{
    const DatabaseHandle database = d->open();
    checkName(name, "User name");
    checkName(password, "Password");
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "createUser", name.c_str());
    BSON_APPEND_UTF8(command.get(), "pwd", password.c_str());
    appendRoles(command.get(), roles, d->name);
    runUserCommand(database, command.get(), "Adding the user failed");
}

void Database::setRoles(const std::string& name, const std::vector<Role>& roles)
{
    const DatabaseHandle database = d->open();
    checkName(name, "User name");
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "updateUser", name.c_str());
    appendRoles(command.get(), roles, d->name);
    runUserCommand(database, command.get(), "Changing the user failed");
}

void Database::setPassword(const std::string& name, const std::string& password)
{
    const DatabaseHandle database = d->open();
    checkName(name, "User name");
    checkName(password, "Password");
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "updateUser", name.c_str());
    BSON_APPEND_UTF8(command.get(), "pwd", password.c_str());
    runUserCommand(database, command.get(), "Changing the user failed");
}

void Database::removeUser(const std::string& name)
{
    const DatabaseHandle database = d->open();
    checkName(name, "User name");
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "dropUser", name.c_str());
    runUserCommand(database, command.get(), "Removing the user failed");
}

} // namespace dbc
