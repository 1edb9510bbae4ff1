#include "factories.h"
#include "object_filter.h"
#include "query_bytes.h"
#include "virtual_slot.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <type_traits>

namespace {

struct Slot
{
    const char* name;
    std::size_t slot;
};

} // namespace

// The destructor has two entries, so the first operation is the third.
TEST(FilterInterface, KeepsItsSlotOrder)
{
    const Slot slots[] = {
        {"start_and", virtualSlot(&ObjectFilter::start_and)},
        {"finish_and", virtualSlot(&ObjectFilter::finish_and)},
        {"start_or", virtualSlot(&ObjectFilter::start_or)},
        {"finish_or", virtualSlot(&ObjectFilter::finish_or)},
        {"beginGroup", virtualSlot(&ObjectFilter::beginGroup)},
        {"endGroup", virtualSlot(&ObjectFilter::endGroup)},
        {"setFilterString", virtualSlot(&ObjectFilter::setFilterString)},
        {"setFilterBool", virtualSlot(&ObjectFilter::setFilterBool)},
        {"setFilterInt", virtualSlot(&ObjectFilter::setFilterInt)},
        {"setFilterDouble", virtualSlot(&ObjectFilter::setFilterDouble)},
        {"setFilterLongLong", virtualSlot(&ObjectFilter::setFilterLongLong)},
        {"setFilterTime", virtualSlot(&ObjectFilter::setFilterTime)},
        {"setFilterId", virtualSlot(&ObjectFilter::setFilterId)},
        {"include", virtualSlot(&ObjectFilter::include)},
        {"exclude", virtualSlot(&ObjectFilter::exclude)},
        {"isEmpty", virtualSlot(&ObjectFilter::isEmpty)},
        {"toObjectProeprties", virtualSlot(&ObjectFilter::toObjectProeprties)},
        {"fromObjectProperties", virtualSlot(&ObjectFilter::fromObjectProperties)},
        {"operator=", virtualSlot(&ObjectFilter::operator=)},
    };
    std::size_t next = 2;
    for (const Slot& entry : slots)
        EXPECT_EQ(entry.slot, next++) << entry.name;
}

TEST(FilterInterface, KeepsItsSizeAndNumbers)
{
    EXPECT_EQ(sizeof(ObjectFilter), 16U);
    EXPECT_EQ(sizeof(OperationType), 4U);
    EXPECT_EQ(OperationTypeEqual, 0);
    EXPECT_EQ(OperationTypeNotEqual, 1);
    EXPECT_EQ(OperationTypeGreater, 2);
    EXPECT_EQ(OperationTypeGreaterOrEqual, 3);
    EXPECT_EQ(OperationTypeLess, 4);
    EXPECT_EQ(OperationTypeLessOrEqual, 5);
    EXPECT_EQ(OperationTypeExists, 6);
    EXPECT_EQ(OperationTypeNotExists, 7);
    EXPECT_EQ(OperationTypeRegex, 8);
    EXPECT_EQ(OperationTypeUnknown, 9);
    EXPECT_TRUE(std::has_virtual_destructor<ObjectFilter>::value);
}

TEST(FilterInterface, MakesFiltersThatTheCallerDeletes)
{
    const std::unique_ptr<ObjectFilter> filter(createObjectFilter());
    ASSERT_TRUE(filter);
    EXPECT_TRUE(filter->isEmpty());

    filter->setFilterInt(OperationTypeEqual, "a", 1);

    EXPECT_EQ(query::of(*filter), query::expected({query::int32("a", 1)}));
}
