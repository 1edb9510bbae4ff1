// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Creates, reads, updates and removes documents.
#include "example.h"

#include <dbc/collection.h>

#include <iostream>
#include <optional>

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    dbc::Collection people(client, databaseOf(client), "example_people"); // the first insert creates the collection

    // Create. Braces are an object, dbc::array is an array. Without an "_id" the document gets a new object id.
    const dbc::InsertOneResult ada = people.insertOne({{"name", "Ada"}, {"age", 36}, {"home", {{"city", "London"}}}});
    people.insertOne({{"_id", 2}, {"name", "Alan"}, {"age", 41}, {"tags", dbc::array({"logic", "running"})}});

    // Read one document. The result is empty if no document matches.
    if (const std::optional<dbc::Value> found = people.findOne({{"_id", ada.id}}))
        std::cout << found->getOr("name", "?") << " lives in " << found->getOr("home/city", "?") << '\n';
    if (!people.findOne({{"name", "Grace"}}))
        std::cout << "there is no Grace\n";

    // Read many documents. They arrive while the loop runs.
    for (const dbc::Value& person : people.find({{"age", {{"$gte", 40}}}}))
        std::cout << person << '\n';

    // Update. {} matches every document.
    const dbc::UpdateResult birthday = people.updateMany({}, {{"$inc", {{"age", 1}}}});
    std::cout << birthday.matched << " matched, " << birthday.modified << " modified\n";

    // Update, and insert if no document matches.
    dbc::UpdateOptions upsert;
    upsert.upsert = true;
    const dbc::UpdateResult grace = people.updateOne({{"_id", 3}}, {{"$set", {{"name", "Grace"}}}}, upsert);
    std::cout << grace.matched << " matched, inserted " << *grace.upsertedId << '\n';

    // Update one document and read it, in one step.
    dbc::FindOneAndUpdateOptions after;
    after.which = dbc::Return::After;
    const auto alan = people.findOneAndUpdate({{"_id", 2}}, {{"$push", {{"tags", "chess"}}}}, after);
    std::cout << alan->at("tags") << '\n';

    // Replace a document. Its "_id" stays.
    people.replaceOne({{"_id", 3}}, {{"name", "Grace"}, {"rank", "admiral"}});

    // Remove.
    std::cout << people.removeOne({{"_id", 2}}).removed << " removed, " << people.count({}) << " left\n";
    people.removeMany({});
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
