// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "every_type.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using dbc::array;
using dbc::Decimal128;
using dbc::Value;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Values in the order of a server, each less than the next.
std::vector<Value> inOrder()
{
    const dbc::ObjectId low{"000000000000000000000001"};
    const dbc::ObjectId high{"ff0000000000000000000000"};
    return {Value::minKey(),
            Value::undefined(),
            nullptr,
            std::numeric_limits<double>::quiet_NaN(),
            Decimal128::parse("-Infinity"),
            Decimal128::parse("-1E+400"),
            -1e300,
            std::numeric_limits<long>::min(),
            -1.5,
            -1,
            -5e-324,
            0,
            Decimal128::parse("1E-400"),
            5e-324,
            Decimal128::parse("0.1"),
            0.1, // a little more than a tenth
            1,
            1.5,
            2,
            (1L << 53) - 1,
            9007199254740992.0,
            (1L << 53) + 1,
            std::numeric_limits<long>::max() - 1,
            std::numeric_limits<long>::max(),
            9223372036854775808.0,
            1e300,
            Decimal128::parse("1E+400"),
            infinity,
            "",
            "a",
            dbc::Symbol{"aa"},
            "b",
            "\xC3\xA4",
            Value(),
            Value({{"a", 1}}),
            Value({{"a", 1}, {"b", 1}}),
            Value({{"a", 2}}),
            Value({{"b", 1}}),
            Value({{"a", "string"}}), // the type of a field goes before its key
            array(),
            array({1}),
            array({1, 1}),
            array({2}),
            dbc::Bytes{},
            dbc::Bytes{9},
            dbc::Binary{{1}, 5},
            dbc::Bytes{1, 1},
            low,
            high,
            false,
            true,
            dbc::timeFromMilliseconds(-1),
            dbc::timeFromMilliseconds(1),
            dbc::Timestamp{1, 5},
            dbc::Timestamp{2, 1},
            dbc::Timestamp{4000000000U, 1},
            dbc::RegularExpression{"a", ""},
            dbc::RegularExpression{"a", "i"},
            dbc::RegularExpression{"b", ""},
            dbc::DbPointer{"a", high},
            dbc::DbPointer{"b", low},
            dbc::DbPointer{"b", high},
            dbc::Code{"a"},
            dbc::Code{"b"},
            dbc::CodeWithScope{"a", {{"x", 1}}},
            dbc::CodeWithScope{"a", {{"x", 2}}},
            dbc::CodeWithScope{"b", {}},
            Value::maxKey()};
}

TEST(ValueOrder, IsThatOfAServer)
{
    const std::vector<Value> values = inOrder();
    for (std::size_t left = 0; left < values.size(); ++left)
    {
        for (std::size_t right = 0; right < values.size(); ++right)
        {
            const int expected = left < right ? -1 : left > right ? 1 : 0;
            EXPECT_EQ(values[left].compare(values[right]), expected) << values[left] << " and " << values[right];
        }
    }
}

TEST(ValueOrder, HasAllOperators)
{
    const Value one = 1;
    const Value two = 2;
    EXPECT_TRUE(one < two && one <= two && two > one && two >= one && one != two);
    EXPECT_TRUE(one == one && one <= one && one >= one);
    EXPECT_FALSE(one == two || one > two || one >= two || one != one || one < one);
}

TEST(ValueEquality, IsThatOfNumbersWhateverTheirTypes)
{
    EXPECT_EQ(Value(1), Value(1.0));
    EXPECT_EQ(Value(1L), Value(1));
    EXPECT_EQ(Value(Decimal128::parse("1.00")), Value(1));
    EXPECT_EQ(Value(Decimal128::parse("0.5")), Value(0.5));
    EXPECT_EQ(Value(Decimal128::parse("-0")), Value(0));
    EXPECT_EQ(Value(Decimal128::parse("NaN")), Value(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(Value(Decimal128::parse("Infinity")), Value(infinity));
    EXPECT_EQ(Value(Decimal128::parse("1E+13")), Value(10000000000000L));
    EXPECT_EQ(Value(std::numeric_limits<long>::min()), Value(-9223372036854775808.0));
    EXPECT_EQ(Value(-0.0), Value(0));
    EXPECT_EQ(Value({{"a", array({1L})}}), Value({{"a", array({1.0})}}));
}

template <typename Left, typename Right, typename = void>
struct AreComparable : std::false_type
{};
template <typename Left, typename Right>
struct AreComparable<Left, Right, std::void_t<decltype(std::declval<Left>() == std::declval<Right>())>> : std::true_type
{};

// As values they would never be equal, because an object id is not a string.
TEST(ValueEquality, OfAnObjectIdAndAStringDoesNotCompile)
{
    EXPECT_TRUE((AreComparable<dbc::ObjectId, dbc::ObjectId>::value));
    EXPECT_TRUE((AreComparable<Value, dbc::ObjectId>::value && AreComparable<dbc::ObjectId, Value>::value));
    EXPECT_FALSE((AreComparable<dbc::ObjectId, const char*>::value));
    EXPECT_FALSE((AreComparable<dbc::ObjectId, std::string>::value));
    EXPECT_FALSE((AreComparable<std::string_view, dbc::ObjectId>::value));
}

TEST(ValueEquality, DependsOnTheOrderOfFields)
{
    EXPECT_NE(Value({{"a", 1}, {"b", 2}}), Value({{"b", 2}, {"a", 1}}));
}

TEST(ValueEquality, HoldsForACopyOfEveryType)
{
    EXPECT_EQ(test_support::everyType(), Value(test_support::everyType()));
}

} // namespace
