// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/build.h"

#include "json_text.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using dbc::array;
using dbc::document;
using dbc::object;
using test_support::jsonOf;

TEST(Build, WritesEveryType)
{
    ObjectProperties built = document({{"text", "t"},
                                       {"flag", true},
                                       {"small", 7},
                                       {"large", 1LL << 40},
                                       {"real", 0.5},
                                       {"time", dbc::timeFromMilliseconds(5)},
                                       {"id", dbc::ObjectId{"507f1f77bcf86cd799439011"}},
                                       {"bytes", dbc::Bytes{1, 2}},
                                       {"regex", dbc::RegularExpression{"^a", "i"}},
                                       {"nothing", dbc::Value::undefined()}});
    EXPECT_EQ(built.type("text"), String);
    EXPECT_EQ(built.type("flag"), Bool);
    EXPECT_EQ(built.type("small"), Int32);
    EXPECT_EQ(built.type("large"), Int64);
    EXPECT_EQ(built.type("real"), Double);
    EXPECT_EQ(built.type("time"), Time);
    EXPECT_EQ(built.type("id"), Id);
    EXPECT_EQ(built.type("bytes"), Binary);
    EXPECT_EQ(built.type("regex"), Regex);
    EXPECT_EQ(built.type("nothing"), Undefined);
    EXPECT_EQ(built.valueAsTime("time", 0), 5);
    EXPECT_EQ(built.valueAsId("id", ""), "507f1f77bcf86cd799439011");
}

TEST(Build, NestsObjectsAndArrays)
{
    const ObjectProperties built =
        document({{"a", object({{"b", array({1, "x", object({{"c", true}}), array({2})})}})}, {"empty", object()}});
    EXPECT_EQ(jsonOf(built), R"({ "a" : { "b" : [ 1, "x", { "c" : true }, [ 2 ] ] }, "empty" : {  } })");
}

TEST(Build, LeavesTheCursorAtTheRoot)
{
    const ObjectProperties built = document({{"a", object({{"b", 1}})}});
    EXPECT_EQ(built.current(), built.root());
}

TEST(Build, TakesKeysLiterallyWhereADocumentsSetterTakesThemAsPaths)
{
    ObjectProperties trap;
    trap.setValueInt("kept", 1);
    trap.setValueInt("a/b", 1);
    trap.setValueInt("", 1);
    ASSERT_TRUE(trap.isEmpty()) << "the trap: an empty key replaces the whole document";

    const ObjectProperties built = document({{"kept", 1}, {"a/b", 2}, {"", 3}});
    EXPECT_EQ(jsonOf(built), R"({ "" : 3, "a/b" : 2, "kept" : 1 })");
}

TEST(Build, LastValueOfAKeyWins)
{
    EXPECT_EQ(jsonOf(document({{"a", 1}, {"a", array({2})}, {"b", object()}, {"b", "x"}})),
              R"({ "a" : [ 2 ], "b" : "x" })");
}

TEST(Build, UpdateHoldsSeveralOperators)
{
    const ObjectProperties update =
        dbc::updateDocument({{"$set", object({{"state", "sent"}})}, {"$inc", object({{"version", 1}})}});
    EXPECT_EQ(jsonOf(update), R"({ "$inc" : { "version" : 1 }, "$set" : { "state" : "sent" } })");
}

TEST(Build, ArraysOfMoreThanTenElementsKeepTheirOrder)
{
    std::vector<dbc::Value> stages;
    for (int number = 0; number < 101; ++number)
        stages.push_back(object({{"$skip", number}}));
    const ObjectProperties pipeline = dbc::pipeline(stages);

    pipeline.beginArray("pipeline");
    ASSERT_EQ(pipeline.childCount(), 101U);
    int expected = 0;
    for (const auto& entry : *pipeline.current())
        EXPECT_EQ(entry.second->propertyByKey("$skip")->currentValueAsInt32(-1), expected++);
}

TEST(Build, ElementKeysHaveTheWidthOfTheLast)
{
    EXPECT_EQ(dbc::elementKey(0, 1), "0");
    EXPECT_EQ(dbc::elementKey(9, 10), "9");
    EXPECT_EQ(dbc::elementKey(9, 11), "09");
    EXPECT_EQ(dbc::elementKey(7, 1001), "0007");
}

TEST(Build, ElementKeyBeyondTheLastHasNoLeadingZeros)
{
    EXPECT_EQ(dbc::elementKey(10, 10), "10");
    EXPECT_EQ(dbc::elementKey(5, 0), "5");
}

TEST(Build, WritesIntegersByTheWidthOfTheirType)
{
    const ObjectProperties built = document({{"short", static_cast<short>(-3)},
                                             {"byte", static_cast<unsigned char>(200)},
                                             {"unsigned", 4000000000U},
                                             {"long", 5UL},
                                             {"float", 0.5F}});
    EXPECT_EQ(built.type("short"), Int32);
    EXPECT_EQ(built.type("byte"), Int32);
    EXPECT_EQ(built.type("unsigned"), Int64);
    EXPECT_EQ(built.type("long"), Int64);
    EXPECT_EQ(built.type("float"), Double);
    EXPECT_EQ(jsonOf(built), R"({ "byte" : 200, "float" : 0.5, "long" : 5, "short" : -3, "unsigned" : 4000000000 })");
}

TEST(Build, RefusesAnUnsignedNumberBeyondInt64)
{
    EXPECT_NO_THROW(document({{"a", 9223372036854775807UL}}));
    EXPECT_THROW(document({{"a", 9223372036854775808UL}}), std::out_of_range);
}

} // namespace
