// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The implementation behind the document: what a key is resolved against, and how little it holds.

#include "object_properties/object_properties_d.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <type_traits>

namespace {

TEST(DocumentImplementation, HasOnlyTheRootAndTheCursorAsMembers)
{
    EXPECT_TRUE((std::is_same_v<decltype(ObjectPropertiesPrivate::root), std::shared_ptr<Property>>));
    EXPECT_TRUE((std::is_same_v<decltype(ObjectPropertiesPrivate::current), std::shared_ptr<Property>>));
    EXPECT_EQ(sizeof(ObjectPropertiesPrivate), 2 * sizeof(std::shared_ptr<Property>));
    const ObjectPropertiesPrivate document;
    EXPECT_LT(static_cast<const void*>(&document.root), static_cast<const void*>(&document.current));
}

TEST(DocumentImplementation, StartsWithTheCursorAtARootGroup)
{
    const ObjectPropertiesPrivate document;

    EXPECT_TRUE(document.root->isGroup());
    EXPECT_EQ(document.current, document.root);
    EXPECT_EQ(document.root->key(), "");
}

TEST(DocumentImplementation, ResolvesTheEmptyKeyAndALeadingSlashFromTheRootAnyOtherFromTheCursor)
{
    const ObjectPropertiesPrivate document;
    document.beginGroup("a");

    for (const char* key : {"", "/", "//", "/a", "/a/b"})
        EXPECT_EQ(&document.rootGroup(key), document.root.get()) << key;
    for (const char* key : {"a", "a/", "a/b", " ", ".", "\\"})
        EXPECT_EQ(&document.rootGroup(key), document.current.get()) << key;
}

TEST(DocumentImplementation, NavigationMovesTheCursorOfAConstDocument)
{
    const ObjectPropertiesPrivate document;

    document.beginGroup("a");
    document.beginArray("b");

    EXPECT_EQ(document.current->key(), "b");
    EXPECT_EQ(document.current->parent()->parent(), document.root);
}

TEST(DocumentImplementation, TheCursorIsNeverEmpty)
{
    ObjectPropertiesPrivate document;
    document.setValueInt32("v", 1);

    document.beginArray("v");
    ASSERT_TRUE(document.current);
    document.beginArray("v/w/x");
    ASSERT_TRUE(document.current);
    document.beginArray("/v/w");

    EXPECT_EQ(document.current, document.root);
}

TEST(DocumentImplementation, ACopyKeepsTheRootNodeAndMovesTheCursorThere)
{
    ObjectPropertiesPrivate source;
    source.setValueInt32("a/v", 1);
    source.beginGroup("a");
    ObjectPropertiesPrivate target;
    const std::shared_ptr<Property> root = target.root;
    target.beginGroup("old");

    target.copy(source);

    EXPECT_EQ(target.root, root);
    EXPECT_EQ(target.current, root);
    EXPECT_EQ(target.valueAsInt32("a/v", 0), 1);
    EXPECT_EQ(source.current->key(), "a");
}

} // namespace
