// Writes typed documents, finds some of them in order, and reads their values and nested parts.
#include "example.h"

#include <companion/access.h>
#include <companion/scopes.h>
#include <object_properties.h>

#include <iostream>

namespace {

ObjectProperties city(const std::string& name, int people, bool capital)
{
    ObjectProperties document;
    document.setValueString("name", name);
    document.setValueInt32("people", people);
    document.setValueBool("capital", capital);
    document.setValueTime("visited", 1500000000000); // milliseconds since 1970-01-01 UTC
    document.setValueDouble("place/height", 2.5);    // a group "place" with a member "height"
    {
        const companion::ArrayScope districts(document, "districts");
        document.setValueString("element", name + " North"); // in an array every setter adds an element
        document.setValueString("element", name + " South");
    }
    return document;
}

// {"$query": {"capital": false}, "$orderby": {"people": -1}}
ObjectProperties largestTowns()
{
    ObjectProperties query;
    query.setValueBool("$query/capital", false);
    query.setValueInt32("$orderby/people", -1);
    return query;
}

void print(const ObjectProperties& document)
{
    std::cout << document.valueAsString("name", "?") << ", " << document.valueAsInt32("people", 0) << " people, "
              << document.valueAsDouble("place/height", 0) << " m, visited at " << document.valueAsTime("visited", 0)
              << '\n';
    for (const std::string& district : companion::values<std::string>(document, "districts"))
    {
        std::cout << "  " << district << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    const std::string database = databaseOf(client);

    std::string id; // made by write(), 24 hexadecimal digits
    client.write(database, "cities", city("Berlin", 3700000, true), id);
    client.write(database, "cities", city("Bonn", 330000, false));
    client.write(database, "cities", city("Hamburg", 1800000, false));
    std::cout << "an id has " << id.size() << " digits\n";

    companion::Results found;
    client.find(database, "cities", largestTowns(), ObjectProperties(), found, 1, 0); // limit 1, skip 0
    for (const ObjectProperties& document : found)
    {
        print(document);
    }
    client.remove(database, "cities", ObjectProperties()); // an empty query matches everything
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
