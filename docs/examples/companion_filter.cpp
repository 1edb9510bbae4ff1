// The query operators that ObjectFilter has no call for. Needs no server.
#include "example.h"

#include <companion/filter.h>
#include <object_filter.h>

namespace {

void operators()
{
    section("operators");
    //! [operators]
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "year", 2020);
    companion::in(filter, "state", {"new", "paid"});
    companion::elemMatch(filter, "items", {{"sku", "A-1"}, {"count", companion::object({{"$gte", 2}})}});
    std::cout << text(filter.toObjectProeprties()) << '\n';
    //! [operators]
}

void document()
{
    section("document");
    //! [document]
    ObjectProperties query; // the same functions fill a query document
    companion::type(query, "price", "double");
    companion::nor(query, {companion::object({{"state", "void"}})});
    std::cout << text(query) << '\n';
    //! [document]
}

} // namespace

int main()
{
    operators();
    document();
}
