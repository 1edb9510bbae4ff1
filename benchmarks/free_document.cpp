// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to free a document, compared with nlohmann/json?

#include "object_properties.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace {

void withDatabaseClient(benchmark::State& state, const Shape& shape)
{
    measure<std::optional<ObjectProperties>>(
        state, shape.fields, shape.bytes.size(), [&](auto& document) { build(shape.steps, document.emplace()); },
        [](auto& document) { document.reset(); }, [](const auto& document) { return !document; });
}

void withNlohmannJson(benchmark::State& state, const Shape& shape)
{
    measure<std::optional<nlohmann::json>>(
        state, shape.fields, shape.bytes.size(),
        [&](auto& json) { json.emplace(nlohmann::json::from_bson(shape.bytes)); }, [](auto& json) { json.reset(); },
        [](const auto& json) { return !json; });
}

const bool registered = addAll(allShapes(), [](const Shape& shape) {
    // Left out: freeing its one block takes much less time than filling it, so the preparation would take minutes.
    if (&shape == &largeBinary())
        return;
    add("free", shape.name, "database_client", [&shape](auto& state) { withDatabaseClient(state, shape); });
    add("free", shape.name, "nlohmann_json", [&shape](auto& state) { withNlohmannJson(state, shape); });
});

} // namespace
