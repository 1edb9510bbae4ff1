// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to read a value by its key, without a path, compared with at() of nlohmann/json? Reads every
// value of the document, or of the group at the cursor, once, in the order in which they were written. Strings are
// copied.

#include "object_properties.h"
#include "support/measure.h"
#include "support/shapes.h"

#include <nlohmann/json.hpp>

namespace {

struct Read
{
    std::size_t sum = 0;
};

const auto prepareNothing = [](auto&) {};

std::size_t valueOf(const ObjectProperties& document, const Step& step)
{
    switch (step.kind)
    {
    case Step::Kind::Int32:
        return static_cast<std::size_t>(document.valueAsInt32(step.key, 0));
    case Step::Kind::Int64:
        return static_cast<std::size_t>(document.valueAsInt64(step.key, 0));
    case Step::Kind::Double:
        return document.valueAsDouble(step.key, 0.0) > 0 ? 1 : 0;
    case Step::Kind::Bool:
        return document.valueAsBool(step.key, false) ? 1 : 0;
    default:
        return document.valueAsString(step.key, "").size();
    }
}

std::size_t valueOf(const nlohmann::json& json, const Step& step)
{
    switch (step.kind)
    {
    case Step::Kind::Int32:
        return static_cast<std::size_t>(json.at(step.key).get<int>());
    case Step::Kind::Int64:
        return static_cast<std::size_t>(json.at(step.key).get<long>());
    case Step::Kind::Double:
        return json.at(step.key).get<double>() > 0 ? 1 : 0;
    case Step::Kind::Bool:
        return json.at(step.key).get<bool>() ? 1 : 0;
    default:
        return json.at(step.key).get<std::string>().size();
    }
}

template <typename Document>
void readAll(benchmark::State& state, const Document& document, const std::vector<Step>& wanted, std::size_t expected)
{
    measure<Read>(
        state, wanted.size(), 32 * wanted.size(), prepareNothing,
        [&](Read& read) {
            for (const Step& step : wanted)
                read.sum += valueOf(document, step);
        },
        [&](const Read& read) { return read.sum == expected; });
}

std::size_t sumOf(const std::vector<Step>& steps)
{
    std::size_t sum = 0;
    for (const Step& step : steps)
    {
        if (step.kind == Step::Kind::Double)
            sum += step.number > 0 ? 1 : 0;
        else
            sum += step.kind == Step::Kind::Text ? step.text.size() : static_cast<std::size_t>(step.integer);
    }
    return sum;
}

// The values of the group with this key, or of the document for the empty key.
std::vector<Step> valuesOf(const Shape& shape, const std::string& group)
{
    std::vector<Step> values;
    int depth = 0;
    int wantedDepth = group.empty() ? 0 : -1;
    for (const Step& step : shape.steps)
    {
        const bool begins = step.kind == Step::Kind::BeginGroup || step.kind == Step::Kind::BeginArray;
        const bool ends = step.kind == Step::Kind::EndGroup || step.kind == Step::Kind::EndArray;
        depth += begins ? 1 : 0;
        if (begins && depth == 1 && step.key == group)
            wantedDepth = 1;
        if (!begins && !ends && depth == wantedDepth)
            values.push_back(step);
        depth -= ends ? 1 : 0;
        if (ends && depth < wantedDepth)
            wantedDepth = -1;
    }
    return values;
}

bool addReading(const Shape& shape, const std::string& group)
{
    add("read_by_key", shape.name, "database_client", [&shape, group](auto& state) {
        ObjectProperties document;
        build(shape.steps, document);
        document.beginGroup(group);
        const auto wanted = valuesOf(shape, group);
        readAll(state, document, wanted, sumOf(wanted));
    });
    add("read_by_key", shape.name, "nlohmann_json", [&shape, group](auto& state) {
        const auto json = nlohmann::json::from_bson(shape.bytes);
        const auto wanted = valuesOf(shape, group);
        readAll(state, group.empty() ? json : json.at(group), wanted, sumOf(wanted));
    });
    return true;
}

const bool registered =
    addReading(flatRecord(), "") && addReading(nestedOrder(), "customer") && addReading(wideShuffled(), "");

} // namespace
