// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Users of a server. Needs a server with authentication: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <database_client.h>
#include <dbc/build.h>

#include <stdexcept>

namespace {

void add(DataBaseClient& client, const std::string& database)
{
    section("add");
    //! [add]
    ObjectProperties roles; // keys 0, 1, 2 ..., one role each
    roles.setValueString("0/role", "readWrite");
    roles.setValueString("0/db", database);
    ObjectProperties customData;
    customData.setValueString("phone", "123");
    client.addUser(database, "ada", "secret", roles, customData);
    //! [add]
}

void change(DataBaseClient& client, const std::string& database)
{
    section("change");
    //! [change]
    client.changeUserPassword(database, "ada", "p@ss/word");
    //! [change]
}

void replace(DataBaseClient& client, const std::string& database)
{
    //! [replace]
    ObjectProperties roles;
    roles.setValueString("0/role", "read");
    roles.setValueString("0/db", database);
    client.updateUser(database, "ada", roles, ObjectProperties()); // also removes the custom data
    //! [replace]
}

void remove(DataBaseClient& client, const std::string& database)
{
    section("remove");
    //! [remove]
    client.removeUser(database, "ada");
    try
    {
        client.removeUser(database, "ada");
    }
    catch (const std::runtime_error& error)
    {
        const std::string message = error.what();
        std::cout << message.substr(0, message.find(':')) << '\n'; // the rest differs between servers
    }
    //! [remove]
}

} // namespace

int main()
{
    test_support::TestServer& server = test_support::TestServer::instance();
    const test_support::ScratchDatabase database(server.directAuthUri());
    DataBaseClient client;
    client.connect(server.authUri());
    add(client, database.name());
    change(client, database.name());
    if (!server.isFerretDb()) // FerretDB rejects roles
        replace(client, database.name());
    remove(client, database.name());
}
