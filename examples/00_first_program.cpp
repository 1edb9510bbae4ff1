// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

//! [first_program]
#include <dbc/collection.h>
#include <dbc/log.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

int main(int argc, char** argv)
try
{
    const char* const given = argc > 1 ? argv[1] : std::getenv("MONGODB_URI");
    dbc::setLogHandler({}); // turns the driver's log off; errors are exceptions
    DataBaseClient client;
    client.connect(given != nullptr ? given : "mongodb://127.0.0.1:27017/"); // sends nothing
    std::string database;
    client.getDatabaseName(database); // the database in the connection string
    if (database.empty())
        database = "example";

    dbc::Collection cities(client, database, "cities");
    const dbc::Value id = cities.insertOne({{"name", "Lisbon"}, {"river", {{"bridges", 2}}}}).id;

    for (const dbc::Value& city : cities.find({{"_id", id}}))
        std::cout << city.getOr("name", "?") << ": " << city.getOr("river/bridges", 0) << " bridges\n";

    cities.removeOne({{"_id", id}});
}
catch (const std::exception& problem) // no server, a wrong password, a refused document ...
{
    std::cerr << problem.what() << '\n'
              << "Is there a server? scripts/with-server starts one, MONGODB_URI names yours.\n";
    return 1;
}
//! [first_program]
