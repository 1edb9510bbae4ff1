// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Exceptions of operations, and how to handle them. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/collection.h>
#include <dbc/connection_string.h>
#include <dbc/database.h>
#include <dbc/log.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace {

//! [kinds]
void insertOrder(const std::string& address, const std::string& database)
try
{
    DataBaseClient client;
    client.connect(address); // sends nothing
    dbc::Collection orders(client, database, "orders");
    orders.insertOne({{"_id", 17}, {"item", "cup"}});
    std::cout << "inserted\n";
}
catch (const dbc::ServerError& error)
{
    switch (error.kind())
    {
    case dbc::ErrorKind::Network:
    case dbc::ErrorKind::Timeout:
        std::cout << "no answer: is the server running, is the address right?\n";
        break;
    case dbc::ErrorKind::Authentication:
        std::cout << "wrong user, password or authSource\n";
        break;
    case dbc::ErrorKind::DuplicateKey:
        std::cout << "there is an order 17 already\n";
        break;
    default:
        std::cout << error.what() << '\n';
    }
}
//! [kinds]

void kinds(const std::string& database)
{
    section("kinds");
    dbc::setLogHandler({});
    const std::string address = test_support::TestServer::instance().authUri();
    const std::size_t at = address.find('@');
    const std::string wrong = address.substr(0, address.rfind(':', at)) + ":wrong" + address.substr(at);
    insertOrder("mongodb://127.0.0.1:1/", database);
    insertOrder(wrong, database);
    insertOrder(address, database);
    insertOrder(address, database);
}

void calls()
{
    section("calls");
    DataBaseClient client;
    //! [calls]
    try
    {
        client.connect("127.0.0.1:27017"); // "mongodb://" is missing
    }
    catch (const std::runtime_error& error) // the connection string is invalid
    {
        std::cout << error.what() << '\n';
    }
    try
    {
        dbc::Collection(client, "shop", "orders").count({});
    }
    catch (const std::invalid_argument& error) // wrong call; nothing was sent
    {
        std::cout << error.what() << '\n';
    }
    //! [calls]
}

void retry(DataBaseClient& client, const std::string& database)
{
    section("retry");
    dbc::Collection orders(client, database, "orders");
    //! [retry]
    // It is safe to repeat $set. To repeat an insert, choose the "_id" yourself, and treat a duplicate key as success.
    for (int attempt = 1;; ++attempt)
    {
        try
        {
            orders.updateOne({{"_id", 17}}, {{"$set", {{"state", "sent"}}}});
            break;
        }
        catch (const dbc::ServerError& error)
        {
            if (!error.mayRetry() || attempt == 5)
                throw;
            std::this_thread::sleep_for(std::chrono::seconds(attempt));
        }
    }
    //! [retry]
    std::cout << "done\n";
}

} // namespace

int main()
{
    const test_support::ScratchDatabase scratch(test_support::TestServer::instance().directAuthUri());
    kinds(scratch.name());
    calls();
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().authUri());
    retry(client, scratch.name());
}
