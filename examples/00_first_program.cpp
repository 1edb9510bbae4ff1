//! [first_program]
#include <database_client.h>
#include <dbc/access.h>
#include <dbc/build.h>
#include <dbc/log.h>
#include <dbc/results.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

int main(int argc, char** argv)
try
{
    const char* const given = argc > 1 ? argv[1] : std::getenv("MONGODB_URI");
    dbc::setLogHandler({}); // the driver's log goes nowhere; errors are exceptions
    DataBaseClient client;
    client.connect(given != nullptr ? given : "mongodb://127.0.0.1:27017/");
    std::string database;
    client.getDatabaseName(database); // the one that the connection string names
    if (database.empty())
        database = "example";

    const ObjectProperties city = dbc::document({{"name", "Lisbon"}, {"river", {{"bridges", 2}}}});
    client.write(database, "cities", city);

    dbc::Results found; // owns what the client appends
    client.read(database, "cities", city, found);
    for (const ObjectProperties& result : found)
    {
        std::cout << dbc::getOr(result, "name", "?") << ": " // reads without adding to the document
                  << dbc::getOr(result, "river/bridges", 0) << " bridges\n";
    }
    client.remove(database, "cities", city);
}
catch (const std::exception& problem) // no server, a wrong password, a refused document ...
{
    std::cerr << problem.what() << '\n'
              << "Is there a server? scripts/with-server starts one, MONGODB_URI names yours.\n";
    return 1;
}
//! [first_program]
