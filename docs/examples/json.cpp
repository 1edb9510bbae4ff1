// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Reading and writing JSON.
#include "example.h"

#include <dbc/access.h>
#include <json_to_properties.h>

#include <iomanip>
#include <sstream>
#include <vector>

namespace {

void reading()
{
    section("reading");
    //! [reading]
    ObjectProperties order;
    const bool valid = JsonToProperties::convert(
        R"({"number": 17, "customer": {"name": "Ada"}, "items": ["pear", "fig"], "paid": true})", &order);
    std::cout << valid << ' ' << dbc::getOr(order, "customer/name", "?") << ' ' << dbc::getOr(order, "number", 0)
              << '\n';
    //! [reading]
}

void invalid()
{
    section("invalid");
    //! [invalid]
    ObjectProperties order;
    for (const char* const json : {R"({"a": 1)", "", "{'a': 1}", R"({"a": 1})"})
        std::cout << json << " -> " << (JsonToProperties::convert(json, &order) ? "valid" : "invalid") << '\n';
    //! [invalid]
}

void adding()
{
    section("adding");
    //! [adding]
    ObjectProperties order;
    order.setValueInt32("number", 17);
    JsonToProperties::convert(R"({"paid": true})", &order); // keeps "number"
    std::cout << text(order) << '\n';
    //! [adding]
}

void lines()
{
    section("lines");
    //! [lines]
    std::istringstream file("{\"name\": \"Ada\"}\n{\"name\": \"Bob\", \"age\": 40}\n{\"name\":\n");
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);)
    {
        ++number;
        ObjectProperties person; // write it with DataBaseClient::write()
        if (JsonToProperties::convert(line, &person))
            std::cout << dbc::getOr(person, "name", "?") << '\n';
        else
            std::cout << "line " << number << " is not JSON\n";
    }
    //! [lines]
}

void writing()
{
    section("writing");
    //! [writing]
    ObjectProperties order;
    order.setValueInt32("number", 17);
    order.setValueString("customer/name", "Ada");
    std::string json;
    PropertiesToJson::convert(order, json);
    std::cout << json << '\n';
    //! [writing]
}

void types()
{
    section("types");
    //! [types]
    ObjectProperties document;
    JsonToProperties::convert(R"({"small": 1, "large": 5000000000, "half": 0.5, "one": 1.0,
                                  "when": {"$date": "2017-07-14T02:40:00Z"},
                                  "id": {"$oid": "507f1f77bcf86cd799439011"},
                                  "wide": {"$numberLong": "1"}})",
                              &document);
    for (const char* const key : {"small", "large", "half", "one", "when", "id", "wide"})
        std::cout << key << ' ' << document.type(key) << '\n';
    //! [types]
}

void notUtf8()
{
    section("not_utf8");
    //! [not_utf8]
    ObjectProperties document;
    document.setValueString("name", "\xff");
    std::string json;
    PropertiesToJson::convert(document, json);
    std::cout << (json.empty() ? "not UTF-8" : json) << '\n';
    //! [not_utf8]
}

} // namespace

int main()
{
    std::cout << std::boolalpha;
    reading();
    invalid();
    adding();
    lines();
    writing();
    std::cout << std::noboolalpha;
    types();
    notUtf8();
}
