// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The kind of an error. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <database_client.h>
#include <dbc/errors.h>

#include <exception>
#include <sstream>

namespace {

void kinds(DataBaseClient& client, const std::string& database)
{
    section("kinds");
    //! [kinds]
    std::stringstream content;
    try
    {
        client.readFile(database, "fs", "absent", &content);
    }
    catch (const std::exception& error)
    {
        const dbc::ErrorInfo info = dbc::describe(error);
        if (info.kind == dbc::ErrorKind::Network || info.kind == dbc::ErrorKind::Timeout)
            std::cout << "worth another try\n";
        else
            std::cout << dbc::nameOf(info.kind) << '\n';
    }
    //! [kinds]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase database;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    kinds(client, database.name());
}
