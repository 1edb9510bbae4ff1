// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Counting, paging, importing and bulk writes. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/collection.h>

#include <optional>
#include <sstream>
#include <vector>

namespace {

void counting(DataBaseClient& client, const std::string& database)
{
    section("counting");
    dbc::Collection orders(client, database, "counting");
    orders.insertMany({{{"state", "open"}}, {{"state", "sent"}}, {{"state", "open"}}});
    //! [counting]
    std::cout << orders.count({}) << " orders, " << orders.count({{"state", "open"}}) << " open\n";

    dbc::CountOptions atMost;
    atMost.limit = 1; // stop counting at the first match
    std::cout << (orders.count({{"state", "lost"}}, atMost) > 0 ? "some" : "none") << " lost\n";

    for (const dbc::Value& state : orders.distinct("state"))
        std::cout << state << '\n';
    //! [counting]
}

void sorted(DataBaseClient& client, const std::string& database)
{
    section("sorted");
    dbc::Collection orders(client, database, "sorted");
    orders.insertMany({{{"_id", 1}, {"total", 30}, {"item", "cup"}},
                       {{"_id", 2}, {"total", 90}, {"item", "jug"}},
                       {{"_id", 3}, {"total", 30}, {"item", "pan"}}});
    //! [sorted]
    dbc::FindOptions options;
    options.sort = {{"total", dbc::Order::Descending}, {"_id"}}; // if totals are equal, the smaller "_id" first
    options.skip = 1;
    options.limit = 2;
    options.projection = {{"total", 1}};
    for (const dbc::Value& order : orders.find({}, options))
        std::cout << order << '\n';
    //! [sorted]
}

void paging(DataBaseClient& client, const std::string& database)
{
    section("paging");
    dbc::Collection orders(client, database, "paging");
    for (int number = 1; number <= 5; ++number)
        orders.insertOne({{"_id", number}});
    //! [paging]
    dbc::FindOptions page;
    page.sort = {{"_id"}};
    page.limit = 2;
    dbc::Value filter; // empty: the first page starts at the first document
    int received = 0;
    do
    {
        received = 0;
        for (const dbc::Value& order : orders.find(filter, page))
        {
            std::cout << order.at("_id") << ' ';
            filter = {{"_id", {{"$gt", order.at("_id")}}}}; // for the next page
            ++received;
        }
        std::cout << "|\n";
    } while (received == page.limit);
    //! [paging]
}

//! [after]
// Matches the documents after `last` in the order {{"total", Descending}, {"_id"}}.
dbc::Value after(const dbc::Value& last)
{
    const dbc::Value& total = last.at("total");
    return {
        {"$or", dbc::array({{{"total", {{"$lt", total}}}}, {{"total", total}, {"_id", {{"$gt", last.at("_id")}}}}})}};
}
//! [after]

void pagingByTotal(DataBaseClient& client, const std::string& database)
{
    section("after");
    dbc::Collection orders(client, database, "sorted");
    dbc::FindOptions page;
    page.sort = {{"total", dbc::Order::Descending}, {"_id"}};
    page.limit = 2;
    dbc::Value last;
    for (const dbc::Value& order : orders.find({}, page))
        last = order;
    for (const dbc::Value& order : orders.find(after(last), page))
        std::cout << order.at("_id") << '\n';
}

void updating(DataBaseClient& client, const std::string& database)
{
    section("updating");
    dbc::Collection orders(client, database, "counting");
    //! [updating]
    const dbc::UpdateResult result = orders.updateMany({{"state", "open"}}, {{"$set", {{"state", "sent"}}}});
    std::cout << result.matched << " matched, " << result.modified << " modified\n";
    std::cout << orders.removeMany({{"state", "sent"}}).removed << " removed\n";
    //! [updating]
}

void importing(DataBaseClient& client, const std::string& database)
{
    section("import");
    dbc::Collection orders(client, database, "imported");
    //! [import]
    orders.insertMany({{{"item", "cup"}}, {{"item", "jug"}}});

    std::vector<dbc::Value> documents;
    for (int number = 1; number <= 3; ++number)
        documents.push_back({{"item", "plate"}, {"number", number}});
    std::cout << orders.insertMany(documents).inserted << " inserted\n";
    //! [import]
}

void lines(DataBaseClient& client, const std::string& database)
{
    section("lines");
    dbc::Collection orders(client, database, "lines");
    std::istringstream file("{\"item\": \"cup\"}\n\n{\"item\": \"jug\"}\n");
    //! [lines]
    // file is a std::ifstream with one JSON document per line
    int number = 0;
    const auto nextDocument = [&]() -> std::optional<dbc::Value> {
        std::string line;
        while (std::getline(file, line))
        {
            ++number;
            if (!line.empty())
                return dbc::Value::fromJson(line);
        }
        return std::nullopt; // the end
    };
    dbc::InsertManyOptions options;
    options.returnIds = false; // a list of millions of ids would need much memory
    try
    {
        std::cout << orders.insertMany(nextDocument, options).inserted << " inserted\n";
    }
    catch (const dbc::FormatError& error)
    {
        std::cerr << "line " << number << ": " << error.what() << '\n';
    }
    //! [lines]
}

void bulk(DataBaseClient& client, const std::string& database)
{
    section("bulk");
    dbc::Collection orders(client, database, "bulk");
    //! [bulk]
    dbc::Bulk bulk;
    bulk.insertOne({{"_id", 1}, {"state", "new"}})
        .updateOne({{"_id", 1}}, {{"$set", {{"state", "paid"}}}})
        .removeMany({{"state", "cancelled"}});
    const dbc::BulkResult result = orders.bulkWrite(bulk);
    std::cout << result.inserted << " inserted, " << result.modified << " modified, " << result.removed << " removed\n";
    //! [bulk]
}

void refused(DataBaseClient& client, const std::string& database)
{
    section("refused");
    dbc::Collection orders(client, database, "refused");
    //! [refused]
    dbc::InsertManyOptions options;
    options.ordered = false; // also insert the documents after a refused one
    try
    {
        orders.insertMany({{{"_id", 1}}, {{"_id", 1}}, {{"_id", 2}}}, options);
    }
    catch (const dbc::BulkError& error)
    {
        std::cout << error.result().inserted << " inserted\n";
        for (const dbc::WriteError& write : error.errors())
            std::cout << "document " << write.index << ": " << dbc::nameOf(write.kind) << '\n';
    }
    //! [refused]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase scratch;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    counting(client, scratch.name());
    sorted(client, scratch.name());
    paging(client, scratch.name());
    pagingByTotal(client, scratch.name());
    updating(client, scratch.name());
    importing(client, scratch.name());
    lines(client, scratch.name());
    bulk(client, scratch.name());
    refused(client, scratch.name());
}
