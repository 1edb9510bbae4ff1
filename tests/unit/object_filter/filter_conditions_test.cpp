// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "query_bytes.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>
#include <string>
#include <tuple>

using query::Bytes;
using query::expected;
using query::Query;

namespace {

const std::string someId = "507f1f77bcf86cd799439011";

struct Operation
{
    const char* name;
    OperationType number;
    const char* text; // null: the value stands directly under the key

    friend std::ostream& operator<<(std::ostream& out, const Operation& operation) { return out << operation.name; }
};

const Operation operations[] = {
    {"Equal", OperationTypeEqual, nullptr},
    {"NotEqual", OperationTypeNotEqual, "$ne"},
    {"Greater", OperationTypeGreater, "$gt"},
    {"GreaterOrEqual", OperationTypeGreaterOrEqual, "$gte"},
    {"Less", OperationTypeLess, "$lt"},
    {"LessOrEqual", OperationTypeLessOrEqual, "$lte"},
    {"Exists", OperationTypeExists, "$exists"},
    {"NotExists", OperationTypeNotExists, "$exists"},
    {"Regex", OperationTypeRegex, "$regex"},
    {"Unknown", OperationTypeUnknown, ""},
    {"Ten", static_cast<OperationType>(10), ""},
    {"AThousand", static_cast<OperationType>(1000), ""},
    {"MinusOne", static_cast<OperationType>(-1), ""},
};

struct Kind
{
    const char* name;
    void (*set)(ObjectFilter& filter, OperationType operation, const std::string& key);
    Bytes (*value)(const std::string& key);

    friend std::ostream& operator<<(std::ostream& out, const Kind& kind) { return out << kind.name; }
};

const Kind kinds[] = {
    {"String", [](auto& f, auto op, auto& key) { f.setFilterString(op, key, "text", ""); },
     [](const std::string& key) { return query::text(key, "text"); }},
    {"EmptyString", [](auto& f, auto op, auto& key) { f.setFilterString(op, key, "", ""); },
     [](const std::string& key) { return query::text(key, ""); }},
    {"True", [](auto& f, auto op, auto& key) { f.setFilterBool(op, key, true); },
     [](const std::string& key) { return query::boolean(key, true); }},
    {"False", [](auto& f, auto op, auto& key) { f.setFilterBool(op, key, false); },
     [](const std::string& key) { return query::boolean(key, false); }},
    {"SmallestInt", [](auto& f, auto op, auto& key) { f.setFilterInt(op, key, INT_MIN); },
     [](const std::string& key) { return query::int32(key, INT_MIN); }},
    {"LargestInt", [](auto& f, auto op, auto& key) { f.setFilterInt(op, key, INT_MAX); },
     [](const std::string& key) { return query::int32(key, INT_MAX); }},
    {"Double", [](auto& f, auto op, auto& key) { f.setFilterDouble(op, key, -0.25); },
     [](const std::string& key) { return query::real(key, -0.25); }},
    {"SmallestLongLong", [](auto& f, auto op, auto& key) { f.setFilterLongLong(op, key, LLONG_MIN); },
     [](const std::string& key) { return query::int64(key, LLONG_MIN); }},
    {"LargestLongLong", [](auto& f, auto op, auto& key) { f.setFilterLongLong(op, key, LLONG_MAX); },
     [](const std::string& key) { return query::int64(key, LLONG_MAX); }},
    {"Time", [](auto& f, auto op, auto& key) { f.setFilterTime(op, key, 1500000000000); },
     [](const std::string& key) { return query::time(key, 1500000000000); }},
    {"TimeBefore1970", [](auto& f, auto op, auto& key) { f.setFilterTime(op, key, -1); },
     [](const std::string& key) { return query::time(key, -1); }},
    {"Id", [](auto& f, auto op, auto& key) { f.setFilterId(op, key, someId); },
     [](const std::string& key) { return query::id(key, someId); }},
};

// The condition as an element of a document.
Bytes condition(const Operation& operation, const Kind& kind, const std::string& key)
{
    if (!operation.text)
        return kind.value(key);
    if (operation.number == OperationTypeExists || operation.number == OperationTypeNotExists)
        return query::group(key, {query::boolean("$exists", operation.number == OperationTypeExists)});
    return query::group(key, {kind.value(operation.text)});
}

class FilterCondition : public testing::TestWithParam<std::tuple<Operation, Kind>>
{};

std::string nameOf(const testing::TestParamInfo<FilterCondition::ParamType>& row)
{
    return std::string(std::get<0>(row.param).name) + std::get<1>(row.param).name;
}

template <typename Check>
void forEveryOperationAndKind(Check check)
{
    for (const Operation& operation : operations)
    {
        for (const Kind& kind : kinds)
        {
            SCOPED_TRACE(std::string(operation.name) + kind.name);
            const auto set = [&](ObjectFilter& filter, const std::string& key) {
                kind.set(filter, operation.number, key);
            };
            check(set, condition(operation, kind, "k"));
        }
    }
}

TEST_P(FilterCondition, IsWrittenUnderItsKey)
{
    const auto& [operation, kind] = GetParam();
    ObjectFilter filter;

    kind.set(filter, operation.number, "k");

    EXPECT_FALSE(filter.isEmpty());
    EXPECT_EQ(query::of(filter), expected({condition(operation, kind, "k")}));
}

INSTANTIATE_TEST_SUITE_P(EveryOperationAndKind, FilterCondition,
                         testing::Combine(testing::ValuesIn(operations), testing::ValuesIn(kinds)), nameOf);

TEST(FilterConditions, KeepTheConditionsBeforeAndAfterThem)
{
    forEveryOperationAndKind([](auto set, const Bytes& condition) {
        ObjectFilter filter;
        filter.setFilterInt(OperationTypeEqual, "a", 1);
        filter.setFilterInt(OperationTypeGreater, "z", 2);

        set(filter, "k");
        filter.setFilterInt(OperationTypeEqual, "m", 3);

        EXPECT_EQ(query::of(filter), expected({query::int32("a", 1), condition, query::int32("m", 3),
                                               query::group("z", {query::int32("$gt", 2)})}));
    });
}

TEST(FilterConditions, AreElementsOfTheirOwnInsideAList)
{
    forEveryOperationAndKind([](auto set, const Bytes& condition) {
        ObjectFilter filter;
        filter.setFilterInt(OperationTypeEqual, "a", 1);
        filter.start_or();

        set(filter, "k");
        set(filter, "k");
        filter.finish_or();
        filter.setFilterInt(OperationTypeEqual, "z", 2);

        const Bytes element = query::group("$or", {condition});
        EXPECT_EQ(query::of(filter),
                  expected({query::list("$or", {element, element}), query::int32("a", 1), query::int32("z", 2)}));
    });
}

TEST(FilterConditions, AreWrittenInsideASubDocument)
{
    forEveryOperationAndKind([](auto set, const Bytes& condition) {
        ObjectFilter filter;
        filter.beginGroup("sub");

        set(filter, "k");
        filter.endGroup();
        filter.setFilterInt(OperationTypeEqual, "z", 2);

        EXPECT_EQ(query::of(filter), expected({query::group("sub", {condition}), query::int32("z", 2)}));
    });
}

TEST(FilterConditions, ReplaceTheSameConditionOnTheSameKey)
{
    forEveryOperationAndKind([](auto set, const Bytes& condition) {
        ObjectFilter filter;
        set(filter, "k");

        set(filter, "k");

        EXPECT_EQ(query::of(filter), expected({condition}));
    });
}

TEST(FilterOptions, AreWrittenBesideARegularExpression)
{
    ObjectFilter filter;

    filter.setFilterString(OperationTypeRegex, "a", "^x", "im");

    EXPECT_EQ(query::of(filter),
              expected({query::group("a", {query::text("$options", "im"), query::text("$regex", "^x")})}));
}

TEST(FilterOptions, AreOmittedIfTheyAreEmpty)
{
    ObjectFilter filter;

    filter.setFilterString(OperationTypeRegex, "a", "^x", "");

    EXPECT_EQ(query::of(filter), expected({query::group("a", {query::text("$regex", "^x")})}));
}

TEST(FilterOptions, AreIgnoredByEveryOtherOperation)
{
    for (const Operation& operation : operations)
    {
        if (operation.number == OperationTypeRegex)
            continue;
        SCOPED_TRACE(operation.name);
        ObjectFilter filter;

        filter.setFilterString(operation.number, "a", "text", "i");

        EXPECT_EQ(query::of(filter), expected({condition(operation, kinds[0], "a")}));
    }
}

TEST(FilterOptions, BelongToTheirOwnElementInsideAList)
{
    ObjectFilter filter;
    filter.start_and();

    filter.setFilterString(OperationTypeRegex, "a", "^x", "i");
    filter.setFilterString(OperationTypeRegex, "a", "y$", "");
    filter.finish_and();

    const Bytes first = query::group("a", {query::text("$options", "i"), query::text("$regex", "^x")});
    const Bytes second = query::group("a", {query::text("$regex", "y$")});
    EXPECT_EQ(query::of(filter),
              expected({query::list("$and", {query::group("$and", {first}), query::group("$and", {second})})}));
}

TEST(FilterConditions, OnOneKeyMergeOutsideAList)
{
    ObjectFilter filter;

    filter.setFilterInt(OperationTypeGreater, "n", 1);
    filter.setFilterInt(OperationTypeLess, "n", 5);

    EXPECT_EQ(query::of(filter), expected({query::group("n", {query::int32("$gt", 1), query::int32("$lt", 5)})}));
}

TEST(FilterConditions, OfUnknownOperationsMergeWithOthersOnTheirKey)
{
    ObjectFilter filter;

    filter.setFilterInt(OperationTypeGreater, "n", 1);
    filter.setFilterInt(OperationTypeUnknown, "n", 2);

    EXPECT_EQ(query::of(filter), expected({query::group("n", {query::int32("", 2), query::int32("$gt", 1)})}));
}

TEST(FilterConditions, AreWrittenInKeyOrder)
{
    ObjectFilter filter;

    filter.setFilterInt(OperationTypeEqual, "b", 1);
    filter.setFilterInt(OperationTypeEqual, "a", 2);
    filter.setFilterInt(OperationTypeEqual, "B", 3);

    EXPECT_EQ(query::of(filter), expected({query::int32("B", 3), query::int32("a", 2), query::int32("b", 1)}));
}

TEST(FilterConditions, OfEqualityReplaceTheConditionOfTheKey)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeGreater, "n", 1);

    filter.setFilterString(OperationTypeEqual, "n", "x", "");

    EXPECT_EQ(query::of(filter), expected({query::text("n", "x")}));
}

// Documents convert no value into a group: a value with members is written as the value.
TEST(FilterConditions, OfAnotherOperationDoNotReplaceAnEquality)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeEqual, "n", 1);

    filter.setFilterInt(OperationTypeLess, "n", 5);
    filter.setFilterInt(OperationTypeEqual, "z", 2);

    EXPECT_EQ(query::of(filter), expected({query::int32("n", 1), query::int32("z", 2)}));
}

TEST(FilterConditions, KeepADotInTheKey)
{
    ObjectFilter filter;

    filter.setFilterInt(OperationTypeLess, "a.b", 1);

    EXPECT_EQ(query::of(filter), expected({query::group("a.b", {query::int32("$lt", 1)})}));
}

TEST(FilterConditions, TreatASlashInTheKeyAsAPath)
{
    ObjectFilter filter;

    filter.setFilterInt(OperationTypeEqual, "a/b", 1);
    filter.setFilterInt(OperationTypeEqual, "c", 2);

    EXPECT_EQ(query::of(filter), expected({query::group("a", {query::int32("b", 1)}), query::int32("c", 2)}));
}

// One group is entered by the condition and one is left, whatever the key: callers depend on it.
TEST(FilterConditions, OnAPathLeaveTheCursorInTheGroupBeforeTheLast)
{
    ObjectFilter filter;

    filter.setFilterInt(OperationTypeGreater, "a/b", 1);
    filter.setFilterInt(OperationTypeEqual, "c", 2);

    EXPECT_EQ(query::of(filter),
              expected({query::group("a", {query::group("b", {query::int32("$gt", 1)}), query::int32("c", 2)})}));
}

TEST(FilterConditions, WithALeadingSlashGoToTheTopLevel)
{
    ObjectFilter filter;
    filter.beginGroup("sub");

    filter.setFilterInt(OperationTypeEqual, "/a", 1);
    filter.setFilterInt(OperationTypeEqual, "b", 2);

    EXPECT_EQ(query::of(filter), expected({query::int32("a", 1), query::group("sub", {query::int32("b", 2)})}));
}

// The empty key of a document is its root, also here.
TEST(FilterConditions, OfEqualityWithAnEmptyKeyReplaceTheWholeQuery)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    filter.setFilterInt(OperationTypeEqual, "", 2);

    EXPECT_TRUE(filter.isEmpty());
    EXPECT_EQ(query::of(filter), expected({}));
    EXPECT_EQ(filter.toObjectProeprties().currentValueAsInt32(0), 2);
}

TEST(FilterConditions, OfOtherOperationsWithAnEmptyKeyAreWrittenAtTheTopLevel)
{
    ObjectFilter filter;
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    filter.setFilterInt(OperationTypeGreater, "", 2);
    filter.setFilterInt(OperationTypeUnknown, "", 3);
    filter.setFilterInt(OperationTypeEqual, "b", 4);

    EXPECT_EQ(query::of(filter),
              expected({query::int32("", 3), query::int32("$gt", 2), query::int32("a", 1), query::int32("b", 4)}));
}

TEST(FilterConditions, WithAnEmptyKeyInsideListsLeaveTheFilterUsable)
{
    forEveryOperationAndKind([](auto set, const Bytes& /*condition*/) {
        ObjectFilter filter;
        filter.start_or();
        filter.start_and();

        set(filter, "");
        set(filter, "k");
        filter.finish_and();
        filter.finish_or();
        filter.beginGroup("");
        filter.setFilterInt(OperationTypeEqual, "z", 1);

        EXPECT_EQ(filter.toObjectProeprties().valueAsInt32("z", 0), 1);
    });
}

TEST(FilterConditions, AreAddedToAnArrayUnderTheirKey)
{
    ObjectFilter filter;
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("0", 1);
    filter.fromObjectProperties(document);

    filter.setFilterInt(OperationTypeUnknown, "list", 2);
    filter.setFilterInt(OperationTypeUnknown, "list", 3);

    EXPECT_EQ(query::of(filter),
              expected({query::list("list", {query::int32("", 2), query::int32("", 3), query::int32("0", 1)})}));
}

} // namespace
