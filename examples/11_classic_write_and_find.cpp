// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Writes typed documents, finds some of them in order, and reads their values and nested parts.
#include "example.h"

#include <dbc/access.h>
#include <dbc/build.h>
#include <dbc/results.h>
#include <object_properties.h>

#include <iostream>

namespace {

ObjectProperties city(const std::string& name, int people, bool capital)
{
    return dbc::document({{"name", name},
                          {"people", people},
                          {"capital", capital},
                          {"visited", dbc::timeFromMilliseconds(1500000000000)}, // since 1970-01-01 UTC
                          {"place", {{"height", 2.5}}},
                          {"districts", dbc::array({name + " North", name + " South"})}});
}

// {"$query": {"capital": false}, "$orderby": {"people": -1}}
ObjectProperties largestTowns()
{
    return dbc::document({{"$query", {{"capital", false}}}, {"$orderby", {{"people", -1}}}});
}

void print(const ObjectProperties& document)
{
    // "place/height" is the field "height" of the group "place". dbc::getOr adds nothing to the document.
    const auto visited = dbc::getOr(document, "visited", dbc::Time());
    std::cout << dbc::getOr(document, "name", "?") << ", " << dbc::getOr(document, "people", 0) << " people, "
              << dbc::getOr(document, "place/height", 0.0) << " m, visited at " << dbc::millisecondsOf(visited) << '\n';
    for (const std::string& district : dbc::elementsAs<std::string>(document, "districts"))
        std::cout << "  " << district << '\n';
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    const std::string database = databaseOf(client);

    std::string id; // write() sets it to 24 hexadecimal digits
    client.write(database, "cities", city("Berlin", 3700000, true), id);
    client.write(database, "cities", city("Bonn", 330000, false));
    client.write(database, "cities", city("Hamburg", 1800000, false));
    std::cout << "an id has " << id.size() << " digits\n";

    dbc::Results found;
    client.find(database, "cities", largestTowns(), ObjectProperties(), found, 1, 0); // limit 1, skip 0
    for (const ObjectProperties& document : found)
        print(document);
    client.remove(database, "cities", ObjectProperties()); // the empty query matches every document
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
