// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Documents, updates and pipelines written as nested braces.
///
/// Braces build objects: {{key, value}, ...}. Use array({...}) for an array. Other braces do not compile.

#include "dbc/value.h"
#include "object_properties.h"

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

/// A parameter that is a list of fields: {{key, value}, ...} or a std::vector<Field>.
/// @since 1.0
class Fields
{
public:
    /// Holds these fields.
    Fields(std::initializer_list<Field> fields) : list(fields) {}
    /// Holds the fields of a std::vector<Field>.
    template <typename List, typename = std::enable_if_t<std::is_same_v<detail::Plain<List>, std::vector<Field>>>>
    Fields(List&& fields) : list(std::forward<List>(fields))
    {}
    /// Rejects all other braces at compile time.
    template <int = 0, typename T = Value>
    Fields(std::initializer_list<detail::AnythingBut<Fields>>)
    {
        detail::refuseBraces<T>();
    }

    std::vector<Field> list; ///< The fields in their order.
};

/// A parameter that is a list of values: {value, ...} or a std::vector<Value>.
/// @since 1.0
class Elements
{
public:
    /// Holds these values.
    Elements(std::initializer_list<Value> values) : list(values) {}
    /// Holds the values of a std::vector<Value>.
    template <typename List, typename = std::enable_if_t<std::is_same_v<detail::Plain<List>, std::vector<Value>>>>
    Elements(List&& values) : list(std::forward<List>(values))
    {}

    std::vector<Value> list; ///< The values in their order.
};

} // namespace v1

/// Returns an object with these fields. Nested braces build objects without this function: call it only if the compiler
/// cannot deduce the type of the braces.
inline Value object(Fields fields = {})
{
    return Value::object(std::move(fields.list));
}

/// Returns an array of these elements.
inline Value array(Elements elements = {})
{
    return Value::array(std::move(elements.list));
}

/// Returns a document with these fields. If a key occurs twice, the last value is used.
///
///     document({{"name", "Lisbon"}, {"river", {{"bridges", 2}}}})
/// @throws LossError  a value of a type that ObjectProperties cannot hold, such as null
inline ObjectProperties document(const Fields& fields)
{
    ObjectProperties result;
    for (const Field& field : fields.list)
        field.value().writeTo(*result.root(), std::string(field.key()));
    return result;
}

/// Returns an update with several operators, for DataBaseClient::update() with UpdateCommandReplace:
///
///     updateDocument({{"$set", {{"state", "sent"}}}, {"$inc", {{"version", 1}}}})
inline ObjectProperties updateDocument(const Fields& operators)
{
    return document(operators);
}

/// Returns a pipeline for DataBaseClient::aggregate(). The stages keep their order, also if there are more than ten:
/// the keys have leading zeros.
///
///     pipeline({{{"$match", {{"state", "sent"}}}}, {{"$limit", 5}}})
inline ObjectProperties pipeline(Elements stages)
{
    return document({{"pipeline", array(std::move(stages))}});
}

} // namespace dbc
