// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Builds a query call by call, prints it as JSON and uses it.
#include "example.h"

#include <dbc/access.h>
#include <dbc/build.h>
#include <dbc/results.h>
#include <object_filter.h>
#include <properties_to_json.h>

#include <iostream>

namespace {

void writePeople(DataBaseClient& client, const std::string& database)
{
    const struct
    {
        const char* name;
        int age;
    } people[] = {{"Ada", 36}, {"Alan", 41}, {"Edsger", 72}, {"Grace", 85}, {"Konrad", 85}};
    for (const auto& person : people)
        client.write(database, "people", dbc::document({{"name", person.name}, {"age", person.age}}));
}

// Matches if the name begins with "a", or the age is between 60 and 80.
ObjectFilter someOfThem()
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterString(OperationTypeRegex, "name", "^a", "i");
    filter.start_and(); // inside a list, every condition is a separate element
    filter.setFilterInt(OperationTypeGreaterOrEqual, "age", 60);
    filter.setFilterInt(OperationTypeLess, "age", 80);
    filter.finish_and();
    filter.finish_or();
    return filter;
}

void printMatches(DataBaseClient& client, const std::string& database, const ObjectProperties& query)
{
    std::string json;
    PropertiesToJson::convert(query, json);
    std::cout << json << '\n';

    ObjectProperties inOrder;
    inOrder.include("$query", query);
    inOrder.setValueInt32("$orderby/name", 1);
    dbc::Results found;
    client.read(database, "people", inOrder, found);
    for (const ObjectProperties& person : found)
        std::cout << "  " << dbc::getOr(person, "name", "?") << '\n';
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    const std::string database = databaseOf(client);
    writePeople(client, database);
    printMatches(client, database, someOfThem().toObjectProeprties());
    client.remove(database, "people", ObjectProperties());
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
