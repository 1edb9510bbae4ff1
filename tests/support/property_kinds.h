// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "property.h"
#include "row_name.h"

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// A type that has a value, with its operations. The sample and the default are two different values of the type.
struct ValueKind
{
    std::string name;
    PropertyType type;
    bool (Property::*is)() const;
    std::function<void(Property&)> set;
    std::function<void(Property&, const std::string&)> setAt;
    std::function<bool(Property&)> hasSample;
    std::function<bool(Property&)> givesDefault;
    std::function<bool(Property&, const std::string&)> hasSampleAt;
    std::function<bool(Property&, const std::string&)> givesDefaultAt;
};

inline std::ostream& operator<<(std::ostream& stream, const ValueKind& kind)
{
    return stream << kind.name;
}

template <typename Value>
ValueKind valueKind(const char* name, PropertyType type, bool (Property::*is)() const,
                    void (Property::*set)(const Value&), void (Property::*setAt)(const std::string&, const Value&),
                    Value (Property::*get)(const Value&), Value (Property::*getAt)(const std::string&, const Value&),
                    const Value& sample, const Value& other)
{
    return {name,
            type,
            is,
            [=](Property& node) { (node.*set)(sample); },
            [=](Property& node, const std::string& path) { (node.*setAt)(path, sample); },
            [=](Property& node) { return (node.*get)(other) == sample; },
            [=](Property& node) { return (node.*get)(other) == other; },
            [=](Property& node, const std::string& path) { return (node.*getAt)(path, other) == sample; },
            [=](Property& node, const std::string& path) { return (node.*getAt)(path, other) == other; }};
}

inline ValueKind binaryKind()
{
    using Bytes = std::vector<unsigned char>;
    const Bytes sample{0, 1, 255};
    const Bytes other{7};
    return {"Binary",
            Binary,
            &Property::isBinary,
            [=](Property& node) { node.setValueBinary(sample); },
            [=](Property& node, const std::string& path) { node.setValueBinary(path, sample); },
            [=](Property& node) { return node.currentValueAsBinary(other) == sample; },
            [=](Property& node) { return node.currentValueAsBinary(other) == other; },
            [=](Property& node, const std::string& path) { return node.valueAsBinary(path, other) == sample; },
            [=](Property& node, const std::string& path) { return node.valueAsBinary(path, other) == other; }};
}

inline ValueKind regexKind()
{
    const std::pair<std::string, std::string> sample{"^a pattern of some length.*$", "i"};
    const std::pair<std::string, std::string> other{"p", "o"};
    return {"Regex",
            Regex,
            &Property::isRegex,
            [=](Property& node) { node.setValueRegex(sample.first, sample.second); },
            [=](Property& node, const std::string& path) { node.setValueRegex(path, sample.first, sample.second); },
            [=](Property& node) { return node.currentValueAsRegex("p", "o") == sample; },
            [=](Property& node) { return node.currentValueAsRegex("p", "o") == other; },
            [=](Property& node, const std::string& path) { return node.valueAsRegex(path, "p", "o") == sample; },
            [=](Property& node, const std::string& path) { return node.valueAsRegex(path, "p", "o") == other; }};
}

/// Returns every type that has a value, in the order of the numbers.
inline std::vector<ValueKind> valueKinds()
{
    using P = Property;
    const std::string text = "a text longer than a short string";
    const std::string id = "507f1f77bcf86cd799439011";
    return {
        valueKind<std::string>("String", String, &P::isString, &P::setValueString, &P::setValueString,
                               &P::currentValueAsString, &P::valueAsString, text, "other"),
        valueKind<bool>("Bool", Bool, &P::isBool, &P::setValueBool, &P::setValueBool, &P::currentValueAsBool,
                        &P::valueAsBool, true, false),
        valueKind<int>("Int32", Int32, &P::isInt32, &P::setValueInt32, &P::setValueInt32, &P::currentValueAsInt32,
                       &P::valueAsInt32, -5, 7),
        valueKind<long>("Int64", Int64, &P::isInt64, &P::setValueInt64, &P::setValueInt64, &P::currentValueAsInt64,
                        &P::valueAsInt64, -5000000000L, 7),
        valueKind<double>("Double", Double, &P::isDouble, &P::setValueDouble, &P::setValueDouble,
                          &P::currentValueAsDouble, &P::valueAsDouble, -1.5, 7.25),
        valueKind<long>("Time", Time, &P::isTime, &P::setValueTime, &P::setValueTime, &P::currentValueAsTime,
                        &P::valueAsTime, 1500000000000L, 7),
        valueKind<std::string>("Id", Id, &P::isId, &P::setValueId, &P::setValueId, &P::currentValueAsId, &P::valueAsId,
                               id, "other"),
        binaryKind(),
        regexKind(),
    };
}
