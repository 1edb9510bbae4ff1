#pragma once

/// @file
/// The types in which companions read and write the values of a document.

#include "object_properties.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace companion {

/// Value of a Binary.
using Bytes = std::vector<unsigned char>;
/// A time as the server keeps it: whole milliseconds since 1970-01-01 UTC.
using Time = std::chrono::time_point<std::chrono::system_clock, std::chrono::milliseconds>;

/// Text of an object id; apart from std::string, so that an Id is never taken for a String.
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
    /// The expression.
    std::string pattern;
    /// Letters such as "i", in the order of the alphabet.
    std::string options;
    friend bool operator==(const RegularExpression& left, const RegularExpression& right)
    {
        return left.pattern == right.pattern && left.options == right.options;
    }
    friend bool operator!=(const RegularExpression& left, const RegularExpression& right) { return !(left == right); }
};

/// Whole milliseconds of any time point of the system clock, rounded down.
template <typename Duration>
Time toTime(std::chrono::time_point<std::chrono::system_clock, Duration> time)
{
    return std::chrono::floor<std::chrono::milliseconds>(time);
}

/// The time so many milliseconds after 1970-01-01 UTC.
inline Time timeFromMilliseconds(long long milliseconds)
{
    return Time(std::chrono::milliseconds(milliseconds));
}

/// Milliseconds since 1970-01-01 UTC.
inline long millisecondsOf(Time time)
{
    return static_cast<long>(time.time_since_epoch().count());
}

/// How a value of type T stands in a node: read() gives nothing when the node is of another kind.
template <typename T>
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

template <>
struct ValueTraits<int>
{
    static std::optional<int> read(Property& node)
    {
        return node.isInt32() ? std::optional<int>(node.currentValueAsInt32(0)) : std::nullopt;
    }
    static void write(Property& node, int value) { node.setValueInt32(value); }
};

template <>
struct ValueTraits<long>
{
    static std::optional<long> read(Property& node)
    {
        return node.isInt64() ? std::optional<long>(node.currentValueAsInt64(0)) : std::nullopt;
    }
    static void write(Property& node, long value) { node.setValueInt64(value); }
};

template <>
struct ValueTraits<long long>
{
    static std::optional<long long> read(Property& node)
    {
        return node.isInt64() ? std::optional<long long>(node.currentValueAsInt64(0)) : std::nullopt;
    }
    static void write(Property& node, long long value) { node.setValueInt64(static_cast<long>(value)); }
};

template <>
struct ValueTraits<double>
{
    static std::optional<double> read(Property& node)
    {
        return node.isDouble() ? std::optional<double>(node.currentValueAsDouble(0.0)) : std::nullopt;
    }
    static void write(Property& node, double value) { node.setValueDouble(value); }
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

} // namespace companion
