// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"
#include "property_internals.h"
#include "property_kinds.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

namespace {

using Item = Property::PropertyItem;
using Bytes = std::vector<unsigned char>;
using TextPair = std::pair<std::string, std::string>;

const std::string longText = "a text that is long enough for the heap";

// An item as it stands inside a node that was given the kind's sample.
Item itemOfKind(const ValueKind& kind)
{
    const auto node = Property::create();
    kind.set(*node);
    return itemOf(*node);
}

class PropertyItemOfKind : public testing::TestWithParam<ValueKind>
{};

TEST(PropertyItem, StartsUndefinedAndEmpty)
{
    Item item;

    EXPECT_EQ(storedKind(item), Undefined);
    EXPECT_EQ(item.valueAsString(), "");
    EXPECT_FALSE(item.valueAsBool());
    EXPECT_EQ(item.valueAsInt32(), 0);
    EXPECT_EQ(item.valueAsInt64(), 0);
    EXPECT_EQ(item.valueAsDouble(), 0.0);
    EXPECT_TRUE(item.valueAsBinary().empty());
    EXPECT_EQ(item.valueAsRegex(), TextPair());
}

TEST(PropertyItem, TheValueWordIsAUnionOf8BytesZeroedByItsConstructor)
{
    const Item::PropertyValue value;

    EXPECT_EQ(sizeof(value), 8U);
    EXPECT_EQ(value.text, nullptr);
    EXPECT_EQ(value.int64, 0);
}

TEST(PropertyItem, SettingANumberSetsItsType)
{
    Item item;

    item.setValueBool(true);
    EXPECT_EQ(storedKind(item), Bool);
    EXPECT_TRUE(item.valueAsBool());
    item.setValueInt32(INT_MIN);
    EXPECT_EQ(storedKind(item), Int32);
    EXPECT_EQ(item.valueAsInt32(), INT_MIN);
    item.setValueInt64(LONG_MIN);
    EXPECT_EQ(storedKind(item), Int64);
    EXPECT_EQ(item.valueAsInt64(), LONG_MIN);
    item.setValueDouble(2.5);
    EXPECT_EQ(storedKind(item), Double);
    EXPECT_EQ(item.valueAsDouble(), 2.5);
}

TEST(PropertyItem, SettingStringBytesOrRegexDoesNotSetTheType)
{
    Item text;
    text.setValueString(longText);
    EXPECT_EQ(storedKind(text), Undefined);
    EXPECT_EQ(text.valueAsString(), longText);

    Item bytes;
    bytes.setValueBinary({1, 2});
    EXPECT_EQ(storedKind(bytes), Undefined);
    EXPECT_EQ(bytes.valueAsBinary(), (Bytes{1, 2}));

    Item regex;
    regex.setValueRegex({longText, "i"});
    EXPECT_EQ(storedKind(regex), Undefined);
    EXPECT_EQ(regex.valueAsRegex(), TextPair(longText, "i"));
}

TEST(PropertyItem, ATextIsCopiedUpToItsFirstZeroByte)
{
    Item item;

    item.setValueString(std::string("ab\0cd", 5));

    EXPECT_EQ(item.valueAsString(), "ab");
}

TEST(PropertyItem, AStringSetTwiceWhileTheTypeIsNotSetIsFreedOnce)
{
    Item item;

    item.setValueString(longText);
    item.setValueString("second " + longText);

    EXPECT_EQ(item.valueAsString(), "second " + longText);
}

TEST(PropertyItem, AStringReplacesANumberAndANumberAString)
{
    Item item;

    item.setValueInt64(-1);
    item.setValueString(longText);
    EXPECT_EQ(item.valueAsString(), longText);
    item.setValueDouble(1.5);
    EXPECT_EQ(item.valueAsDouble(), 1.5);
}

TEST(PropertyItem, ANumberReleasesAllBytesOfTheValueWordThatItDoesNotUse)
{
    Item item;

    item.setValueInt64(-1);
    item.setValueBool(true);
    EXPECT_EQ(item.valueAsInt64(), 1);
    item.setValueInt64(-1);
    item.setValueInt32(2);
    EXPECT_EQ(item.valueAsInt64(), 2);
}

TEST(PropertyItem, ClearStringZeroesTheValueWordOfEveryType)
{
    for (const ValueKind& kind : valueKinds())
    {
        Item item = itemOfKind(kind);

        item.clearString();

        EXPECT_EQ(item.valueAsInt64(), 0) << kind;
        EXPECT_EQ(item.valueAsString(), "") << kind;
        EXPECT_EQ(storedKind(item), kind.type) << kind;
    }
}

TEST(PropertyItem, ClearBinaryFreesTheBytesOfABinaryOnly)
{
    for (const ValueKind& kind : valueKinds())
    {
        Item item = itemOfKind(kind);
        const TextPair regex = item.valueAsRegex();
        const long word = kind.type == Binary ? 0 : item.valueAsInt64();

        item.clearBinary();

        EXPECT_TRUE(item.valueAsBinary().empty()) << kind;
        EXPECT_EQ(item.valueAsRegex(), regex) << kind;
        EXPECT_EQ(item.valueAsInt64(), word) << kind;
        EXPECT_EQ(storedKind(item), kind.type) << kind;
    }
    Item notYetBinary;
    notYetBinary.setValueBinary({1});
    notYetBinary.clearBinary();
    EXPECT_EQ(notYetBinary.valueAsBinary(), Bytes{1});
}

TEST(PropertyItem, ClearRegexFreesTheTextsOfARegexOnly)
{
    for (const ValueKind& kind : valueKinds())
    {
        Item item = itemOfKind(kind);
        const Bytes bytes = item.valueAsBinary();
        const long word = item.valueAsInt64();

        item.clearRegex();

        EXPECT_EQ(item.valueAsRegex(), TextPair()) << kind;
        EXPECT_EQ(item.valueAsBinary(), bytes) << kind;
        EXPECT_EQ(item.valueAsInt64(), word) << kind;
        EXPECT_EQ(storedKind(item), kind.type) << kind;
    }
    Item notYetRegex;
    notYetRegex.setValueRegex({"p", "o"});
    notYetRegex.clearRegex();
    EXPECT_EQ(notYetRegex.valueAsRegex(), TextPair("p", "o"));
}

TEST_P(PropertyItemOfKind, ReleasedKeepsItsTypeAndLosesItsValue)
{
    Item item = itemOfKind(GetParam());

    item.releaseMemory();

    EXPECT_EQ(storedKind(item), GetParam().type);
    EXPECT_EQ(item.valueAsInt64(), 0);
    EXPECT_TRUE(item.valueAsBinary().empty());
    EXPECT_EQ(item.valueAsRegex(), TextPair());
}

TEST_P(PropertyItemOfKind, ReleasedTwiceIsFreedOnce)
{
    Item item = itemOfKind(GetParam());

    item.releaseMemory();
    item.releaseMemory();

    EXPECT_EQ(item.valueAsInt64(), 0);
}

TEST_P(PropertyItemOfKind, ClearedIsUndefined)
{
    Item item = itemOfKind(GetParam());

    item.clear();

    EXPECT_EQ(storedKind(item), Undefined);
    EXPECT_EQ(item.valueAsInt64(), 0);
}

TEST_P(PropertyItemOfKind, ACopyHasItsOwnKeyTypeValueAndStorage)
{
    const auto root = Property::create();
    const auto source = root->createSingleProperty("key");
    const auto target = root->createSingleProperty("target");
    GetParam().set(*source);

    itemOf(*target).copy(itemOf(*source));

    EXPECT_EQ(target->key(), "key");
    EXPECT_EQ(target->type(), static_cast<int>(GetParam().type));
    source->clear();
    EXPECT_TRUE(GetParam().hasSample(*target));
}

TEST_P(PropertyItemOfKind, ACopyReplacesAValueOfAnyType)
{
    for (const ValueKind& before : valueKinds())
    {
        const auto source = Property::create();
        const auto target = Property::create();
        GetParam().set(*source);
        before.set(*target);

        itemOf(*target) = itemOf(*source);

        EXPECT_EQ(target->type(), static_cast<int>(GetParam().type)) << "after " << before;
        EXPECT_TRUE(GetParam().hasSample(*target)) << "after " << before;
    }
}

TEST_P(PropertyItemOfKind, AssignedToItselfStaysAsItIs)
{
    const auto node = Property::create();
    GetParam().set(*node);
    Item& item = itemOf(*node);

    item = *&item;

    EXPECT_TRUE(GetParam().hasSample(*node));
}

TEST_P(PropertyItemOfKind, ATypeWithoutValueCopiedOverItReleasesTheValue)
{
    for (const PropertyType kind : {None, Undefined, Group, Array})
    {
        Item item = itemOfKind(GetParam());
        Item empty;
        storedKind(empty) = kind;

        item = empty;

        EXPECT_EQ(storedKind(item), kind);
        EXPECT_EQ(item.valueAsInt64(), 0);
        EXPECT_TRUE(item.valueAsBinary().empty());
        EXPECT_EQ(item.valueAsRegex(), TextPair());
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, PropertyItemOfKind, testing::ValuesIn(valueKinds()), RowName());

TEST(PropertyItem, CopyingAGroupOrAnArrayCopiesTypeAndKeyOnly)
{
    const auto root = Property::create();
    const auto array = root->createArray("array");
    array->setValueInt32("0", 1);
    const auto group = root->createGroup("group");
    group->setValueInt32("a", 1);
    const auto target = root->createProperty("target");

    itemOf(*target) = itemOf(*array);
    EXPECT_EQ(target->key(), "array");
    EXPECT_EQ(target->type(), static_cast<int>(Array));
    itemOf(*target) = itemOf(*group);
    EXPECT_EQ(target->key(), "group");
    EXPECT_EQ(target->type(), static_cast<int>(Group));
    EXPECT_EQ(target->childCount(), 0U);
}

TEST(PropertyItem, CopyingATypeOutsideTheEnumerationCopiesTheNumber)
{
    Item source;
    storedKind(source) = static_cast<PropertyType>(13);

    Item target(source);

    EXPECT_EQ(static_cast<int>(storedKind(target)), 13);
}

TEST(PropertyItem, CopyingAReleasedStringCopiesAnEmptyString)
{
    const auto node = Property::create();
    node->setValueString(longText);
    itemOf(*node).clearString();

    const auto copy = Property::create();
    copy->copy(*node);

    EXPECT_TRUE(copy->isString());
    EXPECT_EQ(copy->currentValueAsString("default"), "");
    EXPECT_STREQ(copy->textView(), "");
}

} // namespace
