// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "aggregate": the server groups, counts and sorts.
#include "tour.h"

#include <algorithm>
#include <map>

namespace tour {

namespace {

// Sorts by one field only: fields are sent in the order of their keys, so
// {"count": -1, "_id": 1} would sort by "_id" first.
void commonTypes(Tour& tour)
{
    Step step("the five most common types of subdivision", "group");
    //! [group]
    const ObjectProperties pipeline = dbc::pipeline(
        {{{"$group", {{"_id", "$type"}, {"count", {{"$sum", 1}}}}}},
         {{"$sort", {{"count", -1}}}},
         {{"$limit", 5}}});
    dbc::Results groups;
    tour.client->aggregate(tour.database, subdivisionsCollection, pipeline,
                           groups);
    //! [group]
    step.done(groups.size());

    std::map<std::string, long long> expected;
    for (const Subdivision& subdivision : tour.subdivisions)
        ++expected[subdivision.type];
    for (const ObjectProperties& group : groups)
    {
        const std::string type = dbc::getOr(group, "_id", "");
        show(std::to_string(dbc::getOr(group, "count", 0LL)) + "  " + type);
        agree(type, static_cast<std::size_t>(dbc::getOr(group, "count", 0LL)),
              static_cast<std::size_t>(expected[type]));
    }
    agree("groups", groups.size(), std::min<std::size_t>(5, expected.size()));
}

void matchThenGroup(Tour& tour)
{
    Step step("countries whose subdivisions have subdivisions", "match");
    //! [match]
    const ObjectProperties pipeline = dbc::pipeline(
        {{{"$match", {{"parent", {{"$exists", true}}}}}},
         {{"$group", {{"_id", "$country"}, {"count", {{"$sum", 1}}}}}},
         {{"$sort", {{"_id", 1}}}}});
    dbc::Results groups;
    tour.client->aggregate(tour.database, subdivisionsCollection, pipeline,
                           groups);
    //! [match]
    step.done(groups.size());

    std::map<std::string, std::size_t> expected;
    for (const Subdivision& subdivision : tour.subdivisions)
    {
        if (!subdivision.parent.empty())
            ++expected[subdivision.country()];
    }
    std::string line;
    for (const ObjectProperties& group : groups)
    {
        const std::string country = dbc::getOr(group, "_id", "");
        agree(country,
              static_cast<std::size_t>(dbc::getOr(group, "count", 0LL)),
              expected[country]);
        line += country + " " +
                std::to_string(dbc::getOr(group, "count", 0LL)) + "  ";
    }
    showShort(line);
    agree("groups", groups.size(), expected.size());
}

void unwind(Tour& tour)
{
    Step step("elements of all arrays of subdivisions", "unwind");
    //! [unwind]
    const ObjectProperties pipeline = dbc::pipeline(
        {{{"$unwind", "$subdivisions"}}, {{"$count", "elements"}}});
    dbc::Results counted;
    tour.client->aggregate(tour.database, countriesCollection, pipeline,
                           counted);
    //! [unwind]
    step.done(counted.size());
    agree("results", counted.size(), 1);
    show(toJson(counted.front()));

    std::size_t expected = 0;
    for (const Country& country : tour.countries)
        expected += country.subdivisions.size();
    agree("elements",
          static_cast<std::size_t>(
              dbc::getOr(counted.front(), "elements", 0LL)),
          expected);
}

} // namespace

void aggregate(Tour& tour)
{
    needStored(tour);
    title("aggregate");
    commonTypes(tour);
    matchThenGroup(tour);
    unwind(tour);
}

} // namespace tour
