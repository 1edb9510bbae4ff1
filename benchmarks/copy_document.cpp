// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does a deep copy take, compared with nlohmann/json? The destruction of the copy is not measured.

#include "object_properties.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace {

const auto prepareNothing = [](auto&) {};

void withDatabaseClient(benchmark::State& state, const Shape& shape)
{
    ObjectProperties document;
    build(shape.steps, document);
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& copy) { copy.emplace(document); },
        [&](const auto& copy) {
            return copy->childCount() == document.childCount() && copy->root() != document.root();
        });
}

void withNlohmannJson(benchmark::State& state, const Shape& shape)
{
    const auto json = nlohmann::json::from_bson(shape.bytes);
    measure<std::optional<nlohmann::json>>(
        state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& copy) { copy.emplace(json); },
        [&](const auto& copy) { return *copy == json; });
}

const bool registered = addAll(allShapes(), [](const Shape& shape) {
    add("copy", shape.name, "database_client", [&shape](auto& state) { withDatabaseClient(state, shape); });
    add("copy", shape.name, "nlohmann_json", [&shape](auto& state) { withNlohmannJson(state, shape); });
});

} // namespace
