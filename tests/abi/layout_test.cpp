// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// What callers were compiled against: sizes, the order of fields, the numbers of enumerators.

#include "database_client.h"
#include "object_filter.h"
#include "object_properties.h"
#include "property.h"
#include "property_internals.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

// Where a member stands inside an object, told from an object.
template <typename Class, typename Member>
std::size_t offsetOf(const Class& object, Member Class::*member)
{
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&(object.*member)) -
                                    reinterpret_cast<const char*>(&object));
}

} // namespace

struct PropertyChildrenField
{
    using Member = Property::Children Property::*;
    friend Member revealed(PropertyChildrenField);
};
template struct RevealMember<PropertyChildrenField, &Property::m_children>;

struct PropertyParentField
{
    using Member = std::weak_ptr<Property> Property::*;
    friend Member revealed(PropertyParentField);
};
template struct RevealMember<PropertyParentField, &Property::m_parent>;

struct ItemValueField
{
    using Member = Property::PropertyItem::PropertyValue Property::PropertyItem::*;
    friend Member revealed(ItemValueField);
};
template struct RevealMember<ItemValueField, &Property::PropertyItem::m_value>;

struct ItemBinaryField
{
    using Member = std::vector<unsigned char> Property::PropertyItem::*;
    friend Member revealed(ItemBinaryField);
};
template struct RevealMember<ItemBinaryField, &Property::PropertyItem::m_binary>;

struct ItemPatternField
{
    using Member = std::string Property::PropertyItem::*;
    friend Member revealed(ItemPatternField);
};
template struct RevealMember<ItemPatternField, &Property::PropertyItem::m_regexPattern>;

struct ItemOptionsField
{
    using Member = std::string Property::PropertyItem::*;
    friend Member revealed(ItemOptionsField);
};
template struct RevealMember<ItemOptionsField, &Property::PropertyItem::m_regexOptions>;

struct ItemKeyField
{
    using Member = std::string Property::PropertyItem::*;
    friend Member revealed(ItemKeyField);
};
template struct RevealMember<ItemKeyField, &Property::PropertyItem::m_key>;

TEST(Layout, PublicClassesHaveATableAndOnePointer)
{
    EXPECT_EQ(sizeof(ObjectProperties), 16U);
    EXPECT_EQ(sizeof(ObjectFilter), 16U);
    EXPECT_EQ(sizeof(DataBaseClient), 16U);
}

TEST(Layout, NodesHaveTheirSizes)
{
    EXPECT_EQ(sizeof(Property::PropertyItem::PropertyValue), 8U);
    EXPECT_EQ(sizeof(Property::PropertyItem), 136U);
    EXPECT_EQ(sizeof(Property), 224U);
    EXPECT_EQ(alignof(Property), 8U);
}

TEST(Layout, TheFieldsOfANodeAreItemChildrenAndParent)
{
    const std::shared_ptr<Property> node = Property::create();

    EXPECT_EQ(offsetOf(*node, revealed(ItemOfNode())), 24U);
    EXPECT_EQ(offsetOf(*node, revealed(PropertyChildrenField())), 160U);
    EXPECT_EQ(offsetOf(*node, revealed(PropertyParentField())), 208U);
}

TEST(Layout, TheFieldsOfAnItemAreValueBytesPatternOptionsKeyAndType)
{
    const Property::PropertyItem item;

    EXPECT_EQ(offsetOf(item, revealed(ItemValueField())), 0U);
    EXPECT_EQ(offsetOf(item, revealed(ItemBinaryField())), 8U);
    EXPECT_EQ(offsetOf(item, revealed(ItemPatternField())), 32U);
    EXPECT_EQ(offsetOf(item, revealed(ItemOptionsField())), 64U);
    EXPECT_EQ(offsetOf(item, revealed(ItemKeyField())), 96U);
    EXPECT_EQ(offsetOf(item, revealed(StoredKind())), 128U);
}

TEST(Layout, OnlyDocumentsAndFiltersAreCopied)
{
    EXPECT_TRUE(std::is_copy_constructible_v<ObjectProperties>);
    EXPECT_TRUE(std::is_copy_assignable_v<ObjectProperties>);
    EXPECT_TRUE(std::is_copy_constructible_v<ObjectFilter>);
    EXPECT_TRUE(std::is_copy_assignable_v<ObjectFilter>);
    EXPECT_FALSE(std::is_copy_constructible_v<DataBaseClient>);
    EXPECT_FALSE(std::is_copy_assignable_v<DataBaseClient>);
    EXPECT_FALSE(std::is_move_constructible_v<DataBaseClient>);
    EXPECT_FALSE(std::is_move_assignable_v<DataBaseClient>);
    EXPECT_FALSE(std::is_copy_constructible_v<Property>);
    EXPECT_FALSE(std::is_copy_assignable_v<Property>);
}

TEST(Layout, EnumerationsHave32Bits)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<PropertyType>, int>));
    EXPECT_EQ(sizeof(OperationType), 4U);
    EXPECT_EQ(sizeof(UpdateFlag), 4U);
    EXPECT_EQ(sizeof(UpdateCommand), 4U);
}

TEST(Layout, PropertyTypesHaveTheirNumbers)
{
    EXPECT_EQ(None, 0);
    EXPECT_EQ(Undefined, 1);
    EXPECT_EQ(Group, 2);
    EXPECT_EQ(Array, 3);
    EXPECT_EQ(String, 4);
    EXPECT_EQ(Bool, 5);
    EXPECT_EQ(Int32, 6);
    EXPECT_EQ(Int64, 7);
    EXPECT_EQ(Double, 8);
    EXPECT_EQ(Time, 9);
    EXPECT_EQ(Id, 10);
    EXPECT_EQ(Binary, 11);
    EXPECT_EQ(Regex, 12);
}

TEST(Layout, OperationsOfAFilterHaveTheirNumbers)
{
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
}

TEST(Layout, UpdatesHaveTheirNumbers)
{
    EXPECT_EQ(UpdateFlagNone, 0);
    EXPECT_EQ(UpdateFlagUpsert, 1);
    EXPECT_EQ(UpdateFlagMultiUpdate, 2);
    EXPECT_EQ(UpdateCommandUndefined, 0);
    EXPECT_EQ(UpdateCommandReplace, 1);
    EXPECT_EQ(UpdateCommandRename, 2);
    EXPECT_EQ(UpdateCommandSet, 3);
    EXPECT_EQ(UpdateCommandUnset, 4);
    EXPECT_EQ(UpdateCommandAddToSet, 5);
    EXPECT_EQ(UpdateCommandPop, 6);
    EXPECT_EQ(UpdateCommandPull, 7);
    EXPECT_EQ(UpdateCommandPullAll, 8);
    EXPECT_EQ(UpdateCommandPush, 9);
}
