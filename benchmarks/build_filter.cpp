// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to build a query of 20 conditions call by call, compared with nlohmann/json?

#include "object_filter.h"
#include "support/measure.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace {

constexpr std::size_t conditions = 20;
const auto prepareNothing = [](auto&) {};

const std::vector<std::string>& keys()
{
    static const std::vector<std::string> list = [] {
        std::vector<std::string> keysInOrder;
        for (std::size_t i = 0; i < conditions; ++i)
            keysInOrder.push_back("field_" + std::to_string(i));
        return keysInOrder;
    }();
    return list;
}

// {"field_0": {"$gt": 0}, "field_1": "text", ...}: alternately a comparison of numbers and an equal string.
void build(ObjectFilter& filter)
{
    for (std::size_t i = 0; i < conditions; ++i)
    {
        if (i % 2 == 0)
            filter.setFilterInt(OperationTypeGreater, keys()[i], static_cast<int>(i));
        else
            filter.setFilterString(OperationTypeEqual, keys()[i], "a text to compare with", "");
    }
}

void build(nlohmann::json& query)
{
    for (std::size_t i = 0; i < conditions; ++i)
    {
        if (i % 2 == 0)
            query[keys()[i]]["$gt"] = static_cast<int>(i);
        else
            query[keys()[i]] = "a text to compare with";
    }
}

template <typename Query, typename Done>
void measureBuilding(benchmark::State& state, Done done)
{
    measure<Query>(
        state, conditions, 32 * conditions, prepareNothing, [](auto& query) { build(query); }, done);
}

const bool registered =
    add("filter", "conditions", "database_client",
        [](auto& state) {
            measureBuilding<ObjectFilter>(state, [](const ObjectFilter& filter) {
                return filter.toObjectProeprties().childCount() == conditions;
            });
        }) &&
    add("filter", "conditions", "nlohmann_json", [](auto& state) {
        measureBuilding<nlohmann::json>(state, [](const nlohmann::json& query) { return query.size() == conditions; });
    });

} // namespace
