// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Reading without adding keys, arrays in order, times. Needs no server.
#include "example.h"

#include <dbc/access.h>
#include <json_to_properties.h>

#include <chrono>
#include <optional>

namespace {

void unchanged()
{
    section("unchanged");
    //! [unchanged]
    ObjectProperties order;
    order.setValueInt32("amount", 3);

    const std::optional<int> amount = dbc::get<int>(order, "amount");
    const std::string currency = dbc::getOr(order, "price/currency", "EUR");
    std::cout << *amount << ' ' << currency << '\n' << text(order) << '\n';

    order.valueAsString("price/currency", "EUR"); // the getter of the document adds the missing keys
    std::cout << text(order) << '\n';
    //! [unchanged]
}

void ordered()
{
    section("ordered");
    //! [ordered]
    ObjectProperties week;
    JsonToProperties::convert(R"({"readings": [0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110]})", &week);

    for (const auto& [key, element] : dbc::children(week, "readings"))
        std::cout << element->currentValueAsInt32(0) << ' '; // in the order of the keys
    std::cout << '\n';
    for (const int reading : dbc::elementsAs<int>(week, "readings"))
        std::cout << reading << ' ';
    std::cout << '\n';
    //! [ordered]
}

void times()
{
    section("times");
    //! [times]
    using namespace std::chrono_literals;
    ObjectProperties session;
    dbc::setTime(session, "began", dbc::timeFromMilliseconds(1'600'000'000'000));
    const auto began = dbc::get<dbc::Time>(session, "began");
    dbc::setTime(session, "ends", *began + 90min);
    std::cout << text(session) << '\n';
    //! [times]
}

} // namespace

int main()
{
    unchanged();
    ordered();
    times();
}
