// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Imports JSON lines, and sends several writes in one call.
#include "example.h"

#include <dbc/collection.h>

#include <iostream>
#include <optional>
#include <sstream>

namespace {

// The content of a file with one JSON document per line.
const char* const lines = R"({"_id": 1, "item": "cup", "count": 3}
{"_id": 2, "item": "jug", "count": 1}
{"_id": 3, "item": "plate", "count": 12}
)";

// Returns the next document, or an empty optional at the end. insertMany() calls it until the end.
std::optional<dbc::Value> nextDocument(std::istream& file)
{
    std::string line;
    if (!std::getline(file, line))
        return std::nullopt;
    return dbc::Value::fromJson(line);
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    dbc::Collection stock(client, databaseOf(client), "example_stock");

    // Inserts any number of documents. Only one batch is in memory at a time.
    std::istringstream file(lines); // or std::ifstream file("stock.json");
    std::cout << stock.insertMany([&file] { return nextDocument(file); }).inserted << " inserted\n";

    // Different operations are sent together and executed in order.
    dbc::Bulk bulk;
    bulk.insertOne({{"_id", 4}, {"item", "bowl"}, {"count", 2}})
        .updateMany({{"count", {{"$lt", 3}}}}, {{"$inc", {{"count", 10}}}})
        .replaceOne({{"_id", 2}}, {{"item", "jar"}})
        .removeOne({{"item", "plate"}});
    const dbc::BulkResult result = stock.bulkWrite(bulk);
    std::cout << result.inserted << " inserted, " << result.matched << " matched, " << result.modified << " modified, "
              << result.removed << " removed\n";

    // Not ordered: a refused document does not stop the others.
    dbc::InsertManyOptions options;
    options.ordered = false;
    try
    {
        stock.insertMany({{{"_id", 1}}, {{"_id", 5}}, {{"_id", 4}}, {{"_id", 6}}}, options);
    }
    catch (const dbc::BulkError& error)
    {
        std::cout << error.result().inserted << " inserted\n";
        for (const dbc::WriteError& refused : error.errors())
            std::cout << "document " << refused.index << ": " << dbc::nameOf(refused.kind) << '\n';
    }
    stock.removeMany({});
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
