// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"
#include "property_kinds.h"
#include "tree_text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;
using test_support::treeText;

NodePointer sampleTree()
{
    const NodePointer root = Property::create()->createSingleGroup("root key");
    for (const ValueKind& kind : valueKinds())
        kind.setAt(*root, "values/" + kind.name);
    root->createGroup("groups/empty");
    root->createProperty("undefined");
    const NodePointer list = root->createArray("list");
    for (int value = 0; value < 12; ++value)
        list->setValueInt32("same key", value);
    root->createProperty("values/String/child of a value")->setValueInt32(3);
    return root;
}

void expectParentLinksBelow(const NodePointer& node)
{
    for (const auto& entry : *node)
    {
        EXPECT_EQ(entry.second->parent(), node);
        expectParentLinksBelow(entry.second);
    }
}

TEST(PropertyCopy, HasTheWholeContentOfTheSource)
{
    const NodePointer source = sampleTree();
    const NodePointer copy = Property::create();

    copy->copy(*source);

    EXPECT_EQ(treeText(*copy), treeText(*source));
    expectParentLinksBelow(copy);
}

TEST(PropertyCopy, SharesNoNodeWithTheSource)
{
    const NodePointer source = sampleTree();
    const std::string before = treeText(*source);
    const NodePointer copy = Property::create();
    copy->copy(*source);

    for (const ValueKind& kind : valueKinds())
        copy->setValueBool("values/" + kind.name, false);
    copy->propertyByKey("list")->remove(0);
    copy->createGroup("new");

    EXPECT_EQ(treeText(*source), before);
}

TEST(PropertyCopy, OutlivesTheSource)
{
    NodePointer source = sampleTree();
    const std::string expected = treeText(*source);
    const NodePointer copy = Property::create();
    copy->copy(*source);

    source.reset();

    EXPECT_EQ(treeText(*copy), expected);
}

TEST(PropertyCopy, ReplacesValueAndChildrenOfTheTarget)
{
    const NodePointer source = sampleTree();
    for (const ValueKind& kind : valueKinds())
    {
        const NodePointer target = Property::create();
        kind.set(*target);
        target->createGroup("old");

        target->copy(*source);

        EXPECT_EQ(treeText(*target), treeText(*source)) << kind;
    }
}

TEST(PropertyCopy, OfAValueReplacesAGroup)
{
    for (const ValueKind& kind : valueKinds())
    {
        const NodePointer source = Property::create();
        kind.set(*source);
        const NodePointer target = sampleTree();

        target->copy(*source);

        EXPECT_TRUE(kind.hasSample(*target)) << kind;
        EXPECT_EQ(target->childCount(), 0U) << kind;
    }
}

TEST(PropertyCopy, OfAnEmptyNodeEmptiesTheTarget)
{
    const NodePointer target = sampleTree();

    target->copy(*Property::create());

    EXPECT_EQ(target->type(), static_cast<int>(Undefined));
    EXPECT_EQ(target->childCount(), 0U);
    EXPECT_EQ(target->key(), "");
}

TEST(PropertyCopy, CopiesTheKeyOfTheSourceButKeepsTheKeyOfTheEntry)
{
    const NodePointer parent = Property::create();
    const NodePointer target = parent->createGroup("entry");

    target->copy(*sampleTree());

    EXPECT_EQ(target->key(), "root key");
    EXPECT_EQ(parent->propertyBySingleKey("entry"), target);
    EXPECT_FALSE(parent->containsSingleKey("root key"));
    EXPECT_EQ(target->parent(), parent);
}

TEST(PropertyCopy, OfACopyKeepsEntryKeysAndOwnKeysApart)
{
    const NodePointer parent = Property::create();
    const NodePointer renamed = Property::create()->createSingleGroup("own key");
    parent->createGroup("entry")->copy(*renamed);

    const NodePointer copy = Property::create();
    copy->copy(*parent);

    ASSERT_TRUE(copy->containsSingleKey("entry"));
    EXPECT_EQ(copy->propertyBySingleKey("entry")->key(), "own key");
}

TEST(PropertyCopy, KeepsEqualKeysInTheirOrder)
{
    const NodePointer copy = Property::create();

    copy->copy(*sampleTree());

    const NodePointer list = copy->propertyByKey("list");
    ASSERT_EQ(list->childCount(), 12U);
    for (int index = 0; index < 12; ++index)
        EXPECT_EQ(list->childByIndex(index)->currentValueAsInt32(-1), index);
}

TEST(PropertyCopy, OfANodeIntoItselfChangesNothing)
{
    const NodePointer root = sampleTree();
    const std::string before = treeText(*root);
    const NodePointer member = root->propertyByKey("values");

    root->copy(*root);

    EXPECT_EQ(treeText(*root), before);
    EXPECT_EQ(root->propertyByKey("values"), member);
    EXPECT_EQ(root->key(), "root key");
}

TEST(PropertyCopy, OfANodeIntoItsOwnSubtreeIsTheTreeAsItWasBefore)
{
    const NodePointer root = sampleTree();
    const std::string before = treeText(*root);
    const NodePointer inner = root->propertyByKey("groups/empty");

    inner->copy(*root);

    EXPECT_EQ(treeText(*inner), before);
    EXPECT_EQ(root->propertyByKey("groups/empty"), inner);
    EXPECT_EQ(inner->propertyByKey("groups/empty")->childCount(), 0U);
    expectParentLinksBelow(root);
}

TEST(PropertyCopy, OfADescendantBecomesThatSubtree)
{
    const NodePointer root = sampleTree();
    const std::string expected = treeText(*root->propertyByKey("values"));

    root->copy(*root->propertyByKey("values"));

    EXPECT_EQ(treeText(*root), expected);
    EXPECT_EQ(root->key(), "values");
    expectParentLinksBelow(root);
}

TEST(PropertyCopy, OfADeepDescendantThatNothingElseOwnsBecomesThatNode)
{
    const NodePointer root = Property::create();
    Property& leaf = *root->createProperty("a/b/c/d");
    leaf.setValueString("a text that is long enough for the heap");

    root->copy(leaf);

    EXPECT_EQ(root->currentValueAsString(""), "a text that is long enough for the heap");
    EXPECT_EQ(root->key(), "d");
    EXPECT_EQ(root->childCount(), 0U);
}

TEST(PropertyCopy, OfASiblingDoesNotChangeTheSibling)
{
    const NodePointer root = sampleTree();
    const std::string expected = treeText(*root->propertyByKey("list"));

    root->propertyByKey("groups")->copy(*root->propertyByKey("list"));

    EXPECT_EQ(treeText(*root->propertyByKey("groups")), expected);
    EXPECT_EQ(treeText(*root->propertyByKey("list")), expected);
}

TEST(PropertyCopy, KeepsAChildOfTheTargetAliveThatIsOwnedElsewhere)
{
    const NodePointer target = sampleTree();
    const NodePointer held = target->propertyByKey("values");
    const std::string before = treeText(*held);

    target->copy(*Property::create());

    EXPECT_EQ(treeText(*held), before);
}

} // namespace
