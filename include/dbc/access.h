#pragma once

/// @file
/// Reading a document without changing it: values as std::optional, children as ranges, arrays in the order of their
/// element numbers.

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

/// The node of a key, or an empty pointer. Resolved as by the document itself (from the root with a leading "/",
/// otherwise from the cursor), but nothing is added and the cursor does not move. The empty key is the current node.
inline std::shared_ptr<Property> findNode(const ObjectProperties& document, const std::string& path)
{
    if (path.empty())
        return document.current();
    const auto anchor = path[0] == '/' ? document.root() : document.current();
    return path.find_first_not_of('/') == std::string::npos ? anchor : anchor->propertyByKey(path);
}

/// The value of a key if it exists and is of this type. A number of another type is converted if the result is exact:
/// an Int64 of 7 is also an int and a double; 1.5 and 2^40 are no int, and 2^53 + 1 is no double.
/// T is a type of ValueTraits.
template <typename T>
std::optional<T> get(const ObjectProperties& document, const std::string& path)
{
    const auto node = findNode(document, path);
    return node ? ValueTraits<T>::read(*node) : std::nullopt;
}

/// The value of a key, or @p fallback where get() returns nothing. The type of the fallback is the type that is read:
/// use 0L or 0.0 for numbers that do not fit into an int.
template <typename T>
T getOr(const ObjectProperties& document, const std::string& path, T fallback)
{
    auto value = get<T>(document, path);
    return value ? *std::move(value) : std::move(fallback);
}

/// A text literal as the fallback reads a text.
inline std::string getOr(const ObjectProperties& document, const std::string& path, const char* fallback)
{
    return getOr<std::string>(document, path, fallback);
}

/// Sets a time at a key.
inline void setTime(ObjectProperties& document, const std::string& path, Time value)
{
    document.setValueTime(path, static_cast<long long>(millisecondsOf(value)));
}

/// The children of a node in key order, as pairs of key and node. One walk, whatever their number. The node is kept
/// alive; adding and removing children follows the rules of std::multimap.
class Children
{
public:
    /// The children of @p node; of none for an empty pointer.
    explicit Children(std::shared_ptr<Property> node) : m_node(std::move(node)) {}

    /// The first pair of key and node.
    Property::Children::const_iterator begin() const { return m_node ? m_node->begin() : none().begin(); }
    /// The place behind the last pair.
    Property::Children::const_iterator end() const { return m_node ? m_node->end() : none().end(); }
    /// Number of children.
    std::size_t size() const { return m_node ? m_node->childCount() : 0; }
    /// Whether there is no child.
    bool empty() const { return size() == 0; }

private:
    static const Property::Children& none()
    {
        static const Property::Children children;
        return children;
    }

    std::shared_ptr<Property> m_node;
};

/// The children of the current node.
inline Children children(const ObjectProperties& document)
{
    return Children(document.current());
}

/// The children of the node of a key; none when there is no such node.
inline Children children(const ObjectProperties& document, const std::string& path)
{
    return Children(findNode(document, path));
}

namespace detail {

inline bool isNumber(const std::string& key)
{
    return !key.empty() && key.find_first_not_of("0123456789") == std::string::npos;
}

/// Value order of two texts of digits of any length.
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

/// The elements of an array in the order of their element numbers, where the node itself has "10" before "2". Elements
/// whose keys are not all numbers keep the order of the node, which for equal keys is that in which they were added.
/// Empty when the pointer is empty or the node is no array.
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
        std::stable_sort(result.begin(), result.end(), [](const auto& left, const auto& right) {
            return detail::isSmallerNumber(left->keyView(), right->keyView());
        });
    return result;
}

/// The elements of the array of a key, as above. Empty when the key names no array.
inline std::vector<std::shared_ptr<Property>> elements(const ObjectProperties& document, const std::string& path)
{
    return elements(findNode(document, path));
}

/// The elements of the array of a key as values, in the order of elements(); elements that get()
/// would not return are left out.
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
