// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_filter/object_filter_d.h"
#include "query_bytes.h"
#include "virtual_slots.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using query::Bytes;
using query::expected;
using test_support::expectSlotsInOrder;
using test_support::operation;
using Calls = std::vector<std::string>;

namespace {

// Tells which steps ran, and can be set to a depth that no test would reach by opening lists.
class RecordingFilter : public ObjectFilterPrivate
{
public:
    void copy(const ObjectFilterPrivate& other) override
    {
        calls.push_back("copy");
        ObjectFilterPrivate::copy(other);
    }
    ObjectProperties d() const override
    {
        calls.push_back("d");
        return ObjectFilterPrivate::d();
    }
    void setD(const ObjectProperties& properties) override
    {
        calls.push_back("setD");
        ObjectFilterPrivate::setD(properties);
    }
    std::string operationTypeName(OperationType operation) override
    {
        calls.push_back("operationTypeName");
        return ObjectFilterPrivate::operationTypeName(operation);
    }
    std::string arrayOperationName(ArrayOperationType operation) override
    {
        calls.push_back("arrayOperationName");
        return ObjectFilterPrivate::arrayOperationName(operation);
    }
    void finish_array_operation() override
    {
        calls.push_back("finish_array_operation");
        ObjectFilterPrivate::finish_array_operation();
    }
    void begin_operation() override
    {
        calls.push_back("begin_operation");
        ObjectFilterPrivate::begin_operation();
    }
    void end_operation() override
    {
        calls.push_back("end_operation");
        ObjectFilterPrivate::end_operation();
    }

    int depth() const { return m_depth; }
    void setDepth(int depth) { m_depth = depth; }

    mutable Calls calls;
};

// Names of its own, and no elements around conditions.
class RenamingFilter : public ObjectFilterPrivate
{
public:
    std::string operationTypeName(OperationType operation) override
    {
        return operation == OperationTypeGreater ? name : ObjectFilterPrivate::operationTypeName(operation);
    }
    std::string arrayOperationName(ArrayOperationType operation) override
    {
        return operation == ArrayOperationTypeOr ? "$nor" : ObjectFilterPrivate::arrayOperationName(operation);
    }

    std::string name = "$above";
};

class WithoutElements : public ObjectFilterPrivate
{
public:
    void begin_operation() override {}
    void end_operation() override {}
};

class WithoutEnds : public ObjectFilterPrivate
{
public:
    void finish_array_operation() override {}
};

query::Query queryOf(const ObjectFilterPrivate& filter)
{
    return query::of(filter.toObjectProeprties());
}

TEST(FilterSteps, KeepTheirSlotOrder)
{
    using F = ObjectFilterPrivate;
    const std::vector<test_support::VirtualOperation> operations = {
        operation("copy", &F::copy),
        operation("start_and", &F::start_and),
        operation("finish_and", &F::finish_and),
        operation("start_or", &F::start_or),
        operation("finish_or", &F::finish_or),
        operation("beginGroup", &F::beginGroup),
        operation("endGroup", &F::endGroup),
        operation("setFilterString", &F::setFilterString),
        operation("setFilterBool", &F::setFilterBool),
        operation("setFilterInt", &F::setFilterInt),
        operation("setFilterDouble", &F::setFilterDouble),
        operation("setFilterLongLong", &F::setFilterLongLong),
        operation("setFilterTime", &F::setFilterTime),
        operation("setFilterId", &F::setFilterId),
        operation("include", &F::include),
        operation("exclude", &F::exclude),
        operation("isEmpty", &F::isEmpty),
        operation("toObjectProeprties", &F::toObjectProeprties),
        operation("fromObjectProperties", &F::fromObjectProperties),
        operation("d", &F::d),
        operation("setD", &F::setD),
        operation("operationTypeName", &F::operationTypeName),
        operation("arrayOperationName", &F::arrayOperationName),
        operation("finish_array_operation", &F::finish_array_operation),
        operation("begin_operation", &F::begin_operation),
        operation("end_operation", &F::end_operation),
    };
    expectSlotsInOrder(operations, test_support::behindTheDestructor);
}

TEST(FilterSteps, StoreADocumentAHundredListsAndTheirNumber)
{
    EXPECT_EQ(sizeof(ObjectFilterPrivate::ArrayOperationType), 4U);
    EXPECT_EQ(ObjectFilterPrivate::ArrayOperationTypeAnd, 0);
    EXPECT_EQ(ObjectFilterPrivate::ArrayOperationTypeOr, 1);
    struct Layout
    {
        void* table;
        ObjectProperties document;
        ObjectFilterPrivate::ArrayOperationType lists[100];
        int depth;
    };
    EXPECT_EQ(sizeof(ObjectFilterPrivate), sizeof(Layout));
}

TEST(FilterSteps, NameEveryOperation)
{
    ObjectFilterPrivate filter;
    const char* const names[] = {"$eq", "$ne", "$gt", "$gte", "$lt", "$lte", "$exists", "$exists", "$regex", ""};
    for (int number = 0; number < 10; ++number)
        EXPECT_EQ(filter.operationTypeName(static_cast<OperationType>(number)), names[number]) << number;
    for (const int number : {10, 1000, -1, std::numeric_limits<int>::max()})
        EXPECT_EQ(filter.operationTypeName(static_cast<OperationType>(number)), "") << number;
}

TEST(FilterSteps, NameEveryList)
{
    using List = ObjectFilterPrivate::ArrayOperationType;
    ObjectFilterPrivate filter;
    EXPECT_EQ(filter.arrayOperationName(ObjectFilterPrivate::ArrayOperationTypeAnd), "$and");
    EXPECT_EQ(filter.arrayOperationName(ObjectFilterPrivate::ArrayOperationTypeOr), "$or");
    for (const int number : {2, -1, std::numeric_limits<int>::max()})
        EXPECT_EQ(filter.arrayOperationName(static_cast<List>(number)), "") << number;
}

TEST(FilterSteps, RunForEveryConditionOutsideAList)
{
    RecordingFilter filter;
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    EXPECT_EQ(filter.calls, (Calls{"begin_operation", "end_operation"}));

    filter.calls.clear();
    filter.setFilterString(OperationTypeRegex, "a", "x", "i");
    EXPECT_EQ(filter.calls, (Calls{"begin_operation", "operationTypeName", "end_operation"}));
}

TEST(FilterSteps, RunForEveryTypeOfCondition)
{
    RecordingFilter filter;
    filter.setFilterString(OperationTypeNotEqual, "a", "x", "");
    filter.setFilterBool(OperationTypeExists, "a", true);
    filter.setFilterInt(OperationTypeNotEqual, "a", 1);
    filter.setFilterDouble(OperationTypeNotEqual, "a", 1);
    filter.setFilterLongLong(OperationTypeNotEqual, "a", 1);
    filter.setFilterTime(OperationTypeNotEqual, "a", 1);
    filter.setFilterId(OperationTypeUnknown, "a", "507f1f77bcf86cd799439011");

    Calls all;
    for (int number = 0; number < 7; ++number)
        all.insert(all.end(), {"begin_operation", "operationTypeName", "end_operation"});
    EXPECT_EQ(filter.calls, all);
}

TEST(FilterSteps, RunForListsAndTheirElements)
{
    RecordingFilter filter;
    filter.start_or();
    EXPECT_EQ(filter.calls, (Calls{"begin_operation", "arrayOperationName"}));

    filter.calls.clear();
    filter.start_and();
    EXPECT_EQ(filter.calls, (Calls{"begin_operation", "arrayOperationName", "arrayOperationName"}));

    filter.calls.clear();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    EXPECT_EQ(filter.calls, (Calls{"begin_operation", "arrayOperationName", "end_operation"}));

    filter.calls.clear();
    filter.include(ObjectFilterPrivate());
    EXPECT_EQ(filter.calls, (Calls{"arrayOperationName"}));

    filter.calls.clear();
    filter.finish_and();
    filter.finish_or();
    EXPECT_EQ(filter.calls,
              (Calls{"finish_array_operation", "end_operation", "finish_array_operation", "end_operation"}));
    EXPECT_EQ(filter.depth(), 0);
}

TEST(FilterSteps, RunWhenPartsMoveAndDocumentsAreTaken)
{
    ObjectFilterPrivate source;
    RecordingFilter filter;

    source.exclude("a", filter);
    EXPECT_EQ(filter.calls, (Calls{"copy"}));

    filter.calls.clear();
    filter.fromObjectProperties(filter.toObjectProeprties());
    EXPECT_EQ(filter.calls, (Calls{"d", "setD"}));
}

TEST(FilterSteps, CanBeGivenOtherNames)
{
    RenamingFilter filter;

    filter.start_or();
    filter.setFilterInt(OperationTypeGreater, "a", 1);
    filter.include(ObjectFilterPrivate());
    filter.finish_or();

    const Bytes above = query::group("a", {query::int32("$above", 1)});
    EXPECT_EQ(queryOf(filter),
              expected({query::list("$nor", {query::group("$nor", {above}), query::group("$nor", {})})}));
}

TEST(FilterSteps, KeepTheQueryIfAnOperationHasTheEmptyName)
{
    RenamingFilter filter;
    filter.name.clear();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    filter.setFilterInt(OperationTypeGreater, "b", 2);

    EXPECT_EQ(queryOf(filter), expected({query::int32("a", 1), query::group("b", {query::int32("", 2)})}));
}

TEST(FilterSteps, CanLeaveOutTheElements)
{
    WithoutElements filter;

    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "b", 2);

    EXPECT_EQ(queryOf(filter), expected({query::list("$or", {query::int32("a", 1)}), query::int32("b", 2)}));
}

TEST(FilterSteps, CanLeaveListsOpen)
{
    WithoutEnds filter;

    filter.start_or();
    filter.finish_or();
    filter.finish_and();
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(queryOf(filter), expected({query::list("$or", {query::group("$or", {query::int32("a", 1)})})}));
}

TEST(FilterSteps, CountListsBeyondTheHundredth)
{
    RecordingFilter filter;
    for (int number = 1; number <= 250; ++number)
    {
        number % 2 == 0 ? filter.start_and() : filter.start_or();
        ASSERT_EQ(filter.depth(), number);
    }
    filter.calls.clear();

    filter.start_and();
    EXPECT_EQ(filter.calls, Calls()); // nothing but the count
    for (int number = 250; number >= 0; --number)
    {
        filter.finish_or();
        ASSERT_EQ(filter.depth(), number);
    }
    filter.finish_or();
    EXPECT_EQ(filter.depth(), 0);
}

TEST(FilterSteps, NeverCountBeyondTheLargestNumber)
{
    RecordingFilter filter;
    for (int number = 0; number < 100; ++number)
        filter.start_or();
    const query::Query before = queryOf(filter);
    filter.setDepth(std::numeric_limits<int>::max() - 1);

    filter.start_and();
    filter.start_or();
    filter.start_and();
    EXPECT_EQ(filter.depth(), std::numeric_limits<int>::max());
    EXPECT_EQ(queryOf(filter), before);

    filter.finish_and();
    EXPECT_EQ(filter.depth(), std::numeric_limits<int>::max() - 1);
}

TEST(FilterSteps, CopyTheListsThatCount)
{
    RecordingFilter source;
    source.start_or();
    source.start_and();
    RecordingFilter copy;
    copy.start_and();
    copy.start_and();
    copy.start_and();

    copy.copy(source);
    EXPECT_EQ(copy.depth(), 2);
    copy.finish_and();
    copy.setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(queryOf(copy), expected({query::list("$or", {query::group("$or", {query::list("$and", {})}),
                                                           query::group("$or", {query::int32("a", 1)})})}));
}

TEST(FilterSteps, CopyAFilterOntoItself)
{
    RecordingFilter filter;
    filter.start_or();
    filter.setFilterInt(OperationTypeEqual, "a", 1);
    filter.beginGroup("b");

    filter.copy(filter);
    filter.endGroup();
    filter.finish_or();
    filter.setFilterInt(OperationTypeEqual, "c", 2);

    const Bytes list = query::list("$or", {query::group("$or", {query::int32("a", 1)}), query::group("b", {})});
    EXPECT_EQ(queryOf(filter), expected({list, query::int32("c", 2)}));
}

TEST(FilterSteps, StayInASubDocumentWhenAFilterIsCopiedOntoItself)
{
    RecordingFilter filter;
    filter.beginGroup("sub");

    filter.copy(filter);
    filter.setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(queryOf(filter), expected({query::group("sub", {query::int32("a", 1)})}));
}

} // namespace
