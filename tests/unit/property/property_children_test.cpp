// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"
#include "property_kinds.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace {

using NodePointer = std::shared_ptr<Property>;
using Keys = std::list<std::string>;

NodePointer newGroup()
{
    return Property::create()->createSingleGroup("group");
}

NodePointer newArray()
{
    return Property::create()->createSingleArray("array");
}

// Keys of the entries, in index order.
Keys keysOf(const Property& node)
{
    Keys keys;
    for (const auto& entry : node)
        keys.push_back(entry.first);
    return keys;
}

// Int32 values of the elements, in index order.
std::vector<int> valuesOf(const Property& node)
{
    std::vector<int> values;
    for (const auto& entry : node)
        values.push_back(entry.second->currentValueAsInt32(-1));
    return values;
}

TEST(PropertyNode, CreateReturnsANodeWithoutKeyParentTypeAndChildren)
{
    const NodePointer node = Property::create();

    EXPECT_EQ(node->key(), "");
    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
    EXPECT_EQ(node->childCount(), 0U);
    EXPECT_THROW(node->parent(), std::bad_weak_ptr);
    EXPECT_EQ(node.use_count(), 1);
}

TEST(PropertyNode, ConstructedItHasItsKeyAndKeepsTheParentWeakly)
{
    const NodePointer parent = Property::create();

    const auto node = std::make_shared<Property>("key", parent);

    EXPECT_EQ(node->key(), "key");
    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
    EXPECT_EQ(node->parent(), parent);
    EXPECT_EQ(parent.use_count(), 1);
    EXPECT_EQ(parent->childCount(), 0U);
}

TEST(PropertyNode, InitAndGetPtrNeedASharedOwner)
{
    Property unowned("key", nullptr);

    EXPECT_THROW(unowned.init(), std::bad_weak_ptr);
    EXPECT_THROW(unowned.getPtr(), std::bad_weak_ptr);
}

TEST(PropertyNode, WithoutASharedOwnerThrowsForChildren)
{
    Property unowned("key", nullptr);
    const NodePointer source = Property::create();
    source->setValueInt32("value", 1);

    EXPECT_THROW(unowned.createSingleProperty("child"), std::bad_weak_ptr);
    EXPECT_THROW(unowned.setValueInt32("group/child", 1), std::bad_weak_ptr);
    EXPECT_THROW(unowned.copy(*source), std::bad_weak_ptr);
    EXPECT_EQ(unowned.childCount(), 0U);
    EXPECT_EQ(unowned.key(), "key");
}

TEST(PropertyNode, InitDoesNotAddAnOwner)
{
    const NodePointer node = Property::create();

    node->init();

    EXPECT_EQ(node.use_count(), 1);
    EXPECT_EQ(node->getPtr(), node);
}

TEST(PropertyNode, ParentThrowsOnARootAndOnAnOrphan)
{
    NodePointer root = Property::create();
    EXPECT_THROW(root->parent(), std::bad_weak_ptr);
    const NodePointer child = root->createSingleGroup("child");
    EXPECT_EQ(child->parent(), root);

    root.reset();

    EXPECT_THROW(child->parent(), std::bad_weak_ptr);
}

TEST(PropertyNode, AChildOwnedElsewhereOutlivesItsTreeWithItsSubtree)
{
    NodePointer root = Property::create();
    const NodePointer child = root->createGroup("a/b");
    child->setValueInt32("c/d", 4);

    root.reset();

    EXPECT_EQ(child->valueAsInt32("c/d", 0), 4);
}

TEST(PropertyNode, ATreeIsFreedFromItsRoot)
{
    NodePointer root = Property::create();
    const std::weak_ptr<Property> inner = root->createGroup("a/b/c");

    root.reset();

    EXPECT_TRUE(inner.expired());
}

TEST(PropertySingleKey, IsTakenLiterally)
{
    const NodePointer node = newGroup();
    const NodePointer child = node->createSingleProperty("a/b");

    EXPECT_TRUE(node->containsSingleKey("a/b"));
    EXPECT_EQ(node->propertyBySingleKey("a/b"), child);
    EXPECT_EQ(child->key(), "a/b");
    EXPECT_FALSE(node->containsSingleKey("a"));
    EXPECT_FALSE(node->contains("a/b"));
    node->remove("a/b");
    EXPECT_EQ(node->childCount(), 0U);
}

TEST(PropertySingleKey, TheEmptyKeyIsAKeyLikeAnyOther)
{
    const NodePointer node = newGroup();

    const NodePointer child = node->createSingleGroup("");

    EXPECT_TRUE(node->containsSingleKey(""));
    EXPECT_EQ(node->propertyBySingleKey(""), child);
    EXPECT_FALSE(node->contains(""));
}

TEST(PropertySingleKey, AMissingKeyReturnsAnEmptyPointer)
{
    const NodePointer node = newGroup();
    node->createSingleProperty("b");

    for (const char* key : {"", "a", "bb", "c", "B"})
    {
        EXPECT_FALSE(node->containsSingleKey(key)) << key;
        EXPECT_EQ(node->propertyBySingleKey(key), nullptr) << key;
    }
}

TEST(PropertySingleKey, KeysWithZeroBytesAreComparedInFull)
{
    const NodePointer node = newGroup();

    node->createSingleProperty(std::string("a\0b", 3));

    EXPECT_TRUE(node->containsSingleKey(std::string("a\0b", 3)));
    EXPECT_FALSE(node->containsSingleKey("a"));
}

TEST(PropertySingleCreation, CreatesAChildOfTheRequestedType)
{
    const NodePointer node = newGroup();

    EXPECT_EQ(node->createSingleGroup("g")->type(), static_cast<int>(Group));
    EXPECT_EQ(node->createSingleArray("a")->type(), static_cast<int>(Array));
    EXPECT_EQ(node->createSingleProperty("p")->type(), static_cast<int>(Undefined));
    for (const char* key : {"g", "a", "p"})
    {
        EXPECT_EQ(node->propertyBySingleKey(key)->key(), key);
        EXPECT_EQ(node->propertyBySingleKey(key)->parent(), node);
    }
}

TEST(PropertySingleCreation, ANodeOfAnyTypeCanHaveChildren)
{
    const NodePointer node = Property::create();
    node->setValueInt32(5);

    const NodePointer child = node->createSingleGroup("g");

    EXPECT_EQ(node->propertyBySingleKey("g"), child);
    EXPECT_EQ(node->currentValueAsInt32(0), 5);
}

TEST(PropertySingleCreation, GroupAndPropertyReturnAnExistingChildOfAnyType)
{
    const NodePointer node = newGroup();
    const NodePointer group = node->createSingleGroup("group");
    const NodePointer array = node->createSingleArray("array");
    for (const auto& child : {group, array})
    {
        EXPECT_EQ(node->createSingleGroup(child->key()), child);
        EXPECT_EQ(node->createSingleProperty(child->key()), child);
    }
    for (const ValueKind& kind : valueKinds())
    {
        const NodePointer child = node->createSingleProperty(kind.name);
        kind.set(*child);

        EXPECT_EQ(node->createSingleGroup(kind.name), child) << kind;
        EXPECT_EQ(node->createSingleProperty(kind.name), child) << kind;
        EXPECT_TRUE(kind.hasSample(*child)) << kind;
    }
}

TEST(PropertySingleCreation, ArrayReturnsAnExistingArrayAndNullForAnyOtherType)
{
    const NodePointer node = newGroup();
    const NodePointer array = node->createSingleArray("array");
    const NodePointer group = node->createSingleGroup("group");
    const NodePointer undefined = node->createSingleProperty("undefined");

    EXPECT_EQ(node->createSingleArray("array"), array);
    EXPECT_EQ(node->createSingleArray("group"), nullptr);
    EXPECT_EQ(node->createSingleArray("undefined"), nullptr);
    EXPECT_TRUE(group->isGroup());
    EXPECT_EQ(undefined->type(), static_cast<int>(Undefined));
    for (const ValueKind& kind : valueKinds())
    {
        kind.setAt(*node, kind.name);

        EXPECT_EQ(node->createSingleArray(kind.name), nullptr) << kind;
        EXPECT_TRUE(kind.hasSampleAt(*node, kind.name)) << kind;
    }
    EXPECT_EQ(node->childCount(), 3U + valueKinds().size());
}

TEST(PropertySingleCreation, OnAnArrayEveryCallAddsAnElementUnderTheLiteralKey)
{
    const NodePointer array = newArray();

    const NodePointer property = array->createSingleProperty("k");
    const NodePointer group = array->createSingleGroup("k");
    const NodePointer inner = array->createSingleArray("k");
    const NodePointer last = array->createSingleProperty("k");

    ASSERT_EQ(array->childCount(), 4U);
    EXPECT_EQ(array->childByIndex(0), property);
    EXPECT_EQ(array->childByIndex(1), group);
    EXPECT_EQ(array->childByIndex(2), inner);
    EXPECT_EQ(array->childByIndex(3), last);
    EXPECT_TRUE(inner->isArray());
    for (const NodePointer& element : {property, group, inner, last})
        EXPECT_EQ(element->key(), "k");
}

TEST(PropertyOrder, ChildrenAreSortedByteByByte)
{
    const NodePointer node = newGroup();

    for (const char* key : {"2", "10", "1"})
        node->createSingleProperty(key);
    EXPECT_EQ(keysOf(*node), (Keys{"1", "10", "2"}));

    for (const char* key : {"\xc3\xa9", "a", "B", "", "~"})
        node->createSingleProperty(key);
    EXPECT_EQ(keysOf(*node), (Keys{"", "1", "10", "2", "B", "a", "~", "\xc3\xa9"}));
}

TEST(PropertyOrder, EqualKeysKeepTheOrderOfInsertion)
{
    const NodePointer array = newArray();

    for (int value = 0; value < 20; ++value)
        array->setValueInt32(value % 2 ? "odd" : "even", value);

    EXPECT_EQ(valuesOf(*array),
              (std::vector<int>{0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19}));
}

TEST(PropertyOrder, IndexAndIterationAgree)
{
    const NodePointer node = newGroup();
    for (const char* key : {"e", "a", "d", "b", "c"})
        node->createSingleProperty(key);

    int index = 0;
    for (const auto& [key, child] : *node)
    {
        EXPECT_EQ(node->childByIndex(index), child);
        EXPECT_EQ(child->key(), key);
        ++index;
    }
    EXPECT_EQ(index, 5);
    const Property& readOnly = *node;
    EXPECT_EQ(readOnly.begin()->first, "a");
    EXPECT_EQ(std::distance(readOnly.begin(), readOnly.end()), 5);
}

TEST(PropertyIndex, OutsideTheChildrenReturnsAnEmptyPointer)
{
    const NodePointer node = newGroup();
    EXPECT_EQ(node->childByIndex(0), nullptr);
    node->createSingleProperty("a");
    node->createSingleProperty("b");

    for (const int index : {-2147483647 - 1, -1, 2, 3, 2147483647})
        EXPECT_EQ(node->childByIndex(index), nullptr) << index;
}

TEST(PropertyRemoval, ByKeyRemovesTheFirstOfEqualKeys)
{
    const NodePointer array = newArray();
    for (const int value : {1, 2, 3})
        array->setValueInt32("k", value);

    array->remove("k");
    EXPECT_EQ(valuesOf(*array), (std::vector<int>{2, 3}));
    array->remove("missing");
    EXPECT_EQ(array->childCount(), 2U);
}

TEST(PropertyRemoval, RemoveAllRemovesEveryChildWithTheKey)
{
    const NodePointer array = newArray();
    array->setValueInt32("k", 1);
    array->setValueInt32("other", 2);
    array->setValueInt32("k", 3);

    array->removeAll("k");
    EXPECT_EQ(valuesOf(*array), std::vector<int>{2});
    array->removeAll("missing");
    EXPECT_EQ(array->childCount(), 1U);
}

TEST(PropertyRemoval, ByIndexRemovesThatChildAndRenumbersNoKey)
{
    for (int index = 0; index < 5; ++index)
    {
        const NodePointer array = newArray();
        std::vector<int> expected;
        Keys expectedKeys;
        for (int value = 0; value < 5; ++value)
        {
            array->setValueInt32(std::to_string(value), value);
            if (value == index)
                continue;
            expected.push_back(value);
            expectedKeys.push_back(std::to_string(value));
        }

        array->remove(index);

        EXPECT_EQ(valuesOf(*array), expected);
        EXPECT_EQ(keysOf(*array), expectedKeys);
    }
}

TEST(PropertyRemoval, ByAnIndexOutsideTheChildrenChangesNothing)
{
    const NodePointer node = newGroup();
    node->remove(0);
    node->createSingleProperty("a");
    node->createSingleProperty("b");

    for (const int index : {-1, 2, 2147483647})
        node->remove(index);

    EXPECT_EQ(keysOf(*node), (Keys{"a", "b"}));
}

TEST(PropertyRemoval, ARemovedChildKeepsItsParentLinkAndItsSubtree)
{
    const NodePointer node = newGroup();
    const NodePointer child = node->createGroup("a");
    child->setValueInt32("b", 1);

    node->remove("a");

    EXPECT_EQ(child->parent(), node);
    EXPECT_EQ(child->valueAsInt32("b", 0), 1);
    EXPECT_EQ(child.use_count(), 1);
}

TEST(PropertyRemoval, AcceptsTheKeyOfTheChildItself)
{
    const NodePointer node = newGroup();
    const Property& first = *node->createSingleProperty("a key that is long enough for the heap");
    node->remove(first.keyView());
    EXPECT_EQ(node->childCount(), 0U);

    const Property& second = *node->createSingleProperty("a key that is long enough for the heap");
    node->removeAll(second.keyView());
    EXPECT_EQ(node->childCount(), 0U);
}

TEST(PropertyRemoval, ClearChildsReleasesEveryChildAndKeepsTypeAndKey)
{
    const NodePointer node = newGroup();
    const std::weak_ptr<Property> child = node->createGroup("a/b");

    node->clearChilds();

    EXPECT_EQ(node->childCount(), 0U);
    EXPECT_TRUE(child.expired());
    EXPECT_TRUE(node->isGroup());
    EXPECT_EQ(node->key(), "group");
}

TEST(PropertyRemoval, ClearMakesAnUndefinedNodeWithItsKeyAndParentKept)
{
    const NodePointer parent = newGroup();
    const NodePointer node = parent->createGroup("a");
    node->setValueInt32("b", 1);

    node->clear();

    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
    EXPECT_EQ(node->key(), "a");
    EXPECT_EQ(node->parent(), parent);
    EXPECT_EQ(node->childCount(), 0U);
}

void addOneChildOfEachKind(Property& node)
{
    node.createSingleGroup("group 2");
    node.createSingleGroup("group 1");
    node.createSingleArray("array 2");
    node.createSingleArray("array 1");
    node.createSingleProperty("undefined");
    for (const ValueKind& kind : valueKinds())
        kind.set(*node.createSingleProperty(kind.name));
}

TEST(PropertyChildLists, SortTheChildrenOfAGroupByTheirType)
{
    const NodePointer group = newGroup();
    addOneChildOfEachKind(*group);

    EXPECT_EQ(group->childGroups(), (Keys{"group 1", "group 2"}));
    EXPECT_EQ(group->childArrays(), (Keys{"array 1", "array 2"}));
    EXPECT_EQ(group->childKeys(),
              (Keys{"Binary", "Bool", "Double", "Id", "Int32", "Int64", "Regex", "String", "Time", "undefined"}));
}

TEST(PropertyChildLists, SortTheElementsOfAnArrayByTheirTypeAndKeepDuplicates)
{
    const NodePointer array = newArray();
    for (int count = 0; count < 2; ++count)
    {
        array->createSingleGroup("g");
        array->createSingleArray("a");
        array->createSingleProperty("p");
    }

    EXPECT_EQ(array->childGroups(), (Keys{"g", "g"}));
    EXPECT_EQ(array->childArrays(), (Keys{"a", "a"}));
    EXPECT_EQ(array->childKeys(), (Keys{"p", "p"}));
}

TEST(PropertyChildLists, AreEmptyUnlessTheNodeIsAGroupOrAnArray)
{
    const NodePointer undefined = Property::create();
    addOneChildOfEachKind(*undefined);
    EXPECT_TRUE(undefined->childKeys().empty());
    EXPECT_TRUE(undefined->childGroups().empty());
    EXPECT_TRUE(undefined->childArrays().empty());

    for (const ValueKind& kind : valueKinds())
    {
        const NodePointer node = Property::create();
        kind.set(*node);
        addOneChildOfEachKind(*node);

        EXPECT_TRUE(node->childKeys().empty()) << kind;
        EXPECT_TRUE(node->childGroups().empty()) << kind;
        EXPECT_TRUE(node->childArrays().empty()) << kind;
    }
}

TEST(PropertyChildLists, ReturnTheEntryKeyOfValuesAndGroupsAndTheOwnKeyOfArrays)
{
    const NodePointer group = newGroup();
    const NodePointer source = Property::create();
    source->createProperty("value")->setValueInt32(1);
    source->createGroup("members");
    source->createArray("elements");
    group->createProperty("1")->copy(*source->propertyByKey("value"));
    group->createProperty("2")->copy(*source->propertyByKey("members"));
    group->createProperty("3")->copy(*source->propertyByKey("elements"));

    EXPECT_EQ(group->childKeys(), Keys{"1"});
    EXPECT_EQ(group->childGroups(), Keys{"2"});
    EXPECT_EQ(group->childArrays(), Keys{"elements"});
}

} // namespace
