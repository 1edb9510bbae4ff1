// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Creates indexes, shows that a unique index rejects a duplicate, lists the indexes and drops one.
#include "example.h"

#include <dbc/collection.h>

#include <iostream>

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    dbc::Collection orders(client, databaseOf(client), "example_orders");

    // A repeated call does nothing, so a program can create its indexes at every start.
    for (int start = 1; start <= 2; ++start)
        std::cout << orders.createIndex({{"customer"}, {"year", dbc::IndexType::Descending}}) << '\n';

    dbc::IndexOptions unique;
    unique.unique = true;
    unique.name = "number of the order";
    orders.createIndex({{"number"}}, unique);

    orders.insertOne({{"number", 17}, {"customer", "Ada"}, {"year", 2024}});
    try
    {
        orders.insertOne({{"number", 17}, {"customer", "Alan"}, {"year", 2025}});
    }
    catch (const dbc::ServerError& error)
    {
        std::cout << dbc::nameOf(error.kind()) << ", code " << error.code() << '\n';
    }

    for (const dbc::IndexInfo& index : orders.indexes())
        std::cout << index.name << ": " << index.keys << (index.unique ? ", unique" : "") << '\n';

    orders.dropIndex(unique.name);
    std::cout << orders.indexes().size() << " left\n";
    orders.drop();
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
