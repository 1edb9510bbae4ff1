// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/value.h"

#include "collection/value_access.h"
#include "dbc/value_type.h"
#include "driver/bson_handles.h"
#include "driver/driver.h"

#include <bson/bson.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

namespace {

using Access = ValueAccess;

// libbson's writer is recursive and drops levels beyond its limit without an error. Its reader accepts 99 levels. They
// include the values and the object that fromJson() puts around the text.
constexpr std::size_t deepestWritten = 90;
constexpr std::size_t deepestRead = 96;

/// Returns the depth of the value. Stops counting above the limit.
std::size_t depthOf(const Value& root)
{
    std::vector<std::pair<const Value*, std::size_t>> open{{&root, 1}};
    std::size_t deepest = 0;
    while (!open.empty() && deepest <= deepestWritten + 1)
    {
        const auto [document, depth] = open.back();
        open.pop_back();
        deepest = std::max(deepest, depth);
        const auto add = [&open, below = depth + 1](const Value& value) {
            if (Access::isContainer(value))
                open.emplace_back(&value, below);
            else if (value.type() == Type::CodeWithScope)
                open.emplace_back(&Access::pairItem(value, 1), below);
        };
        for (const Field& field : document->fields())
            add(field.value());
        for (const Value& element : document->elements())
            add(element);
    }
    return deepest;
}

std::string jsonOf(const Value& document, JsonFormat format, std::size_t deepest)
{
    if (depthOf(document) > deepest)
        throw std::invalid_argument("Value: more than 90 levels have no JSON form");
    const std::vector<std::uint8_t> bytes = document.toBson();
    bson_t bson;
    if (!bson_init_static(&bson, bytes.data(), bytes.size()))
        throw std::length_error("Value: too large for JSON");
    std::size_t length = 0;
    BsonText text;
    switch (format)
    {
    case JsonFormat::Relaxed:
        text.reset(bson_as_relaxed_extended_json(&bson, &length));
        break;
    case JsonFormat::Canonical:
        text.reset(bson_as_canonical_extended_json(&bson, &length));
        break;
    case JsonFormat::Legacy:
        text.reset(legacyJson(&bson, &length));
        break;
    }
    if (!text)
        throw std::invalid_argument("Value: a string that is not UTF-8 has no JSON form");
    return {text.get(), length};
}

std::optional<bson_decimal128_t> decimalOf(const std::string& text)
{
    bson_decimal128_t decimal;
    const bool isNumber = text.find('\0') == std::string::npos && bson_decimal128_from_string(text.c_str(), &decimal);
    return isNumber ? std::optional<bson_decimal128_t>(decimal) : std::nullopt;
}

/// Uses strtod() as libbson does, so both stop at the same character, in any locale.
bool isDouble(const std::string& text)
{
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return !text.empty() && end == text.c_str() + text.size();
}

/// Returns false if the text begins with a day such as 2023-02-30, of which libbson makes a day of the next month.
bool hasValidDay(const std::string& text)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int end = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d%n", &year, &month, &day, &end) != 3 || end != 10)
        return true; // libbson reports other mistakes
    const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    const int longest = month == 2                                              ? (isLeap ? 29 : 28)
                        : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                                : 31;
    return day <= longest;
}

/// Detects what libbson's reader accepts by mistake: several values, too many levels, integers out of range, and
/// $numberDouble, $numberDecimal and $date of a string that is not a number or not a day.
class JsonScanner
{
public:
    explicit JsonScanner(std::string_view json) noexcept : m_json(json) {}

    void scan()
    {
        std::string open; // closing brackets of the open levels
        bool isDone = false;
        for (m_next = 0; m_next < m_json.size(); ++m_next)
        {
            const char character = m_json[m_next];
            if (std::string_view(" \t\r\n").find(character) != std::string_view::npos)
                continue;
            if (isDone)
                throw FormatError("JSON: text after the value", m_next);
            if (character == '"')
            {
                const std::size_t begin = m_next;
                skipString();
                m_string = m_json.substr(begin + 1, m_next - begin - 1);
                checkString(begin);
            }
            else if (character == '{' || character == '[')
            {
                if (open.size() == deepestRead)
                    throw FormatError("JSON: more than 96 levels", m_next);
                open += character == '{' ? '}' : ']';
            }
            else if (character == '}' || character == ']')
            {
                if (open.empty() || open.back() != character)
                    throw FormatError(std::string("JSON: \"") + character + "\" closes nothing", m_next);
                open.pop_back();
            }
            else if (character == ':')
                m_key = m_string;
            else if (character == ',')
                m_key = {};
            else
                skipWord();
            isDone = open.empty();
        }
        if (!isDone)
            throw FormatError("JSON: the text ends before the value does", m_json.size());
    }

private:
    /// @param begin  where the string begins
    void checkString(std::size_t begin)
    {
        const std::string_view key = std::exchange(m_key, std::string_view());
        const bool isSpecial = key == "$numberDouble" || key == "$numberDecimal" || key == "$date";
        if (!isSpecial || m_string.find('\\') != std::string_view::npos)
            return;
        const std::string text(m_string);
        if (key == "$date" && !hasValidDay(text))
            throw FormatError("JSON: " + text.substr(0, 10) + " is not a day", begin);
        if (key == "$numberDouble" && !isDouble(text))
            throw FormatError("JSON: \"" + text.substr(0, 40) + "\" is not a double", begin);
        if (key == "$numberDecimal" && !decimalOf(text))
            throw FormatError("JSON: \"" + text.substr(0, 40) + "\" is not a decimal number", begin);
    }

    void skipString()
    {
        for (++m_next; m_next < m_json.size() && m_json[m_next] != '"'; ++m_next)
        {
            if (m_json[m_next] == '\\')
                ++m_next;
        }
        if (m_next >= m_json.size())
            throw FormatError("JSON: the text ends before the value does", m_json.size());
    }

    /// Skips a number, or true, false and null.
    void skipWord()
    {
        const std::size_t begin = m_next;
        m_next = std::min(m_json.find_first_of(" \t\r\n,:{}[]\"", begin), m_json.size());
        const std::string_view word = m_json.substr(begin, m_next - begin);
        --m_next;
        if (word.find_first_not_of("-0123456789") != std::string_view::npos)
            return;
        std::int64_t number = 0;
        if (std::from_chars(word.data(), word.data() + word.size(), number).ec == std::errc::result_out_of_range)
            throw FormatError("JSON: the integer " + std::string(word.substr(0, 40)) + " is out of range", begin);
    }

    std::string_view m_json;
    std::size_t m_next = 0;
    std::string_view m_string; // the last one
    std::string_view m_key;    // of the next value
};

struct Parsed
{
    BsonPointer bson;
    std::string error;
};

Parsed parse(const char* json, std::size_t size)
{
    bson_error_t error{};
    Parsed parsed;
    parsed.bson.reset(
        bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json), static_cast<ssize_t>(size), &error));
    if (!parsed.bson)
        parsed.error = error.message;
    return parsed;
}

/// Finds the position of an error, because libbson reports it only for some errors. It is the end of the shortest
/// prefix of the text for which libbson reports the same error.
std::size_t positionOf(const std::string& json, const std::string& error)
{
    std::size_t good = 0;
    std::size_t bad = json.size();
    while (bad - good > 1)
    {
        const std::size_t middle = good + (bad - good) / 2;
        const Parsed parsed = parse(json.data(), middle);
        const bool isRefused = !parsed.bson && parsed.error == error;
        (isRefused ? bad : good) = middle;
    }
    return bad > 0 ? bad - 1 : 0;
}

/// Removes the position from 'Got parse error at "x", position 8: "SPECIAL_EXPECTED"', because it also counts the
/// object around the text.
std::string reasonOf(const std::string& error)
{
    const std::size_t begin = error.find(", position ");
    if (begin == std::string::npos)
        return error;
    const std::size_t end = error.find(':', begin);
    return end == std::string::npos ? error.substr(0, begin) : error.substr(0, begin) + error.substr(end);
}

} // namespace

Decimal128 Decimal128::parse(const std::string& text)
{
    const std::optional<bson_decimal128_t> decimal = decimalOf(text);
    if (!decimal)
        throw std::invalid_argument("Decimal128: not a number: " + text);
    return {decimal->high, decimal->low};
}

std::string Decimal128::text() const
{
    bson_decimal128_t decimal;
    decimal.high = high;
    decimal.low = low;
    char text[BSON_DECIMAL128_STRING];
    bson_decimal128_to_string(&decimal, text);
    return text;
}

Value Value::fromJson(std::string_view json)
{
    JsonScanner(json).scan();
    // libbson's reader accepts only objects and turns arrays into objects, so the value is wrapped in an object.
    static constexpr std::string_view before = R"({"":)";
    std::string wrapped;
    wrapped.reserve(before.size() + json.size() + 1);
    wrapped.append(before).append(json).append(1, '}');
    const Parsed parsed = parse(wrapped.data(), wrapped.size());
    if (!parsed.bson)
    {
        const std::size_t position = positionOf(wrapped, parsed.error);
        throw FormatError("JSON: " + reasonOf(parsed.error),
                          std::min(position > before.size() ? position - before.size() : 0, json.size()));
    }
    Value root = fromBson(bson_get_data(parsed.bson.get()), parsed.bson.get()->len);
    if (root.size() != 1)
        throw FormatError("JSON: not a single value", 0);
    return std::move(root.at(std::size_t{0}));
}

std::string Value::toJson(JsonFormat format) const
{
    if (isObject())
        return jsonOf(*this, format, deepestWritten);
    // libbson writes only objects.
    Value object;
    object.append("", *this);
    const std::string json = jsonOf(object, format, deepestWritten + 1);
    const std::size_t begin = json.find_first_not_of(' ', json.find(':') + 1);
    const std::size_t end = json.find_last_not_of(' ', json.rfind('}') - 1);
    return json.substr(begin, end + 1 - begin);
}

std::ostream& operator<<(std::ostream& stream, const Value& value)
{
    std::string json;
    try
    {
        json = value.toJson();
    }
    catch (const std::invalid_argument& /*error*/)
    {
        json.append(1, '<').append(nameOf(value.type())).append(1, '>');
    }
    return stream << json;
}

} // namespace v1
} // namespace dbc
