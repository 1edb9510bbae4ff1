// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Users of a database.

#include "database_client/database_client_d.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"
#include "object_properties.h"

#include <string>

namespace {

bool runCommand(const DatabaseHandle& database, const OwnedBson& command, bson_error_t& error)
{
    return mongoc_database_command_simple(database.get(), command.get(), nullptr, nullptr, &error);
}

// The driver's function crashes without a password, so the command is built here.
bool addUserWithoutPassword(const DatabaseHandle& database, const std::string& user, const OwnedBson& roles,
                            const OwnedBson& customData, bson_error_t& error)
{
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "createUser", user.c_str());
    BSON_APPEND_DOCUMENT(command.get(), "customData", customData.get());
    BSON_APPEND_ARRAY(command.get(), "roles", roles.get());
    return runCommand(database, command, error);
}

} // namespace

void DataBaseClientPrivate::addUser(const std::string& database, std::string user, const std::string& password,
                                    const ObjectProperties& roles, const ObjectProperties& customData)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(user, "User name");

    const DatabaseHandle target = openDatabase(database);
    OwnedBson rolesBson;
    toBson(roles, rolesBson, "Bad roles.");
    OwnedBson customDataBson;
    toBson(customData, customDataBson, "Bad custom data");

    bson_error_t error{};
    const bool added = password.empty() ? addUserWithoutPassword(target, user, rolesBson, customDataBson, error)
                                        : mongoc_database_add_user(target.get(), user.c_str(), password.c_str(),
                                                                   rolesBson.get(), customDataBson.get(), &error);
    if (!added)
        throwDriverError("Error occurred while adding user", error);
}

void DataBaseClientPrivate::updateUser(const std::string& database, std::string user, const ObjectProperties& roles,
                                       const ObjectProperties& customData)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(user, "Username");

    OwnedBson rolesBson;
    toBson(roles, rolesBson, "Bad roles.");
    OwnedBson customDataBson;
    toBson(customData, customDataBson, "Bad custom data");

    const DatabaseHandle target = openDatabase(database);
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "updateUser", user.c_str());
    BSON_APPEND_DOCUMENT(command.get(), "customData", customDataBson.get());
    BSON_APPEND_ARRAY(command.get(), "roles", rolesBson.get());
    bson_error_t error{};
    if (!runCommand(target, command, error))
        throwDriverError("Error occurred while updating user", error);
}

void DataBaseClientPrivate::changeUserPassword(const std::string& database, std::string user,
                                               const std::string& password)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(user, "Username");
    check_argument(password, "Password");

    const DatabaseHandle target = openDatabase(database);
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "updateUser", user.c_str());
    BSON_APPEND_UTF8(command.get(), "pwd", password.c_str());
    bson_error_t error{};
    if (!runCommand(target, command, error))
        throwDriverError("Error occurred while changing password", error);
}

void DataBaseClientPrivate::removeUser(const std::string& database, std::string user)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(user, "Username");

    const DatabaseHandle target = openDatabase(database);
    bson_error_t error{};
    if (!mongoc_database_remove_user(target.get(), user.c_str(), &error))
        throwDriverError("Error occurred while removing user", error);
}
