// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to read a value by a path of three segments, compared with a JSON pointer of nlohmann/json?
// Both split the path at every read.

#include "object_properties.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

namespace {

struct Read
{
    std::size_t size = 0;
};

const auto prepareNothing = [](auto&) {};

// The strings in the third level: two addresses.
const std::vector<std::string>& paths()
{
    static const std::vector<std::string> list{"/customer/address/street",   "/customer/address/city",
                                               "/customer/address/postcode", "/customer/address/country",
                                               "/shipping/address/street",   "/shipping/address/city",
                                               "/shipping/address/postcode", "/shipping/address/country"};
    return list;
}

constexpr std::size_t sizeOfAllTexts = 2 * (15 + 11 + 7 + 9);

void withDatabaseClient(benchmark::State& state)
{
    ObjectProperties document;
    build(nestedOrder().steps, document);
    measure<Read>(
        state, paths().size(), 32 * paths().size(), prepareNothing,
        [&](Read& read) {
            for (const std::string& path : paths())
                read.size += document.valueAsString(path, "").size();
        },
        [](const Read& read) { return read.size == sizeOfAllTexts; });
}

void withNlohmannJson(benchmark::State& state)
{
    const auto json = nlohmann::json::from_bson(nestedOrder().bytes);
    measure<Read>(
        state, paths().size(), 32 * paths().size(), prepareNothing,
        [&](Read& read) {
            for (const std::string& path : paths())
                read.size += json.at(nlohmann::json::json_pointer(path)).get<std::string>().size();
        },
        [](const Read& read) { return read.size == sizeOfAllTexts; });
}

const bool registered = add("read_by_path", "nested", "database_client", withDatabaseClient) &&
                        add("read_by_path", "nested", "nlohmann_json", withNlohmannJson);

} // namespace
