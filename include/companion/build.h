#pragma once

/// @file
/// Documents, updates and pipelines written as nested braces.

#include "companion/values.h"
#include "object_properties.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace companion {

class Value;

/// A field: its key, taken literally ("/" and the empty key included), and its value.
using Field = std::pair<std::string, Value>;

/// A value under construction: a scalar, an object or an array.
///
///     object({{"name", "Ada"}, {"born", -4858617600000LL}, {"tags", array({"first", 1})}})
class Value
{
public:
    /// The value of a node of kind Undefined.
    struct Undefined
    {};

    /// @name From a value
    /// @{

    /// A value of the kind that the type of the argument stands for; without an argument Undefined.
    Value() : m_value(Undefined()) {}
    Value(const char* text) : m_value(std::string(text)) {}
    Value(std::string text) : m_value(std::move(text)) {}
    Value(bool value) : m_value(value) {}
    Value(int value) : m_value(value) {}
    Value(long value) : m_value(value) {}
    Value(long long value) : m_value(static_cast<long>(value)) {}
    Value(double value) : m_value(value) {}
    Value(Time value) : m_value(value) {}
    Value(ObjectId value) : m_value(std::move(value)) {}
    Value(Bytes value) : m_value(std::move(value)) {}
    Value(RegularExpression value) : m_value(std::move(value)) {}
    /// Any other pointer would become a truth value in silence.
    template <typename T>
    Value(const T*) = delete;
    /// @}

    /// A group with these members.
    static Value object(std::vector<Field> fields);
    /// An array of these elements.
    static Value array(std::vector<Value> elements);

    /// Sets this value as the child of @p parent with this key. It takes the place of an older one, except in an array,
    /// where it is added.
    void writeTo(Property& parent, const std::string& key) const;

private:
    struct Object
    {
        std::vector<Field> fields;
    };
    struct Array
    {
        std::vector<Value> elements;
    };

    std::variant<Undefined, std::string, bool, int, long, double, Time, ObjectId, Bytes, RegularExpression, Object,
                 Array>
        m_value;
};

/// The key of an element in an array of @p count elements: with leading zeros, so that byte order is number order also
/// for more than ten elements. A server ignores the keys of an array, so it stores 0, 1, 2.
inline std::string elementKey(std::size_t index, std::size_t count)
{
    const std::string key = std::to_string(index);
    const std::size_t width = std::to_string(count > 0 ? count - 1 : 0).size();
    return std::string(width - key.size(), '0') + key;
}

/// A group with these members.
inline Value object(std::vector<Field> fields = {})
{
    return Value::object(std::move(fields));
}

/// An array of these elements.
inline Value array(std::vector<Value> elements = {})
{
    return Value::array(std::move(elements));
}

/// A document of these fields.
inline ObjectProperties document(const std::vector<Field>& fields)
{
    ObjectProperties result;
    for (const auto& [key, value] : fields)
        value.writeTo(*result.root(), key);
    return result;
}

/// An update of several operators at once, for DataBaseClient::update with UpdateCommandReplace:
///
///     update({{"$set", object({{"state", "sent"}})}, {"$inc", object({{"version", 1}})}})
inline ObjectProperties update(const std::vector<Field>& operators)
{
    return document(operators);
}

/// A pipeline for DataBaseClient::aggregate. The stages keep their order, also when there are more than ten.
inline ObjectProperties pipeline(std::vector<Value> stages)
{
    return document({{"pipeline", array(std::move(stages))}});
}

inline Value Value::object(std::vector<Field> fields)
{
    Value value;
    value.m_value = Object{std::move(fields)};
    return value;
}

inline Value Value::array(std::vector<Value> elements)
{
    Value value;
    value.m_value = Array{std::move(elements)};
    return value;
}

inline void Value::writeTo(Property& parent, const std::string& key) const
{
    if (!parent.isArray())
        parent.removeAll(key);
    if (const auto* members = std::get_if<Object>(&m_value))
    {
        const auto node = parent.createSingleGroup(key);
        for (const auto& [name, value] : members->fields)
            value.writeTo(*node, name);
        return;
    }
    if (const auto* list = std::get_if<Array>(&m_value))
    {
        const auto node = parent.createSingleArray(key);
        const std::size_t count = list->elements.size();
        for (std::size_t index = 0; index < count; ++index)
            list->elements[index].writeTo(*node, elementKey(index, count));
        return;
    }
    const auto node = parent.createSingleProperty(key);
    std::visit(
        [&node](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (!std::is_same_v<T, Undefined> && !std::is_same_v<T, Object> && !std::is_same_v<T, Array>)
                ValueTraits<T>::write(*node, value);
        },
        m_value);
}

} // namespace companion
