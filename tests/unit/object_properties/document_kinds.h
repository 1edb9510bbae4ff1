// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "object_properties.h"
#include "row_name.h"

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// One of the eleven names under which a document takes and gives values. The sample and the default are two different
/// values.
struct DocumentKind
{
    std::string name;
    PropertyType type;
    std::function<void(ObjectProperties&)> set;
    std::function<void(ObjectProperties&, const std::string&)> setAt;
    std::function<bool(const ObjectProperties&)> hasSample;
    std::function<bool(const ObjectProperties&)> givesDefault;
    std::function<bool(const ObjectProperties&, const std::string&)> hasSampleAt;
    std::function<bool(const ObjectProperties&, const std::string&)> givesDefaultAt;
};

inline std::ostream& operator<<(std::ostream& stream, const DocumentKind& kind)
{
    return stream << kind.name;
}

/// The parameter types are part of the table: a pointer to a member names them exactly.
template <typename Value, typename CursorValue = Value>
DocumentKind documentKind(const char* name, PropertyType type, void (ObjectProperties::*set)(const CursorValue&),
                          void (ObjectProperties::*setAt)(const std::string&, const Value&),
                          Value (ObjectProperties::*get)(const Value&) const,
                          Value (ObjectProperties::*getAt)(const std::string&, const Value&) const, Value sample,
                          Value other)
{
    return {name,
            type,
            [=](ObjectProperties& document) { (document.*set)(static_cast<CursorValue>(sample)); },
            [=](ObjectProperties& document, const std::string& key) { (document.*setAt)(key, sample); },
            [=](const ObjectProperties& document) { return (document.*get)(other) == sample; },
            [=](const ObjectProperties& document) { return (document.*get)(other) == other; },
            [=](const ObjectProperties& document, const std::string& key) {
                return (document.*getAt)(key, other) == sample;
            },
            [=](const ObjectProperties& document, const std::string& key) {
                return (document.*getAt)(key, other) == other;
            }};
}

inline DocumentKind documentRegex()
{
    using Document = ObjectProperties;
    const std::pair<std::string, std::string> sample{"^a pattern of some length.*$", "i"};
    const std::pair<std::string, std::string> other{"p", "o"};
    return {
        "Regex",
        Regex,
        [=](Document& document) { document.setValueRegex(sample.first, sample.second); },
        [=](Document& document, const std::string& key) { document.setValueRegex(key, sample.first, sample.second); },
        [=](const Document& document) { return document.currentValueAsRegex("p", "o") == sample; },
        [=](const Document& document) { return document.currentValueAsRegex("p", "o") == other; },
        [=](const Document& document, const std::string& key) {
            return document.valueAsRegex(key, "p", "o") == sample;
        },
        [=](const Document& document, const std::string& key) {
            return document.valueAsRegex(key, "p", "o") == other;
        }};
}

/// All eleven names, in the order of the class's virtual operations.
inline std::vector<DocumentKind> documentKinds()
{
    using D = ObjectProperties;
    using Bytes = std::vector<unsigned char>;
    using Text = std::string;
    return {
        documentKind<Text>("String", String, &D::setValueString, &D::setValueString, &D::currentValueAsString,
                           &D::valueAsString, "a text longer than a short string", "other"),
        documentKind<bool>("Bool", Bool, &D::setValueBool, &D::setValueBool, &D::currentValueAsBool, &D::valueAsBool,
                           true, false),
        documentKind<int>("Int32", Int32, &D::setValueInt32, &D::setValueInt32, &D::currentValueAsInt32,
                          &D::valueAsInt32, -5, 7),
        documentKind<long>("Int64", Int64, &D::setValueInt64, &D::setValueInt64, &D::currentValueAsInt64,
                           &D::valueAsInt64, -5000000000L, 7),
        documentKind<int>("Int", Int32, &D::setValueInt, &D::setValueInt, &D::currentValueAsInt, &D::valueAsInt, -6, 8),
        documentKind<long long>("LongLong", Int64, &D::setValueLongLong, &D::setValueLongLong,
                                &D::currentValueAsLongLong, &D::valueAsLongLong, -6000000000LL, 8),
        documentKind<double>("Double", Double, &D::setValueDouble, &D::setValueDouble, &D::currentValueAsDouble,
                             &D::valueAsDouble, -1.5, 7.25),
        documentKind<long long, long>("Time", Time, &D::setValueTime, &D::setValueTime, &D::currentValueAsTime,
                                      &D::valueAsTime, 1500000000000LL, 7),
        documentKind<Text>("Id", Id, &D::setValueId, &D::setValueId, &D::currentValueAsId, &D::valueAsId,
                           "507f1f77bcf86cd799439011", "other"),
        documentKind<Bytes>("Binary", Binary, &D::setValueBinary, &D::setValueBinary, &D::currentValueAsBinary,
                            &D::valueAsBinary, Bytes{0, 1, 255}, Bytes{7}),
        documentRegex(),
    };
}
