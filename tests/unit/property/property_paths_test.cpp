// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"
#include "property_kinds.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;
using Segments = std::list<std::string>;

struct PathRow
{
    std::string name;
    std::string path;
    Segments segments;
};

std::ostream& operator<<(std::ostream& stream, const PathRow& row)
{
    return stream << '"' << row.path << '"';
}

const PathRow pathRows[] = {
    {"Empty", "", {}},
    {"OneSlash", "/", {}},
    {"TwoSlashes", "//", {}},
    {"ManySlashes", "//////", {}},
    {"OneSegment", "a", {"a"}},
    {"LeadingSlash", "/a", {"a"}},
    {"TrailingSlash", "a/", {"a"}},
    {"BothSlashes", "/a/", {"a"}},
    {"TwoSegments", "a/b", {"a", "b"}},
    {"LeadingSlashAndTwo", "/a/b", {"a", "b"}},
    {"TrailingSlashAndTwo", "a/b/", {"a", "b"}},
    {"EmptySegmentBetween", "a//b", {"a", "b"}},
    {"EmptySegmentsEverywhere", "///a///b///", {"a", "b"}},
    {"EqualSegments", "a/a/a", {"a", "a", "a"}},
    {"LongSegments",
     "a segment longer than a short string/second/third segment, also longer than one",
     {"a segment longer than a short string", "second", "third segment, also longer than one"}},
    {"DotsAreOrdinary", "a.b/.c", {"a.b", ".c"}},
    {"DigitsAreOrdinary", "0/10", {"0", "10"}},
    {"BackslashIsNoEscape", "a\\/b", {"a\\", "b"}},
    {"SpacesAndNewlinesAreOrdinary", " a \n/\tb", {" a \n", "\tb"}},
    {"ZeroBytesAreOrdinary", std::string("a\0b/c", 5), {std::string("a\0b", 3), "c"}},
    {"Utf8", "\xc3\xa9/\xe2\x82\xac", {"\xc3\xa9", "\xe2\x82\xac"}},
};

class PropertyPath : public testing::TestWithParam<PathRow>
{};

// The node below this one that the segments name one after the other.
NodePointer follow(NodePointer node, const Segments& segments)
{
    for (const std::string& segment : segments)
        node = node ? node->propertyBySingleKey(segment) : nullptr;
    return node;
}

TEST_P(PropertyPath, IsSplitAtSlashesAndEmptySegmentsAreDropped)
{
    EXPECT_EQ(Property::create()->splitKey(GetParam().path), GetParam().segments);
}

TEST_P(PropertyPath, FindsNothingInAnEmptyNode)
{
    const NodePointer root = Property::create();

    EXPECT_FALSE(root->contains(GetParam().path));
    EXPECT_EQ(root->propertyByKey(GetParam().path), nullptr);
    EXPECT_EQ(root->type(GetParam().path), static_cast<int>(None));
    EXPECT_EQ(root->childCount(), 0U);
}

TEST_P(PropertyPath, OfAGroupCreatesAGroupForEverySegmentOnce)
{
    const NodePointer root = Property::create();

    const NodePointer last = root->createGroup(GetParam().path);

    EXPECT_EQ(last, follow(root, GetParam().segments));
    for (NodePointer node = last; node != root; node = node->parent())
        EXPECT_TRUE(node->isGroup());
    EXPECT_EQ(root->createGroup(GetParam().path), last);
    EXPECT_EQ(root->childCount(), GetParam().segments.empty() ? 0U : 1U);
    EXPECT_EQ(root->type(), static_cast<int>(Undefined));
}

TEST_P(PropertyPath, OfAnArrayCreatesGroupsAndAnArrayOnce)
{
    const NodePointer root = Property::create();

    const NodePointer last = root->createArray(GetParam().path);

    EXPECT_EQ(last, follow(root, GetParam().segments));
    EXPECT_EQ(root->createArray(GetParam().path), last);
    if (GetParam().segments.empty())
        return;
    EXPECT_TRUE(last->isArray());
    for (NodePointer node = last->parent(); node != root; node = node->parent())
        EXPECT_TRUE(node->isGroup());
}

TEST_P(PropertyPath, OfAPropertyCreatesGroupsAndAnUndefinedNodeOnce)
{
    const NodePointer root = Property::create();

    const NodePointer last = root->createProperty(GetParam().path);

    EXPECT_EQ(last, follow(root, GetParam().segments));
    EXPECT_EQ(last->type(), static_cast<int>(Undefined));
    EXPECT_EQ(root->createProperty(GetParam().path), last);
    EXPECT_EQ(root->createPropertyIfNotExists(GetParam().path), last);
}

TEST_P(PropertyPath, FindsWhatWasCreatedUnlessItHasNoSegment)
{
    const NodePointer root = Property::create();
    const NodePointer last = root->createArray(GetParam().path);
    const bool hasSegment = !GetParam().segments.empty();

    EXPECT_EQ(root->contains(GetParam().path), hasSegment);
    EXPECT_EQ(root->propertyByKey(GetParam().path), hasSegment ? last : nullptr);
    EXPECT_EQ(root->type(GetParam().path), hasSegment ? static_cast<int>(Array) : static_cast<int>(None));
}

INSTANTIATE_TEST_SUITE_P(Paths, PropertyPath, testing::ValuesIn(pathRows), RowName());

TEST(PropertyPaths, CreateGroupMakesThreeNestedGroupsAndReturnsTheLast)
{
    const NodePointer root = Property::create();

    const NodePointer c = root->createGroup("a/b/c");

    EXPECT_EQ(c->key(), "c");
    EXPECT_EQ(c->parent()->key(), "b");
    EXPECT_EQ(c->parent()->parent()->key(), "a");
    EXPECT_EQ(c->parent()->parent()->parent(), root);
    EXPECT_EQ(root->createGroup("a/b/c"), c);
    EXPECT_EQ(root->childCount(), 1U);
    EXPECT_EQ(root->propertyByKey("a")->childCount(), 1U);
    EXPECT_EQ(root->propertyByKey("a/b")->childCount(), 1U);
}

TEST(PropertyPaths, ALookupThatFailsOnTheWayAddsNothing)
{
    const NodePointer root = Property::create();
    root->createGroup("a/b");

    for (const char* path : {"a/c", "a/b/c", "b", "b/a", "a/b/c/d"})
    {
        EXPECT_FALSE(root->contains(path)) << path;
        EXPECT_EQ(root->propertyByKey(path), nullptr) << path;
        EXPECT_EQ(root->type(path), 0) << path;
    }
    EXPECT_EQ(root->propertyByKey("a/b")->childCount(), 0U);
}

TEST(PropertyPaths, ALookupStartsAtTheNodeItIsCalledOn)
{
    const NodePointer root = Property::create();
    const NodePointer a = root->createGroup("a");
    const NodePointer inner = a->createGroup("a");

    EXPECT_EQ(a->propertyByKey("a"), inner);
    EXPECT_EQ(a->propertyByKey("/a"), inner);
    EXPECT_FALSE(inner->contains("a"));
}

TEST(PropertyPaths, EveryStepFollowsTheFirstOfEqualKeys)
{
    const NodePointer root = Property::create();
    const NodePointer array = root->createArray("list");
    const NodePointer first = array->createSingleGroup("e");
    const NodePointer second = array->createSingleGroup("e");
    first->setValueInt32("v", 1);
    second->setValueInt32("v", 2);
    second->setValueInt32("w", 3);

    EXPECT_EQ(root->propertyByKey("list/e"), first);
    EXPECT_EQ(root->propertyByKey("list/e/v"), first->propertyByKey("v"));
    EXPECT_FALSE(root->contains("list/e/w"));
}

TEST(PropertyPaths, CreateArrayOnAStringReturnsNullButCreateGroupReturnsTheString)
{
    const NodePointer root = Property::create();
    root->setValueString("x", "text");
    const NodePointer x = root->propertyByKey("x");

    EXPECT_EQ(root->createArray("x"), nullptr);
    EXPECT_EQ(root->createGroup("x"), x);
    EXPECT_EQ(root->createProperty("x"), x);

    EXPECT_EQ(x->currentValueAsString(""), "text");
    EXPECT_EQ(x->childCount(), 0U);
    EXPECT_EQ(root->childCount(), 1U);
}

TEST(PropertyPaths, AScalarOnTheWayGainsAChildAndStaysAScalar)
{
    for (const ValueKind& kind : valueKinds())
    {
        const NodePointer root = Property::create();
        kind.setAt(*root, "s");

        const NodePointer property = root->createProperty("s/t");
        const NodePointer group = root->createGroup("s/u");
        const NodePointer array = root->createArray("s/v");

        const NodePointer s = root->propertyByKey("s");
        EXPECT_TRUE(kind.hasSample(*s)) << kind;
        EXPECT_EQ(s->childCount(), 3U) << kind;
        EXPECT_EQ(property->parent(), s) << kind;
        EXPECT_EQ(group->parent(), s) << kind;
        EXPECT_EQ(array->parent(), s) << kind;
    }
}

TEST(PropertyPaths, AFailedArrayPathStillLeavesTheGroupsOnTheWay)
{
    const NodePointer root = Property::create();
    root->createGroup("a")->setValueInt32("x", 1);

    EXPECT_EQ(root->createArray("a/x"), nullptr);
    EXPECT_EQ(root->type("a/x"), static_cast<int>(Int32));
}

TEST(PropertyPaths, AStepOnAnArrayAddsAGroupElementEveryTime)
{
    const NodePointer root = Property::create();
    const NodePointer array = root->createArray("list");

    const NodePointer first = root->createProperty("list/e/v");
    const NodePointer second = root->createGroup("list/e/v");
    const NodePointer third = root->createArray("list/e/v");

    ASSERT_EQ(array->childCount(), 3U);
    for (int index = 0; index < 3; ++index)
    {
        EXPECT_TRUE(array->childByIndex(index)->isGroup());
        EXPECT_EQ(array->childByIndex(index)->key(), "e");
    }
    EXPECT_EQ(first->parent(), array->childByIndex(0));
    EXPECT_EQ(second->parent(), array->childByIndex(1));
    EXPECT_EQ(third->parent(), array->childByIndex(2));
    EXPECT_TRUE(third->isArray());
}

TEST(PropertyPaths, TheLastSegmentOnAnArrayAddsAnElementEveryTime)
{
    const NodePointer root = Property::create();
    const NodePointer array = root->createArray("list");

    const NodePointer first = root->createProperty("list/k");
    const NodePointer second = root->createGroup("list/k");
    const NodePointer third = root->createArray("list/k");

    ASSERT_EQ(array->childCount(), 3U);
    EXPECT_EQ(array->childByIndex(0), first);
    EXPECT_EQ(array->childByIndex(1), second);
    EXPECT_EQ(array->childByIndex(2), third);
}

TEST(PropertyPaths, OnAnArrayAPathOfNoSegmentIsTheArrayItself)
{
    const NodePointer array = Property::create()->createArray("list");

    for (const char* path : {"", "/", "//"})
    {
        EXPECT_EQ(array->createGroup(path), array);
        EXPECT_EQ(array->createArray(path), array);
        EXPECT_EQ(array->createProperty(path), array);
        EXPECT_EQ(array->createPropertyIfNotExists(path), array);
    }
    EXPECT_EQ(array->childCount(), 0U);
}

TEST(PropertyIfNotExists, ReturnsAnExistingNodeOfAnyType)
{
    const NodePointer root = Property::create();
    const NodePointer group = root->createGroup("a/group");
    const NodePointer array = root->createArray("a/array");

    EXPECT_EQ(root->createPropertyIfNotExists("a/group"), group);
    EXPECT_EQ(root->createPropertyIfNotExists("a/array"), array);
    EXPECT_TRUE(group->isGroup());
    EXPECT_TRUE(array->isArray());
}

TEST(PropertyIfNotExists, CreatesMissingNodes)
{
    const NodePointer root = Property::create();

    const NodePointer node = root->createPropertyIfNotExists("a/b");

    EXPECT_EQ(root->propertyByKey("a/b"), node);
    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
}

TEST(PropertyIfNotExists, ThroughAnArrayItFindsAnExistingElement)
{
    const NodePointer root = Property::create();
    const NodePointer array = root->createArray("list");
    const NodePointer element = array->createSingleGroup("e");
    const NodePointer value = element->createProperty("v");

    EXPECT_EQ(root->createPropertyIfNotExists("list/e"), element);
    EXPECT_EQ(root->createPropertyIfNotExists("list/e/v"), value);
    EXPECT_EQ(array->childCount(), 1U);
}

TEST(PropertyIfNotExists, ThroughAnArrayItAddsAnElementForAMissingNode)
{
    const NodePointer root = Property::create();
    const NodePointer array = root->createArray("list");
    array->createSingleGroup("e");

    const NodePointer value = root->createPropertyIfNotExists("list/e/v");

    ASSERT_EQ(array->childCount(), 2U);
    EXPECT_EQ(value->parent(), array->childByIndex(1));
    EXPECT_EQ(array->childByIndex(0)->childCount(), 0U);
}

TEST(PropertyIfNotExists, OnAnArrayItAddsAnElementEvenIfTheKeyExists)
{
    const NodePointer array = Property::create()->createArray("list");
    const NodePointer first = array->createPropertyIfNotExists("k");

    const NodePointer second = array->createPropertyIfNotExists("k");

    EXPECT_NE(first, second);
    EXPECT_EQ(array->childCount(), 2U);
}

TEST(PropertyPathGetters, ReturnTheDefaultForAMissingKeyAndAddIt)
{
    const NodePointer root = Property::create();

    EXPECT_EQ(root->valueAsInt32("missing", 7), 7);

    EXPECT_TRUE(root->contains("missing"));
    EXPECT_EQ(root->type("missing"), 1);
}

TEST(PropertyPathGetters, ReadAValueInsideAnArrayFromOutside)
{
    const NodePointer root = Property::create();
    root->createArray("list")->setValueInt32("0", 5);

    EXPECT_EQ(root->valueAsInt32("list/0", 7), 5);
    EXPECT_EQ(root->propertyByKey("list")->childCount(), 1U);
}

TEST(PropertyPathSetters, ReplaceAGroupByAValue)
{
    const NodePointer root = Property::create();
    root->setValueInt32("a/b", 1);

    root->setValueInt32("a", 2);

    EXPECT_EQ(root->type("a"), static_cast<int>(Int32));
    EXPECT_FALSE(root->contains("a/b"));
}

} // namespace
