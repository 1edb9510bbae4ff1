// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Result lists that own their documents. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <database_client.h>
#include <dbc/build.h>
#include <dbc/results.h>

#include <memory>

namespace {

void owned(DataBaseClient& client, const std::string& database)
{
    section("owned");
    //! [owned]
    dbc::Results found;
    client.read(database, "cities", ObjectProperties(), found);
    for (const ObjectProperties& city : found)
        std::cout << city.valueAsString("name", "?") << '\n';

    const std::unique_ptr<ObjectProperties> first = found.takeFront(); // taken out of the list
    std::cout << found.size() << " left, " << first->valueAsString("name", "?") << " taken\n";
    //! [owned]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase database;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    client.write(database.name(), "cities", dbc::document({{"name", "Lisbon"}}));
    client.write(database.name(), "cities", dbc::document({{"name", "Porto"}}));
    owned(client, database.name());
}
