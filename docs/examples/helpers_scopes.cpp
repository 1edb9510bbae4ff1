// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Scopes that move the cursor back. Needs no server.
#include "example.h"

#include <dbc/scopes.h>

#include <stdexcept>

namespace {

// Throws while the cursor is in the second of two groups.
void readPort(const ObjectProperties& settings)
{
    const dbc::GroupScope server(settings, "server");
    const dbc::GroupScope listen(settings, "listen");
    if (!settings.contains("port"))
        throw std::runtime_error("no port in " + settings.group());
}

void balanced()
{
    section("balanced");
    //! [balanced]
    ObjectProperties settings;
    {
        const dbc::GroupScope server(settings, "server");
        settings.setValueString("name", "main");
        const dbc::GroupScope listen(settings, "listen");
        settings.setValueString("address", "127.0.0.1");
    } // leaves both groups
    std::cout << text(settings) << '\n';

    try
    {
        readPort(settings); // throws inside two scopes
    }
    catch (const std::runtime_error& error)
    {
        std::cout << error.what() << ", and the cursor is in \"" << settings.group() << "\"\n";
    }
    //! [balanced]
}

void refused()
{
    section("refused");
    //! [refused]
    ObjectProperties order;
    order.setValueString("buyer/name", "Ada");
    const dbc::ArrayScope buyer(order, "buyer"); // "buyer" is a group, not an array
    std::cout << (buyer ? "in the array" : "not in an array") << '\n';
    //! [refused]
}

} // namespace

int main()
{
    balanced();
    refused();
}
