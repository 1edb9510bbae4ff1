// Chapter "aggregate": the server groups, counts and sorts.
#include "tour.h"

#include <algorithm>
#include <map>

namespace tour {

namespace {

using companion::object;

// Sorted by one field: fields are written in the order of their names, so {"count": -1, "_id": 1} would sort by "_id".
void commonTypes(Tour& tour)
{
    const ObjectProperties pipeline =
        companion::pipeline({object({{"$group", object({{"_id", "$type"}, {"count", object({{"$sum", 1}})}})}}),
                             object({{"$sort", object({{"count", -1}})}}), object({{"$limit", 5}})});
    Step step("the five most common types of subdivision");
    companion::Results groups;
    tour.client->aggregate(tour.database, subdivisionsCollection, pipeline, groups);
    step.done(groups.size());

    std::map<std::string, long long> expected;
    for (const Subdivision& subdivision : tour.subdivisions)
    {
        ++expected[subdivision.type];
    }
    for (const ObjectProperties& group : groups)
    {
        const std::string type = companion::getOr(group, "_id", "");
        show(std::to_string(number(group, "count")) + "  " + type);
        agree(type, static_cast<std::size_t>(number(group, "count")), static_cast<std::size_t>(expected[type]));
    }
    agree("groups", groups.size(), std::min<std::size_t>(5, expected.size()));
}

void matchThenGroup(Tour& tour)
{
    const ObjectProperties pipeline =
        companion::pipeline({object({{"$match", object({{"parent", object({{"$exists", true}})}})}}),
                             object({{"$group", object({{"_id", "$country"}, {"count", object({{"$sum", 1}})}})}}),
                             object({{"$sort", object({{"_id", 1}})}})});
    Step step("countries whose subdivisions have parts of their own");
    companion::Results groups;
    tour.client->aggregate(tour.database, subdivisionsCollection, pipeline, groups);
    step.done(groups.size());

    std::map<std::string, std::size_t> expected;
    for (const Subdivision& subdivision : tour.subdivisions)
    {
        if (!subdivision.parent.empty())
        {
            ++expected[subdivision.country()];
        }
    }
    std::string line;
    for (const ObjectProperties& group : groups)
    {
        const std::string country = companion::getOr(group, "_id", "");
        agree(country, static_cast<std::size_t>(number(group, "count")), expected[country]);
        line += country + " " + std::to_string(number(group, "count")) + "  ";
    }
    showShort(line);
    agree("groups", groups.size(), expected.size());
}

void unwind(Tour& tour)
{
    const ObjectProperties pipeline =
        companion::pipeline({object({{"$unwind", "$subdivisions"}}), object({{"$count", "elements"}})});
    Step step("elements of all arrays of subdivisions");
    companion::Results counted;
    tour.client->aggregate(tour.database, countriesCollection, pipeline, counted);
    step.done(counted.size());
    agree("answers", counted.size(), 1);
    show(toJson(counted.front()));

    std::size_t expected = 0;
    for (const Country& country : tour.countries)
    {
        expected += country.subdivisions.size();
    }
    agree("elements", static_cast<std::size_t>(number(counted.front(), "elements")), expected);
}

} // namespace

void aggregate(Tour& tour)
{
    needStored(tour);
    title("aggregate", "group, sort and count on the server");
    commonTypes(tour);
    matchThenGroup(tour);
    unwind(tour);
}

} // namespace tour
