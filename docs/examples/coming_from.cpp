// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Makes every call in the tables of docs/guide/coming_from.md; scripts/docs checks this. Needs a server:
// scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/database.h>
#include <dbc/file_store.h>
#include <dbc/pool.h>

#include <chrono>
#include <sstream>
#include <vector>

namespace {

void connecting(const std::string& uri, const std::string& name)
{
    DataBaseClient client;
    client.connect(uri);
    dbc::Database database(client, name);
    dbc::Collection c = database.collection("c");
    database.command({{"ping", 1}});
    c.insertOne({{"a", 1}});
    dbc::Database::names(client);
    std::cout << database.collectionNames().size() << " collection\n";
    c.drop();

    const std::chrono::seconds limit(5);
    dbc::ClientPool pool(uri, 4);
    const dbc::ClientPool::Lease leased = pool.lease(limit);
    dbc::Collection(*leased, name, "c").count({});
}

void reading(dbc::Collection& c)
{
    const dbc::Value filter = {{"a", 1}};
    dbc::FindOptions options;
    options.sort = {{"a", dbc::Order::Descending}, {"b"}};
    options.skip = 20;
    options.limit = 10;
    options.projection = {{"a", 1}};
    c.find(filter, options);
    for (const dbc::Value& document : c.find(filter))
    {
        std::cout << document.getOr("a/b", 0) << *document.get<int>("a") << document.at("a") << '\n';
        std::cout << document.contains("a") << (document.findPath("a/b") != nullptr) << '\n';
        for (const auto& [key, value] : document.fields())
            std::cout << key << ' ' << value << '\n';
    }
    if (const auto document = c.findOne(filter))
        std::cout << document->toJson() << '\n';
    std::cout << c.count(filter) << c.estimatedCount() << c.distinct("a").size() << '\n';
    c.aggregate(dbc::array({{{"$match", {{"a", 1}}}}, {{"$limit", 5}}}));
}

void writing(dbc::Collection& c)
{
    dbc::Value document = {{"a", 1}, {"b", nullptr}};
    document.set("list", dbc::array({1, 2}));
    const std::vector<dbc::Value> documents = {{{"a", 1}}, {{"a", 2}}};
    const dbc::Value filter = {{"a", 1}};
    const dbc::Value update = {{"$set", {{"b", 2}}}};
    c.insertOne(document).id.toJson();
    std::cout << c.insertMany(documents).inserted << '\n';
    c.updateOne(filter, update);
    std::cout << c.updateMany(filter, update).modified << '\n';
    dbc::UpdateOptions options;
    options.upsert = true;
    dbc::WriteConcern majority;
    majority.tag = "majority";
    options.writeConcern = majority;
    c.updateOne({{"_id", 7}}, update, options);
    c.replaceOne(filter, document);
    dbc::FindOneAndUpdateOptions after;
    after.which = dbc::Return::After;
    c.findOneAndUpdate(filter, update, after);
    c.findOneAndReplace(filter, document);
    c.findOneAndRemove(filter);
    dbc::Bulk bulk;
    bulk.insertOne(document).updateOne(filter, update).removeMany(filter);
    c.bulkWrite(bulk);
    c.removeOne(filter);
    std::cout << c.removeMany({}).removed << '\n';
}

void indexing(dbc::Collection& c)
{
    dbc::IndexOptions unique;
    unique.unique = true;
    const std::string name = c.createIndex({{"a"}, {"b", dbc::IndexType::Descending}}, unique);
    std::cout << c.indexes().size() << '\n';
    try
    {
        c.insertMany({{{"a", 1}, {"b", 1}}, {{"a", 1}, {"b", 1}}});
    }
    catch (const dbc::BulkError& error)
    {
        std::cout << error.errors().size() << (error.kind() == dbc::ErrorKind::DuplicateKey) << '\n';
    }
    try
    {
        c.insertOne({{"a", 1}, {"b", 1}});
    }
    catch (const dbc::ServerError& error)
    {
        std::cout << (error.kind() == dbc::ErrorKind::Network) << '\n';
    }
    c.dropIndex(name);
    c.rename("d");
}

void files(DataBaseClient& client, const std::string& name)
{
    std::istringstream source("text");
    std::ostringstream target;
    dbc::FileStore files(client, name);
    const dbc::FileInfo file = files.upload("name", source);
    files.download("name", target);
    files.downloadById(file.id, target);
    std::cout << files.list({{"filename", "name"}}).size() << target.str() << '\n';
    files.removeById(file.id);
}

void values()
{
    DataBaseClient client;
    const dbc::Value id = dbc::ObjectId{client.createId()};
    const dbc::Value now = std::chrono::system_clock::now();
    const dbc::Value price = dbc::Decimal128::parse("9.90");
    const std::string text = R"({"a": 1})";
    const dbc::Value document = dbc::Value::fromJson(text);
    std::cout << price << ' ' << document.toJson() << '\n';
}

} // namespace

int main()
try
{
    const test_support::ScratchDatabase scratch;
    const std::string uri = test_support::TestServer::instance().uri();
    DataBaseClient client;
    client.connect(uri);
    dbc::Collection c(client, scratch.name(), "c");
    connecting(uri, scratch.name());
    c.insertOne({{"_id", 1}, {"a", 1}});
    reading(c);
    writing(c);
    indexing(c);
    files(client, scratch.name());
    values();
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
