// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Collections, cursors and indexes. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/collection.h>
#include <dbc/database.h>

#include <optional>

namespace {

void changes(DataBaseClient& client, const std::string& database)
{
    section("changes");
    //! [changes]
    dbc::Collection orders(client, database, "orders");
    const dbc::InsertOneResult inserted = orders.insertOne({{"item", "cup"}, {"count", 3}});
    const dbc::UpdateResult updated = orders.updateOne({{"_id", inserted.id}}, {{"$inc", {{"count", 2}}}});
    std::cout << updated.matched << " matched, " << updated.modified << " modified\n";

    dbc::UpdateOptions options;
    options.upsert = true;
    const dbc::UpdateResult upserted = orders.updateOne({{"_id", 7}}, {{"$set", {{"item", "plate"}}}}, options);
    std::cout << "inserted " << *upserted.upsertedId << '\n';

    std::cout << orders.removeMany({{"item", "cup"}}).removed << " removed, " << orders.count({}) << " left\n";
    //! [changes]
}

void cursor(DataBaseClient& client, const std::string& database)
{
    section("cursor");
    dbc::Collection orders(client, database, "cursor");
    for (int number = 1; number <= 4; ++number)
        orders.insertOne({{"_id", number}, {"state", number % 2 == 0 ? "open" : "sent"}});
    //! [cursor]
    dbc::FindOptions options;
    options.sort = {{"state"}, {"_id", dbc::Order::Descending}};
    options.limit = 3;
    for (const dbc::Value& order : orders.find({}, options))
        std::cout << order << '\n';

    // The type of the loop variable selects the form of the documents.
    int sum = 0;
    for (const ObjectProperties& order : orders.find({{"state", "open"}}))
        sum += order.valueAsInt32("_id", 0);
    std::cout << sum << '\n';

    if (const std::optional<dbc::Value> order = orders.findOne({{"_id", 3}}))
        std::cout << order->getOr("state", "?") << '\n';
    //! [cursor]
}

void aggregation(DataBaseClient& client, const std::string& database)
{
    section("aggregation");
    dbc::Collection orders(client, database, "aggregation");
    orders.insertMany(
        {{{"item", "cup"}, {"count", 3}}, {{"item", "jug"}, {"count", 1}}, {{"item", "cup"}, {"count", 2}}});
    //! [aggregation]
    for (const dbc::Value& item : orders.aggregate(dbc::array({
             {{"$group", {{"_id", "$item"}, {"sum", {{"$sum", "$count"}}}}}},
             {{"$sort", {{"_id", 1}}}},
         })))
        std::cout << item << '\n';
    //! [aggregation]
}

void indexes(DataBaseClient& client, const std::string& database)
{
    section("indexes");
    dbc::Collection orders(client, database, "indexes");
    //! [indexes]
    dbc::IndexOptions unique;
    unique.unique = true;
    std::cout << orders.createIndex({{"number"}, {"year", dbc::IndexType::Descending}}, unique) << '\n';
    orders.insertOne({{"number", 1}, {"year", 2024}});
    try
    {
        orders.insertOne({{"number", 1}, {"year", 2024}});
    }
    catch (const dbc::ServerError& error)
    {
        std::cout << dbc::nameOf(error.kind()) << ", code " << error.code() << '\n';
    }
    //! [indexes]
}

void command(DataBaseClient& client, const std::string& name)
{
    section("command");
    //! [command]
    dbc::Database database(client, name);
    const dbc::Value reply = database.command({{"count", "indexes"}});
    std::cout << reply.getOr("n", 0) << '\n';
    //! [command]
}

void users(DataBaseClient& client, const std::string& name)
{
    section("users");
    //! [users]
    dbc::Database database(client, name);
    database.addUser("ada", "secret", {{"readWrite"}, {"read", "archive"}}); // in this database, and in "archive"
    database.setPassword("ada", "better secret");
    for (const dbc::UserInfo& user : database.users())
        std::cout << user.name << '\n';
    database.removeUser("ada");
    //! [users]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase scratch;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    changes(client, scratch.name());
    cursor(client, scratch.name());
    aggregation(client, scratch.name());
    indexes(client, scratch.name());
    command(client, scratch.name());

    const test_support::TestServer& server = test_support::TestServer::instance();
    const test_support::ScratchDatabase withUsers(server.directAuthUri());
    DataBaseClient administrator;
    administrator.connect(server.authUri());
    users(administrator, withUsers.name());
}
