// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Parsing the text of an exception. Needs no server.
#include "example.h"

#include <database_client.h>
#include <dbc/errors.h>

#include <stdexcept>

namespace {

void taken()
{
    section("apart");
    //! [apart]
    const std::runtime_error error("Error occurred while insert operation: E11000 duplicate key error(code: 11000)");
    const dbc::ErrorInfo info = dbc::describe(error);
    std::cout << dbc::nameOf(info.kind) << ' ' << *info.code << '\n' << info.text << '\n';
    //! [apart]
}

void unconnected()
{
    section("unconnected");
    //! [unconnected]
    DataBaseClient client;
    try
    {
        client.remove("shop", "orders", ObjectProperties());
    }
    catch (const std::exception& error)
    {
        std::cout << dbc::nameOf(dbc::describe(error).kind) << '\n';
    }
    //! [unconnected]
}

} // namespace

int main()
{
    taken();
    unconnected();
}
