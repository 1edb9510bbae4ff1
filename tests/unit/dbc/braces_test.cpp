// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Built with C++17 and with C++20: what braces mean depends on rules that changed between them.
#include "dbc/filter.h"

#include "json_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace {

using dbc::array;
using dbc::document;
using dbc::Field;
using dbc::object;
using dbc::Value;
using test_support::jsonOf;

TEST(Braces, OfFieldsBuildAnObject)
{
    EXPECT_EQ(jsonOf(document({{"name", "Lisbon"}, {"river", {{"bridges", 2}}}})),
              R"({ "name" : "Lisbon", "river" : { "bridges" : 2 } })");
}

TEST(Braces, OfTwoStringsAreAField)
{
    EXPECT_EQ(jsonOf(document({{"a", "b"}})), R"({ "a" : "b" })");
    EXPECT_EQ(jsonOf(document({{"a", {{"b", "c"}}}})), R"({ "a" : { "b" : "c" } })");
    EXPECT_EQ(jsonOf(document({{"a", {{"b", "c"}, {"d", "e"}}}})), R"({ "a" : { "b" : "c", "d" : "e" } })");
}

TEST(Braces, OfAStringAndANumberAreAFieldWhateverTheTypesOfBoth)
{
    const std::string text = "b";
    const std::string_view view = "c";
    const unsigned number = 1000;
    EXPECT_EQ(jsonOf(document({{"a", {{text, 1000}, {view, number}, {std::string("d"), 1000.5}, {"e", 'b' == 'c'}}}})),
              R"({ "a" : { "b" : 1000, "c" : 1000, "d" : 1000.5, "e" : false } })");
}

TEST(Braces, WithoutFieldsBuildTheEmptyObject)
{
    EXPECT_TRUE(document({}).isEmpty());
    EXPECT_EQ(jsonOf(document({{"a", {}}, {"b", Value()}, {"c", object({})}, {"d", array({{}, {}})}})),
              R"({ "a" : {  }, "b" : {  }, "c" : {  }, "d" : [ {  }, {  } ] })");
}

TEST(Braces, NestToAnyDepth)
{
    EXPECT_EQ(jsonOf(document({{"a", {{"b", {{"c", {{"d", 1}, {"e", "f"}}}}}}}})),
              R"({ "a" : { "b" : { "c" : { "d" : 1, "e" : "f" } } } })");
}

TEST(Braces, InAnArrayBuildObjects)
{
    EXPECT_EQ(jsonOf(document({{"a", array({{{"b", 1}}, {{"c", "d"}, {"e", 2}}, 3, "f", array({"g", "h"})})}})),
              R"({ "a" : [ { "b" : 1 }, { "c" : "d", "e" : 2 }, 3, "f", [ "g", "h" ] ] })");
    EXPECT_EQ(jsonOf(document({{"a", array({{{"b", 1}}})}})), R"({ "a" : [ { "b" : 1 } ] })");
    EXPECT_EQ(jsonOf(document({{"a", array({array({1})})}, {"b", array({"c"})}})),
              R"({ "a" : [ [ 1 ] ], "b" : [ "c" ] })");
    EXPECT_EQ(jsonOf(document({{"a", array()}, {"b", array({})}})), R"({ "a" : [  ], "b" : [  ] })");
}

TEST(Braces, AroundAValueCopyIt)
{
    const Value value({{"a", 1}});
    const Value copied{value}; // NOLINT(performance-unnecessary-copy-initialization): the copy is what is tested
    EXPECT_EQ(jsonOf(document({{"b", copied}, {"c", {value}}, {"d", Value{value}}})),
              R"({ "b" : { "a" : 1 }, "c" : { "a" : 1 }, "d" : { "a" : 1 } })");
    EXPECT_EQ(jsonOf(document({{"b", array({value})}})), R"({ "b" : [ { "a" : 1 } ] })");
}

TEST(Braces, TakeFieldsThatWereBuiltBefore)
{
    const Field field("a", 1);
    EXPECT_EQ(jsonOf(document({field, {"b", {field}}, {"c", {field, {"d", 2}}}, {field}})),
              R"({ "a" : 1, "b" : { "a" : 1 }, "c" : { "a" : 1, "d" : 2 } })");
}

TEST(Braces, OfAnUpdateBuildItsOperators)
{
    EXPECT_EQ(jsonOf(dbc::updateDocument({{"$set", {{"state", "sent"}}}, {"$inc", {{"version", 1}}}})),
              R"({ "$inc" : { "version" : 1 }, "$set" : { "state" : "sent" } })");
}

TEST(Braces, OfAPipelineBuildItsStages)
{
    EXPECT_EQ(jsonOf(dbc::pipeline({{{"$match", {{"state", "sent"}}}}, {{"$limit", 5}}})),
              R"({ "pipeline" : [ { "$match" : { "state" : "sent" } }, { "$limit" : 5 } ] })");
    EXPECT_EQ(jsonOf(dbc::pipeline({{{"$limit", 5}}})), R"({ "pipeline" : [ { "$limit" : 5 } ] })");
}

TEST(Braces, OfAConditionBuildItsOperators)
{
    ObjectFilter filter;
    dbc::addElemMatch(filter, "a", {{"b", "c"}, {"d", {{"$gte", 2}}}});
    dbc::addNot(filter, "e", {{"$gt", "f"}});
    dbc::addNor(filter, {{{"g", 1}}, {{"h", "i"}}});
    dbc::addIn(filter, "j", {"k", "l"});
    EXPECT_EQ(jsonOf(filter.toObjectProeprties()), R"({ "$nor" : [ { "g" : 1 }, { "h" : "i" } ], )"
                                                   R"("a" : { "$elemMatch" : { "b" : "c", "d" : { "$gte" : 2 } } }, )"
                                                   R"("e" : { "$not" : { "$gt" : "f" } }, )"
                                                   R"("j" : { "$in" : [ "k", "l" ] } })");
}

TEST(Braces, AreNotNeededForListsThatAVectorHolds)
{
    std::vector<Field> fields{{"a", 1}, {"b", "c"}};
    fields.emplace_back("d", true);
    fields.push_back({"e", {{"f", 2}}});
    EXPECT_EQ(jsonOf(document(fields)), R"({ "a" : 1, "b" : "c", "d" : true, "e" : { "f" : 2 } })");
    const std::vector<Value> values{1, "a", object({{"b", 2}})};
    EXPECT_EQ(jsonOf(document({{"a", array(values)}})), R"({ "a" : [ 1, "a", { "b" : 2 } ] })");
    EXPECT_EQ(jsonOf(document({{"g", object(fields)}})),
              R"({ "g" : { "a" : 1, "b" : "c", "d" : true, "e" : { "f" : 2 } } })");
}

TEST(Braces, AreTheOnlyWayFromSeveralArgumentsToAnObject)
{
    EXPECT_FALSE((std::is_convertible_v<const int*, Value>));
    EXPECT_FALSE((std::is_convertible_v<ObjectProperties*, Value>));
    EXPECT_FALSE((std::is_convertible_v<char, Value>));
    EXPECT_FALSE((std::is_convertible_v<const char*, Field>));
    EXPECT_FALSE((std::is_constructible_v<Field, int, int>));
    EXPECT_TRUE((std::is_convertible_v<const char*, Value>));
}

} // namespace
