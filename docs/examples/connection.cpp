// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Connection strings.
#include <database_client.h>
#include <dbc/connection_string.h>
#include <dbc/database.h>
#include <dbc/log.h>

#include <iostream>
#include <memory>
#include <stdexcept>

#include "example.h"

namespace {

void first()
{
    section("first");
    //! [first]
    const std::string address = dbc::ConnectionString()
                                    .host("db.example")
                                    .user("ada", "p@ss/word")
                                    .authSource("admin") // the database to which the user belongs
                                    .database("shop")
                                    .text();
    std::cout << address << '\n';

    DataBaseClient client;
    client.connect(address);
    //! [first]
}

void ping()
{
    section("ping");
    //! [ping]
    DataBaseClient client;
    client.connect("mongodb://127.0.0.1:1/"); // no server uses port 1
    try
    {
        dbc::Database(client, "admin").command({{"ping", 1}});
        std::cout << "connected\n";
    }
    catch (const dbc::ServerError& error)
    {
        std::cout << dbc::nameOf(error.kind()) << ", code " << error.code() << '\n';
    }
    //! [ping]
}

void percent()
{
    section("percent");
    //! [percent]
    std::cout << "mongodb://ada:" + dbc::percentEncoded("p@ss/word") + "@db.example/?authSource=admin" << '\n';
    //! [percent]
}

void built()
{
    section("built");
    //! [built]
    std::cout << DataBaseClient::uri("db.example", 27017, "", "", "shop") << '\n';
    std::cout << DataBaseClient::uri("db.example", 27017, "ada", "secret", "shop") << '\n';
    std::cout << DataBaseClient::uri("db.example", 27017, "ada", "", "") << '\n'; // no password: no credentials
    //! [built]
}

void escaped()
{
    section("escaped");
    //! [escaped]
    DataBaseClient client;
    try
    {
        client.connect("shop", "db.example", 27017, "ada", "p@ss/word"); // uri() escapes nothing
    }
    catch (const std::runtime_error& error)
    {
        std::cout << error.what() << '\n';
    }

    client.connect("shop", "db.example", 27017, "ada", dbc::percentEncoded("p@ss/word"));
    std::cout << client.isConnected() << '\n'; // the connection string is valid; nothing was sent
    //! [escaped]
}

void options()
{
    section("options");
    //! [options]
    using std::chrono::seconds;
    std::cout << dbc::ConnectionString()
                     .host("one.example")
                     .host("two.example", 27018)
                     .replicaSet("rs0")
                     .user("ada", "p@ss/word")
                     .authSource("admin")
                     .database("shop")
                     .tlsCaFile("/etc/ssl/shop-ca.pem")
                     .connectTimeout(seconds(5))
                     .socketTimeout(seconds(30))
                     .text()
              << '\n';
    //! [options]
}

void log()
{
    //! [log]
    // At the start of the program. Without a handler: dbc::setLogHandler(nullptr).
    dbc::setLogHandler([](dbc::LogLevel level, const std::string& domain, const std::string& message) {
        if (level <= dbc::LogLevel::Warning)
            std::clog << dbc::nameOf(level) << " from " << domain << ": " << message << '\n';
    });
    //! [log]
}

} // namespace

int main()
{
    log();
    first();
    ping();
    percent();
    built();
    escaped();
    options();
}
