// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "query_bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using query::Bytes;
using query::expected;

namespace {

ObjectFilter filterOn(const std::string& key, int value)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeEqual, key, value);
    return filter;
}

Bytes orElement(const std::string& key, int value)
{
    return query::group("$or", {query::int32(key, value)});
}

TEST(FilterInclude, AddsAnElementToAnEmptyList)
{
    ObjectFilter filter;
    filter.start_or();

    filter.include(filterOn("a", 1));
    filter.finish_or();

    EXPECT_EQ(query::of(filter), expected({query::list("$or", {orElement("a", 1)})}));
}

TEST(FilterInclude, AddsAnElementEveryTime)
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    filter.include(filterOn("b", 2));
    filter.include(filterOn("b", 2));
    filter.setFilterInt(OperationTypeEqual, "c", 3);
    filter.include(filterOn("d", 4));
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "e", 5);

    EXPECT_EQ(query::of(filter), expected({query::list("$or", {orElement("a", 1), orElement("b", 2), orElement("b", 2),
                                                               orElement("c", 3), orElement("d", 4)}),
                                           query::int32("e", 5)}));
}

TEST(FilterInclude, AddsToTheInnermostListUnderItsName)
{
    ObjectFilter filter;
    filter.start_or();
    filter.start_and();

    filter.include(filterOn("a", 1));
    filter.finish_and();
    filter.include(filterOn("b", 2));
    filter.finish_or();

    const Bytes inner = query::list("$and", {query::group("$and", {query::int32("a", 1)})});
    EXPECT_EQ(query::of(filter), expected({query::list("$or", {query::group("$or", {inner}), orElement("b", 2)})}));
}

TEST(FilterInclude, AddsAWholeQueryAsOneElement)
{
    ObjectFilter other;
    other.start_and();
    other.setFilterInt(OperationTypeGreater, "a", 1);
    other.finish_and();
    other.setFilterInt(OperationTypeLess, "b", 2);
    ObjectFilter filter;
    filter.start_or();

    filter.include(other);

    const Bytes list = query::list("$and", {query::group("$and", {query::group("a", {query::int32("$gt", 1)})})});
    EXPECT_EQ(
        query::of(filter),
        expected({query::list("$or", {query::group("$or", {list, query::group("b", {query::int32("$lt", 2)})})})}));
}

TEST(FilterInclude, AddsAnEmptyElementForAnEmptyQuery)
{
    ObjectFilter filter;
    filter.start_or();

    filter.include(ObjectFilter());

    EXPECT_EQ(query::of(filter), expected({query::list("$or", {query::group("$or", {})})}));
}

TEST(FilterInclude, DoesNotChangeTheOtherFilter)
{
    ObjectFilter other;
    other.start_or();
    other.setFilterInt(OperationTypeEqual, "a", 1);
    ObjectFilter filter;
    filter.start_and();

    filter.include(other);
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    other.setFilterInt(OperationTypeEqual, "c", 3);

    EXPECT_EQ(query::of(other), expected({query::list("$or", {orElement("a", 1), orElement("c", 3)})}));
    EXPECT_EQ(query::of(filter),
              expected({query::list("$and", {query::group("$and", {query::list("$or", {orElement("a", 1)})}),
                                             query::group("$and", {query::int32("b", 2)})})}));
}

TEST(FilterInclude, AcceptsTheFilterItself)
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    filter.include(filter);
    filter.finish_or();

    const Bytes list = query::list("$or", {orElement("a", 1), query::group("$or", {})});
    EXPECT_EQ(query::of(filter), expected({query::list("$or", {orElement("a", 1), query::group("$or", {list})})}));
}

TEST(FilterInclude, AddsToTheHundredthListBeyondIt)
{
    ObjectFilter filter;
    for (int number = 0; number < 105; ++number)
        filter.start_or();

    filter.include(filterOn("a", 1));
    filter.include(filterOn("b", 2));

    Bytes inner = query::list("$or", {orElement("a", 1), orElement("b", 2)});
    for (int number = 1; number < 100; ++number)
        inner = query::list("$or", {query::group("$or", {inner})});
    EXPECT_EQ(query::of(filter), expected({inner}));
}

TEST(FilterInclude, WithoutAListReplacesTheQuery)
{
    ObjectFilter filter = filterOn("a", 1);

    filter.include(filterOn("b", 2));
    filter.setFilterInt(OperationTypeEqual, "c", 3);

    EXPECT_EQ(query::of(filter), expected({query::int32("b", 2), query::int32("c", 3)}));
}

TEST(FilterInclude, WithoutAListContinuesAtTheTopLevel)
{
    ObjectFilter filter;
    filter.beginGroup("x");
    filter.beginGroup("y");

    filter.include(filterOn("a", 1));
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.endGroup();
    filter.endGroup();
    filter.setFilterInt(OperationTypeEqual, "c", 3);

    EXPECT_EQ(query::of(filter), expected({query::int32("a", 1), query::int32("b", 2), query::int32("c", 3)}));
}

TEST(FilterInclude, OfTheFilterItselfWithoutAListChangesNothing)
{
    ObjectFilter filter = filterOn("a", 1);

    filter.include(filter);

    EXPECT_EQ(query::of(filter), expected({query::int32("a", 1)}));
}

TEST(FilterExclude, MovesAPartOfTheQuery)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.beginGroup("part");
    filter.setFilterInt(OperationTypeGreater, "b", 2);
    filter.endGroup();
    ObjectFilter target;

    filter.exclude("part", target);

    EXPECT_EQ(query::of(filter), expected({query::int32("a", 1)}));
    EXPECT_EQ(query::of(target), expected({query::group("b", {query::int32("$gt", 2)})}));
}

TEST(FilterExclude, OverwritesTheTargetAndItsOpenLists)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "part", 2);
    ObjectFilter target;
    target.start_or();
    target.setFilterInt(OperationTypeEqual, "old", 1);

    filter.exclude("part", target);
    target.setFilterInt(OperationTypeEqual, "z", 3);

    EXPECT_TRUE(filter.isEmpty());
    EXPECT_EQ(query::of(target), expected({query::int32("$gt", 2), query::int32("z", 3)}));
}

TEST(FilterExclude, EmptiesTheTargetIfTheKeyIsMissing)
{
    ObjectFilter filter = filterOn("a", 1);
    ObjectFilter target = filterOn("old", 2);
    target.start_or();

    filter.exclude("missing", target);
    EXPECT_TRUE(target.isEmpty());
    target.setFilterInt(OperationTypeEqual, "z", 3);

    EXPECT_EQ(query::of(filter), expected({query::int32("a", 1)}));
    EXPECT_EQ(query::of(target), expected({query::int32("z", 3)}));
}

TEST(FilterExclude, AcceptsTheFilterItselfAsTarget)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.setFilterInt(OperationTypeGreater, "part", 2);

    filter.exclude("part", filter);

    EXPECT_EQ(query::of(filter), expected({query::int32("$gt", 2)}));
}

TEST(FilterExclude, KeepsTheOpenListsOfTheSource)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "part", 2);
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    ObjectFilter target;

    filter.exclude("/part", target);
    filter.setFilterInt(OperationTypeEqual, "b", 2);
    filter.finish_or();

    EXPECT_EQ(query::of(filter), expected({query::list("$or", {orElement("a", 1), orElement("b", 2)})}));
    EXPECT_EQ(query::of(target), expected({query::int32("$gt", 2)}));
}

TEST(FilterExclude, MovesTheOpenList)
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    ObjectFilter target;

    filter.exclude("/$or", target);
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);

    EXPECT_EQ(query::of(filter), expected({query::int32("b", 2)}));
    EXPECT_EQ(query::of(target), expected({orElement("a", 1)}));
}

TEST(FilterEmptiness, HoldsForANewFilterOnly)
{
    ObjectFilter filter;
    EXPECT_TRUE(filter.isEmpty());
    EXPECT_EQ(query::of(filter), expected({}));

    filter.start_and();
    EXPECT_FALSE(filter.isEmpty());
}

TEST(FilterEmptiness, IsThatOfTheWholeQueryWhereverTheCursorIs)
{
    ObjectFilter filter;
    filter.beginGroup("a");

    EXPECT_FALSE(filter.isEmpty());
    EXPECT_EQ(query::of(filter), expected({query::group("a", {})}));
}

} // namespace
