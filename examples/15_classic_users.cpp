// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Adds a user, logs in as this user, changes the password and removes the user. The connection string must contain an
// administrator.
#include "example.h"

#include <dbc/build.h>
#include <dbc/connection_string.h>
#include <dbc/results.h>
#include <object_properties.h>

#include <iostream>

namespace {

constexpr const char* user = "reader";
constexpr const char* firstPassword = "not-a-good-one";
constexpr const char* secondPassword = "not-much-better";

ObjectProperties readRole(const std::string& database)
{
    // A list with the keys 0, 1, 2 ...
    return dbc::document({{"0", {{"role", "read"}, {"db", database}}}});
}

// The administrator's connection string with the new user, who belongs to this database.
std::string uriOfReader(const std::string& uri, const std::string& password, const std::string& database)
{
    const std::size_t at = uri.find('@');
    const std::size_t host = at == std::string::npos ? uri.find("://") + 3 : at + 1;
    const std::string hostAndPort = uri.substr(host, uri.find_first_of("/?", host) - host);
    return std::string("mongodb://") + user + ":" + dbc::percentEncoded(password) + "@" + hostAndPort + "/" + database;
}

void logIn(const std::string& uri, const std::string& database)
{
    DataBaseClient client;
    client.connect(uri); // sends nothing: the first operation logs in, and throws if the login fails
    dbc::Results found;
    client.read(database, "letters", ObjectProperties(), found);
    std::cout << "logged in, " << found.size() << " letters\n";
}

} // namespace

int main(int argc, char** argv)
try
{
    const std::string uri = uriFrom(argc, argv);
    DataBaseClient administrator;
    administrator.connect(uri);
    const std::string database = databaseOf(administrator);

    const ObjectProperties customData = dbc::document({{"desk", "B 12"}}); // stored with the user
    administrator.addUser(database, user, firstPassword, readRole(database), customData);
    logIn(uriOfReader(uri, firstPassword, database), database);
    administrator.changeUserPassword(database, user, secondPassword);
    logIn(uriOfReader(uri, secondPassword, database), database);
    administrator.removeUser(database, user);
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
