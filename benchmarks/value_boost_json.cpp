// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How long does it take to copy, free and read a dbc::Value, compared with Boost.JSON? Boost.JSON supports neither BSON
// nor binary values.

#include "support/measure.h"
#include "support/read_top_level.h"
#include "support/shapes.h"

#include <boost/json.hpp>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

const auto prepareNothing = [](auto&) {};

boost::json::value converted(const nlohmann::json& source)
{
    if (source.is_object())
    {
        boost::json::object object;
        for (const auto& [key, value] : source.items())
            object.emplace(key, converted(value));
        return object;
    }
    if (source.is_array())
    {
        boost::json::array array;
        for (const nlohmann::json& element : source)
            array.push_back(converted(element));
        return array;
    }
    if (source.is_string())
        return boost::json::value(source.get<std::string>());
    if (source.is_boolean())
        return source.get<bool>();
    return source.is_number_float() ? boost::json::value(source.get<double>())
                                    : boost::json::value(source.get<std::int64_t>());
}

boost::json::value valueOf(const Shape& shape)
{
    return converted(nlohmann::json::from_bson(shape.bytes));
}

bool addCopying(const Shape& shape)
{
    add("value_copy", shape.name, "boost_json", [&shape](auto& state) {
        const boost::json::value value = valueOf(shape);
        measure<boost::json::value>(
            state, shape.fields, shape.bytes.size(), prepareNothing, [&](auto& copied) { copied = value; },
            [&](const auto& copied) { return copied == value; });
    });
    return true;
}

bool addFreeing(const Shape& shape)
{
    add("value_free", shape.name, "boost_json", [&shape](auto& state) {
        measure<std::optional<boost::json::value>>(
            state, shape.fields, shape.bytes.size(), [&](auto& value) { value = valueOf(shape); },
            [](auto& value) { value.reset(); }, [](const auto& value) { return !value; });
    });
    return true;
}

std::size_t numberOf(const boost::json::value& object, const Step& step)
{
    const boost::json::value& value = object.as_object().at(step.key);
    switch (step.kind)
    {
    case Step::Kind::Int32:
    case Step::Kind::Int64:
        return static_cast<std::size_t>(value.as_int64());
    case Step::Kind::Double:
        return value.as_double() > 0 ? 1 : 0;
    case Step::Kind::Bool:
        return value.as_bool() ? 1 : 0;
    default:
        return std::string(value.as_string()).size();
    }
}

bool addReading(const Shape& shape)
{
    add("value_read_by_key", shape.name, "boost_json",
        [&shape](auto& state) { readTopLevel(state, shape, valueOf(shape), numberOf); });
    return true;
}

const std::vector<const Shape*>& shapes()
{
    static const std::vector<const Shape*> all{&flatRecord(),     &nestedOrder(),      &wideSorted(),   &wideShuffled(),
                                               &arrayOfNumbers(), &arrayOfDocuments(), &deepDocument(), &longTexts()};
    return all;
}

const bool registered = addAll(shapes(), addCopying) && addAll(shapes(), addFreeing) && addReading(flatRecord()) &&
                        addReading(nestedOrder()) && addReading(wideShuffled());

} // namespace
