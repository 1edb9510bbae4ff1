// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Values of every BSON type. Needs no server.
#include "example.h"

#include <dbc/build.h>
#include <dbc/value.h>

#include <cstdint>
#include <vector>

namespace {

void built()
{
    section("built");
    //! [built]
    dbc::Value order = {{"number", 17},
                        {"buyer", {{"name", "Ada"}, {"phone", nullptr}}},
                        {"items", dbc::array({{{"sku", "A-1"}, {"count", 2}}, {{"sku", "B-7"}, {"count", 1}}})},
                        {"total", dbc::Decimal128::parse("259.90")}};
    order.set("state", "sent");
    order.at("items").push({{"sku", "C-3"}, {"count", 4L}});
    std::cout << order << '\n';
    //! [built]
}

void read()
{
    section("read");
    //! [read]
    const dbc::Value order = {{"buyer", {{"name", "Ada"}}}, {"items", dbc::array({{{"sku", "A-1"}, {"count", 2L}}})}};
    std::cout << order.getOr("buyer/name", "?") << ": " << order.getOr("items/0/count", 0) << '\n';
    for (const auto& [key, value] : order.fields())
        std::cout << key << " is an " << dbc::nameOf(value.type()) << '\n';
    for (const dbc::Value& item : order.at("items").elements())
        std::cout << *item.get<std::string>("sku") << '\n';
    //! [read]
}

void converted()
{
    section("converted");
    //! [converted]
    const dbc::Value city =
        dbc::Value::fromJson(R"({"name": "Lisbon", "mayor": null, "since": {"$numberLong": "1147"}})");
    const std::vector<std::uint8_t> bytes = city.toBson();
    std::cout << bytes.size() << " bytes\n"
              << dbc::Value::fromBson(bytes.data(), bytes.size()).toJson(dbc::JsonFormat::Canonical) << '\n';
    try
    {
        city.toProperties();
    }
    catch (const dbc::LossError& error)
    {
        std::cout << error.what() << '\n';
    }
    try
    {
        dbc::Value::fromJson(R"({"name": })");
    }
    catch (const dbc::FormatError& error)
    {
        std::cout << error.what() << '\n';
    }
    //! [converted]
}

void compared()
{
    section("compared");
    //! [compared]
    std::cout << std::boolalpha << (dbc::Value(1) == dbc::Value(1.0)) << ' ' // by value, whatever the type
              << (dbc::Value("1") > dbc::Value(1000)) << '\n';               // every string after every number
    //! [compared]
}

} // namespace

int main()
{
    built();
    read();
    converted();
    compared();
}
