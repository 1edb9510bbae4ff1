// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "query_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using query::Bytes;
using query::expected;

TEST(FilterLists, BuildTheQueryOfAnExample)
{
    ObjectFilter filter;

    filter.start_or();
    filter.setFilterString(OperationTypeRegex, "name", "^A", "i");
    filter.start_and();
    filter.setFilterInt(OperationTypeGreaterOrEqual, "age", 18);
    filter.setFilterBool(OperationTypeExists, "email", false);
    filter.finish_and();
    filter.finish_or();
    filter.setFilterLongLong(OperationTypeNotEqual, "state", 3);

    const Bytes name = query::group("name", {query::text("$options", "i"), query::text("$regex", "^A")});
    const Bytes age = query::group("age", {query::int32("$gte", 18)});
    const Bytes email = query::group("email", {query::boolean("$exists", true)});
    const Bytes both = query::list("$and", {query::group("$and", {age}), query::group("$and", {email})});
    EXPECT_EQ(query::of(filter),
              expected({query::list("$or", {query::group("$or", {name}), query::group("$or", {both})}),
                        query::group("state", {query::int64("$ne", 3)})}));
}

TEST(FilterLists, KeepTheOrderOfTheCalls)
{
    ObjectFilter filter;
    std::vector<Bytes> elements;

    filter.start_or();
    for (int number = 20; number > 0; --number)
    {
        const std::string key = "k" + std::to_string(number);
        filter.setFilterInt(OperationTypeEqual, key, number);
        elements.push_back(query::group("$or", {query::int32(key, number)}));
    }
    filter.finish_or();

    EXPECT_EQ(query::of(filter), expected({query::list("$or", elements)}));
}

TEST(FilterLists, AreSiblingsInTheEnclosingList)
{
    ObjectFilter filter;

    filter.start_and();
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_or();
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.finish_or();
    filter.finish_and();

    const auto listOf = [](const Bytes& condition) {
        return query::group("$and", {query::list("$or", {query::group("$or", {condition})})});
    };
    EXPECT_EQ(query::of(filter),
              expected({query::list("$and", {listOf(query::int32("a", 1)), listOf(query::int32("b", 2))})}));
}

// There is one "$or" at the top level: to join two, put both into an "$and" list.
TEST(FilterLists, OfOneKindMergeAtTheTopLevel)
{
    ObjectFilter filter;

    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_or();
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.finish_or();

    EXPECT_EQ(query::of(filter), expected({query::list("$or", {query::group("$or", {query::int32("a", 1)}),
                                                               query::group("$or", {query::int32("b", 2)})})}));
}

TEST(FilterLists, OfOneKindNest)
{
    ObjectFilter filter;

    filter.start_and();
    filter.start_and();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_and();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.finish_and();

    const Bytes inner = query::list("$and", {query::group("$and", {query::int32("a", 1)})});
    EXPECT_EQ(
        query::of(filter),
        expected({query::list("$and", {query::group("$and", {inner}), query::group("$and", {query::int32("b", 2)})})}));
}

TEST(FilterLists, AreEmptyArraysWithoutConditions)
{
    ObjectFilter filter;

    filter.start_and();
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(query::of(filter), expected({query::list("$and", {}), query::int32("a", 1)}));
}

TEST(FilterLists, AreClosedByEitherFinishCall)
{
    ObjectFilter filter;

    filter.start_or();
    filter.start_and();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.finish_and();
    filter.setFilterInt(OperationTypeEqual, "c", 3);

    const Bytes inner = query::list("$and", {query::group("$and", {query::int32("a", 1)})});
    const Bytes outer = query::list("$or", {query::group("$or", {inner}), query::group("$or", {query::int32("b", 2)})});
    EXPECT_EQ(query::of(filter), expected({outer, query::int32("c", 3)}));
}

TEST(FilterLists, AreInTheQueryWhileTheyAreOpen)
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(query::of(filter), expected({query::list("$or", {query::group("$or", {query::int32("a", 1)})})}));

    filter.setFilterInt(OperationTypeEqual, "b", 2);
    EXPECT_EQ(query::of(filter), expected({query::list("$or", {query::group("$or", {query::int32("a", 1)}),
                                                               query::group("$or", {query::int32("b", 2)})})}));
}

TEST(FilterLists, IgnoreAnExtraFinish)
{
    ObjectFilter filter;

    filter.finish_and();
    filter.finish_or();
    EXPECT_TRUE(filter.isEmpty());

    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_or();
    filter.finish_or();
    filter.finish_and();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    EXPECT_EQ(query::of(filter),
              expected({query::list("$or", {query::group("$or", {query::int32("a", 1)})}), query::int32("b", 2)}));
}

TEST(FilterLists, FinishLeavesASubDocumentOpenIfNoListIsOpen)
{
    ObjectFilter filter;
    filter.beginGroup("sub");

    filter.finish_and();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(query::of(filter), expected({query::group("sub", {query::int32("a", 1)})}));
}

TEST(FilterLists, AreWrittenInsideASubDocument)
{
    ObjectFilter filter;

    filter.beginGroup("sub");
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.endGroup();
    filter.setFilterInt(OperationTypeEqual, "c", 3);

    const Bytes list = query::list("$or", {query::group("$or", {query::int32("a", 1)})});
    EXPECT_EQ(query::of(filter), expected({query::int32("c", 3), query::group("sub", {list, query::int32("b", 2)})}));
}

// A sub-document opened in a list is an element. What follows is wrapped once more, in a group with the list's name.
TEST(FilterLists, WrapTheConditionsOfASubDocumentInside)
{
    ObjectFilter filter;

    filter.start_or();
    filter.beginGroup("sub");
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.endGroup();
    filter.setFilterInt(OperationTypeEqual, "c", 3);
    filter.finish_or();

    const Bytes wrapped = query::group("$or", {query::int32("a", 1), query::int32("b", 2)});
    EXPECT_EQ(
        query::of(filter),
        expected({query::list("$or", {query::group("$or", {query::int32("c", 3)}), query::group("sub", {wrapped})})}));
}

// Opens lists, "$and" and "$or" in turn, with one condition before the next one opens.
void openLists(ObjectFilter& filter, int count)
{
    for (int number = 1; number <= count; ++number)
    {
        number % 2 == 1 ? filter.start_and() : filter.start_or();
        filter.setFilterInt(OperationTypeEqual, "before", number);
    }
}

// Closes them, innermost first, with one condition after each but the outermost.
void closeLists(ObjectFilter& filter, int count)
{
    for (int number = count; number >= 1; --number)
    {
        filter.finish_and();
        filter.setFilterInt(OperationTypeEqual, "after", number);
    }
}

// What these calls give with at most 100 lists: conditions of lists beyond stand in the innermost one.
query::Query nestedLists(int count)
{
    const int standing = std::min(count, 100);
    Bytes inner;
    for (int number = standing; number >= 1; --number)
    {
        const std::string name = number % 2 == 1 ? "$and" : "$or";
        std::vector<Bytes> elements{query::group(name, {query::int32("before", number)})};
        for (int beyond = 101; number == standing && beyond <= count; ++beyond)
            elements.push_back(query::group(name, {query::int32("before", beyond)}));
        if (number < standing)
        {
            elements.push_back(query::group(name, {inner}));
            elements.push_back(query::group(name, {query::int32("after", number + 1)}));
        }
        for (int beyond = count; number == standing && beyond > 100; --beyond)
            elements.push_back(query::group(name, {query::int32("after", beyond)}));
        inner = query::list(name, elements);
    }
    return expected({inner, query::int32("after", 1)});
}

class FilterNesting : public testing::TestWithParam<int>
{};

TEST_P(FilterNesting, PairsEveryEndWithItsList)
{
    ObjectFilter filter;

    openLists(filter, GetParam());
    closeLists(filter, GetParam());

    EXPECT_EQ(query::of(filter), nestedLists(GetParam()));
}

TEST_P(FilterNesting, SurvivesACopyInTheInnermostList)
{
    ObjectFilter filter;
    openLists(filter, GetParam());

    ObjectFilter copy(filter);
    closeLists(copy, GetParam());

    EXPECT_EQ(query::of(copy), nestedLists(GetParam()));
    closeLists(filter, GetParam());
    EXPECT_EQ(query::of(filter), nestedLists(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Lists, FilterNesting,
                         testing::Values(1, 2, 3, 15, 16, 17, 50, 98, 99, 100, 101, 102, 103, 150, 1000),
                         testing::PrintToStringParamName());

TEST(FilterNesting, OpensTheHundredthListAgainAfterOneIsClosed)
{
    ObjectFilter filter;
    for (int number = 0; number < 101; ++number)
        filter.start_and();
    filter.finish_and();
    filter.finish_and();

    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    Bytes inner = query::list("$or", {query::group("$or", {query::int32("a", 1)})});
    inner = query::list("$and", {query::group("$and", {query::list("$and", {})}), query::group("$and", {inner})});
    for (int number = 0; number < 98; ++number)
        inner = query::list("$and", {query::group("$and", {inner})});
    EXPECT_EQ(query::of(filter), expected({inner}));
}

} // namespace
