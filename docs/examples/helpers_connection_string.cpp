// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Connection strings with escaped parts. Needs no server.
#include "example.h"

#include <database_client.h>
#include <dbc/connection_string.h>

#include <chrono>

namespace {

void encoded()
{
    section("encoded");
    //! [encoded]
    using namespace std::chrono_literals;
    const std::string uri = dbc::ConnectionString()
                                .host("db.example")
                                .user("ada", "p@ss/word")
                                .database("shop")
                                .authSource("admin")
                                .appName("invoices")
                                .connectTimeout(5s)
                                .text();
    std::cout << uri << '\n';

    DataBaseClient client;
    client.connect(uri); // sends nothing
    std::cout << std::boolalpha << client.isConnected() << '\n';
    //! [encoded]
}

} // namespace

int main()
{
    encoded();
}
