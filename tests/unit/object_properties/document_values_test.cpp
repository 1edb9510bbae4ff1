// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "document_kinds.h"
#include "object_properties.h"

#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <string>
#include <vector>

namespace {

class DocumentValue : public testing::TestWithParam<DocumentKind>
{};

TEST_P(DocumentValue, SetByKeyHasItsTypeAndIsReadByKey)
{
    ObjectProperties document;

    GetParam().setAt(document, "a/b");

    EXPECT_EQ(document.type("a/b"), static_cast<int>(GetParam().type));
    EXPECT_EQ(document.type("a"), static_cast<int>(Group));
    EXPECT_TRUE(GetParam().hasSampleAt(document, "a/b"));
    EXPECT_TRUE(GetParam().hasSampleAt(document, "//a//b/"));
}

TEST_P(DocumentValue, SetAtTheCursorHasItsTypeAndIsReadThere)
{
    ObjectProperties document;
    document.beginGroup("a");
    document.setValueInt32("lost", 1);

    GetParam().set(document);

    EXPECT_EQ(document.type(), static_cast<int>(GetParam().type));
    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_EQ(document.key(), "a");
    EXPECT_TRUE(GetParam().hasSample(document));
    EXPECT_TRUE(GetParam().hasSampleAt(document, "/a"));
}

TEST_P(DocumentValue, IsReadOnlyByTheGettersOfItsType)
{
    ObjectProperties document;
    GetParam().setAt(document, "v");
    document.beginGroup("v");

    for (const DocumentKind& other : documentKinds())
    {
        // Int32 and Int, and Int64 and LongLong, are two names of one kind.
        if (other.type == GetParam().type)
            continue;
        EXPECT_TRUE(other.givesDefault(document)) << other;
        EXPECT_TRUE(other.givesDefaultAt(document, "/v")) << other;
    }
    EXPECT_TRUE(GetParam().hasSample(document));
}

TEST_P(DocumentValue, MissingReturnsTheDefaultAndAddsAnUndefinedNode)
{
    const ObjectProperties document;

    EXPECT_TRUE(GetParam().givesDefaultAt(document, "a/missing"));

    EXPECT_TRUE(document.contains("a/missing"));
    EXPECT_EQ(document.type("a/missing"), static_cast<int>(Undefined));
    EXPECT_EQ(document.type("a"), static_cast<int>(Group));
}

TEST_P(DocumentValue, IsTheDefaultAtACursorOnAGroup)
{
    const ObjectProperties document;

    EXPECT_TRUE(GetParam().givesDefault(document));
    EXPECT_EQ(document.type(), static_cast<int>(Group));
}

TEST_P(DocumentValue, WithALeadingSlashIsWrittenAndReadAtTheRoot)
{
    ObjectProperties document;
    document.beginGroup("a");

    GetParam().setAt(document, "/x");
    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_TRUE(GetParam().hasSampleAt(document, "/x"));
    EXPECT_FALSE(document.contains("x"));

    GetParam().setAt(document, "x");
    EXPECT_EQ(document.type("/a/x"), static_cast<int>(GetParam().type));
    EXPECT_TRUE(GetParam().hasSampleAt(document, "x"));
}

TEST_P(DocumentValue, WithTheEmptyKeyIsTheRootItself)
{
    for (const char* key : {"", "/", "//"})
    {
        ObjectProperties document;
        document.setValueInt32("member", 1);
        document.beginGroup("group");

        GetParam().setAt(document, key);

        EXPECT_TRUE(GetParam().hasSampleAt(document, key)) << key;
        EXPECT_TRUE(document.isEmpty()) << key;
        EXPECT_EQ(document.group(), "group") << key;
        document.beginGroup("");
        EXPECT_EQ(document.type(), static_cast<int>(GetParam().type)) << key;
        EXPECT_TRUE(GetParam().hasSample(document)) << key;
    }
}

TEST_P(DocumentValue, OnAnArraySetTwiceIsTwoElements)
{
    ObjectProperties document;
    document.beginArray("list");

    GetParam().setAt(document, "v");
    GetParam().setAt(document, "v");

    ASSERT_EQ(document.childCount(), 2U);
    for (int index = 0; index < 2; ++index)
    {
        ASSERT_TRUE(document.beginObject(index));
        EXPECT_TRUE(GetParam().hasSample(document));
        document.endObject();
    }
}

TEST_P(DocumentValue, ReadWithTheCursorOnAnArrayAddsAnElementAndIsTheDefault)
{
    ObjectProperties document;
    document.beginArray("list");
    GetParam().setAt(document, "v");

    EXPECT_TRUE(GetParam().givesDefaultAt(document, "v"));

    EXPECT_EQ(document.childCount(), 2U);
}

TEST_P(DocumentValue, ReplacesAnyValueOfItsKey)
{
    for (const DocumentKind& before : documentKinds())
    {
        ObjectProperties document;
        before.setAt(document, "v");

        GetParam().setAt(document, "v");

        EXPECT_TRUE(GetParam().hasSampleAt(document, "v")) << "after " << before;
        EXPECT_EQ(document.childCount(), 1U) << "after " << before;
    }
    ObjectProperties document;
    document.setValueInt32("v/inner", 1);
    GetParam().setAt(document, "v");
    EXPECT_FALSE(document.contains("v/inner"));
}

INSTANTIATE_TEST_SUITE_P(Names, DocumentValue, testing::ValuesIn(documentKinds()), RowName());

TEST(DocumentValues, IntIsInt32AndLongLongIsInt64)
{
    ObjectProperties document;

    document.setValueInt("n", 5);
    EXPECT_EQ(document.type("n"), 6);
    EXPECT_EQ(document.valueAsInt32("n", 0), 5);
    document.setValueLongLong("n", 5);
    EXPECT_EQ(document.type("n"), 7);
    EXPECT_EQ(document.valueAsInt64("n", 0), 5);
    EXPECT_EQ(document.valueAsInt("n", 9), 9);
}

TEST(DocumentValues, IntegersKeepTheirExtremesUnderBothNames)
{
    ObjectProperties document;
    for (const int value : {INT_MIN, INT_MAX})
    {
        document.setValueInt("n", value);
        EXPECT_EQ(document.valueAsInt32("n", 0), value);
        document.setValueInt32("n", value);
        EXPECT_EQ(document.valueAsInt("n", 0), value);
    }
    for (const long long value : {LLONG_MIN, LLONG_MAX})
    {
        document.setValueLongLong("n", value);
        EXPECT_EQ(document.valueAsInt64("n", 0), value);
        document.setValueInt64("n", static_cast<long>(value));
        EXPECT_EQ(document.valueAsLongLong("n", 0), value);
        document.setValueTime("n", value);
        EXPECT_EQ(document.valueAsTime("n", 0), value);
    }
}

TEST(DocumentValues, ExtremeDefaultsComeBackUnchanged)
{
    const ObjectProperties document;

    EXPECT_EQ(document.valueAsLongLong("n", LLONG_MIN), LLONG_MIN);
    EXPECT_EQ(document.valueAsTime("n", LLONG_MAX), LLONG_MAX);
    EXPECT_EQ(document.currentValueAsLongLong(LLONG_MAX), LLONG_MAX);
    EXPECT_EQ(document.currentValueAsTime(LLONG_MIN), LLONG_MIN);
}

TEST(DocumentValues, AMissingStringReturnsTheDefaultAndAddsAnUndefinedNode)
{
    const ObjectProperties document;

    EXPECT_EQ(document.valueAsString("missing", "d"), "d");

    EXPECT_TRUE(document.contains("missing"));
    EXPECT_EQ(document.type("missing"), 1);
}

TEST(DocumentValues, TypeIsZeroAndContainsIsFalseForTheEmptyKey)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);

    for (const char* key : {"", "/", "//"})
    {
        EXPECT_EQ(document.type(key), 0) << key;
        EXPECT_FALSE(document.contains(key)) << key;
    }
}

TEST(DocumentValues, TypeAndContainsOfAMissingKeyAddNothing)
{
    const ObjectProperties document;

    EXPECT_EQ(document.type("a/b"), 0);
    EXPECT_FALSE(document.contains("a/b"));

    EXPECT_TRUE(document.isEmpty());
}

TEST(DocumentValues, TypeAndContainsStartAtTheCursorOrAtTheRoot)
{
    ObjectProperties document;
    document.setValueInt32("a/x", 1);
    document.setValueString("x", "1");
    document.beginGroup("a");

    EXPECT_EQ(document.type("x"), static_cast<int>(Int32));
    EXPECT_EQ(document.type("/x"), static_cast<int>(String));
    EXPECT_TRUE(document.contains("/a/x"));
    EXPECT_FALSE(document.contains("a/x"));
}

TEST(DocumentValues, ASequenceOfTypesAtOneKeyEndsWithTheLast)
{
    ObjectProperties document;

    for (const DocumentKind& kind : documentKinds())
        kind.setAt(document, "v");

    EXPECT_EQ(document.type("v"), static_cast<int>(Regex));
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(DocumentRemoval, ByIndexRemovesTheFirstInKeyOrderNotTheFirstInserted)
{
    ObjectProperties document;
    document.setValueInt32("b", 1);
    document.setValueInt32("a", 2);

    document.remove(0);

    EXPECT_EQ(document.childKeys(), std::list<std::string>{"b"});
}

TEST(DocumentRemoval, ByIndexRemovesAChildOfTheCurrentNode)
{
    ObjectProperties document;
    document.setValueInt32("g/a", 1);
    document.setValueInt32("g/b", 2);
    document.beginGroup("g");

    document.remove(1);
    for (const int outside : {-1, 1, 2})
        document.remove(outside);

    EXPECT_EQ(document.childKeys(), std::list<std::string>{"a"});
    document.endGroup();
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(DocumentRemoval, ByKeyRemovesAChildOfTheCursorLiterally)
{
    ObjectProperties document;
    document.setValueInt32("g/a", 1);
    document.setValueInt32("a", 2);

    document.remove("g/a");
    EXPECT_TRUE(document.contains("g/a"));
    document.beginGroup("g");
    document.remove("a");

    EXPECT_EQ(document.childCount(), 0U);
    EXPECT_TRUE(document.contains("/a"));
}

TEST(DocumentRemoval, ByKeyWithALeadingSlashRemovesThatVeryKeyFromTheRoot)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);
    document.root()->createSingleProperty("/a");

    document.remove("/a");
    EXPECT_EQ(document.childKeys(), std::list<std::string>{"a"});
    document.remove("/a");

    EXPECT_TRUE(document.contains("a"));
}

TEST(DocumentRemoval, OfAMissingKeyDoesNothing)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);

    document.remove("missing");
    document.remove("");

    EXPECT_EQ(document.childCount(), 1U);
}

TEST(DocumentRemoval, RemovesTheFirstOfEqualKeys)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("v", 1);
    document.setValueInt32("v", 2);

    document.remove("v");

    ASSERT_TRUE(document.beginObject(0));
    EXPECT_EQ(document.currentValueAsInt32(0), 2);
    document.endObject();
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(DocumentRemoval, OfTheNodeAtTheCursorLeavesTheCursorOnIt)
{
    ObjectProperties document;
    document.beginGroup("a");
    document.setValueString("v", "a text that is long enough for the heap");

    document.root()->remove("a");

    EXPECT_EQ(document.valueAsString("v", ""), "a text that is long enough for the heap");
    document.remove("v");
    EXPECT_EQ(document.childCount(), 0U);
    document.endGroup();
    EXPECT_TRUE(document.isEmpty());
}

} // namespace
