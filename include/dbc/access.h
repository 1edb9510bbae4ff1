// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Functions that read a document without changing it: values as std::optional, children as ranges, and arrays in the
/// order of their element numbers.

#include "dbc/values.h"
#include "object_properties.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace dbc {

/// Returns the node at @p path, or an empty pointer. A path with a leading "/" starts at the root, any other path at
/// the cursor. The empty path is the current node. Unlike the getters of the document, this function does not add a
/// missing key. The cursor does not move.
inline std::shared_ptr<Property> findNode(const ObjectProperties& document, const std::string& path)
{
    if (path.empty())
        return document.current();
    const auto anchor = path[0] == '/' ? document.root() : document.current();
    return path.find_first_not_of('/') == std::string::npos ? anchor : anchor->propertyByKey(path);
}

/// Returns the value at @p path, or an empty optional if it does not exist or has another type. A number of another
/// type is converted if the result is exact: an Int64 of 7 is also an int and a double, but 1.5 and 2^40 are not an
/// int, and 2^53 + 1 is not a double.
/// @tparam T  a type with ValueTraits
template <typename T>
std::optional<T> get(const ObjectProperties& document, const std::string& path)
{
    const auto node = findNode(document, path);
    return node ? ValueTraits<T>::read(*node) : std::nullopt;
}

/// Returns the value at @p path, or @p fallback if get() returns an empty optional. The type of the fallback is the
/// type that is read: use 0L or 0.0 for numbers that do not fit into an int.
template <typename T>
T getOr(const ObjectProperties& document, const std::string& path, T fallback)
{
    auto value = get<T>(document, path);
    return value ? *std::move(value) : std::move(fallback);
}

/// Overload for string literals: reads a std::string.
inline std::string getOr(const ObjectProperties& document, const std::string& path, const char* fallback)
{
    return getOr<std::string>(document, path, fallback);
}

/// Sets a time at @p path.
inline void setTime(ObjectProperties& document, const std::string& path, Time value)
{
    document.setValueTime(path, static_cast<long long>(millisecondsOf(value)));
}

/// A range over the children of a node in key order, as pairs of key and node. Shares ownership of the node. Iterators
/// stay valid under the rules of std::multimap.
/// @since 1.0
class Children
{
public:
    /// The children of @p node; no children for an empty pointer.
    explicit Children(std::shared_ptr<Property> node) : m_node(std::move(node)) {}

    /// The first pair of key and node.
    Property::Children::const_iterator begin() const { return m_node ? m_node->begin() : none().begin(); }
    /// Past the last pair.
    Property::Children::const_iterator end() const { return m_node ? m_node->end() : none().end(); }
    /// Number of children.
    std::size_t size() const { return m_node ? m_node->childCount() : 0; }
    /// True if there are no children.
    bool empty() const { return size() == 0; }

private:
    static const Property::Children& none()
    {
        static const Property::Children children;
        return children;
    }

    std::shared_ptr<Property> m_node;
};

/// Returns the children of the current node.
inline Children children(const ObjectProperties& document)
{
    return Children(document.current());
}

/// Returns the children of the node at @p path; no children if there is no such node.
inline Children children(const ObjectProperties& document, const std::string& path)
{
    return Children(findNode(document, path));
}

namespace detail {

inline bool isNumber(const std::string& key)
{
    return !key.empty() && key.find_first_not_of("0123456789") == std::string::npos;
}

/// Compares two strings of digits by value. They may be longer than any integer type.
inline bool isSmallerNumber(const std::string& left, const std::string& right)
{
    const std::size_t leftBegin = std::min(left.find_first_not_of('0'), left.size());
    const std::size_t rightBegin = std::min(right.find_first_not_of('0'), right.size());
    const std::size_t leftDigits = left.size() - leftBegin;
    const std::size_t rightDigits = right.size() - rightBegin;
    if (leftDigits != rightDigits)
        return leftDigits < rightDigits;
    return left.compare(leftBegin, leftDigits, right, rightBegin, rightDigits) < 0;
}

} // namespace detail

/// Returns the elements of an array in the order of their element numbers. The children of the node are in the order of
/// their keys as strings, so "10" is before "2". If a key is not a number, the elements keep that order. Equal keys are
/// in the order in which they were added. Empty if the pointer is empty or the node is not an array. Takes n log n time
/// for n elements.
inline std::vector<std::shared_ptr<Property>> elements(const std::shared_ptr<Property>& array)
{
    std::vector<std::shared_ptr<Property>> result;
    if (!array || !array->isArray())
        return result;
    result.reserve(array->childCount());
    bool numbered = true;
    for (const auto& [key, element] : Children(array))
    {
        numbered = numbered && detail::isNumber(key);
        result.push_back(element);
    }
    if (numbered)
    {
        std::stable_sort(result.begin(), result.end(), [](const auto& left, const auto& right) {
            return detail::isSmallerNumber(left->keyView(), right->keyView());
        });
    }
    return result;
}

/// Returns the elements of the array at @p path, as the overload above does. Empty if there is no array.
inline std::vector<std::shared_ptr<Property>> elements(const ObjectProperties& document, const std::string& path)
{
    return elements(findNode(document, path));
}

/// Returns the values of elements(). Leaves out elements of other types, as get() does.
template <typename T>
std::vector<T> elementsAs(const ObjectProperties& document, const std::string& path)
{
    std::vector<T> result;
    for (const auto& element : elements(document, path))
    {
        if (auto value = ValueTraits<T>::read(*element))
            result.push_back(*std::move(value));
    }
    return result;
}

} // namespace dbc
