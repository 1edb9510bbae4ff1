// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "document_kinds.h"
#include "json_text.h"
#include "object_properties.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>

namespace {

using test_support::jsonOf;
using Keys = std::list<std::string>;

const std::string longText = "a text that is long enough for the heap";

ObjectProperties members()
{
    ObjectProperties document;
    document.setValueInt32("x", 1);
    document.setValueString("y/z", longText);
    return document;
}

const std::string membersText = R"({ "x" : 1, "y" : { "z" : ")" + longText + R"(" } })";

// Follows every parent link from below, so that a sanitizer sees a freed node, and checks it.
void expectSoundTree(const std::shared_ptr<Property>& node)
{
    for (const auto& entry : *node)
    {
        EXPECT_EQ(entry.second->parent(), node);
        expectSoundTree(entry.second);
    }
}

TEST(DocumentInclude, CreatesTheGroupAndFillsItWithTheMembers)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);

    document.include("sub", members());

    EXPECT_EQ(jsonOf(document), R"({ "a" : 1, "sub" : )" + membersText + " }");
    EXPECT_EQ(document.type("sub"), static_cast<int>(Group));
    expectSoundTree(document.root());
}

TEST(DocumentInclude, AgainReplacesTheMembers)
{
    ObjectProperties document;
    document.include("sub", members());
    ObjectProperties other;
    other.setValueBool("b", true);

    document.include("sub", other);

    EXPECT_EQ(jsonOf(document), R"({ "sub" : { "b" : true } })");
}

TEST(DocumentInclude, KeepsTheKeyOfTheGroup)
{
    ObjectProperties document;

    document.include("a/sub", members());
    document.beginGroup("a/sub");

    EXPECT_EQ(document.group(), "sub");
}

TEST(DocumentInclude, DoesNotChangeTheOtherDocument)
{
    ObjectProperties document;
    ObjectProperties other = members();
    other.beginGroup("y");

    document.include("sub", other);
    document.setValueInt32("sub/x", 2);

    EXPECT_EQ(jsonOf(other), membersText);
    EXPECT_EQ(other.group(), "y");
}

TEST(DocumentInclude, StartsAtTheCursorOrAtTheRoot)
{
    ObjectProperties document;
    document.beginGroup("g");

    document.include("in", members());
    document.include("/out", members());

    EXPECT_TRUE(document.contains("/g/in/x"));
    EXPECT_TRUE(document.contains("/out/x"));
    EXPECT_EQ(document.group(), "g");
}

TEST(DocumentInclude, WithTheEmptyKeyReplacesTheWholeDocument)
{
    for (const char* key : {"", "/", "//"})
    {
        ObjectProperties document;
        document.setValueInt32("old", 1);

        document.include(key, members());

        EXPECT_EQ(jsonOf(document), membersText) << key;
        EXPECT_EQ(document.root()->key(), "") << key;
    }
}

TEST(DocumentInclude, ReplacesAValueOfAnyTypeByAGroup)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties document;
        kind.setAt(document, "v");

        document.include("v", members());

        EXPECT_EQ(jsonOf(document), R"({ "v" : )" + membersText + " }") << kind;
        EXPECT_EQ(document.type("v"), static_cast<int>(Group)) << kind;
    }
}

TEST(DocumentInclude, OfADocumentWhoseRootIsAValueMakesAnEmptyGroupAndReleasesTheValue)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties document;
        ObjectProperties other;
        kind.set(other);

        document.include("sub", other);

        EXPECT_EQ(jsonOf(document), R"({ "sub" : {  } })") << kind;
        EXPECT_EQ(document.type("sub"), static_cast<int>(Group)) << kind;
    }
}

TEST(DocumentInclude, OfADocumentWhoseRootIsAnArrayMakesAGroupOfItsElements)
{
    ObjectProperties source;
    source.beginArray("list");
    source.setValueInt32("0", 5);
    ObjectProperties other;
    source.exclude("/list", other);
    ASSERT_EQ(other.type(), static_cast<int>(Array));

    ObjectProperties document;
    document.include("sub", other);

    EXPECT_EQ(jsonOf(document), R"({ "sub" : { "0" : 5 } })");
}

TEST(DocumentInclude, WithTheKeyOfAnArrayMakesAGroupOfIt)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("0", 5);
    document.endArray();

    document.include("list", members());

    EXPECT_EQ(jsonOf(document), R"({ "list" : )" + membersText + " }");
}

TEST(DocumentInclude, OnAnArrayReplacesAGroupElementWithTheKeyAndOtherwiseAddsOne)
{
    ObjectProperties document;
    document.beginArray("list");

    document.include("e", members());
    EXPECT_EQ(document.childCount(), 1U);
    document.include("e", members());
    EXPECT_EQ(document.childCount(), 1U);
    document.include("f", members());

    EXPECT_EQ(document.childGroups(), (Keys{"e", "f"}));
}

TEST(DocumentInclude, AsAnElementAlwaysAddsOne)
{
    ObjectProperties document;
    document.beginArray("list");

    document.includeElement("e", members());
    document.includeElement("e", members());

    EXPECT_EQ(document.childGroups(), (Keys{"e", "e"}));
    ASSERT_TRUE(document.beginObject(1));
    EXPECT_EQ(document.valueAsInt32("x", 0), 1);
}

TEST(DocumentInclude, LeavesACursorInsideTheReplacedMembersOnTheRemovedNode)
{
    ObjectProperties document;
    document.setValueString("sub/inner/v", longText);
    document.beginGroup("sub/inner");

    document.include("/sub", members());

    EXPECT_EQ(document.valueAsString("v", ""), longText);
    document.beginGroup("");
    EXPECT_EQ(jsonOf(document), R"({ "sub" : )" + membersText + " }");
}

TEST(DocumentInclude, OfItselfPutsACopyOfTheDocumentIntoTheGroup)
{
    ObjectProperties document = members();

    document.include("y", document);

    EXPECT_EQ(jsonOf(document), R"({ "x" : 1, "y" : )" + membersText + " }");
    expectSoundTree(document.root());
}

TEST(DocumentInclude, OfItselfIntoANewGroupKeepsAllItsMembers)
{
    ObjectProperties document = members();

    document.include("sub", document);

    EXPECT_EQ(document.valueAsInt32("sub/x", 0), 1);
    EXPECT_EQ(document.valueAsString("sub/y/z", ""), longText);
    EXPECT_EQ(document.valueAsInt32("x", 0), 1);
    EXPECT_EQ(document.valueAsString("y/z", ""), longText);
    expectSoundTree(document.root());
}

TEST(DocumentInclude, OfItselfAtTheRootChangesNothing)
{
    ObjectProperties document = members();

    document.include("", document);

    EXPECT_EQ(jsonOf(document), membersText);
}

TEST(DocumentInclude, OfItselfUnderAValueKeepsTheTreeConsistent)
{
    ObjectProperties document = members();

    document.include("x", document);
    document.include("y/z", document);

    EXPECT_EQ(document.type("x"), static_cast<int>(Group));
    EXPECT_EQ(document.type("y/z/y"), static_cast<int>(Group));
    expectSoundTree(document.root());
}

TEST(DocumentExclude, MovesTheSubtreeIntoTheOtherDocument)
{
    ObjectProperties document;
    document.setValueInt32("kept", 1);
    document.include("sub", members());
    ObjectProperties other;
    other.setValueString("old", longText);

    document.exclude("sub", other);

    EXPECT_EQ(jsonOf(document), R"({ "kept" : 1 })");
    EXPECT_EQ(jsonOf(other), membersText);
    EXPECT_EQ(other.root()->key(), "");
    expectSoundTree(other.root());
}

TEST(DocumentExclude, OfAMissingKeyLeavesBothDocumentsUnchanged)
{
    ObjectProperties document = members();
    ObjectProperties other;
    other.setValueString("old", longText);
    document.beginGroup("y");
    other.beginGroup("g");
    const std::string before = jsonOf(other);

    for (const char* key : {"missing", "/x/y", "", "/", "z/missing"})
        document.exclude(key, other);

    EXPECT_EQ(jsonOf(document), membersText);
    EXPECT_EQ(jsonOf(other), before);
    EXPECT_EQ(document.group(), "y");
    EXPECT_EQ(other.group(), "g");
}

TEST(DocumentExclude, PutsTheCursorOfTheOtherDocumentAtTheRoot)
{
    ObjectProperties document = members();
    ObjectProperties other;
    other.beginGroup("deep/inside");

    document.exclude("y", other);

    EXPECT_EQ(other.group(), "");
    EXPECT_EQ(other.childKeys(), Keys{"z"});
}

TEST(DocumentExclude, StartsAtTheCursorOrAtTheRoot)
{
    ObjectProperties document;
    document.setValueInt32("a/x", 1);
    document.setValueInt32("x", 2);
    document.beginGroup("a");
    ObjectProperties other;

    document.exclude("/x", other);
    EXPECT_EQ(other.currentValueAsInt32(0), 2);
    document.exclude("x", other);

    EXPECT_EQ(other.currentValueAsInt32(0), 1);
    EXPECT_EQ(jsonOf(document), R"({ "a" : {  } })");
}

TEST(DocumentExclude, OfAValueMakesTheOtherDocumentThatValue)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties document;
        kind.setAt(document, "v");
        ObjectProperties other = members();

        document.exclude("v", other);

        EXPECT_TRUE(document.isEmpty()) << kind;
        EXPECT_TRUE(kind.hasSample(other)) << kind;
        EXPECT_TRUE(other.isEmpty()) << kind;
    }
}

TEST(DocumentExclude, OfAnArrayMakesTheRootOfTheOtherDocumentAnArray)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("0", 1);
    ObjectProperties other;

    document.exclude("/list", other);

    EXPECT_EQ(other.type(), static_cast<int>(Array));
    EXPECT_EQ(other.childCount(), 1U);
    EXPECT_TRUE(document.isEmpty());
}

TEST(DocumentExclude, MovesTheFirstOfEqualKeys)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt32("e", 1);
    document.setValueInt32("e", 2);
    ObjectProperties other;

    document.exclude("e", other);

    EXPECT_EQ(other.currentValueAsInt32(0), 1);
    ASSERT_EQ(document.childCount(), 1U);
    ASSERT_TRUE(document.beginObject(0));
    EXPECT_EQ(document.currentValueAsInt32(0), 2);
}

TEST(DocumentExclude, MovesACursorInsideTheSubtreeToTheRoot)
{
    for (const char* inside : {"y", "y/z"})
    {
        ObjectProperties document = members();
        document.beginGroup(inside);
        ObjectProperties other;

        document.exclude("/y", other);

        EXPECT_EQ(document.group(), "") << inside;
        document.setValueInt32("usable", 1);
        EXPECT_TRUE(document.contains("usable")) << inside;
    }
}

TEST(DocumentExclude, WithItselfIsReducedToTheSubtree)
{
    ObjectProperties document = members();
    document.beginGroup("y");

    document.exclude("/y", document);

    EXPECT_EQ(jsonOf(document), R"({ "z" : ")" + longText + R"(" })");
    EXPECT_EQ(document.group(), "");
    expectSoundTree(document.root());
}

TEST(DocumentExclude, WithItselfAndAMissingKeyChangesNothing)
{
    ObjectProperties document = members();

    document.exclude("missing", document);

    EXPECT_EQ(jsonOf(document), membersText);
}

TEST(DocumentExclude, WithItselfAndTheKeyOfAValueIsThatValue)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties document = members();
        kind.setAt(document, "y/v");

        document.exclude("y/v", document);

        EXPECT_TRUE(kind.hasSample(document)) << kind;
        EXPECT_TRUE(document.isEmpty()) << kind;
    }
}

TEST(DocumentExclude, MovesTheEntryOfTheKeyEvenIfItsNodeHasAnotherKey)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);
    document.setValueInt32("b", 2);
    document.root()->propertyByKey("b")->copy(*document.root()->propertyByKey("a"));
    ObjectProperties other;

    document.exclude("b", other);

    EXPECT_TRUE(document.contains("a"));
    EXPECT_FALSE(document.contains("b"));
    EXPECT_EQ(other.currentValueAsInt32(0), 1);
}

TEST(DocumentExclude, ThenIncludeBringsTheSubtreeBack)
{
    ObjectProperties document = members();
    ObjectProperties other;

    document.exclude("y", other);
    document.include("y", other);

    EXPECT_EQ(jsonOf(document), membersText);
}

} // namespace
