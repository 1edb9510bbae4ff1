// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// C++ types for the values of a document.

#include "object_properties.h"

#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <ratio>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace dbc {

/// Value of a Binary.
using Bytes = std::vector<unsigned char>;
/// A time with the precision of the server: milliseconds since 1970-01-01 UTC.
using Time = std::chrono::time_point<std::chrono::system_clock, std::chrono::milliseconds>;

/// An object id. A separate type, so that an Id is not confused with a String.
struct ObjectId
{
    /// 24 hexadecimal digits.
    std::string text;
    friend bool operator==(const ObjectId& left, const ObjectId& right) { return left.text == right.text; }
    friend bool operator!=(const ObjectId& left, const ObjectId& right) { return !(left == right); }
};

/// Value of a Regex.
struct RegularExpression
{
    /// The pattern.
    std::string pattern;
    /// Letters such as "i", in alphabetical order.
    std::string options;
    friend bool operator==(const RegularExpression& left, const RegularExpression& right)
    {
        return left.pattern == right.pattern && left.options == right.options;
    }
    friend bool operator!=(const RegularExpression& left, const RegularExpression& right) { return !(left == right); }
};

/// Converts a time point of the system clock to milliseconds, rounded down.
/// @throws std::out_of_range if 64 bits cannot hold the milliseconds, such as for the largest number of hours
template <typename Duration>
Time toTime(std::chrono::time_point<std::chrono::system_clock, Duration> time)
{
    using Wide = std::chrono::time_point<std::chrono::system_clock, std::chrono::duration<long double, std::milli>>;
    const Wide wide(time);
    if (!(wide >= Wide(Time::min()) && wide <= Wide(Time::max())))
        throw std::out_of_range("Time is outside the range of milliseconds");
    return std::chrono::floor<std::chrono::milliseconds>(time);
}

/// Returns the time of a number of milliseconds since 1970-01-01 UTC.
inline Time timeFromMilliseconds(long long milliseconds)
{
    return Time(std::chrono::milliseconds(milliseconds));
}

/// Returns the number of milliseconds since 1970-01-01 UTC.
inline long millisecondsOf(Time time)
{
    return static_cast<long>(time.time_since_epoch().count());
}

/// Returns the key of an element in an array of @p count elements. It has leading zeros, so that ObjectProperties,
/// which sorts by key, keeps the order of the elements. A server ignores the keys of an array and stores 0, 1, 2 and so
/// on.
inline std::string elementKey(std::size_t index, std::size_t count)
{
    const std::string key = std::to_string(index);
    const std::size_t width = std::to_string(count > 0 ? count - 1 : 0).size();
    return std::string(width > key.size() ? width - key.size() : 0, '0') + key;
}

namespace detail {

template <typename T, typename... Types>
constexpr bool isOneOf = (std::is_same_v<T, Types> || ...);

/// Integer types that are numbers: not bool, not the character types.
template <typename T>
constexpr bool isInteger = isOneOf<T, signed char, unsigned char, short, unsigned short, int, unsigned, long,
                                   unsigned long, long long, unsigned long long>;

template <typename T>
constexpr bool isArithmetic = isInteger<T> || isOneOf<T, float, double>;

} // namespace detail

/// Converts a number to another type. Returns an empty optional if that type has no equal number: 1.5 as an int, 2^53 +
/// 1 as a double, 2^40 as an int, NaN as an integer. -0.0 equals 0.
template <typename To, typename From>
std::optional<To> exactNumber(From number) noexcept
{
    static_assert(detail::isArithmetic<To> && detail::isArithmetic<From>,
                  "exactNumber converts integers, float and double");
    using Limits = std::numeric_limits<To>;
    if constexpr (std::is_same_v<To, From>)
        return number;
    else if constexpr (std::is_integral_v<To> && std::is_integral_v<From>)
    {
        const To converted = static_cast<To>(number);
        const bool isSame = static_cast<From>(converted) == number && (converted < To()) == (number < From());
        return isSame ? std::optional<To>(converted) : std::nullopt;
    }
    else if constexpr (std::is_integral_v<To>)
    {
        // Both limits are powers of two, so they are exact. The largest integer itself may have no equal double.
        const double beyond = 2.0 * static_cast<double>(static_cast<To>(1) << (Limits::digits - 1));
        const double least = std::is_signed_v<To> ? -beyond : 0.0;
        const double wide = static_cast<double>(number);
        const bool isInside = wide >= least && wide < beyond; // false for NaN
        return isInside && std::trunc(wide) == wide ? std::optional<To>(static_cast<To>(wide)) : std::nullopt;
    }
    else if constexpr (std::is_integral_v<From>)
    {
        const To converted = static_cast<To>(number);
        return exactNumber<From>(converted) == number ? std::optional<To>(converted) : std::nullopt;
    }
    else if (std::isfinite(number) && std::abs(static_cast<double>(number)) > static_cast<double>(Limits::max()))
        return std::nullopt;
    else
    {
        const To converted = static_cast<To>(number);
        return converted == number || std::isnan(number) ? std::optional<To>(converted) : std::nullopt;
    }
}

namespace detail {

template <typename Integer>
long int64From(Integer value)
{
    const std::optional<long> number = exactNumber<long>(value);
    if (!number)
        throw std::out_of_range("Number is too large for an Int64");
    return *number;
}

} // namespace detail

/// Reads values of type T from nodes and writes them to nodes. read() returns an empty optional if the node has another
/// type. T is one of:
/// - std::string, bool, Time, ObjectId, Bytes, RegularExpression
/// - an integer type, except the character types
/// - float or double
/// @since 1.0
template <typename T, typename = void>
struct ValueTraits;

template <>
struct ValueTraits<std::string>
{
    static std::optional<std::string> read(const Property& node)
    {
        return node.isString() ? std::optional<std::string>(node.textView()) : std::nullopt;
    }
    static void write(Property& node, const std::string& value) { node.setValueString(value); }
};

template <>
struct ValueTraits<bool>
{
    static std::optional<bool> read(Property& node)
    {
        return node.isBool() ? std::optional<bool>(node.currentValueAsBool(false)) : std::nullopt;
    }
    static void write(Property& node, bool value) { node.setValueBool(value); }
};

/// Numbers are read from Int32, Int64 and Double if the result is exact.
template <typename T>
struct ValueTraits<T, std::enable_if_t<detail::isArithmetic<T>>>
{
    static std::optional<T> read(Property& node)
    {
        if (node.isInt32())
            return exactNumber<T>(node.currentValueAsInt32(0));
        if (node.isInt64())
            return exactNumber<T>(node.currentValueAsInt64(0));
        if (node.isDouble())
            return exactNumber<T>(node.currentValueAsDouble(0.0));
        return std::nullopt;
    }
    /// Writes an Int32 for types whose values all fit into it, an Int64 for larger integer types, and a Double for
    /// float and double.
    /// @throws std::out_of_range if an unsigned number is too large for an Int64
    static void write(Property& node, T value)
    {
        if constexpr (std::is_floating_point_v<T>)
            node.setValueDouble(value);
        else if constexpr (std::numeric_limits<T>::digits <= std::numeric_limits<int>::digits)
            node.setValueInt32(value);
        else
            node.setValueInt64(detail::int64From(value));
    }
};

template <>
struct ValueTraits<Time>
{
    static std::optional<Time> read(Property& node)
    {
        return node.isTime() ? std::optional<Time>(timeFromMilliseconds(node.currentValueAsTime(0))) : std::nullopt;
    }
    static void write(Property& node, Time value) { node.setValueTime(millisecondsOf(value)); }
};

template <>
struct ValueTraits<ObjectId>
{
    static std::optional<ObjectId> read(const Property& node)
    {
        return node.isId() ? std::optional<ObjectId>(ObjectId{node.textView()}) : std::nullopt;
    }
    static void write(Property& node, const ObjectId& value) { node.setValueId(value.text); }
};

template <>
struct ValueTraits<Bytes>
{
    static std::optional<Bytes> read(const Property& node)
    {
        return node.isBinary() ? std::optional<Bytes>(node.bytesView()) : std::nullopt;
    }
    static void write(Property& node, const Bytes& value) { node.setValueBinary(value); }
};

template <>
struct ValueTraits<RegularExpression>
{
    static std::optional<RegularExpression> read(const Property& node)
    {
        return node.isRegex() ? std::optional<RegularExpression>({node.patternView(), node.optionsView()})
                              : std::nullopt;
    }
    static void write(Property& node, const RegularExpression& value)
    {
        node.setValueRegex(value.pattern, value.options);
    }
};

} // namespace dbc
