// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/filter.h"

#include "json_text.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using dbc::object;
using test_support::jsonOf;

struct Row
{
    const char* name;
    void (*addToFilter)(ObjectFilter&);
    void (*addToQuery)(ObjectProperties&);
    const char* expected;
};

template <typename Target>
void addIn(Target& target)
{
    dbc::addIn(target, "a", {1, "x"});
}
template <typename Target>
void addNotIn(Target& target)
{
    dbc::addNotIn(target, "a", {1});
}
template <typename Target>
void addNo(Target& target)
{
    dbc::addNot(target, "a", {{"$gt", 3}});
}
template <typename Target>
void addNor(Target& target)
{
    dbc::addNor(target, {object({{"a", 1}}), object({{"b", 2}})});
}
template <typename Target>
void addAll(Target& target)
{
    dbc::addAll(target, "a", {"x", "y"});
}
template <typename Target>
void addSize(Target& target)
{
    dbc::addSize(target, "a", 2);
}
template <typename Target>
void addType(Target& target)
{
    dbc::addType(target, "a", "string");
}
template <typename Target>
void addElemMatch(Target& target)
{
    dbc::addElemMatch(target, "a", {{"x", 1}, {"y", object({{"$gt", 2}})}});
}
template <typename Target>
void addMod(Target& target)
{
    dbc::addMod(target, "a", 4, 1);
}

#define ROW(name, expected)                                                       \
    Row                                                                           \
    {                                                                             \
#name, add##name < ObjectFilter>, add##name < ObjectProperties>, expected \
    }

class Operators : public testing::TestWithParam<Row>
{};

TEST_P(Operators, AreWrittenIntoAFilter)
{
    ObjectFilter filter;
    GetParam().addToFilter(filter);
    EXPECT_EQ(jsonOf(filter.toObjectProeprties()), GetParam().expected);
}

TEST_P(Operators, AreWrittenIntoAQuery)
{
    ObjectProperties query;
    GetParam().addToQuery(query);
    EXPECT_EQ(jsonOf(query), GetParam().expected);
    EXPECT_EQ(query.current(), query.root());
}

TEST_P(Operators, BecomeOneElementOfAnOpenList)
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "z", 1);
    GetParam().addToFilter(filter);
    filter.finish_or();
    EXPECT_EQ(jsonOf(filter.toObjectProeprties()),
              std::string(R"({ "$or" : [ { "z" : 1 }, )") + GetParam().expected + " ] }");
}

INSTANTIATE_TEST_SUITE_P(
    All, Operators,
    testing::Values(ROW(In, R"({ "a" : { "$in" : [ 1, "x" ] } })"), ROW(NotIn, R"({ "a" : { "$nin" : [ 1 ] } })"),
                    ROW(No, R"({ "a" : { "$not" : { "$gt" : 3 } } })"),
                    ROW(Nor, R"({ "$nor" : [ { "a" : 1 }, { "b" : 2 } ] })"),
                    ROW(All, R"({ "a" : { "$all" : [ "x", "y" ] } })"), ROW(Size, R"({ "a" : { "$size" : 2 } })"),
                    ROW(Type, R"({ "a" : { "$type" : "string" } })"),
                    ROW(ElemMatch, R"({ "a" : { "$elemMatch" : { "x" : 1, "y" : { "$gt" : 2 } } } })"),
                    ROW(Mod, R"({ "a" : { "$mod" : [ 4, 1 ] } })")),
    RowName());

TEST(Conditions, OnOneKeyMergeOutsideAList)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "a", 1);
    dbc::addIn(filter, "a", {5, 6});
    filter.setFilterInt(OperationTypeLess, "a", 9);
    EXPECT_EQ(jsonOf(filter.toObjectProeprties()), R"({ "a" : { "$gt" : 1, "$in" : [ 5, 6 ], "$lt" : 9 } })");
}

TEST(Conditions, AreAddedAtTheCursorOfAQuery)
{
    ObjectProperties query;
    query.beginGroup("sub");
    dbc::addSize(query, "a", 1);
    EXPECT_EQ(query.group(), "sub");
    EXPECT_EQ(jsonOf(query), R"({ "sub" : { "a" : { "$size" : 1 } } })");
}

} // namespace
