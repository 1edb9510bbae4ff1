// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Query operators for which ObjectFilter has no member function. Needs no server.
#include "example.h"

#include <dbc/filter.h>
#include <object_filter.h>

namespace {

void operators()
{
    section("operators");
    //! [operators]
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "year", 2020);
    dbc::addIn(filter, "state", {"new", "paid"});
    dbc::addElemMatch(filter, "items", {{"sku", "A-1"}, {"count", {{"$gte", 2}}}});
    std::cout << text(filter.toObjectProeprties()) << '\n';
    //! [operators]
}

void document()
{
    section("document");
    //! [document]
    ObjectProperties query; // the same functions fill a query document
    dbc::addType(query, "price", "double");
    dbc::addNor(query, {{{"state", "void"}}});
    std::cout << text(query) << '\n';
    //! [document]
}

} // namespace

int main()
{
    operators();
    document();
}
