// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_properties.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Keys = std::vector<std::string>;

// A group of three; the cursor stands on it.
ObjectProperties threeMembers()
{
    ObjectProperties document;
    document.setValueInt32("g/b", 2);
    document.setValueInt32("g/a", 1);
    document.setValueInt32("g/c", 3);
    document.beginGroup("g");
    return document;
}

Keys visitedKeys(const ObjectProperties& document)
{
    Keys keys;
    document.forEachChild([&] { keys.push_back(document.key()); });
    return keys;
}

TEST(ChildVisitor, VisitsEveryChildInIndexOrderWithTheCursorOnIt)
{
    const ObjectProperties document = threeMembers();

    std::vector<int> values;
    document.forEachChild([&] { values.push_back(document.currentValueAsInt32(0)); });

    EXPECT_EQ(values, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(visitedKeys(document), (Keys{"a", "b", "c"}));
}

TEST(ChildVisitor, DoesNotMoveTheCursorOfTheCaller)
{
    const ObjectProperties document = threeMembers();

    document.forEachChild([] {});

    EXPECT_EQ(document.key(), "g");
    document.endGroup();
    EXPECT_EQ(document.key(), "");
}

TEST(ChildVisitor, IsNotCalledOnANodeWithoutChildren)
{
    const ObjectProperties document;

    EXPECT_EQ(visitedKeys(document), Keys());
}

TEST(ChildVisitor, VisitsElementsWithOneKeyInTheOrderOfInsertion)
{
    ObjectProperties document;
    document.beginArray("list");
    for (const int value : {3, 1, 2})
        document.setValueInt32("same", value);

    std::vector<int> values;
    document.forEachChild([&] { values.push_back(document.currentValueAsInt32(0)); });

    EXPECT_EQ(values, (std::vector<int>{3, 1, 2}));
}

TEST(ChildVisitor, EndsTheWalkWhenItReturnsFalse)
{
    const ObjectProperties document = threeMembers();

    Keys keys;
    document.forEachChild([&] {
        keys.push_back(document.key());
        return document.key() != "b";
    });

    EXPECT_EQ(keys, (Keys{"a", "b"}));
    EXPECT_EQ(document.key(), "g");
}

TEST(ChildVisitor, PutsTheCursorBackWhenItThrows)
{
    const ObjectProperties document = threeMembers();

    EXPECT_THROW(document.forEachChild([] { throw std::runtime_error("stop"); }), std::runtime_error);

    EXPECT_EQ(document.key(), "g");
}

TEST(ChildVisitor, MayMoveTheCursorWithoutMovingItBack)
{
    ObjectProperties document = threeMembers();

    int visits = 0;
    document.forEachChild([&] {
        ++visits;
        document.beginGroup("");
    });

    EXPECT_EQ(visits, 3);
    EXPECT_EQ(document.key(), "g");
}

TEST(ChildVisitor, VisitsTheChildrenOfAChildWithinAVisit)
{
    ObjectProperties document;
    document.setValueInt32("a/x", 1);
    document.setValueInt32("a/y", 2);
    document.setValueInt32("b/z", 3);

    Keys paths;
    document.forEachChild([&] {
        const std::string group = document.key();
        document.forEachChild([&] { paths.push_back(group + "/" + document.key()); });
    });

    EXPECT_EQ(paths, (Keys{"a/x", "a/y", "b/z"}));
    EXPECT_EQ(document.key(), "");
}

TEST(ChildVisitor, SetsValuesOfTheChildrenItVisits)
{
    ObjectProperties document = threeMembers();

    document.forEachChild([&] { document.setValueInt32(document.currentValueAsInt32(0) * 10); });

    EXPECT_EQ(document.valueAsInt32("a", 0), 10);
    EXPECT_EQ(document.valueAsInt32("c", 0), 30);
}

TEST(ChildVisitor, VisitsChildrenThatItRemovesButNotThoseThatItAdds)
{
    ObjectProperties document = threeMembers();

    Keys keys;
    document.forEachChild([&] {
        keys.push_back(document.key());
        document.beginGroup("/g");
        while (document.childCount() > 0)
            document.remove(0);
        document.setValueInt32("d", 4);
    });

    EXPECT_EQ(keys, (Keys{"a", "b", "c"}));
    EXPECT_EQ(visitedKeys(document), (Keys{"d"}));
}

TEST(ChildVisitor, MayBeAFunctionObjectWithState)
{
    struct Counter
    {
        void operator()() { ++count; }
        int count = 0;
    };
    const ObjectProperties document = threeMembers();

    Counter counter;
    document.forEachChild(counter);

    EXPECT_EQ(counter.count, 3);
}

} // namespace
