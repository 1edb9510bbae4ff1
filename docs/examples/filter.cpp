// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Queries built call by call.
#include "example.h"

#include <dbc/filter.h>
#include <object_filter.h>

namespace {

void show(const ObjectFilter& filter)
{
    std::cout << text(filter.toObjectProeprties()) << '\n';
}

void equal()
{
    section("equal");
    //! [equal]
    ObjectFilter filter;
    filter.setFilterString(OperationTypeEqual, "name", "Ada", "");
    filter.setFilterBool(OperationTypeEqual, "alive", false);
    show(filter);
    //! [equal]
}

void range()
{
    section("range");
    //! [range]
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreaterOrEqual, "age", 18);
    filter.setFilterInt(OperationTypeLess, "age", 65); // merged with the first condition
    show(filter);
    //! [range]
}

void regex()
{
    section("regex");
    //! [regex]
    ObjectFilter filter;
    filter.setFilterString(OperationTypeRegex, "name", "^a", "i");
    show(filter);
    //! [regex]
}

void exists()
{
    section("exists");
    //! [exists]
    ObjectFilter filter;
    filter.setFilterBool(OperationTypeExists, "email", false); // the value is ignored
    filter.setFilterBool(OperationTypeNotExists, "deleted", true);
    show(filter);
    //! [exists]
}

void kinds()
{
    section("kinds");
    //! [kinds]
    ObjectFilter filter;
    filter.setFilterId(OperationTypeEqual, "_id", "507f1f77bcf86cd799439011");
    filter.setFilterTime(OperationTypeGreater, "changed", 1500000000000LL); // milliseconds
    filter.setFilterLongLong(OperationTypeNotEqual, "state", 3);
    filter.setFilterDouble(OperationTypeLessOrEqual, "weight", 2.5);
    show(filter);
    //! [kinds]
}

void nested()
{
    section("nested");
    //! [nested]
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "address.zip", 10000); // "." refers to a field of a sub-document
    filter.beginGroup("size"); // a group matches only an equal sub-document, with the fields in this order
    filter.setFilterInt(OperationTypeEqual, "h", 2);
    filter.setFilterInt(OperationTypeEqual, "w", 3);
    filter.endGroup();
    show(filter);
    //! [nested]
}

void lists()
{
    section("lists");
    //! [lists]
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterString(OperationTypeRegex, "name", "^A", "i");
    filter.start_and();
    filter.setFilterInt(OperationTypeGreaterOrEqual, "age", 18);
    filter.setFilterBool(OperationTypeExists, "email", false);
    filter.finish_and();
    filter.finish_or();
    filter.setFilterLongLong(OperationTypeNotEqual, "state", 3);
    show(filter);
    //! [lists]
}

void parts()
{
    section("parts");
    //! [parts]
    ObjectFilter grownUp;
    grownUp.setFilterInt(OperationTypeGreaterOrEqual, "age", 18);

    ObjectFilter filter;
    filter.start_or();
    filter.include(grownUp); // adds the other query as one element of the list
    filter.setFilterBool(OperationTypeEqual, "accompanied", true);
    filter.finish_or();
    show(filter);

    ObjectFilter taken;
    filter.exclude("$or", taken); // moves the content of "$or" into the other filter
    std::cout << filter.isEmpty() << '\n';
    //! [parts]
}

void more()
{
    section("more");
    //! [more]
    ObjectFilter filter;
    dbc::addIn(filter, "state", {"new", "paid"});
    dbc::addNot(filter, "age", {{"$gt", 65}});
    dbc::addElemMatch(filter, "lines", {{"count", 2}, {"sku", "A1"}});
    show(filter);
    //! [more]
}

} // namespace

int main()
{
    equal();
    range();
    regex();
    exists();
    kinds();
    nested();
    lists();
    parts();
    more();
}
