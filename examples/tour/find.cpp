// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "find": query, projection, order, limit and skip.
#include "tour.h"

#include <algorithm>
#include <set>

namespace tour {

namespace {

// {"code": "DE"} matches if the field "code" has this value.
void oneByField(Tour& tour)
{
    const Country& wanted = tour.countries.back();
    Step step("query: the country whose code is " + wanted.code, "by_field");
    //! [by_field]
    const ObjectProperties query = dbc::document({{"code", wanted.code}});
    dbc::Results found; // owns the documents
    tour.client->read(tour.database, countriesCollection, query, found);
    //! [by_field]
    step.done(found.size());
    agree("countries with that code", found.size(), 1);
    const ObjectProperties& country = found.front();
    show(dbc::getOr(country, "name", "?") + ", " +
         std::to_string(dbc::getOr(country, "numeric", 0)) + ", " +
         dbc::getOr(country, "names/alpha3", "?") + ", flag of " +
         std::to_string(dbc::getOr(country, "flag", dbc::Bytes()).size()) +
         " bytes");
}

// In a query, "." refers to a field of a nested document. In the library, "."
// is an ordinary character.
void oneByNestedField(Tour& tour)
{
    const Subdivision& wanted = tour.subdivisions.back();
    Step step("query: the country that contains " + wanted.code,
              "by_nested_field");
    //! [by_nested_field]
    const ObjectProperties query =
        dbc::document({{"subdivisions.code", wanted.code}});
    dbc::Results found;
    tour.client->read(tour.database, countriesCollection, query, found);
    //! [by_nested_field]
    step.done(found.size());
    agree("countries that contain it", found.size(), 1);
    show(dbc::getOr(found.front(), "name", "?") + " contains " + wanted.name);
}

// A query with an order has the form {"$query": {...}, "$orderby": {...}}.
// Fields are sent in the order of their keys, so with several fields the
// server sorts by the alphabetically first one first.
void someInOrder(Tour& tour)
{
    Step step("projection, order, limit 3, skip 2: undivided, from Z to A",
              "in_order");
    //! [in_order]
    const ObjectProperties query = dbc::document(
        {{"$query", {{"divided", false}}}, {"$orderby", {{"name", -1}}}});
    const ObjectProperties projection =
        dbc::document({{"name", 1}, {"_id", 0}});
    dbc::Results found;
    tour.client->find(tour.database, countriesCollection, query, projection,
                      found, 3, 2);
    //! [in_order]
    step.done(found.size());

    std::vector<std::string> names;
    for (const Country& country : tour.countries)
    {
        if (country.subdivisions.empty())
            names.push_back(country.name);
    }
    std::sort(names.rbegin(), names.rend());
    std::size_t place = 2;
    std::size_t inPlace = 0;
    for (const ObjectProperties& country : found)
    {
        show(toJson(country));
        inPlace +=
            dbc::getOr(country, "name", "") == names.at(place++) ? 1 : 0;
    }
    agree("countries in their place", inPlace, 3);
}

void allPageByPage(Tour& tour)
{
    constexpr int pageSize = 1000;
    Step step("all subdivisions in pages of " + std::to_string(pageSize),
              "pages");
    // The empty query matches everything. Without an order, pages may
    // overlap.
    //! [pages]
    const ObjectProperties query =
        dbc::document({{"$query", {}}, {"$orderby", {{"code", 1}}}});
    dbc::Results found; // find() appends all pages
    for (int skip = 0; found.size() == static_cast<std::size_t>(skip);
         skip += pageSize)
    {
        tour.client->find(tour.database, subdivisionsCollection, query,
                          ObjectProperties(), found, pageSize, skip);
    }
    //! [pages]
    step.done(found.size(), "documents", found.size() / pageSize + 1);

    std::set<std::string> codes;
    for (const ObjectProperties& subdivision : found)
        codes.insert(dbc::getOr(subdivision, "code", ""));
    agree("different codes", codes.size(), tour.subdivisions.size());
}

void refused(Tour& tour)
{
    const ObjectProperties query =
        fromJson(R"({"name": {"$nearly": "France"}})");
    Step step("an invalid query: " + toJson(query), "invalid_query");
    dbc::Results found;
    const std::string said = answer([&] {
        //! [invalid_query]
        tour.client->read(tour.database, countriesCollection, query, found);
        //! [invalid_query]
    });
    step.done(found.size());
    show(said);
}

} // namespace

void find(Tour& tour)
{
    needStored(tour);
    title("find");
    oneByField(tour);
    oneByNestedField(tour);
    someInOrder(tour);
    allPageByPage(tour);
    refused(tour);
}

} // namespace tour
