// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The first steps with a server. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/database.h>

#include <optional>
#include <string>

namespace {

void run(const std::string& address, const std::string& name)
{
    section("connect");
    //! [connect]
    DataBaseClient client;
    client.connect(address); // "mongodb://127.0.0.1:27017/"
    dbc::Database database(client, name);
    database.command({{"ping", 1}}); // the first operation opens the connection
    std::cout << "connected\n";
    //! [connect]

    section("insert");
    //! [insert]
    dbc::Collection cities = database.collection("cities"); // or: dbc::Collection cities(client, name, "cities");
    const dbc::Value id = cities.insertOne({{"name", "Lisbon"}, {"people", 545000}}).id;
    cities.insertOne({{"_id", 2}, {"name", "Porto"}, {"people", 232000}, {"river", {{"bridges", 6}}}});
    cities.insertOne(dbc::Value::fromJson(R"({"_id": 3, "name": "Braga", "twins": ["Manaus", "Astorga"]})"));
    //! [insert]

    section("find");
    //! [find]
    for (const dbc::Value& city : cities.find({{"people", {{"$gt", 100000}}}}))
        std::cout << city.getOr("name", "?") << ", " << city.getOr("river/bridges", 0) << " bridges\n";

    if (const std::optional<dbc::Value> braga = cities.findOne({{"_id", 3}}))
    {
        std::cout << braga->toJson() << '\n';
        for (const dbc::Value& twin : braga->at("twins").elements())
            std::cout << twin.get<std::string>().value() << '\n';
    }
    //! [find]

    section("update");
    //! [update]
    const dbc::UpdateResult updated = cities.updateOne({{"_id", id}}, {{"$set", {{"river", {{"bridges", 2}}}}}});
    std::cout << updated.modified << " modified\n";
    //! [update]

    section("remove");
    //! [remove]
    std::cout << cities.removeOne({{"_id", id}}).removed << " removed, " << cities.count({}) << " left\n";
    //! [remove]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase scratch;
    run(test_support::TestServer::instance().uri(), scratch.name());
}
