// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"
#include "property_kinds.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;

NodePointer groupWithMembers()
{
    const NodePointer parent = Property::create();
    const NodePointer group = parent->createSingleGroup("group");
    group->setValueInt32("a", 1);
    group->setValueString("b/c", "deep");
    return group;
}

NodePointer arrayWithElements()
{
    const NodePointer array = Property::create()->createSingleArray("array");
    array->setValueInt32("0", 1);
    array->setValueInt32("1", 2);
    return array;
}

NodePointer scalarWithAChild()
{
    const NodePointer node = Property::create();
    node->setValueString("text");
    node->createSingleProperty("child");
    return node;
}

class PropertyValueOfKind : public testing::TestWithParam<ValueKind>
{};

TEST_P(PropertyValueOfKind, TheSetterSetsTypeAndValue)
{
    const NodePointer node = Property::create();

    GetParam().set(*node);

    EXPECT_EQ(node->type(), static_cast<int>(GetParam().type));
    EXPECT_TRUE(GetParam().hasSample(*node));
}

TEST_P(PropertyValueOfKind, TheSetterKeepsTheKeyOfTheNode)
{
    const NodePointer root = Property::create();
    const NodePointer node = root->createSingleProperty("key");

    GetParam().set(*node);

    EXPECT_EQ(node->key(), "key");
    EXPECT_EQ(node->parent(), root);
}

TEST_P(PropertyValueOfKind, OnlyItsOwnPredicateHolds)
{
    const NodePointer node = Property::create();

    GetParam().set(*node);

    EXPECT_FALSE(node->isGroup());
    EXPECT_FALSE(node->isArray());
    for (const ValueKind& other : valueKinds())
        EXPECT_EQ(((*node).*(other.is))(), other.type == GetParam().type) << other;
}

TEST_P(PropertyValueOfKind, EveryOtherGetterReturnsItsDefaultWithoutConversion)
{
    const NodePointer node = Property::create();

    GetParam().set(*node);

    for (const ValueKind& other : valueKinds())
    {
        if (other.type != GetParam().type)
        {
            EXPECT_TRUE(other.givesDefault(*node)) << other;
        }
    }
}

TEST_P(PropertyValueOfKind, ItsGetterReturnsTheDefaultOnANodeWithoutValue)
{
    EXPECT_TRUE(GetParam().givesDefault(*Property::create()));
}

TEST_P(PropertyValueOfKind, ItsGetterReturnsTheDefaultOnAGroup)
{
    EXPECT_TRUE(GetParam().givesDefault(*groupWithMembers()));
}

TEST_P(PropertyValueOfKind, ItsGetterReturnsTheDefaultOnAnArray)
{
    EXPECT_TRUE(GetParam().givesDefault(*arrayWithElements()));
}

TEST_P(PropertyValueOfKind, TheSetterOnAGroupLeavesAValueWithoutMembers)
{
    const NodePointer group = groupWithMembers();

    GetParam().set(*group);

    EXPECT_EQ(group->childCount(), 0U);
    EXPECT_TRUE(GetParam().hasSample(*group));
}

TEST_P(PropertyValueOfKind, TheSetterOnAnArrayLeavesAValueWithoutElements)
{
    const NodePointer array = arrayWithElements();

    GetParam().set(*array);

    EXPECT_EQ(array->childCount(), 0U);
    EXPECT_TRUE(GetParam().hasSample(*array));
}

TEST_P(PropertyValueOfKind, TheSetterRemovesTheChildrenOfAValueToo)
{
    const NodePointer node = scalarWithAChild();

    GetParam().set(*node);

    EXPECT_EQ(node->childCount(), 0U);
}

TEST_P(PropertyValueOfKind, AChildOwnedElsewhereOutlivesTheSetter)
{
    const NodePointer group = groupWithMembers();
    const NodePointer member = group->propertyBySingleKey("a");

    GetParam().set(*group);

    EXPECT_EQ(member->currentValueAsInt32(0), 1);
    EXPECT_EQ(member->parent(), group);
}

TEST_P(PropertyValueOfKind, ItReplacesAValueOfAnyType)
{
    for (const ValueKind& before : valueKinds())
    {
        const NodePointer node = Property::create();
        before.set(*node);

        GetParam().set(*node);

        EXPECT_EQ(node->type(), static_cast<int>(GetParam().type)) << "after " << before;
        EXPECT_TRUE(GetParam().hasSample(*node)) << "after " << before;
    }
}

TEST_P(PropertyValueOfKind, SetUndefinedItIsNoLongerReadable)
{
    const NodePointer node = Property::create();
    GetParam().set(*node);

    node->setValueUndefined();

    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
    EXPECT_TRUE(GetParam().givesDefault(*node));
}

TEST_P(PropertyValueOfKind, ANodeThatWasSetUndefinedAcceptsItAgain)
{
    const NodePointer node = Property::create();
    GetParam().set(*node);
    node->setValueUndefined();

    GetParam().set(*node);

    EXPECT_TRUE(GetParam().hasSample(*node));
}

TEST_P(PropertyValueOfKind, ClearedTheNodeKeepsOnlyItsKey)
{
    const NodePointer node = Property::create()->createSingleProperty("key");
    GetParam().set(*node);
    node->createSingleProperty("child");

    node->clear();

    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
    EXPECT_EQ(node->key(), "key");
    EXPECT_EQ(node->childCount(), 0U);
    EXPECT_TRUE(GetParam().givesDefault(*node));
}

TEST_P(PropertyValueOfKind, TheSetterWithAPathCreatesTheNode)
{
    const NodePointer root = Property::create();

    GetParam().setAt(*root, "a/b");

    const NodePointer node = root->propertyByKey("a/b");
    ASSERT_TRUE(node);
    EXPECT_EQ(root->type("a"), static_cast<int>(Group));
    EXPECT_EQ(node->type(), static_cast<int>(GetParam().type));
    EXPECT_TRUE(GetParam().hasSample(*node));
}

TEST_P(PropertyValueOfKind, TheSetterWithAPathChangesAnExistingNode)
{
    const NodePointer root = Property::create();
    const NodePointer node = root->createProperty("a/b");

    GetParam().setAt(*root, "/a//b/");

    EXPECT_EQ(root->propertyByKey("a/b"), node);
    EXPECT_TRUE(GetParam().hasSample(*node));
    EXPECT_EQ(root->propertyByKey("a")->childCount(), 1U);
}

TEST_P(PropertyValueOfKind, TheSetterWithAPathOfNoSegmentSetsTheNodeItself)
{
    for (const char* path : {"", "/", "//"})
    {
        const NodePointer group = groupWithMembers();

        GetParam().setAt(*group, path);

        EXPECT_TRUE(GetParam().hasSample(*group)) << '"' << path << '"';
        EXPECT_EQ(group->childCount(), 0U) << '"' << path << '"';
    }
}

TEST_P(PropertyValueOfKind, TheSetterWithAPathOnAnArrayAddsAnElementEveryTime)
{
    const NodePointer array = Property::create()->createSingleArray("array");

    GetParam().setAt(*array, "v");
    GetParam().setAt(*array, "v");

    ASSERT_EQ(array->childCount(), 2U);
    EXPECT_TRUE(GetParam().hasSample(*array->childByIndex(0)));
    EXPECT_TRUE(GetParam().hasSample(*array->childByIndex(1)));
}

TEST_P(PropertyValueOfKind, TheGetterWithAPathReadsTheNode)
{
    const NodePointer root = Property::create();
    GetParam().setAt(*root, "a/b");

    EXPECT_TRUE(GetParam().hasSampleAt(*root, "a/b"));
    EXPECT_TRUE(GetParam().hasSampleAt(*root, "//a/b/"));
    EXPECT_EQ(root->childCount(), 1U);
}

TEST_P(PropertyValueOfKind, TheGetterWithAMissingPathAddsAnUndefinedNode)
{
    const NodePointer root = Property::create();

    EXPECT_TRUE(GetParam().givesDefaultAt(*root, "a/b"));

    EXPECT_TRUE(root->contains("a/b"));
    EXPECT_EQ(root->type("a"), static_cast<int>(Group));
    EXPECT_EQ(root->type("a/b"), static_cast<int>(Undefined));
}

TEST_P(PropertyValueOfKind, TheGetterWithAPathOfNoSegmentReadsTheNodeItself)
{
    const NodePointer node = Property::create();
    GetParam().set(*node);

    for (const char* path : {"", "/", "//"})
        EXPECT_TRUE(GetParam().hasSampleAt(*node, path)) << '"' << path << '"';
    EXPECT_EQ(node->childCount(), 0U);
}

TEST_P(PropertyValueOfKind, TheGetterWithAPathOnAnArrayAddsAnElementAndReturnsTheDefault)
{
    const NodePointer array = Property::create()->createSingleArray("array");
    GetParam().setAt(*array, "v");

    EXPECT_TRUE(GetParam().givesDefaultAt(*array, "v"));

    ASSERT_EQ(array->childCount(), 2U);
    EXPECT_EQ(array->childByIndex(1)->type(), static_cast<int>(Undefined));
}

INSTANTIATE_TEST_SUITE_P(Kinds, PropertyValueOfKind, testing::ValuesIn(valueKinds()), RowName());

TEST(PropertyValues, AFreshNodeIsUndefinedAndNoPredicateHolds)
{
    const NodePointer node = Property::create();

    EXPECT_EQ(node->type(), static_cast<int>(Undefined));
    EXPECT_FALSE(node->isGroup());
    EXPECT_FALSE(node->isArray());
    for (const ValueKind& kind : valueKinds())
        EXPECT_FALSE(((*node).*(kind.is))()) << kind;
}

TEST(PropertyValues, GroupAndArrayHaveTheirOwnPredicates)
{
    const NodePointer group = groupWithMembers();
    const NodePointer array = arrayWithElements();

    EXPECT_TRUE(group->isGroup());
    EXPECT_FALSE(group->isArray());
    EXPECT_TRUE(array->isArray());
    EXPECT_FALSE(array->isGroup());
    for (const ValueKind& kind : valueKinds())
    {
        EXPECT_FALSE(((*group).*(kind.is))()) << kind;
        EXPECT_FALSE(((*array).*(kind.is))()) << kind;
    }
}

TEST(PropertyValues, ATextIsKeptUpToItsFirstZeroByte)
{
    const NodePointer node = Property::create();

    node->setValueString(std::string("ab\0cd", 5));
    EXPECT_EQ(node->currentValueAsString(""), "ab");

    node->setValueId(std::string("\0ab", 3));
    EXPECT_EQ(node->currentValueAsId("default"), "");
}

TEST(PropertyValues, AnEmptyTextIsAValue)
{
    const NodePointer node = Property::create();

    node->setValueString("");

    EXPECT_TRUE(node->isString());
    EXPECT_EQ(node->currentValueAsString("default"), "");
}

TEST(PropertyValues, AnEmptyByteVectorIsAValue)
{
    const NodePointer node = Property::create();

    node->setValueBinary({});

    EXPECT_TRUE(node->isBinary());
    EXPECT_EQ(node->currentValueAsBinary({1}), std::vector<unsigned char>());
}

TEST(PropertyValues, ARegexKeepsPatternAndOptionsWithTheirZeroBytes)
{
    const NodePointer node = Property::create();
    const std::string pattern("a\0b", 3);
    const std::string options("\0i", 2);

    node->setValueRegex(pattern, options);

    EXPECT_EQ(node->currentValueAsRegex("", ""), std::make_pair(pattern, options));
}

TEST(PropertyValues, ASecondRegexReplacesBothTexts)
{
    const NodePointer node = Property::create();

    node->setValueRegex("first pattern, long enough for the heap", "imsx");
    node->setValueRegex("second", "");

    EXPECT_EQ(node->currentValueAsRegex("p", "o"), std::make_pair(std::string("second"), std::string()));
}

TEST(PropertyValues, AStringSetOnARegexFreesTheRegexTexts)
{
    const NodePointer node = Property::create();
    node->setValueRegex("a pattern that is long enough for the heap", "i");

    node->setValueString("text");

    EXPECT_TRUE(node->patternView().empty());
    EXPECT_LE(node->patternView().capacity(), std::string().capacity());
    EXPECT_TRUE(node->optionsView().empty());
}

TEST(PropertyValues, AStringSetOnABinaryFreesTheBytes)
{
    const NodePointer node = Property::create();
    node->setValueBinary(std::vector<unsigned char>(1000, 1));

    node->setValueString("text");

    EXPECT_EQ(node->bytesView().capacity(), 0U);
}

TEST(PropertyValues, UndefinedRemovesTheChildren)
{
    const NodePointer group = groupWithMembers();

    group->setValueUndefined();

    EXPECT_EQ(group->type(), static_cast<int>(Undefined));
    EXPECT_EQ(group->childCount(), 0U);
}

TEST(PropertyValues, UndefinedWithAPathCreatesTheNodeOrEmptiesIt)
{
    const NodePointer root = Property::create();
    root->setValueString("text", "value");

    root->setValueUndefined("missing");
    root->setValueUndefined("text");

    EXPECT_EQ(root->type("missing"), static_cast<int>(Undefined));
    EXPECT_EQ(root->type("text"), static_cast<int>(Undefined));
}

TEST(PropertyValues, IntegersKeepTheirExtremes)
{
    const NodePointer node = Property::create();

    for (const int value : {INT_MIN, -1, 0, INT_MAX})
    {
        node->setValueInt32(value);
        EXPECT_EQ(node->currentValueAsInt32(value - (value > 0 ? 1 : -1)), value);
    }
    for (const long value : {LONG_MIN, -1L, 0L, LONG_MAX})
    {
        const long other = value - (value > 0 ? 1 : -1);
        node->setValueInt64(value);
        EXPECT_EQ(node->currentValueAsInt64(other), value);
        node->setValueTime(value);
        EXPECT_EQ(node->currentValueAsTime(other), value);
    }
}

TEST(PropertyValues, DoublesKeepTheirSpecialValues)
{
    const NodePointer node = Property::create();
    using Limits = std::numeric_limits<double>;

    for (const double value : {Limits::infinity(), -Limits::infinity(), Limits::denorm_min(), Limits::max()})
    {
        node->setValueDouble(value);
        EXPECT_EQ(node->currentValueAsDouble(0), value);
    }
    node->setValueDouble(-0.0);
    EXPECT_TRUE(std::signbit(node->currentValueAsDouble(1)));
    node->setValueDouble(Limits::quiet_NaN());
    EXPECT_TRUE(std::isnan(node->currentValueAsDouble(0)));
}

TEST(PropertyValues, FalseAndTrueAreBothValues)
{
    const NodePointer node = Property::create();

    node->setValueBool(false);
    EXPECT_FALSE(node->currentValueAsBool(true));
    node->setValueBool(true);
    EXPECT_TRUE(node->currentValueAsBool(false));
}

TEST(PropertyValues, ANodeAcceptsAValueThatIsPartOfItself)
{
    const NodePointer node = Property::create();
    node->setValueRegex("a pattern that is long enough for the heap", "options");
    node->setValueRegex(node->optionsView(), node->patternView());
    EXPECT_EQ(node->patternView(), "options");
    EXPECT_EQ(node->optionsView(), "a pattern that is long enough for the heap");

    node->setValueString(node->optionsView());
    EXPECT_EQ(node->currentValueAsString(""), "a pattern that is long enough for the heap");

    node->setValueBinary({1, 2, 3});
    node->setValueBinary(node->bytesView());
    EXPECT_EQ(node->bytesView(), (std::vector<unsigned char>{1, 2, 3}));
}

TEST(PropertyValues, ANodeAcceptsTheKeyOfAChildThatTheSetterRemoves)
{
    const NodePointer node = Property::create();
    const Property& child = *node->createSingleProperty("a key that is long enough for the heap");

    node->setValueString(child.keyView());

    EXPECT_EQ(node->currentValueAsString(""), "a key that is long enough for the heap");
}

TEST(PropertyViews, ReturnTheValuesThatTheGettersCopy)
{
    const NodePointer node = Property::create()->createSingleProperty("key");
    EXPECT_EQ(node->keyView(), "key");

    node->setValueString("text");
    EXPECT_STREQ(node->textView(), "text");
    node->setValueId("id");
    EXPECT_STREQ(node->textView(), "id");
    node->setValueBinary({1, 2});
    EXPECT_EQ(node->bytesView(), (std::vector<unsigned char>{1, 2}));
    node->setValueRegex("pattern", "options");
    EXPECT_EQ(node->patternView(), "pattern");
    EXPECT_EQ(node->optionsView(), "options");
}

TEST(PropertyViews, AreEmptyForEveryOtherType)
{
    for (const ValueKind& kind : valueKinds())
    {
        const NodePointer node = Property::create();
        kind.set(*node);

        if (kind.type != String && kind.type != Id)
        {
            EXPECT_EQ(node->textView(), nullptr) << kind;
        }
        if (kind.type != Binary)
        {
            EXPECT_TRUE(node->bytesView().empty()) << kind;
        }
        if (kind.type != Regex)
        {
            EXPECT_TRUE(node->patternView().empty() && node->optionsView().empty()) << kind;
        }
    }
}

} // namespace
