// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Arrays and the order of their elements.
#include "example.h"

#include <dbc/access.h>
#include <dbc/build.h>
#include <json_to_properties.h>

namespace {

void write()
{
    section("write");
    //! [write]
    ObjectProperties order;
    order.beginArray("tags");
    for (const char* const tag : {"new", "paid"})
        order.setValueString("tag", tag); // adds an element; equal keys keep their order
    order.endArray();

    order.beginArray("lines");
    for (const int count : {2, 1})
    {
        order.beginGroup("line"); // adds an element, too
        order.setValueInt32("count", count);
        order.endGroup();
    }
    order.endArray();
    //! [write]
    std::cout << order.valueAsString("tags/tag", "?") << ' ' << order.root()->propertyByKey("tags")->childCount() << ' '
              << order.root()->propertyByKey("lines")->childCount() << '\n';
}

void read()
{
    section("read");
    ObjectProperties order;
    JsonToProperties::convert(R"({"lines": [{"count": 2}, {"count": 1}], "tags": ["new", "paid"]})", &order);
    //! [read]
    order.beginArray("lines");
    const int count = static_cast<int>(order.childCount());
    for (int index = 0; index < count && order.beginObject(index); ++index)
    {
        std::cout << order.valueAsInt32("count", 0) << '\n';
        order.endObject();
    }
    order.endArray();

    // The same without the cursor, visiting each element once.
    for (const auto& [key, tag] : dbc::children(order, "tags"))
        std::cout << key << ' ' << tag->currentValueAsString("") << '\n';
    //! [read]
}

void trap()
{
    section("trap");
    //! [trap]
    ObjectProperties document;
    JsonToProperties::convert(R"({"n": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10]})", &document);
    for (const auto& [key, element] : dbc::children(document, "n"))
        std::cout << element->currentValueAsInt32(-1) << ' '; // 10 comes after 1, not after 9
    std::cout << '\n';
    //! [trap]
}

void wayOut()
{
    section("way_out");
    ObjectProperties document;
    JsonToProperties::convert(R"({"n": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10]})", &document);
    //! [way_out]
    // Reading: in the order of the numbers.
    for (const auto& element : dbc::elements(document, "n"))
        std::cout << element->currentValueAsInt32(-1) << ' ';
    std::cout << '\n';

    // Writing: use one key for all elements. Equal keys keep the order of the calls, and MongoDB numbers the elements.
    ObjectProperties written;
    written.beginArray("n");
    for (int value = 0; value <= 10; ++value)
        written.setValueInt32("element", value);
    written.endArray();
    std::cout << text(written) << '\n';

    // The same with nested braces: dbc::array writes the keys with leading zeros.
    std::cout << text(dbc::document({{"n", dbc::array({8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18})}})) << '\n';
    //! [way_out]
}

} // namespace

int main()
{
    write();
    read();
    trap();
    wayOut();
}
