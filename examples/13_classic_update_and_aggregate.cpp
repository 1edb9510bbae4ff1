// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Changes documents with update operators, and aggregates them on the server.
#include "example.h"

#include <dbc/results.h>
#include <json_to_properties.h>
#include <properties_to_json.h>

#include <iostream>
#include <stdexcept>

namespace {

ObjectProperties fromJson(const std::string& json)
{
    ObjectProperties document;
    if (!JsonToProperties::convert(json, &document))
        throw std::invalid_argument("not JSON: " + json);
    return document;
}

void print(const std::string& what, const dbc::Results& documents)
{
    std::cout << what << '\n';
    for (const ObjectProperties& document : documents)
    {
        std::string json;
        PropertiesToJson::convert(document, json);
        std::cout << "  " << json << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    const std::string database = databaseOf(client);
    for (const char* const sale :
         {R"({"fruit": "apple", "kilos": 3})", R"({"fruit": "pear", "kilos": 5})", R"({"fruit": "apple", "kilos": 4})"})
        client.write(database, "sales", fromJson(sale));

    const auto update = [&](const char* query, const char* operand, UpdateFlag flag, UpdateCommand command) {
        client.update(database, "sales", fromJson(query), fromJson(operand), flag, command);
    };
    // The document is the operand: {"$set": {"paid": true}}, and so on.
    update(R"({"fruit": "apple"})", R"({"paid": true})", UpdateFlagMultiUpdate, UpdateCommandSet);
    update(R"({"fruit": "pear"})", R"({"notes": "ripe"})", UpdateFlagNone, UpdateCommandPush);
    update(R"({"fruit": "fig"})", R"({"kilos": 1})", UpdateFlagUpsert, UpdateCommandSet); // no match: inserts

    dbc::Results sales;
    client.find(database, "sales", fromJson(R"({"$query": {}, "$orderby": {"kilos": 1}})"), fromJson(R"({"_id": 0})"),
                sales, 0, 0);
    print("sales", sales);

    dbc::Results sums;
    client.aggregate(database, "sales", fromJson(R"({"pipeline": [
        {"$group": {"_id": "$fruit", "kilos": {"$sum": "$kilos"}}},
        {"$sort": {"_id": 1}}]})"),
                     sums);
    print("sums", sums);
    client.remove(database, "sales", ObjectProperties());
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
