// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Places in a document: the current node, moving to a node, and copies that keep the cursor's place.

#include "object_properties.h"
#include "tree_text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;
using test_support::treeText;

ObjectProperties sample()
{
    ObjectProperties document;
    document.setValueInt32("a/b/v", 1);
    document.beginArray("list");
    for (int value = 0; value < 3; ++value)
    {
        document.beginGroup("e");
        document.setValueInt32("v", value);
        document.endGroup();
    }
    document.beginGroup("");
    return document;
}

TEST(CurrentNode, IsTheRootOfANewDocumentAndThenTheNodeAtTheCursor)
{
    const ObjectProperties document = sample();
    EXPECT_EQ(document.current(), document.root());

    document.beginGroup("a/b");

    EXPECT_EQ(document.current(), document.root()->propertyByKey("a/b"));
}

TEST(MoveTo, MovesToAnyNodeOfTheTree)
{
    const ObjectProperties document = sample();
    const NodePointer list = document.root()->propertyByKey("list");

    for (int index = 0; index < 3; ++index)
    {
        ASSERT_TRUE(document.moveTo(list->childByIndex(index)));
        EXPECT_EQ(document.valueAsInt32("v", -1), index);
    }
    EXPECT_TRUE(document.moveTo(document.root()));
    EXPECT_EQ(document.group(), "");
}

TEST(MoveTo, RefusesANodeOutsideTheTreeAndDoesNotMove)
{
    const ObjectProperties document = sample();
    document.beginGroup("a");
    const NodePointer here = document.current();
    const NodePointer removed = document.root()->propertyByKey("list");
    const NodePointer belowRemoved = removed->childByIndex(1);
    document.root()->remove("list");

    for (const NodePointer& node :
         {NodePointer(), removed, belowRemoved, ObjectProperties().root(), sample().root(), Property::create()})
    {
        EXPECT_FALSE(document.moveTo(node));
        EXPECT_EQ(document.current(), here);
    }
}

TEST(MoveTo, RefusesARemovedNodeAlthoughAnotherHasItsKeyNow)
{
    const ObjectProperties document = sample();
    const NodePointer removed = document.root()->propertyByKey("a");
    document.root()->remove("a");
    document.root()->createGroup("a");

    EXPECT_FALSE(document.moveTo(removed));
}

TEST(MoveTo, FindsANodeWhoseOwnKeyIsNotThatOfItsEntry)
{
    const ObjectProperties document = sample();
    const NodePointer node = document.root()->propertyByKey("a/b");
    node->copy(*Property::create()->createSingleGroup("own"));

    EXPECT_TRUE(document.moveTo(node));
    EXPECT_EQ(document.group(), "own");
}

TEST(MoveTo, MovesACursorBackFromARemovedSubtree)
{
    const ObjectProperties document = sample();
    document.beginGroup("a/b");
    document.root()->remove("a");

    EXPECT_TRUE(document.moveTo(document.root()->propertyByKey("list")));

    EXPECT_EQ(document.childCount(), 3U);
}

TEST(CopyWithCursor, PutsTheCursorOfTheCopyOnTheSameNode)
{
    const ObjectProperties source = sample();
    source.moveTo(source.root()->propertyByKey("list")->childByIndex(1));
    ObjectProperties copy;

    copy.copyWithCursor(source);

    EXPECT_EQ(treeText(copy), treeText(source));
    EXPECT_EQ(copy.current(), copy.root()->propertyByKey("list")->childByIndex(1));
    EXPECT_EQ(source.group(), "e");
}

TEST(CopyWithCursor, KeepsACursorAtTheRoot)
{
    ObjectProperties copy;
    copy.beginGroup("old");

    copy.copyWithCursor(sample());

    EXPECT_EQ(copy.current(), copy.root());
}

TEST(CopyWithCursor, PutsACursorOutsideTheTreeAtTheRoot)
{
    const ObjectProperties source = sample();
    source.beginGroup("a/b");
    source.root()->remove("a");
    ObjectProperties copy;

    copy.copyWithCursor(source);

    EXPECT_EQ(copy.current(), copy.root());
    EXPECT_EQ(source.group(), "b");
}

TEST(CopyWithCursor, OfItselfChangesNothing)
{
    ObjectProperties document = sample();
    document.beginGroup("a/b");
    const NodePointer here = document.current();

    document.copyWithCursor(*&document);

    EXPECT_EQ(document.current(), here);
    EXPECT_EQ(treeText(document), treeText(sample()));
}

} // namespace
