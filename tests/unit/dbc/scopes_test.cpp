// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/scopes.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using dbc::ArrayScope;
using dbc::CursorScope;
using dbc::GroupScope;
using dbc::ObjectScope;

TEST(GroupScope, EntersTheGroupAndLeavesItAtTheEndOfTheBlock)
{
    ObjectProperties document;
    {
        const GroupScope scope(document, "a");
        EXPECT_TRUE(scope);
        document.setValueInt("x", 1);
    }
    EXPECT_EQ(document.group(), "");
    EXPECT_EQ(document.valueAsInt("/a/x", 0), 1);
}

TEST(GroupScope, LeavesAPathOfSeveralSegmentsWhereOneEndGroupStaysInside)
{
    ObjectProperties document;
    document.beginGroup("a/b/c");
    document.endGroup();
    ASSERT_EQ(document.group(), "b") << "the trap: one end leaves one segment";
    document.beginGroup("");

    {
        const GroupScope scope(document, "a/b/c");
        EXPECT_EQ(document.group(), "c");
    }
    EXPECT_EQ(document.current(), document.root());
}

TEST(GroupScope, ReturnsFromAKeyThatBeginsAtTheRoot)
{
    ObjectProperties document;
    document.beginGroup("a/b");
    const auto origin = document.current();
    {
        const GroupScope scope(document, "/elsewhere");
        EXPECT_EQ(document.group(), "elsewhere");
    }
    EXPECT_EQ(document.current(), origin);
}

TEST(GroupScope, LeavesWhenAnExceptionEndsIt)
{
    ObjectProperties document;
    const auto fill = [&document] {
        const GroupScope outer(document, "a");
        const GroupScope inner(document, "b");
        throw std::runtime_error("in between");
    };
    EXPECT_THROW(fill(), std::runtime_error);
    EXPECT_EQ(document.current(), document.root());
}

TEST(GroupScope, WorksOnAConstDocument)
{
    ObjectProperties document;
    document.setValueInt("a/x", 1);
    const ObjectProperties& reader = document;
    {
        const GroupScope scope(reader, "a");
        EXPECT_EQ(reader.valueAsInt("x", 0), 1);
    }
    EXPECT_EQ(reader.group(), "");
}

TEST(GroupScope, IsFalseOnTheKeyOfAValue)
{
    ObjectProperties document;
    document.setValueInt("x", 1);
    const GroupScope scope(document, "x");
    EXPECT_FALSE(scope);
}

TEST(GroupScope, GoesToTheRootWhenItsOriginHasLeftTheDocument)
{
    ObjectProperties document;
    document.beginGroup("a");
    {
        const GroupScope scope(document, "/b");
        document.remove("nothing");
        const GroupScope root(document, "/");
        document.remove("a");
    }
    EXPECT_EQ(document.current(), document.root());
}

TEST(ArrayScope, EntersTheArrayAndLeavesItAtTheEndOfTheBlock)
{
    ObjectProperties document;
    {
        const ArrayScope scope(document, "list");
        EXPECT_TRUE(scope);
        document.setValueInt("0", 1);
    }
    EXPECT_EQ(document.current(), document.root());
    EXPECT_EQ(document.type("list"), Array);
}

TEST(ArrayScope, IsFalseOnTheKeyOfAGroupWhereTheCursorGoesToTheRoot)
{
    ObjectProperties document;
    document.setValueInt("a/g/kept", 1);
    const GroupScope outside(document, "a");
    document.beginArray("g");
    ASSERT_EQ(document.current(), document.root()) << "the trap: elements set now become fields of the root";
    document.beginGroup("/a");
    const auto origin = document.current();
    {
        const ArrayScope scope(document, "g");
        EXPECT_FALSE(scope);
    }
    EXPECT_EQ(document.current(), origin);
}

TEST(ArrayScope, IsFalseOnTheKeyOfAValue)
{
    ObjectProperties document;
    document.setValueInt("x", 1);
    const ArrayScope scope(document, "x");
    EXPECT_FALSE(scope);
}

TEST(ArrayScope, IsFalseOnTheKeyOfAValueInsideAnArrayOfTheSameDocument)
{
    ObjectProperties document;
    document.beginArray("list");
    const auto list = document.current();
    {
        const ArrayScope scope(document, "/list");
        EXPECT_TRUE(document.current() == list);
    }
    EXPECT_EQ(document.current(), list);
}

TEST(ObjectScope, EntersTheChildAndLeavesItAtTheEndOfTheBlock)
{
    ObjectProperties document;
    document.setValueInt("a", 1);
    document.setValueInt("b", 2);
    {
        const ObjectScope scope(document, 1);
        EXPECT_TRUE(scope);
        EXPECT_EQ(document.key(), "b");
    }
    EXPECT_EQ(document.current(), document.root());
}

TEST(ObjectScope, IsFalseBehindTheLastChildAndDoesNotLeaveTheLevel)
{
    ObjectProperties document;
    document.beginGroup("a");
    const auto origin = document.current();
    {
        const ObjectScope scope(document, 0);
        EXPECT_FALSE(scope);
    }
    EXPECT_EQ(document.current(), origin) << "an endObject() without its beginObject() would stand on the root";
}

TEST(CursorScope, PutsBackACursorThatOthersMoved)
{
    ObjectProperties document;
    document.beginGroup("a");
    const auto origin = document.current();
    {
        const CursorScope scope(document);
        document.beginGroup("/x/y/z");
    }
    EXPECT_EQ(document.current(), origin);
}

} // namespace
