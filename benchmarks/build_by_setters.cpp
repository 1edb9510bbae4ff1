// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to fill a document call by call, compared with operator[] of nlohmann/json? "again" sets the
// values of fields that exist already.

#include "object_properties.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace {

const auto prepareNothing = [](auto&) {};

void withDatabaseClient(benchmark::State& state, const Shape& shape)
{
    const auto topLevelFields = nlohmann::json::from_bson(shape.bytes).size();
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& document) { build(shape.steps, document.emplace()); },
        [&](const auto& document) { return document->childCount() == topLevelFields; });
}

void withNlohmannJson(benchmark::State& state, const Shape& shape)
{
    const auto expected = nlohmann::json::from_bson(shape.bytes);
    measure<nlohmann::json>(
        state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& json) { build(shape.steps, json); },
        [&](const auto& json) { return json == expected; });
}

void againWithDatabaseClient(benchmark::State& state, const Shape& shape)
{
    const auto topLevelFields = nlohmann::json::from_bson(shape.bytes).size();
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), [&](auto& document) { build(shape.steps, document.emplace()); },
        [&](auto& document) { build(shape.steps, *document); },
        [&](const auto& document) { return document->childCount() == topLevelFields; });
}

void againWithNlohmannJson(benchmark::State& state, const Shape& shape)
{
    const auto expected = nlohmann::json::from_bson(shape.bytes);
    measure<nlohmann::json>(
        state, shape.fields, shape.bytes.size(), [&](auto& json) { build(shape.steps, json); },
        [&](auto& json) { build(shape.steps, json); }, [&](const auto& json) { return json == expected; });
}

const bool registered =
    addAll(std::vector<const Shape*>{&flatRecord(), &nestedOrder(), &wideShuffled()}, [](const Shape& shape) {
        add("build_by_setters", shape.name, "database_client",
            [&shape](auto& state) { withDatabaseClient(state, shape); });
        add("build_by_setters", shape.name, "nlohmann_json", [&shape](auto& state) { withNlohmannJson(state, shape); });
    });

// Arrays are left out: a setter on an array always adds an element.
const bool againRegistered = addAll(std::vector<const Shape*>{&flatRecord(), &wideShuffled()}, [](const Shape& shape) {
    add("set_by_key", shape.name, "database_client", [&shape](auto& state) { againWithDatabaseClient(state, shape); });
    add("set_by_key", shape.name, "nlohmann_json", [&shape](auto& state) { againWithNlohmannJson(state, shape); });
});

} // namespace
