// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Reads JSON into a document, changes the document, and writes it as JSON. Needs no server.
#include <json_to_properties.h>
#include <object_properties.h>
#include <properties_to_json.h>

#include <iostream>

int main()
{
    ObjectProperties order;
    if (!JsonToProperties::convert(R"({"number": 17, "placed": {"$date": 1500000000000}, "paid": null,
                                       "customer": {"name": "Ada"}, "items": ["apples", "pears"]})",
                                   &order))
    {
        std::cerr << "not JSON\n";
        return 1;
    }
    std::cout << "number is " << (order.type("number") == PropertyType::Int32 ? "an int32" : "something else") << ", "
              << order.valueAsInt32("number", 0) << '\n'
              << "customer: " << order.valueAsString("customer/name", "?") << '\n'
              << "paid: " << (order.contains("paid") ? "there" : "nulls are left out") << '\n';

    order.setValueDouble("total", 12.5);
    order.beginArray("items");
    order.setValueString("2", "plums"); // adds an element
    order.endArray();

    std::string json;
    PropertiesToJson::convert(order, json); // fields in the order of their keys
    std::cout << json << '\n';

    ObjectProperties untouched;
    std::cout << "bad text: " << (JsonToProperties::convert("{\"a\": ", &untouched) ? "taken" : "refused") << '\n';
}
