// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/scopes.h"
#include "document_kinds.h"
#include "object_properties.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>

namespace {

using Keys = std::list<std::string>;

// Keys from the cursor out to the root, slash-separated. Leaves the cursor at the root.
std::string wayOut(const ObjectProperties& document)
{
    std::string way;
    for (int level = 0; level < 10; ++level)
    {
        way += document.key() + "/";
        document.endGroup();
    }
    return way;
}

TEST(Cursor, OfANewDocumentIsAtTheRootGroup)
{
    const ObjectProperties document;

    EXPECT_EQ(document.type(), 2);
    EXPECT_EQ(document.group(), "");
    EXPECT_EQ(document.key(), "");
    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_TRUE(document.isEmpty());
}

TEST(Cursor, EndCallsAtTheRootLeaveItAtTheRoot)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);

    document.endGroup();
    document.endArray();
    document.endObject();
    document.endGroup();

    EXPECT_EQ(document.type(), 2);
    EXPECT_TRUE(document.contains("a"));
}

TEST(Cursor, BeginGroupCreatesEveryGroupOfThePathAndEntersTheLast)
{
    const ObjectProperties document;

    document.beginGroup("a/b/c");

    EXPECT_EQ(document.group(), "c");
    EXPECT_EQ(document.type(), static_cast<int>(Group));
    document.endGroup();
    EXPECT_EQ(document.group(), "b");
    document.endGroup();
    EXPECT_EQ(document.group(), "a");
    document.endGroup();
    EXPECT_EQ(document.group(), "");
    EXPECT_EQ(document.childGroups(), Keys{"a"});
}

TEST(Cursor, BothOverloadsOfBeginGroupDoTheSame)
{
    ObjectProperties document;
    const ObjectProperties& readOnly = document;

    document.beginGroup("a/b");
    document.beginGroup("");
    readOnly.beginGroup("a/b");
    EXPECT_EQ(document.group(), "b");
    readOnly.beginGroup("new");

    EXPECT_EQ(document.group(), "new");
    EXPECT_TRUE(document.contains("/a/b/new"));
    EXPECT_EQ(wayOut(document), "new/b/a////////");
}

TEST(Cursor, BeginGroupEntersAnExistingGroup)
{
    ObjectProperties document;
    document.setValueInt32("a/v", 1);

    document.beginGroup("a");
    EXPECT_EQ(document.valueAsInt32("v", 0), 1);
    document.endGroup();
    document.beginGroup("/a/");

    EXPECT_EQ(document.childCount(), 1U);
    EXPECT_EQ(document.group(), "a");
}

TEST(Cursor, BeginGroupOnAValueEntersItAndKeepsTypeAndValue)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties document;
        kind.setAt(document, "x");

        document.beginGroup("x");

        EXPECT_EQ(document.group(), "x") << kind;
        EXPECT_EQ(document.type(), static_cast<int>(kind.type)) << kind;
        EXPECT_TRUE(kind.hasSample(document)) << kind;
        document.endGroup();
        EXPECT_EQ(document.group(), "") << kind;
    }
}

TEST(Cursor, BeginGroupOnAnUndefinedNodeEntersItAndKeepsItUndefined)
{
    ObjectProperties document;
    document.valueAsInt32("u", 0);

    document.beginGroup("u");

    EXPECT_EQ(document.type(), static_cast<int>(Undefined));
}

TEST(Cursor, BeginGroupWithTheKeyOfAnArrayEntersTheArray)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("0", 1);
    document.endArray();

    document.beginGroup("list");

    EXPECT_EQ(document.type(), static_cast<int>(Array));
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(Cursor, BeginGroupThroughAValueAddsAChildToTheValue)
{
    ObjectProperties document;
    document.setValueString("s", "text");

    document.beginGroup("s/t");

    EXPECT_EQ(document.group(), "t");
    EXPECT_EQ(document.valueAsString("/s", ""), "text");
}

TEST(Cursor, BeginGroupWithTheEmptyKeyOrOneSlashGoesToTheRootFromAnywhere)
{
    for (const char* key : {"", "/"})
    {
        ObjectProperties document;
        document.beginGroup("a/b");
        document.beginGroup(key);
        EXPECT_EQ(document.group(), "") << key;
        EXPECT_EQ(document.childGroups(), Keys{"a"}) << key;

        document.beginArray("list");
        document.beginGroup("e");
        document.beginGroup(key);
        EXPECT_EQ(document.childArrays(), Keys{"list"}) << key;
    }
}

TEST(Cursor, AKeyOfSlashesOnlyIsTheRootToo)
{
    for (const char* key : {"//", "///"})
    {
        ObjectProperties document;
        document.beginGroup("a");
        document.beginGroup(key);
        EXPECT_EQ(document.group(), "") << key;
        document.beginGroup("a");
        document.beginArray(key);
        EXPECT_EQ(document.group(), "") << key;
        EXPECT_EQ(document.childCount(), 1U) << key;
    }
}

TEST(Cursor, AKeyOfSlashesOnlyIsTheRootAlsoWhenTheRootIsAValue)
{
    ObjectProperties document;
    document.setValueInt32("", 5);
    document.beginGroup("a");

    document.beginArray("//");

    EXPECT_EQ(document.type(), static_cast<int>(Int32));
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(Cursor, ALeadingSlashStartsAtTheRootAnyOtherKeyAtTheCursor)
{
    ObjectProperties document;
    document.beginGroup("a");

    document.beginGroup("/b");
    EXPECT_EQ(wayOut(document), "b//////////");

    document.beginGroup("a");
    document.beginGroup("b");
    EXPECT_EQ(wayOut(document), "b/a/////////");
    EXPECT_EQ(document.childGroups(), (Keys{"a", "b"}));
}

TEST(Cursor, ADotInAKeyIsAnOrdinaryCharacter)
{
    ObjectProperties document;

    document.beginGroup("a.b");

    EXPECT_EQ(document.group(), "a.b");
    document.endGroup();
    EXPECT_EQ(document.childGroups(), Keys{"a.b"});
}

TEST(Cursor, BeginArrayCreatesAnArrayAndEntersItAgain)
{
    ObjectProperties document;

    document.beginArray("a");
    EXPECT_EQ(document.type(), static_cast<int>(Array));
    document.setValueInt32("0", 1);
    document.endArray();
    document.beginArray("a");

    EXPECT_EQ(document.childCount(), 1U);
    document.endArray();
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(Cursor, BeginArrayWithAPathCreatesGroupsOnTheWay)
{
    ObjectProperties document;

    document.beginArray("g/h/a");

    EXPECT_EQ(document.type("/g"), static_cast<int>(Group));
    EXPECT_EQ(document.type("/g/h"), static_cast<int>(Group));
    EXPECT_EQ(wayOut(document), "a/h/g////////");
}

TEST(Cursor, BeginArrayWithTheEmptyKeyOrOneSlashGoesToTheRoot)
{
    for (const char* key : {"", "/"})
    {
        ObjectProperties document;
        document.beginArray("a");

        document.beginArray(key);

        EXPECT_EQ(document.group(), "") << key;
        EXPECT_EQ(document.type(), static_cast<int>(Group)) << key;
    }
}

TEST(Cursor, BeginArrayOnAGroupGoesToTheRootAndDoesNotChangeTheGroup)
{
    ObjectProperties document;
    document.setValueInt32("a/g/kept", 1);
    document.beginGroup("a");

    document.beginArray("g");

    EXPECT_EQ(document.group(), "");
    EXPECT_EQ(document.valueAsInt32("/a/g/kept", 0), 1);
    EXPECT_EQ(document.type("/a/g"), static_cast<int>(Group));
}

TEST(Cursor, BeginArrayOnAValueLeavesTheCursorWhereItWas)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties document;
        document.beginGroup("g");
        kind.setAt(document, "x");

        document.beginArray("x");

        EXPECT_EQ(document.group(), "g") << kind;
        EXPECT_TRUE(kind.hasSampleAt(document, "x")) << kind;
        EXPECT_EQ(document.childCount(), 1U) << kind;
    }
}

TEST(Cursor, BeginArrayOnAnUndefinedNodeLeavesTheCursorWhereItWas)
{
    ObjectProperties document;
    document.beginGroup("g");
    document.valueAsInt32("x", 0);

    document.beginArray("x");

    EXPECT_EQ(document.group(), "g");
    EXPECT_EQ(document.type("x"), static_cast<int>(Undefined));
}

TEST(Cursor, OnAnArrayBeginGroupAddsAnElementWhateverTheKey)
{
    ObjectProperties document;
    document.beginArray("list");

    for (const char* key : {"e", "e", "f"})
    {
        const dbc::GroupScope element(document, key);
        EXPECT_EQ(document.group(), key);
        EXPECT_EQ(document.type(), static_cast<int>(Group));
        EXPECT_EQ(document.childCount(), 0U);
    }

    EXPECT_EQ(document.childGroups(), (Keys{"e", "e", "f"}));
}

TEST(Cursor, OnAnArrayBeginArrayAddsAnElementWhateverTheKey)
{
    ObjectProperties document;
    document.beginArray("list");

    for (const char* key : {"e", "e", "f"})
    {
        document.beginArray(key);
        EXPECT_EQ(document.type(), static_cast<int>(Array));
        document.setValueInt32("0", 1);
        EXPECT_EQ(document.childCount(), 1U);
        document.endArray();
    }

    EXPECT_EQ(document.childArrays(), (Keys{"e", "e", "f"}));
}

TEST(Cursor, OnAnArrayBeginArrayWithTheKeyOfAGroupElementAddsAnElementAndStaysInside)
{
    ObjectProperties document;
    document.beginArray("list");
    document.beginGroup("e");
    document.endGroup();

    document.beginArray("e");

    EXPECT_EQ(document.type(), static_cast<int>(Array));
    EXPECT_EQ(document.key(), "e");
    document.endArray();
    EXPECT_EQ(document.childCount(), 2U);
}

TEST(Cursor, OnAnArrayAPathAddsAnElementWithItsInnerNodes)
{
    ObjectProperties document;
    document.beginArray("list");

    document.beginGroup("e/f");
    EXPECT_EQ(wayOut(document), "f/e/list////////");
    document.beginArray("list");
    document.beginArray("e/f");
    EXPECT_EQ(document.type(), static_cast<int>(Array));
    EXPECT_EQ(wayOut(document), "f/e/list////////");

    document.beginArray("list");
    EXPECT_EQ(document.childGroups(), (Keys{"e", "e"}));
}

TEST(Cursor, AKeyWithALeadingSlashInAnArrayStartsAtTheRootAndAddsNoElement)
{
    ObjectProperties document;
    document.beginArray("list");

    document.beginGroup("/g");
    EXPECT_EQ(wayOut(document), "g//////////");
    document.beginArray("list");
    document.beginArray("/list");

    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_EQ(wayOut(document), "list//////////");
}

TEST(Cursor, APathThroughAnArrayEntersAnExistingGroup)
{
    ObjectProperties document;
    document.beginArray("list");
    document.beginGroup("0");
    document.setValueInt32("v", 1);
    document.beginGroup("");

    document.beginGroup("list/0");
    EXPECT_EQ(document.valueAsInt32("v", 0), 1);
    document.beginGroup("");
    document.beginArray("list");
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(Cursor, APathThroughAnArrayToAValueAddsAnElement)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("0", 1);
    document.beginGroup("");

    document.beginGroup("list/0");

    EXPECT_EQ(document.type(), static_cast<int>(Group));
    document.endGroup();
    EXPECT_EQ(document.childCount(), 2U);
}

TEST(Cursor, BeginArrayThroughAnArrayToAGroupGoesToTheRoot)
{
    ObjectProperties document;
    document.beginArray("list");
    document.beginGroup("0");
    document.beginGroup("");

    document.beginArray("list/0");

    EXPECT_EQ(document.group(), "");
    EXPECT_EQ(document.root()->propertyByKey("list")->childCount(), 1U);
}

TEST(Cursor, BeginArrayThroughAnArrayToAnArrayAddsAnElement)
{
    ObjectProperties document;
    document.beginArray("list");
    document.beginArray("0");
    document.beginGroup("");

    document.beginArray("list/0");

    EXPECT_EQ(document.type(), static_cast<int>(Array));
    document.endArray();
    EXPECT_EQ(document.childArrays(), (Keys{"0", "0"}));
}

TEST(Cursor, BeginObjectWalksTheChildrenInKeyOrder)
{
    ObjectProperties document;
    document.setValueInt32("b", 2);
    document.setValueInt32("a", 1);
    document.beginGroup("c");
    document.endGroup();

    ASSERT_TRUE(document.beginObject(0));
    EXPECT_EQ(document.key(), "a");
    document.endObject();
    ASSERT_TRUE(document.beginObject(1));
    EXPECT_EQ(document.key(), "b");
    document.endObject();
    ASSERT_TRUE(document.beginObject(2));
    EXPECT_EQ(document.type(), static_cast<int>(Group));
    document.endObject();
    EXPECT_EQ(document.key(), "");
}

TEST(Cursor, BeginObjectOutsideTheChildrenReturnsFalseAndDoesNotMove)
{
    ObjectProperties document;
    document.setValueInt32("g/a", 1);
    document.setValueInt32("g/b", 2);
    document.beginGroup("g");

    for (const int index : {-2147483647 - 1, -1, 2, 3, 2147483647})
    {
        EXPECT_FALSE(document.beginObject(index)) << index;
        EXPECT_EQ(document.group(), "g") << index;
    }
}

TEST(Cursor, BeginObjectOnAnEmptyNodeReturnsFalse)
{
    const ObjectProperties document;

    EXPECT_FALSE(document.beginObject(0));
}

TEST(Cursor, ElementsWithOneKeyAreReachedByTheirIndex)
{
    ObjectProperties document;
    document.beginArray("list");
    for (int value = 0; value < 3; ++value)
    {
        document.beginGroup("e");
        document.setValueInt32("v", value);
        document.endGroup();
    }

    for (int index = 0; index < 3; ++index)
    {
        ASSERT_TRUE(document.beginObject(index));
        EXPECT_EQ(document.valueAsInt32("v", -1), index);
        document.endObject();
    }
}

TEST(Cursor, EveryEndCallLeavesOneLevelWhateverOpenedIt)
{
    using End = void (ObjectProperties::*)() const;
    for (const End end : {&ObjectProperties::endGroup, &ObjectProperties::endArray, &ObjectProperties::endObject})
    {
        ObjectProperties document;
        document.beginGroup("g");
        document.beginArray("a");
        document.setValueInt32("0", 1);
        document.beginObject(0);

        (document.*end)();
        EXPECT_EQ(document.group(), "a");
        (document.*end)();
        EXPECT_EQ(document.group(), "g");
        (document.*end)();
        EXPECT_EQ(document.group(), "");
    }
}

TEST(Cursor, EndGroupGoesToTheParentInTheTree)
{
    ObjectProperties document;
    document.beginGroup("x");
    document.beginGroup("/a/b");

    document.endGroup();

    EXPECT_EQ(document.group(), "a");
}

TEST(Cursor, ChildListsAndCountAreThoseOfTheCurrentNode)
{
    ObjectProperties document;
    document.setValueInt32("outside", 1);
    document.beginGroup("g");
    document.setValueInt32("v", 1);
    document.beginGroup("h");
    document.endGroup();
    document.beginArray("a");
    document.endArray();

    EXPECT_EQ(document.childCount(), 3U);
    EXPECT_EQ(document.childKeys(), Keys{"v"});
    EXPECT_EQ(document.childGroups(), Keys{"h"});
    EXPECT_EQ(document.childArrays(), Keys{"a"});
    document.beginGroup("v");
    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_TRUE(document.childKeys().empty());
}

TEST(Cursor, IsEmptyChecksTheRootWhereverTheCursorIs)
{
    ObjectProperties document;
    document.beginGroup("g");
    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_FALSE(document.isEmpty());

    document.beginGroup("");
    document.remove("g");
    EXPECT_TRUE(document.isEmpty());
}

TEST(Cursor, InsideARemovedSubtreeWalksTheRemovedNodesUntilItReturnsToTheRoot)
{
    ObjectProperties document;
    document.setValueInt32("a/b/v", 1);
    document.beginGroup("a/b");

    document.root()->remove("a");

    EXPECT_EQ(document.group(), "b");
    EXPECT_EQ(document.valueAsInt32("v", 0), 1);
    document.setValueInt32("w", 2);
    EXPECT_EQ(document.childCount(), 2U);
    EXPECT_TRUE(document.isEmpty());
    document.beginGroup("");
    EXPECT_EQ(document.childCount(), 0U);
}

TEST(Cursor, OnARemovedNodeWhoseParentLivesReturnsToTheParent)
{
    ObjectProperties document;
    document.beginGroup("a");
    document.root()->remove("a");

    document.endGroup();

    EXPECT_EQ(document.group(), "");
    EXPECT_TRUE(document.isEmpty());
}

TEST(Cursor, StaysOnANodeWhoseParentWasDeleted)
{
    ObjectProperties document;
    document.beginGroup("a/b/c");
    document.root()->remove("a");

    document.endGroup();
    document.endGroup();
    EXPECT_EQ(document.group(), "c");

    document.beginGroup("/new");
    EXPECT_EQ(wayOut(document), "new//////////");
}

TEST(Cursor, OnARemovedNodeOutlivesTheDocumentsRoot)
{
    ObjectProperties document;
    document.beginGroup("a/b");
    document.setValueString("v", "a text that is long enough for the heap");
    document.remove("/missing");
    document.root()->clearChilds();

    EXPECT_EQ(document.valueAsString("v", ""), "a text that is long enough for the heap");
}

} // namespace
