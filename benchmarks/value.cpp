// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to decode, encode, copy, free and read a dbc::Value, compared with nlohmann::json, and for
// encoding also with libbson? value_boost_json.cpp adds Boost.JSON. The goals: at most half the time of nlohmann::json
// for decoding and encoding, and at most the same time for the other operations.

#include "dbc/value.h"
#include "driver/bson_handles.h"
#include "support/measure.h"
#include "support/read_top_level.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>

namespace {

const auto prepareNothing = [](auto&) {};

dbc::Value valueOf(const Shape& shape)
{
    return dbc::Value::fromBson(shape.bytes.data(), shape.bytes.size());
}

bool addDecoding(const Shape& shape)
{
    add("value_decode", shape.name, "database_client", [&shape](auto& state) {
        measure<dbc::Value>(
            state, shape.fields, shape.bytes.size(), prepareNothing,
            [&](auto& value) { value = dbc::Value::fromBson(shape.bytes.data(), shape.bytes.size()); },
            [&](const auto& value) { return value.toBson() == shape.bytes; });
    });
    add("value_decode", shape.name, "nlohmann_json", [&shape](auto& state) {
        measure<nlohmann::json>(
            state, shape.fields, shape.bytes.size(), prepareNothing,
            [&](auto& json) { json = nlohmann::json::from_bson(shape.bytes); },
            [&](const auto& json) { return nlohmann::json::to_bson(json).size() == shape.bytes.size(); });
    });
    return true;
}

bool addEncoding(const Shape& shape)
{
    using Bytes = std::vector<std::uint8_t>;
    add("value_encode", shape.name, "database_client", [&shape](auto& state) {
        const dbc::Value value = valueOf(shape);
        measure<Bytes>(
            state, shape.fields, shape.bytes.size(), prepareNothing, [&](Bytes& bytes) { bytes = value.toBson(); },
            [&](const Bytes& bytes) { return bytes == shape.bytes; });
    });
    add("value_encode", shape.name, "nlohmann_json", [&shape](auto& state) {
        const auto json = nlohmann::json::from_bson(shape.bytes);
        measure<Bytes>(
            state, shape.fields, shape.bytes.size(), prepareNothing,
            [&](Bytes& bytes) { bytes = nlohmann::json::to_bson(json); },
            [&](const Bytes& bytes) { return bytes.size() == shape.bytes.size(); });
    });
    add("value_encode", shape.name, "libbson", [&shape](auto& state) {
        measure<std::optional<OwnedBson>>(
            state, shape.fields, shape.bytes.size(), prepareNothing,
            [&](auto& bson) { build(shape.steps, bson.emplace().get()); },
            [&](const auto& bson) { return bson->get()->len == shape.bytes.size(); });
    });
    return true;
}

bool addCopying(const Shape& shape)
{
    add("value_copy", shape.name, "database_client", [&shape](auto& state) {
        const dbc::Value value = valueOf(shape);
        measure<dbc::Value>(
            state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& copied) { copied = value; },
            [&](const auto& copied) { return copied.toBson() == shape.bytes; });
    });
    add("value_copy", shape.name, "nlohmann_json", [&shape](auto& state) {
        const auto json = nlohmann::json::from_bson(shape.bytes);
        measure<nlohmann::json>(
            state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& copied) { copied = json; },
            [&](const auto& copied) { return copied == json; });
    });
    return true;
}

bool addFreeing(const Shape& shape)
{
    add("value_free", shape.name, "database_client", [&shape](auto& state) {
        measure<std::optional<dbc::Value>>(
            state, shape.fields, shape.bytes.size(), [&](auto& value) { value = valueOf(shape); },
            [](auto& value) { value.reset(); }, [](const auto& value) { return !value; });
    });
    add("value_free", shape.name, "nlohmann_json", [&shape](auto& state) {
        measure<std::optional<nlohmann::json>>(
            state, shape.fields, shape.bytes.size(), [&](auto& json) { json = nlohmann::json::from_bson(shape.bytes); },
            [](auto& json) { json.reset(); }, [](const auto& json) { return !json; });
    });
    return true;
}

std::size_t numberOf(const dbc::Value& object, const Step& step)
{
    const dbc::Value& value = object.at(step.key);
    switch (step.kind)
    {
    case Step::Kind::Int32:
        return static_cast<std::size_t>(*value.get<int>());
    case Step::Kind::Int64:
        return static_cast<std::size_t>(*value.get<long>());
    case Step::Kind::Double:
        return *value.get<double>() > 0 ? 1 : 0;
    case Step::Kind::Bool:
        return *value.get<bool>() ? 1 : 0;
    default:
        return value.get<std::string>()->size();
    }
}

std::size_t numberOf(const nlohmann::json& object, const Step& step)
{
    const nlohmann::json& value = object.at(step.key);
    switch (step.kind)
    {
    case Step::Kind::Int32:
        return static_cast<std::size_t>(value.get<int>());
    case Step::Kind::Int64:
        return static_cast<std::size_t>(value.get<long>());
    case Step::Kind::Double:
        return value.get<double>() > 0 ? 1 : 0;
    case Step::Kind::Bool:
        return value.get<bool>() ? 1 : 0;
    default:
        return value.get<std::string>().size();
    }
}

const auto read = [](const auto& object, const Step& step) { return numberOf(object, step); };

bool addReading(const Shape& shape)
{
    add("value_read_by_key", shape.name, "database_client",
        [&shape](auto& state) { readTopLevel(state, shape, valueOf(shape), read); });
    add("value_read_by_key", shape.name, "nlohmann_json",
        [&shape](auto& state) { readTopLevel(state, shape, nlohmann::json::from_bson(shape.bytes), read); });
    return true;
}

const std::vector<const Shape*>& shapes()
{
    static const std::vector<const Shape*> all{&flatRecord(),   &nestedOrder(),    &wideSorted(),
                                               &wideShuffled(), &arrayOfNumbers(), &arrayOfDocuments(),
                                               &deepDocument(), &longTexts(),      &largeBinary()};
    return all;
}

// Left out: freeing one block takes no time, but each of the thousands of repetitions would have to fill it first.
std::vector<const Shape*> shapesToFree()
{
    std::vector<const Shape*> shapesOfFields = shapes();
    shapesOfFields.pop_back();
    return shapesOfFields;
}

const bool registered = addAll(shapes(), addDecoding) && addAll(shapes(), addEncoding) &&
                        addAll(shapes(), addCopying) && addAll(shapesToFree(), addFreeing) &&
                        addReading(flatRecord()) && addReading(nestedOrder()) && addReading(wideShuffled());

} // namespace
