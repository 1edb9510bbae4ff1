#pragma once

/// @file
/// Documents, updates and pipelines written as nested braces.
///
/// Braces build objects: {{key, value}, ...}. An array is written array({...}). Any other braces do not compile.

#include "dbc/value.h"
#include "object_properties.h"

#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

/// A list of fields as a parameter: {{key, value}, ...} or a std::vector<Field>.
class Fields
{
public:
    /// These fields.
    Fields(std::initializer_list<Field> fields) : list(fields) {}
    /// The fields of a std::vector<Field>.
    template <typename List, typename = std::enable_if_t<std::is_same_v<detail::Plain<List>, std::vector<Field>>>>
    Fields(List&& fields) : list(std::forward<List>(fields))
    {}
    /// Any other braces do not compile.
    template <int = 0, typename T = Value>
    Fields(std::initializer_list<detail::AnythingBut<Fields>>)
    {
        detail::refuseBraces<T>();
    }

    std::vector<Field> list; ///< The fields in their order.
};

/// A list of values as a parameter: {value, ...} or a std::vector<Value>.
class Elements
{
public:
    /// These values.
    Elements(std::initializer_list<Value> values) : list(values) {}
    /// The values of a std::vector<Value>.
    template <typename List, typename = std::enable_if_t<std::is_same_v<detail::Plain<List>, std::vector<Value>>>>
    Elements(List&& values) : list(std::forward<List>(values))
    {}

    std::vector<Value> list; ///< The values in their order.
};

} // namespace v1

/// An object with these fields. Nested braces are the same: use it where the type of braces is unknown.
inline Value object(Fields fields = {})
{
    return Value::object(std::move(fields.list));
}

/// An array of these elements.
inline Value array(Elements elements = {})
{
    return Value::array(std::move(elements.list));
}

/// A document of these fields. The last value of a key wins.
///
///     document({{"name", "Lisbon"}, {"river", {{"bridges", 2}}}})
/// @throws LossError  a value that ObjectProperties cannot hold, such as null
inline ObjectProperties document(const Fields& fields)
{
    ObjectProperties result;
    for (const Field& field : fields.list)
        field.value().writeTo(*result.root(), std::string(field.key()));
    return result;
}

/// An update of several operators at once, for DataBaseClient::update with UpdateCommandReplace:
///
///     updateDocument({{"$set", {{"state", "sent"}}}, {"$inc", {{"version", 1}}}})
inline ObjectProperties updateDocument(const Fields& operators)
{
    return document(operators);
}

/// A pipeline for DataBaseClient::aggregate. The stages keep their order, also when there are more than ten.
///
///     pipeline({{{"$match", {{"state", "sent"}}}}, {{"$limit", 5}}})
inline ObjectProperties pipeline(Elements stages)
{
    return document({{"pipeline", array(std::move(stages))}});
}

} // namespace dbc
