// Chapter "find": query, projection, order, limit and skip.
#include "tour.h"

#include <algorithm>
#include <set>

namespace tour {

namespace {

// {"code": "DE"}: the fields of a query are values that must be equal.
void oneByField(Tour& tour)
{
    const Country& wanted = tour.countries.back();
    const ObjectProperties query = companion::document({{"code", wanted.code}});

    Step step("query: the country whose code is " + wanted.code);
    companion::Results found;
    tour.client->read(tour.database, countriesCollection, query, found);
    step.done(found.size());
    agree("countries with that code", found.size(), 1);
    const ObjectProperties& country = found.front();
    show(companion::getOr(country, "name", "?") + ", " + std::to_string(companion::getOr(country, "numeric", 0)) +
         ", " + companion::getOr(country, "names/alpha3", "?") + ", flag of " +
         std::to_string(companion::getOr(country, "flag", companion::Bytes()).size()) + " bytes");
}

// On the server "." leads into a group, and to the library "." is a character like any other.
void oneByNestedField(Tour& tour)
{
    const Subdivision& wanted = tour.subdivisions.back();
    const ObjectProperties query = companion::document({{"subdivisions.code", wanted.code}});

    Step step("query: the country that holds " + wanted.code);
    companion::Results found;
    tour.client->read(tour.database, countriesCollection, query, found);
    step.done(found.size());
    agree("countries that hold it", found.size(), 1);
    show(companion::getOr(found.front(), "name", "?") + " holds " + wanted.name);
}

// A query with an order has the form {"$query": {...}, "$orderby": {...}}. Fields are written in the order of their
// names, so an order by several fields sorts by the alphabetically first one first.
void someInOrder(Tour& tour)
{
    using companion::object;
    const ObjectProperties query =
        companion::document({{"$query", object({{"divided", false}})}, {"$orderby", object({{"name", -1}})}});
    const ObjectProperties projection = companion::document({{"name", 1}, {"_id", 0}});

    Step step("projection, order, limit 3, skip 2: undivided, from Z to A");
    companion::Results found;
    tour.client->find(tour.database, countriesCollection, query, projection, found, 3, 2);
    step.done(found.size());

    std::vector<std::string> names;
    for (const Country& country : tour.countries)
    {
        if (country.subdivisions.empty())
        {
            names.push_back(country.name);
        }
    }
    std::sort(names.rbegin(), names.rend());
    std::size_t place = 2;
    std::size_t inPlace = 0;
    for (const ObjectProperties& country : found)
    {
        show(toJson(country));
        inPlace += companion::getOr(country, "name", "") == names.at(place++) ? 1 : 0;
    }
    agree("countries in their place", inPlace, 3);
}

void allPageByPage(Tour& tour)
{
    constexpr int pageSize = 1000;
    // An empty query matches everything; without an order the pages of a changing collection may overlap.
    const ObjectProperties query =
        companion::document({{"$query", companion::object()}, {"$orderby", companion::object({{"code", 1}})}});

    Step step("all subdivisions in pages of " + std::to_string(pageSize));
    companion::Results found; // find() appends: one list takes all pages
    for (int skip = 0; found.size() == static_cast<std::size_t>(skip); skip += pageSize)
    {
        tour.client->find(tour.database, subdivisionsCollection, query, ObjectProperties(), found, pageSize, skip);
        step.progress(found.size(), tour.subdivisions.size());
    }
    step.done(found.size());

    std::set<std::string> codes;
    for (const ObjectProperties& subdivision : found)
    {
        codes.insert(companion::getOr(subdivision, "code", ""));
    }
    agree("different codes", codes.size(), tour.subdivisions.size());
}

void refused(Tour& tour)
{
    const ObjectProperties query = fromJson(R"({"name": {"$nearly": "France"}})");
    Step step("a query that is none: " + toJson(query));
    companion::Results found;
    const std::string said = answer([&] { tour.client->read(tour.database, countriesCollection, query, found); });
    step.done(found.size());
    show(said);
}

} // namespace

void find(Tour& tour)
{
    needStored(tour);
    title("find", "query, projection, order, limit and skip");
    oneByField(tour);
    oneByNestedField(tour);
    someInOrder(tour);
    allPageByPage(tour);
    refused(tour);
}

} // namespace tour
