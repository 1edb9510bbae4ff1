// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to write a document as BSON, compared with nlohmann/json, and with a program that calls the
// append functions of libbson itself?

#include "properties_to_bson.h"

#include "bson_to_properties.h"
#include "driver/bson_handles.h"
#include "object_properties.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

#include <cstdint>

namespace {

const auto prepareNothing = [](auto&) {};

bool holds(const OwnedBson& bson, const std::vector<std::uint8_t>& bytes)
{
    const std::uint8_t* data = bson_get_data(bson.get());
    return std::vector<std::uint8_t>(data, data + bson.get()->len) == bytes;
}

void withDatabaseClient(benchmark::State& state, const Shape& shape)
{
    bson_t bson;
    bson_init_static(&bson, shape.bytes.data(), shape.bytes.size());
    ObjectProperties document;
    BsonToProperties::convert(&bson, &document);
    measure<OwnedBson>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& written) { PropertiesToBson::convert(document, written.get()); },
        [&](const auto& written) { return holds(written, shape.canonicalBytes); });
}

void withLibbson(benchmark::State& state, const Shape& shape)
{
    measure<OwnedBson>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& written) { build(shape.canonicalSteps, written.get()); },
        [&](const auto& written) { return holds(written, shape.canonicalBytes); });
}

void withNlohmannJson(benchmark::State& state, const Shape& shape)
{
    const auto json = nlohmann::json::from_bson(shape.bytes);
    measure<std::vector<std::uint8_t>>(
        state, shape.fields, shape.bytes.size(), prepareNothing,
        [&](auto& written) { written = nlohmann::json::to_bson(json); },
        [&](const auto& written) { return written.size() == shape.canonicalBytes.size(); });
}

const bool registered = addAll(allShapes(), [](const Shape& shape) {
    add("document_to_bson", shape.name, "database_client", [&shape](auto& state) { withDatabaseClient(state, shape); });
    add("document_to_bson", shape.name, "libbson", [&shape](auto& state) { withLibbson(state, shape); });
    add("document_to_bson", shape.name, "nlohmann_json", [&shape](auto& state) { withNlohmannJson(state, shape); });
});

} // namespace
