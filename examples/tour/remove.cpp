// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "remove": removes every document that matches a query.
#include "tour.h"

#include <object_filter.h>

#include <algorithm>

namespace tour {

namespace {

void removeMatching(Tour& tour, const std::string& what,
                    const std::string& code, const ObjectProperties& query,
                    std::size_t expected)
{
    const std::size_t before =
        count(tour, subdivisionsCollection, ObjectProperties());
    Step step(what, code);
    //! [remove]
    tour.client->remove(tour.database, subdivisionsCollection, query);
    //! [remove]
    step.done(expected);
    const std::size_t after =
        count(tour, subdivisionsCollection, ObjectProperties());
    show(toJson(query) + ": " + std::to_string(after) + " left");
    agree(what, before - after, expected);
}

} // namespace

void remove(Tour& tour)
{
    needStored(tour);
    title("remove");
    tour.stored = false;

    const auto isParish = [](const Subdivision& s) {
        return s.type == "Parish";
    };
    const auto parishes = std::count_if(tour.subdivisions.begin(),
                                        tour.subdivisions.end(), isParish);
    ObjectFilter parish;
    parish.setFilterString(OperationTypeEqual, "type", "Parish", "");
    removeMatching(tour, "parishes", "remove", parish.toObjectProeprties(),
                   static_cast<std::size_t>(parishes));
    removeMatching(tour, "parishes again: no match is not an error", "remove",
                   parish.toObjectProeprties(), 0);

    note("the empty query matches every document");
    removeMatching(tour, "the rest", "remove", ObjectProperties(),
                   tour.subdivisions.size() -
                       static_cast<std::size_t>(parishes));
    tour.client->remove(tour.database, countriesCollection,
                        ObjectProperties());
    agree("countries left",
          count(tour, countriesCollection, ObjectProperties()), 0);
}

} // namespace tour
