// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/value.h"

#include "collection/value_access.h"
#include "dbc/value_type.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

namespace {

using Access = ValueAccess;

/// Returns the position of a type in the server's order. Types with the same position are compared by value.
int rankOf(Type type) noexcept
{
    switch (type)
    {
    case Type::MinKey:
        return 0;
    case Type::Undefined:
        return 1;
    case Type::Null:
        return 2;
    case Type::Int32:
    case Type::Int64:
    case Type::Double:
    case Type::Decimal128:
        return 3;
    case Type::String:
    case Type::Symbol:
        return 4;
    case Type::Object:
        return 5;
    case Type::Array:
        return 6;
    case Type::Binary:
        return 7;
    case Type::ObjectId:
        return 8;
    case Type::Bool:
        return 9;
    case Type::Time:
        return 10;
    case Type::Timestamp:
        return 11;
    case Type::RegularExpression:
        return 12;
    case Type::DbPointer:
        return 13;
    case Type::Code:
        return 14;
    case Type::CodeWithScope:
        return 15;
    case Type::MaxKey:
        return 16;
    }
    return 17;
}

template <typename T>
int order(const T& left, const T& right)
{
    return left < right ? -1 : right < left ? 1 : 0;
}

int orderTexts(std::string_view left, std::string_view right) noexcept { return order(left.compare(right), 0); }

/// Compares as the server does: NaN is less than all other numbers.
int orderDoubles(double left, double right) noexcept
{
    if (std::isnan(left) || std::isnan(right))
        return order(!std::isnan(left), !std::isnan(right));
    return order(left, right);
}

int orderIntegerAndDouble(std::int64_t integer, double real) noexcept
{
    constexpr double two63 = 9223372036854775808.0;
    if (std::isnan(real) || real < -two63)
        return 1;
    if (real >= two63)
        return -1;
    const double whole = std::trunc(real);
    const int byWhole = order(integer, static_cast<std::int64_t>(whole));
    return byWhole != 0 ? byWhole : order(whole, real);
}

/// A number of any type as decimal digits: 0.<digits> * 10^exponent.
struct Digits
{
    bool isNan = false;
    bool isInfinite = false;
    bool isNegative = false;
    long exponent = 0;
    std::string digits; // without leading and trailing zeros; empty for 0

    /// Parses the output of Decimal128::text() and of printf.
    explicit Digits(const std::string& text)
    {
        isNegative = text[0] == '-';
        isNan = text.find_first_of("Nn") == 0 || text.find("nan") != std::string::npos;
        isInfinite = !isNan && text.find_first_of("Ii") != std::string::npos;
        if (isNan || isInfinite)
            return;
        const std::size_t exponentAt = std::min(text.find_first_of("Ee"), text.size());
        if (exponentAt < text.size())
            exponent = std::strtol(text.c_str() + exponentAt + 1, nullptr, 10);
        const std::string mantissa = text.substr(isNegative ? 1 : 0, exponentAt - (isNegative ? 1 : 0));
        const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
        exponent += static_cast<long>(point);
        for (const char character : mantissa)
        {
            if (character != '.')
                digits += character;
        }
        const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
        digits.erase(0, zeros);
        exponent -= static_cast<long>(zeros);
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.empty())
            isNegative = false; // -0 equals 0
    }
};

Digits digitsOf(const Value& value)
{
    if (const auto decimal = value.get<Decimal128>())
        return Digits(decimal->text());
    if (const auto integer = value.get<std::int64_t>())
        return Digits(std::to_string(*integer));
    // A double has at most 767 significant decimal digits.
    char text[800];
    std::snprintf(text, sizeof(text), "%.766e", Access::number<double>(value));
    return Digits(text);
}

int orderDigits(const Digits& left, const Digits& right)
{
    if (left.isNan || right.isNan)
        return order(!left.isNan, !right.isNan);
    if (left.isNegative != right.isNegative)
        return left.isNegative ? -1 : 1;
    const int sign = left.isNegative ? -1 : 1;
    if (left.isInfinite || right.isInfinite)
        return sign * order(left.isInfinite, right.isInfinite);
    if (left.digits.empty() || right.digits.empty())
        return sign * order(!left.digits.empty(), !right.digits.empty());
    if (left.exponent != right.exponent)
        return sign * order(left.exponent, right.exponent);
    return sign * orderTexts(left.digits, right.digits);
}

int orderNumbers(const Value& left, const Value& right)
{
    if (left.type() == Type::Decimal128 || right.type() == Type::Decimal128)
        return orderDigits(digitsOf(left), digitsOf(right));
    const bool isLeftReal = left.type() == Type::Double;
    const bool isRightReal = right.type() == Type::Double;
    if (isLeftReal && isRightReal)
        return orderDoubles(Access::number<double>(left), Access::number<double>(right));
    if (isLeftReal)
        return -orderIntegerAndDouble(*right.get<std::int64_t>(), Access::number<double>(left));
    if (isRightReal)
        return orderIntegerAndDouble(*left.get<std::int64_t>(), Access::number<double>(right));
    return order(*left.get<std::int64_t>(), *right.get<std::int64_t>());
}

int orderBytes(const Value& left, const Value& right)
{
    // Leaves out the repeated length of subtype 2.
    const auto content = [](const Value& value) {
        std::string_view bytes = Access::bytes(value);
        bytes.remove_prefix(Access::subtype(value) == 2 ? sizeof(std::uint32_t) : 0);
        return bytes;
    };
    if (const int bySize = order(content(left).size(), content(right).size()))
        return bySize;
    if (const int bySubtype = order(Access::subtype(left), Access::subtype(right)))
        return bySubtype;
    return orderTexts(content(left), content(right));
}

std::string_view objectIdOf(const Value& value) noexcept
{
    return {reinterpret_cast<const char*>(Access::objectId(value)), Access::objectIdSize};
}

int orderPairs(const Value& left, const Value& right)
{
    const int byFirst = orderTexts(Access::text(Access::pairItem(left, 0)), Access::text(Access::pairItem(right, 0)));
    if (byFirst != 0 || left.type() == Type::CodeWithScope)
        return byFirst;
    const Value& first = Access::pairItem(left, 1);
    const Value& second = Access::pairItem(right, 1);
    return first.type() == Type::ObjectId ? orderTexts(objectIdOf(first), objectIdOf(second))
                                          : orderTexts(Access::text(first), Access::text(second));
}

/// Compares two values of types with the same position, without their nested documents.
int orderContents(const Value& left, const Value& right)
{
    switch (left.type())
    {
    case Type::Int32:
    case Type::Int64:
    case Type::Double:
    case Type::Decimal128:
        return orderNumbers(left, right);
    case Type::String:
    case Type::Symbol:
    case Type::Code:
        return orderTexts(Access::text(left), Access::text(right));
    case Type::Binary:
        return orderBytes(left, right);
    case Type::ObjectId:
        return orderTexts(objectIdOf(left), objectIdOf(right));
    case Type::Bool:
        return order(*left.get<bool>(), *right.get<bool>());
    case Type::Time:
        return order(Access::number<std::int64_t>(left), Access::number<std::int64_t>(right));
    case Type::Timestamp: {
        const auto first = *left.get<Timestamp>();
        const auto second = *right.get<Timestamp>();
        return order(std::pair(first.seconds, first.increment), std::pair(second.seconds, second.increment));
    }
    case Type::RegularExpression:
    case Type::DbPointer:
    case Type::CodeWithScope:
        return orderPairs(left, right);
    case Type::Object:
    case Type::Array:
    case Type::MinKey:
    case Type::Undefined:
    case Type::Null:
    case Type::MaxKey:
        break;
    }
    return 0;
}

/// Two documents or scopes that are being compared.
struct Level
{
    Range<const Field> leftFields;
    Range<const Field> rightFields;
    Range<const Value> leftElements;
    Range<const Value> rightElements;
    std::size_t next = 0;
};

Level levelOf(const Value& left, const Value& right) noexcept
{
    return {left.fields(), right.fields(), left.elements(), right.elements()};
}

const Value& documentOf(const Value& value) noexcept
{
    return value.type() == Type::CodeWithScope ? Access::pairItem(value, 1) : value;
}

} // namespace

int Value::compare(const Value& other) const
{
    std::vector<Level> open;
    const auto compareOne = [&open](const Value& left, const Value& right) {
        if (const int byType = order(rankOf(left.type()), rankOf(right.type())))
            return byType;
        if (const int byContents = orderContents(left, right))
            return byContents;
        const Value& document = documentOf(left);
        if (Access::isContainer(document))
            open.push_back(levelOf(document, documentOf(right)));
        return 0;
    };
    if (const int result = compareOne(*this, other))
        return result;
    while (!open.empty())
    {
        Level& level = open.back();
        const std::size_t index = level.next++;
        const bool isLeftDone = index == level.leftFields.size() + level.leftElements.size();
        const bool isRightDone = index == level.rightFields.size() + level.rightElements.size();
        if (isLeftDone && isRightDone)
        {
            open.pop_back();
            continue;
        }
        if (isLeftDone || isRightDone)
            return isLeftDone ? -1 : 1;
        int result = 0;
        if (level.leftFields.empty())
            result = compareOne(level.leftElements[index], level.rightElements[index]);
        else
        {
            // Fields are compared by type, then by key, then by value.
            const Field& left = level.leftFields[index];
            const Field& right = level.rightFields[index];
            result = order(rankOf(left.value().type()), rankOf(right.value().type()));
            if (result == 0)
                result = orderTexts(left.key(), right.key());
            if (result == 0)
                result = compareOne(left.value(), right.value());
        }
        if (result != 0)
            return result;
    }
    return 0;
}

} // namespace v1
} // namespace dbc
