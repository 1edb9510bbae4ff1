// [first program]
#include <companion/results.h>
#include <database_client.h>
#include <object_properties.h>

#include <iostream>

int main(int argc, char** argv)
{
    DataBaseClient client;
    client.connect(argc > 1 ? argv[1] : "mongodb://127.0.0.1:27017/example");
    std::string database;
    client.getDatabaseName(database); // the one that the connection string names

    ObjectProperties city;
    city.setValueString("name", "Lisbon");
    city.setValueInt32("river/bridges", 2); // a group "river" with a member "bridges"
    client.write(database, "cities", city);

    companion::Results found; // owns what the client appends
    client.read(database, "cities", city, found);
    for (const ObjectProperties& result : found)
    {
        std::cout << result.valueAsString("name", "?") << ": " << result.valueAsInt32("river/bridges", 0)
                  << " bridges\n";
    }
    client.remove(database, "cities", city);
}
// [/first program]
