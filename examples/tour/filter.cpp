// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "filter": queries built call by call with ObjectFilter. Every
// result is compared with that of a loop.
#include "tour.h"

#include <object_filter.h>

#include <algorithm>
#include <functional>

namespace tour {

namespace {

void run(Tour& tour, const std::string& what, const std::string& code,
         const ObjectFilter& filter,
         const std::function<bool(const Country&)>& same)
{
    Step step(what, code);
    showCode("read_filtered");
    //! [read_filtered]
    const ObjectProperties query = filter.toObjectProeprties();
    dbc::Results found;
    tour.client->read(tour.database, countriesCollection, query, found);
    //! [read_filtered]
    step.done(found.size());
    showShort(toJson(query));

    const auto expected =
        std::count_if(tour.countries.begin(), tour.countries.end(), same);
    agree(what, found.size(), static_cast<std::size_t>(expected));
}

void range(Tour& tour)
{
    // Outside a list, conditions on the same key are merged.
    //! [range]
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreaterOrEqual, "numeric", 100);
    filter.setFilterInt(OperationTypeLess, "numeric", 200);
    //! [range]
    run(tour, "a range", "range", filter,
        [](const Country& c) { return c.numeric >= 100 && c.numeric < 200; });
}

void regularExpression(Tour& tour)
{
    //! [regex]
    ObjectFilter filter;
    filter.setFilterString(OperationTypeRegex, "code", "^b[a-e]$", "i");
    //! [regex]
    run(tour, "a regular expression that ignores case", "regex", filter,
        [](const Country& c) {
            return c.code[0] == 'B' && c.code[1] <= 'E';
        });
}

void absentField(Tour& tour)
{
    // The value is ignored.
    //! [missing_field]
    ObjectFilter filter;
    filter.setFilterBool(OperationTypeNotExists, "names.official", true);
    //! [missing_field]
    run(tour, "a field that is missing", "missing_field", filter,
        [](const Country& c) { return c.officialName.empty(); });
}

// Inside a list, every condition is a separate element.
ObjectFilter shortOrUndivided()
{
    //! [lists]
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterString(OperationTypeRegex, "name", "^.{1,4}$", "");
    filter.start_and();
    filter.setFilterBool(OperationTypeEqual, "divided", false);
    filter.setFilterInt(OperationTypeGreaterOrEqual, "numeric", 800);
    filter.finish_and();
    filter.finish_or();
    //! [lists]
    return filter;
}

bool isShortOrUndivided(const Country& country)
{
    const auto characters =
        std::count_if(country.name.begin(), country.name.end(), [](char c) {
            return (static_cast<unsigned char>(c) & 0xC0U) !=
                   0x80U; // counts a UTF-8 character at its first byte
        });
    return characters <= 4 ||
           (country.subdivisions.empty() && country.numeric >= 800);
}

void lists(Tour& tour)
{
    run(tour, "an \"$and\" inside an \"$or\"", "lists", shortOrUndivided(),
        isShortOrUndivided);
}

// A filter can be an element of a list of another filter.
void oneInsideAnother(Tour& tour)
{
    //! [include]
    ObjectFilter filter;
    filter.start_and();
    filter.include(shortOrUndivided());
    filter.setFilterId(OperationTypeEqual, "batch", tour.batch);
    filter.setFilterTime(OperationTypeGreater, "loaded", 0);
    filter.setFilterString(OperationTypeNotEqual, "code", "WF", "");
    filter.finish_and();
    //! [include]
    run(tour, "that filter inside another filter, with an id and a time",
        "include", filter, [](const Country& c) {
            return isShortOrUndivided(c) && c.code != "WF";
        });
}

} // namespace

void filter(Tour& tour)
{
    needStored(tour);
    title("filter");
    range(tour);
    regularExpression(tour);
    absentField(tour);
    lists(tour);
    oneInsideAnother(tour);
}

} // namespace tour
