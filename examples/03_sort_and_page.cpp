// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Counts, sorts and reads page by page.
#include "example.h"

#include <dbc/collection.h>

#include <iostream>
#include <vector>

namespace {

// Reads the next three cities, the largest first, after the last city of the previous page. Cities of the same size are
// sorted by "_id", so that no city is missing if a page ends between them.
std::vector<dbc::Value> pageAfter(dbc::Collection& cities, const dbc::Value& last)
{
    dbc::FindOptions options;
    options.sort = {{"people", dbc::Order::Descending}, {"_id"}};
    options.limit = 3;
    dbc::Value filter; // the empty object: the first page
    if (!last.empty())
    {
        const dbc::Value& people = last.at("people");
        filter = {{"$or", dbc::array({{{"people", {{"$lt", people}}}},
                                      {{"people", people}, {"_id", {{"$gt", last.at("_id")}}}}})}};
    }
    std::vector<dbc::Value> page;
    for (const dbc::Value& city : cities.find(filter, options))
        page.push_back(city); // a copy: the cursor reuses its document for the next one
    return page;
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    dbc::Collection cities(client, databaseOf(client), "example_cities");
    cities.insertMany({{{"_id", "Athens"}, {"people", 640}, {"sea", true}},
                       {{"_id", "Bergen"}, {"people", 290}, {"sea", true}},
                       {{"_id", "Bern"}, {"people", 140}, {"sea", false}},
                       {{"_id", "Madrid"}, {"people", 3300}, {"sea", false}},
                       {{"_id", "Malaga"}, {"people", 640}, {"sea", true}},
                       {{"_id", "Porto"}, {"people", 290}, {"sea", true}},
                       {{"_id", "Vienna"}, {"people", 2000}, {"sea", false}}});

    std::cout << cities.count({}) << " cities, " << cities.count({{"sea", true}}) << " of them at the sea\n";

    std::vector<dbc::Value> page = pageAfter(cities, {});
    for (int number = 1; !page.empty(); ++number)
    {
        std::cout << "page " << number << ':';
        for (const dbc::Value& city : page)
            std::cout << ' ' << city.getOr("_id", "?") << ' ' << city.getOr("people", 0);
        std::cout << '\n';
        page = pageAfter(cities, page.back());
    }

    // Only some fields, and not the first two matches.
    dbc::FindOptions options;
    options.sort = {{"_id"}};
    options.projection = {{"_id", 1}};
    options.skip = 2;
    for (const dbc::Value& city : cities.find({{"sea", true}}, options))
        std::cout << city << '\n';
    cities.removeMany({});
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
