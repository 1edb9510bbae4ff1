// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "every_type.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

using dbc::Type;
using dbc::Value;

TEST(ValueBuild, WithoutAnArgumentIsTheEmptyObject)
{
    EXPECT_TRUE(Value().isObject());
    EXPECT_TRUE(Value().empty());
    EXPECT_EQ(Value({}), Value());
}

TEST(ValueBuild, TakesStringsOfEveryType)
{
    const std::string text = "a string";
    char array[] = "an array";
    EXPECT_EQ(Value(text).get<std::string>(), text);
    EXPECT_EQ(Value(std::string_view(text).substr(2)).get<std::string>(), "string");
    EXPECT_EQ(Value(array).get<std::string>(), "an array");
    EXPECT_EQ(Value(text.c_str()).get<std::string>(), text);
}

TEST(ValueBuild, RefusesANullPointerToAString)
{
    const char* const none = nullptr;
    EXPECT_THROW(static_cast<void>(Value(none)), std::invalid_argument);
    EXPECT_THROW(dbc::Field(none, 1), std::invalid_argument);
}

TEST(ValueBuild, ChoosesTheTypeOfANumberByItsCppType)
{
    EXPECT_EQ(Value(static_cast<signed char>(-1)).type(), Type::Int32);
    EXPECT_EQ(Value(static_cast<unsigned short>(65535)).type(), Type::Int32);
    EXPECT_EQ(Value(1).type(), Type::Int32);
    EXPECT_EQ(Value(1U).type(), Type::Int64);
    EXPECT_EQ(Value(1L).type(), Type::Int64);
    EXPECT_EQ(Value(1UL).type(), Type::Int64);
    EXPECT_EQ(Value(1LL).type(), Type::Int64);
    EXPECT_EQ(Value(1.0F).type(), Type::Double);
    EXPECT_EQ(Value(1.0).type(), Type::Double);
    EXPECT_EQ(Value(true).type(), Type::Bool);
}

TEST(ValueBuild, RefusesAnUnsignedNumberBeyondInt64)
{
    EXPECT_EQ(Value(9223372036854775807UL).get<long>(), std::numeric_limits<long>::max());
    EXPECT_THROW(Value(9223372036854775808UL), std::out_of_range);
    EXPECT_THROW(Value(std::vector<unsigned long long>{1, std::numeric_limits<unsigned long long>::max()}),
                 std::out_of_range);
}

TEST(ValueBuild, RoundsTimePointsDownToMilliseconds)
{
    using std::chrono::hours;
    using std::chrono::nanoseconds;
    using std::chrono::system_clock;
    using std::chrono::time_point;
    using Nanoseconds = time_point<system_clock, nanoseconds>;
    EXPECT_EQ(Value(Nanoseconds(nanoseconds(-1))).get<dbc::Time>(), dbc::timeFromMilliseconds(-1));
    EXPECT_EQ(Value(time_point<system_clock, hours>(hours(1))).get<dbc::Time>(), dbc::timeFromMilliseconds(3600000));
}

TEST(ValueBuild, RefusesATimeBeyondTheRangeOfMilliseconds)
{
    using Seconds = std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds>;
    EXPECT_THROW(static_cast<void>(Value(Seconds::max())), std::out_of_range);
    EXPECT_THROW(static_cast<void>(Value(Seconds::min())), std::out_of_range);
    EXPECT_EQ(Value(dbc::Time::max()).get<dbc::Time>(), dbc::Time::max());
    EXPECT_EQ(Value(dbc::Time::min()).get<dbc::Time>(), dbc::Time::min());
}

TEST(ValueBuild, MakesNullOfAnEmptyOptional)
{
    EXPECT_EQ(Value(std::optional<int>(7)), Value(7));
    EXPECT_TRUE(Value(std::optional<int>()).isNull());
    EXPECT_TRUE(Value(std::optional<Value>()).isNull());
    EXPECT_TRUE(Value(nullptr).isNull());
}

TEST(ValueBuild, MakesArraysOfVectorsAndObjectsOfMaps)
{
    EXPECT_EQ(Value(std::vector<std::string>{"a", "b"}), dbc::array({"a", "b"}));
    EXPECT_EQ(Value(std::vector<bool>{true, false}), dbc::array({true, false}));
    EXPECT_EQ(Value(std::vector<std::vector<int>>{{1}, {}}), dbc::array({dbc::array({1}), dbc::array()}));
    EXPECT_EQ(Value(std::map<std::string, int>{{"b", 2}, {"a", 1}}), Value({{"a", 1}, {"b", 2}}));
    EXPECT_EQ(Value(std::unordered_map<std::string, Value>{{"a", "x"}}), Value({{"a", "x"}}));
    EXPECT_EQ(Value(std::vector<dbc::Field>{{"b", 2}, {"a", 1}}), Value({{"b", 2}, {"a", 1}}));
    EXPECT_EQ(Value(std::vector<std::optional<int>>{1, std::nullopt}), dbc::array({1, nullptr}));
    EXPECT_EQ(Value(dbc::Bytes{1}).type(), Type::Binary);
}

TEST(ValueBuild, KeepsTheOrderOfFieldsAndEqualKeys)
{
    const Value value = {{"b", 1}, {"a", 2}, {"b", 3}};
    std::string keys;
    for (const auto& [key, field] : value.fields())
        keys += key;
    EXPECT_EQ(keys, "bab");
    EXPECT_EQ(value.at("b"), Value(1)) << "the first of two";
}

TEST(ValueBuild, RefusesKeysAndExpressionsWithAZeroByte)
{
    const std::string zero("a\0b", 3);
    EXPECT_THROW(Value({{zero, 1}}), std::invalid_argument);
    EXPECT_THROW(Value(dbc::RegularExpression{zero, ""}), std::invalid_argument);
    EXPECT_THROW(Value(dbc::RegularExpression{"", zero}), std::invalid_argument);
    EXPECT_EQ(Value(zero).get<std::string>(), zero);
}

TEST(ValueBuild, ThrowsForAnInvalidObjectId)
{
    EXPECT_THROW(Value(dbc::ObjectId{"507f1f77bcf86cd79943901"}), std::invalid_argument);
    EXPECT_THROW(Value(dbc::ObjectId{"507f1f77bcf86cd79943901g"}), std::invalid_argument);
    for (const char wrong : {'/', ':', '@', 'G', '`', 'g', '\0'})
        EXPECT_THROW(Value(dbc::ObjectId{std::string(23, '0') + wrong}), std::invalid_argument) << wrong;
    EXPECT_EQ(Value(dbc::ObjectId{"0123456789abcdefABCDEF11"}).get<dbc::ObjectId>()->text, "0123456789abcdefabcdef11");
}

TEST(ValueBuild, ThrowsForAScopeThatIsNotAnObject)
{
    EXPECT_THROW(Value(dbc::CodeWithScope{"f()", 1}), std::logic_error);
}

TEST(ValueBuild, CopiesDeeply)
{
    Value original = test_support::everyType();
    const Value copied = original;
    EXPECT_EQ(copied.toBson(), original.toBson());
    original.at("object").set("inner", "changed");
    EXPECT_EQ(copied.get<int>("object/inner/deep"), 1);
    EXPECT_EQ(copied.toBson(), test_support::everyType().toBson());
}

TEST(ValueBuild, MovingLeavesTheEmptyObject)
{
    Value original = test_support::everyType();
    const Value moved = std::move(original);
    EXPECT_EQ(moved, test_support::everyType());
    EXPECT_EQ(original, Value()); // NOLINT(bugprone-use-after-move): what is documented
    original = moved;
    Value& same = original;
    original = same;
    original = std::move(same);
    EXPECT_EQ(original, moved);
}

} // namespace
