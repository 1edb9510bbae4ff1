// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The classic interface and collections in one program. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/collection.h>

namespace {

void mixed(DataBaseClient& client, const std::string& database)
{
    section("mixed");
    //! [mixed]
    ObjectProperties person;
    person.setValueString("name", "Ada");
    client.write(database, "people", person); // classic

    dbc::Collection people(client, database, "people");
    std::cout << people.updateMany(person, {{"$set", {{"age", 36}}}}).modified << " modified\n";
    for (const ObjectProperties& found : people.find({}))
        std::cout << found.valueAsString("name", "?") << ' ' << found.valueAsInt32("age", 0) << '\n';
    //! [mixed]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase scratch;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    mixed(client, scratch.name());
}
