// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "update": the command selects an operator, and the document is its
// operand.
#include "tour.h"

#include <algorithm>
#include <functional>

namespace tour {

namespace {

constexpr const char* notesCollection = "notes";

std::size_t countWith(Tour& tour, const std::string& field)
{
    return count(tour, countriesCollection,
                 dbc::document({{field, {{"$exists", true}}}}));
}

// Compares the number of countries that have the fields of everyMatch().
void showFields(Tour& tour, std::size_t visited, std::size_t seen)
{
    const std::size_t withVisited = countWith(tour, "visited");
    const std::size_t withSeen = countWith(tour, "seen");
    show(std::to_string(withVisited) + " have \"visited\", " +
         std::to_string(withSeen) + " have \"seen\"");
    agree("visited", withVisited, visited);
    agree("seen", withSeen, seen);
}

// Adds, renames and removes a field of every country that has no
// subdivisions.
void everyMatch(Tour& tour)
{
    DataBaseClient& client = *tour.client;
    const ObjectProperties query = dbc::document({{"divided", false}});
    const auto undivided = static_cast<std::size_t>(std::count_if(
        tour.countries.begin(), tour.countries.end(),
        [](const Country& c) { return c.subdivisions.empty(); }));

    Step set("$set, every undivided country", "set_all");
    //! [set_all]
    client.update(tour.database, countriesCollection, query,
                  fromJson(R"({"visited": true})"), UpdateFlagMultiUpdate,
                  UpdateCommandSet);
    //! [set_all]
    set.done(undivided);
    showFields(tour, undivided, 0);

    Step rename("$rename", "rename_all");
    //! [rename_all]
    client.update(tour.database, countriesCollection, query,
                  fromJson(R"({"visited": "seen"})"), UpdateFlagMultiUpdate,
                  UpdateCommandRename);
    //! [rename_all]
    rename.done(undivided);
    showFields(tour, 0, undivided);

    Step unset("$unset", "unset_all");
    //! [unset_all]
    client.update(tour.database, countriesCollection, query,
                  fromJson(R"({"seen": ""})"), UpdateFlagMultiUpdate,
                  UpdateCommandUnset);
    //! [unset_all]
    unset.done(undivided);
    showFields(tour, 0, 0);
}

// Changes the document that @p query matches, and prints the result.
void change(Tour& tour, const ObjectProperties& query,
            const std::string& what, const std::string& code,
            const std::function<void()>& update)
{
    Step step(what, code);
    update();
    step.done(1);

    dbc::Results found;
    tour.client->find(tour.database, notesCollection, query,
                      dbc::document({{"_id", 0}}), found, 0, 0);
    agree("notes with that id", found.size(), 1);
    show("now " + toJson(found.front()));
}

// Inserts a document with a given id, and changes it.
void oneDocument(Tour& tour)
{
    DataBaseClient& client = *tour.client;
    const std::string& database = tour.database;
    // update() accepts an id of the caller, unlike write().
    const ObjectProperties query =
        dbc::document({{"_id", dbc::ObjectId{client.createId()}}});
    change(tour, query, "upsert: the document does not exist yet", "upsert",
           [&] {
               //! [upsert]
               client.update(
                   database, notesCollection, query,
                   fromJson(R"({"title": "to see", "codes": ["DE"]})"),
                   UpdateFlagUpsert, UpdateCommandSet);
               //! [upsert]
           });
    change(tour, query, "$push", "push_fr", [&] {
        //! [push_fr]
        client.update(database, notesCollection, query,
                      fromJson(R"({"codes": "FR"})"), UpdateFlagNone,
                      UpdateCommandPush);
        //! [push_fr]
    });
    change(tour, query, "$addToSet: the value is in the array already",
           "add_to_set", [&] {
               //! [add_to_set]
               client.update(database, notesCollection, query,
                             fromJson(R"({"codes": "FR"})"), UpdateFlagNone,
                             UpdateCommandAddToSet);
               //! [add_to_set]
           });
    change(tour, query, "$push", "push_it", [&] {
        //! [push_it]
        client.update(database, notesCollection, query,
                      fromJson(R"({"codes": "IT"})"), UpdateFlagNone,
                      UpdateCommandPush);
        //! [push_it]
    });
    change(tour, query, "$pop: 1 is the last element, -1 the first", "pop",
           [&] {
               //! [pop]
               client.update(database, notesCollection, query,
                             fromJson(R"({"codes": -1})"), UpdateFlagNone,
                             UpdateCommandPop);
               //! [pop]
           });
    change(tour, query, "$pull", "pull", [&] {
        //! [pull]
        client.update(database, notesCollection, query,
                      fromJson(R"({"codes": "IT"})"), UpdateFlagNone,
                      UpdateCommandPull);
        //! [pull]
    });
    change(tour, query, "replace: a whole document without operators",
           "replace", [&] {
               //! [replace]
               client.update(database, notesCollection, query,
                             fromJson(R"({"title": "seen"})"), UpdateFlagNone,
                             UpdateCommandReplace);
               //! [replace]
           });
    change(tour, query, "replace: a document with any operators", "increment",
           [&] {
               //! [increment]
               client.update(database, notesCollection, query,
                             fromJson(R"({"$inc": {"visits": 2}})"),
                             UpdateFlagNone, UpdateCommandReplace);
               //! [increment]
           });
}

void refused(Tour& tour)
{
    const ObjectProperties operand = dbc::document({{"title", 1}});
    Step step("$push to a field that is not an array", "push_refused");
    const std::string said = answer([&] {
        //! [push_refused]
        tour.client->update(tour.database, notesCollection,
                            ObjectProperties(), operand, UpdateFlagNone,
                            UpdateCommandPush);
        //! [push_refused]
    });
    step.done(0);
    show(said);
}

} // namespace

void update(Tour& tour)
{
    needStored(tour);
    title("update");
    everyMatch(tour);
    oneDocument(tour);
    refused(tour);
}

} // namespace tour
