// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "captured_output.h"
#include "document_kinds.h"
#include "factories.h"
#include "object_properties.h"
#include "tree_text.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using test_support::treeText;

ObjectProperties sample()
{
    ObjectProperties document;
    for (const DocumentKind& kind : documentKinds())
        kind.setAt(document, "values/" + kind.name);
    document.beginArray("list");
    document.setValueInt32("0", 1);
    document.setValueInt32("1", 2);
    document.beginGroup("/deep/inside");
    return document;
}

void changeEverything(ObjectProperties& document)
{
    for (const DocumentKind& kind : documentKinds())
        document.setValueBool("/values/" + kind.name, false);
    document.root()->remove("list");
    document.setValueInt32("/new", 1);
}

std::string dump(const ObjectProperties& document)
{
    test_support::CapturedOutput output;
    document.printAsJson();
    return output.text();
}

TEST(DocumentCopy, HasTheContentOfTheSourceAndItsCursorAtTheRoot)
{
    const ObjectProperties source = sample();
    source.beginGroup("/deep/inside");

    const auto copy = std::make_unique<ObjectProperties>(source);

    EXPECT_EQ(treeText(*copy), treeText(source));
    EXPECT_EQ(copy->group(), "");
    EXPECT_EQ(source.group(), "inside");
}

TEST(DocumentCopy, IsChangedWithoutChangingTheSource)
{
    const ObjectProperties source = sample();
    const std::string before = treeText(source);
    ObjectProperties copy(source);

    changeEverything(copy);

    EXPECT_EQ(treeText(source), before);
}

TEST(DocumentCopy, OutlivesTheSource)
{
    auto source = std::make_unique<ObjectProperties>(sample());
    const std::string before = treeText(*source);
    const ObjectProperties copy(*source);

    source.reset();

    EXPECT_EQ(treeText(copy), before);
}

TEST(DocumentCopy, AssignedReplacesTheContentAndMovesTheCursorToTheRoot)
{
    const ObjectProperties source = sample();
    ObjectProperties target;
    target.setValueString("old/text", "a text that is long enough for the heap");
    target.beginGroup("old");

    ObjectProperties& result = (target = source);

    EXPECT_EQ(&result, &target);
    EXPECT_EQ(treeText(target), treeText(source));
    EXPECT_EQ(target.group(), "");
    EXPECT_FALSE(target.contains("old"));
    changeEverything(target);
    EXPECT_NE(treeText(target), treeText(source));
}

TEST(DocumentCopy, AssignedToItselfKeepsItsContent)
{
    ObjectProperties document = sample();
    const std::string before = treeText(document);

    document = *&document;

    EXPECT_EQ(treeText(document), before);
    EXPECT_EQ(document.group(), "");
}

TEST(DocumentCopy, OfADocumentWhoseRootIsAValueIsThatValue)
{
    for (const DocumentKind& kind : documentKinds())
    {
        ObjectProperties source;
        kind.set(source);

        ObjectProperties copy;
        copy = source;

        EXPECT_TRUE(kind.hasSample(copy)) << kind;
        copy = ObjectProperties();
        EXPECT_EQ(copy.type(), static_cast<int>(Group)) << kind;
    }
}

TEST(DocumentCopy, ReleasesTheNodesOfTheTargetExceptThoseOwnedElsewhere)
{
    ObjectProperties target;
    target.setValueInt32("held/v", 1);
    target.setValueInt32("dropped/v", 2);
    const std::shared_ptr<Property> held = target.root()->propertyByKey("held");
    const std::weak_ptr<Property> dropped = target.root()->propertyByKey("dropped");

    target = ObjectProperties();

    EXPECT_EQ(held->valueAsInt32("v", 0), 1);
    EXPECT_TRUE(dropped.expired());
}

TEST(DocumentMove, TakesOverNodesAndCursor)
{
    ObjectProperties source = sample();
    source.beginGroup("/deep/inside");
    const std::shared_ptr<Property> root = source.root();

    ObjectProperties target(std::move(source));

    EXPECT_EQ(target.root(), root);
    EXPECT_EQ(target.group(), "inside");
}

TEST(DocumentMove, AssignedTakesOverNodesAndCursorAndFreesItsOwn)
{
    ObjectProperties source = sample();
    source.beginGroup("/deep/inside");
    const std::shared_ptr<Property> root = source.root();
    ObjectProperties target;
    target.setValueInt32("old", 1);
    const std::weak_ptr<Property> old = target.root();

    ObjectProperties& result = (target = std::move(source));

    EXPECT_EQ(&result, &target);
    EXPECT_EQ(target.root(), root);
    EXPECT_EQ(target.group(), "inside");
    EXPECT_TRUE(old.expired());
}

TEST(DocumentMove, AssignedToItselfKeepsItsContent)
{
    ObjectProperties document = sample();
    const std::string before = treeText(document);
    ObjectProperties& same = document;

    document = std::move(same);

    EXPECT_EQ(treeText(document), before);
}

TEST(DocumentMove, AMovedFromDocumentCanBeDestroyed)
{
    const auto source = std::make_unique<ObjectProperties>(sample());

    const ObjectProperties target(std::move(*source));

    EXPECT_FALSE(target.isEmpty());
}

TEST(DocumentMove, AMovedFromDocumentCanBeAssignedTo)
{
    ObjectProperties copied = sample();
    ObjectProperties moved = sample();
    const ObjectProperties first(std::move(copied));
    const ObjectProperties second(std::move(moved));

    copied = first;
    moved = ObjectProperties(second);

    EXPECT_EQ(treeText(copied), treeText(first));
    EXPECT_EQ(treeText(moved), treeText(second));
    copied.setValueInt32("usable", 1);
    EXPECT_EQ(copied.valueAsInt32("usable", 0), 1);
    EXPECT_FALSE(first.contains("/usable"));
}

TEST(DocumentMove, ThrowsNothing)
{
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<ObjectProperties>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<ObjectProperties>);
}

TEST(DocumentDestruction, KeepsNodesAliveThatAreOwnedElsewhere)
{
    auto document = std::make_unique<ObjectProperties>(sample());
    const std::shared_ptr<Property> root = document->root();

    document.reset();

    EXPECT_TRUE(root->contains("values/String"));
}

TEST(DocumentFactory, ReturnsANewEmptyDocumentThatTheCallerOwns)
{
    const std::unique_ptr<ObjectProperties> first(createObjectProperties());
    const std::unique_ptr<ObjectProperties> second(createObjectProperties());

    first->setValueInt32("a", 1);

    EXPECT_NE(first, second);
    EXPECT_TRUE(second->isEmpty());
    EXPECT_EQ(second->type(), static_cast<int>(Group));
}

TEST(DocumentPrint, PrintsTheWholeDocumentWhereverTheCursorIs)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);
    document.setValueString("b/c", "x");
    document.beginGroup("b");

    EXPECT_EQ(dump(document), "{\n"
                              "   \"a\": 1,\n"
                              "      \"b\": {\n"
                              "      \"c\": \"x\",\n"
                              "   },\n"
                              "}\n");
    EXPECT_EQ(document.group(), "b");
}

TEST(DocumentPrint, PrintsAnEmptyDocumentAsTwoBraces)
{
    EXPECT_EQ(dump(ObjectProperties()), "{\n}\n");
}

} // namespace
