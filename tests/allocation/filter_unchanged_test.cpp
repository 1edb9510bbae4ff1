// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "allocation_failure.h"
#include "query_bytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using test_support::failEveryAllocation;

namespace {

// Keys and values that are too long for the small buffer of a string, so that every step allocates.
const std::string longKey(100, 'k');
const std::string longText(100, 't');

std::unique_ptr<ObjectFilter> makeFilter()
{
    auto filter = std::make_unique<ObjectFilter>();
    filter->setFilterInt(OperationTypeGreater, longKey, 1);
    filter->start_or();
    filter->setFilterString(OperationTypeRegex, longKey, longText, longText);
    filter->start_and();
    filter->setFilterString(OperationTypeEqual, longKey, longText, "");
    return filter;
}

// Assigns to a filter after a failed operation. Only assignment and destruction are permitted then.
void checkCanBeAssigned(const std::unique_ptr<ObjectFilter>& filter)
{
    const auto other = makeFilter();
    *filter = *other;
    EXPECT_EQ(query::of(*filter), query::of(*other));
}

template <typename Work>
void checkEveryFailure(Work work)
{
    const std::size_t failures = failEveryAllocation(makeFilter, work, checkCanBeAssigned);
    EXPECT_GT(failures, 0U);
}

TEST(FilterWithoutMemory, CanBeAssignedAfterAFailedCondition)
{
    checkEveryFailure([](auto& f) { f->setFilterString(OperationTypeRegex, longKey, longText, longText); });
    checkEveryFailure([](auto& f) { f->setFilterString(OperationTypeUnknown, longKey, longText, longText); });
    checkEveryFailure([](auto& f) { f->setFilterId(OperationTypeEqual, longKey, longText); });
    checkEveryFailure([](auto& f) { f->setFilterBool(OperationTypeExists, longKey, true); });
}

TEST(FilterWithoutMemory, CanBeAssignedAfterAFailedList)
{
    checkEveryFailure([](auto& f) { f->start_or(); });
    checkEveryFailure([](auto& f) { f->beginGroup(longKey); });
}

TEST(FilterWithoutMemory, CanBeAssignedAfterPartsFailedToMove)
{
    checkEveryFailure([](auto& f) { f->include(*f); });
    checkEveryFailure([](auto& f) { f->exclude("/$or", *f); });
}

TEST(FilterWithoutMemory, IsUntouchedByAFailedAssignment)
{
    const auto source = makeFilter();
    const auto makeOther = [] {
        auto filter = std::make_unique<ObjectFilter>();
        filter->start_and();
        filter->setFilterString(OperationTypeEqual, longKey, "old", "");
        return filter;
    };
    const auto checkUntouched = [&makeOther](const std::unique_ptr<ObjectFilter>& filter) {
        const auto other = makeOther();
        EXPECT_EQ(query::of(*filter), query::of(*other));
        filter->setFilterInt(OperationTypeEqual, "a", 1);
        other->setFilterInt(OperationTypeEqual, "a", 1);
        EXPECT_EQ(query::of(*filter), query::of(*other));
    };

    const auto assign = [&source](const auto& filter) { *filter = *source; };
    EXPECT_GT(failEveryAllocation(makeOther, assign, checkUntouched), 0U);
    const ObjectProperties document = source->toObjectProeprties();
    const auto takeOver = [&document](const auto& filter) { filter->fromObjectProperties(document); };
    EXPECT_GT(failEveryAllocation(makeOther, takeOver, checkUntouched), 0U);
}

TEST(FilterWithoutMemory, DoesNotChangeTheSourceOfAFailedCopy)
{
    const auto before = query::of(*makeFilter());

    EXPECT_GT(failEveryAllocation(
                  makeFilter, [](auto& filter) { const ObjectFilter copy(*filter); },
                  [&before](const auto& filter) { EXPECT_EQ(query::of(*filter), before); }),
              0U);
}

} // namespace
