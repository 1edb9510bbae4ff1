// [first program]
#include <companion/access.h>
#include <companion/build.h>
#include <companion/results.h>
#include <database_client.h>

#include <iostream>

int main(int argc, char** argv)
{
    DataBaseClient client;
    client.connect(argc > 1 ? argv[1] : "mongodb://127.0.0.1:27017/example");
    std::string database;
    client.getDatabaseName(database); // the one that the connection string names

    const ObjectProperties city =
        companion::document({{"name", "Lisbon"}, {"river", companion::object({{"bridges", 2}})}});
    client.write(database, "cities", city);

    companion::Results found; // owns what the client appends
    client.read(database, "cities", city, found);
    for (const ObjectProperties& result : found)
    {
        std::cout << companion::getOr(result, "name", "?") << ": " // reads without adding to the document
                  << companion::getOr(result, "river/bridges", 0) << " bridges\n";
    }
    client.remove(database, "cities", city);
}
// [/first program]
