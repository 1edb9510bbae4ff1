// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "captured_output.h"
#include "property.h"
#include "property_internals.h"
#include "property_kinds.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <limits>
#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;

std::string printed(Property& node)
{
    test_support::CapturedOutput output;
    node.print();
    return output.text();
}

std::string printed(Property& receiver, Property& node, int level)
{
    test_support::CapturedOutput output;
    receiver.print(&node, level);
    return output.text();
}

std::string justified(int level)
{
    const NodePointer node = Property::create();
    test_support::CapturedOutput output;
    node->printJustify(level);
    return output.text();
}

struct PrintRow
{
    std::string name;
    std::function<void(Property&)> fill;
    std::string expected;
};

std::ostream& operator<<(std::ostream& stream, const PrintRow& row)
{
    return stream << row.expected;
}

void setKind(Property& node, int kind)
{
    storedKind(itemOf(node)) = static_cast<PropertyType>(kind);
}

const PrintRow printRows[] = {
    {"KindNone", [](Property& node) { setKind(node, 0); }, ""},
    {"KindBelowTheEnumeration", [](Property& node) { setKind(node, -1); }, ""},
    {"KindAboveTheEnumeration", [](Property& node) { setKind(node, 13); }, ""},
    {"Undefined", [](Property& node) { node.setValueUndefined(); }, "<UNDEFINED>"},
    {"String", [](Property& node) { node.setValueString("text"); }, "\"text\""},
    {"EmptyString", [](Property& node) { node.setValueString(""); }, "\"\""},
    {"StringWithoutEscapes", [](Property& node) { node.setValueString("a\"b\\c\n\t%s"); }, "\"a\"b\\c\n\t%s\""},
    {"StringOfBytes", [](Property& node) { node.setValueString("\xff\x01"); }, "\"\xff\x01\""},
    {"True", [](Property& node) { node.setValueBool(true); }, "true"},
    {"False", [](Property& node) { node.setValueBool(false); }, "false"},
    {"Int32", [](Property& node) { node.setValueInt32(1); }, "1"},
    {"SmallestInt32", [](Property& node) { node.setValueInt32(INT_MIN); }, "-2147483648"},
    {"Int64", [](Property& node) { node.setValueInt64(LONG_MAX); }, "9223372036854775807"},
    {"SmallestInt64", [](Property& node) { node.setValueInt64(LONG_MIN); }, "-9223372036854775808"},
    {"Double", [](Property& node) { node.setValueDouble(1.5); }, "1.500000e+00"},
    {"DoubleZero", [](Property& node) { node.setValueDouble(0); }, "0.000000e+00"},
    {"DoubleNegative", [](Property& node) { node.setValueDouble(-1234567.89); }, "-1.234568e+06"},
    {"DoubleTiny", [](Property& node) { node.setValueDouble(1e-300); }, "1.000000e-300"},
    {"DoubleInfinity", [](Property& node) { node.setValueDouble(-std::numeric_limits<double>::infinity()); }, "-inf"},
    {"Time", [](Property& node) { node.setValueTime(1500000000000L); }, "1500000000000"},
    {"TimeBeforeTheEpoch", [](Property& node) { node.setValueTime(-1); }, "-1"},
    {"Id", [](Property& node) { node.setValueId("507f1f77bcf86cd799439011"); }, "\"507f1f77bcf86cd799439011\""},
    {"Binary",
     [](Property& node) {
         node.setValueBinary({1, 2, 255});
     },
     "\"12255\""},
    {"BinaryWithZeroBytes",
     [](Property& node) {
         node.setValueBinary({0, 0, 10});
     },
     "\"0010\""},
    {"EmptyBinary", [](Property& node) { node.setValueBinary({}); }, "\"\""},
    {"Regex", [](Property& node) { node.setValueRegex("^a\"b", "i"); }, "\"^a\"b\" with options \"i\""},
    {"EmptyRegex", [](Property& node) { node.setValueRegex("", ""); }, "\"\" with options \"\""},
};

class PrintedEntry : public testing::TestWithParam<PrintRow>
{};

TEST_P(PrintedEntry, HasIndentationKeyValueAndAComma)
{
    const NodePointer root = Property::create();
    GetParam().fill(*root->createSingleProperty("key"));

    EXPECT_EQ(printed(*root), "{\n   \"key\": " + GetParam().expected + ",\n}\n");
}

TEST_P(PrintedEntry, InAnArrayHasItsKeyToo)
{
    const NodePointer root = Property::create();
    GetParam().fill(*root->createArray("list")->createSingleProperty("0"));

    EXPECT_EQ(printed(*root), "{\n      \"list\": [\n      \"0\": " + GetParam().expected + ",\n   ],\n}\n");
}

INSTANTIATE_TEST_SUITE_P(Kinds, PrintedEntry, testing::ValuesIn(printRows), RowName());

TEST(PropertyPrint, PrintsAnEmptyNodeAsTwoBraces)
{
    EXPECT_EQ(printed(*Property::create()), "{\n}\n");
}

TEST(PropertyPrint, AGroupIsIndentedTwiceWhereItOpensAndOnceWhereItCloses)
{
    const NodePointer root = Property::create();
    root->setValueInt32("a", 1);
    root->setValueString("b/c", "x");

    EXPECT_EQ(printed(*root), "{\n"
                              "   \"a\": 1,\n"
                              "      \"b\": {\n"
                              "      \"c\": \"x\",\n"
                              "   },\n"
                              "}\n");
}

TEST(PropertyPrint, EmptyGroupsAndArraysHaveNothingBetweenTheirLines)
{
    const NodePointer root = Property::create();
    root->createArray("a");
    root->createGroup("g");

    EXPECT_EQ(printed(*root), "{\n"
                              "      \"a\": [\n"
                              "   ],\n"
                              "      \"g\": {\n"
                              "   },\n"
                              "}\n");
}

TEST(PropertyPrint, NestedGroupsAndArraysGoThreeSpacesFurtherEachLevel)
{
    const NodePointer root = Property::create();
    const NodePointer list = root->createArray("list");
    list->createSingleGroup("0")->setValueBool("x", true);
    list->createSingleArray("1")->setValueInt32("0", 2);
    root->createGroup("z/y/x");

    EXPECT_EQ(printed(*root), "{\n"
                              "      \"list\": [\n"
                              "            \"0\": {\n"
                              "         \"x\": true,\n"
                              "      },\n"
                              "            \"1\": [\n"
                              "         \"0\": 2,\n"
                              "      ],\n"
                              "   ],\n"
                              "      \"z\": {\n"
                              "            \"y\": {\n"
                              "                  \"x\": {\n"
                              "         },\n"
                              "      },\n"
                              "   },\n"
                              "}\n");
}

TEST(PropertyPrint, EntriesComeInIndexOrderEqualKeysAsInserted)
{
    const NodePointer list = Property::create()->createArray("list");
    list->setValueInt32("2", 1);
    list->setValueInt32("10", 2);
    list->setValueInt32("1", 3);
    list->setValueInt32("10", 4);

    EXPECT_EQ(printed(*list), "{\n   \"1\": 3,\n   \"10\": 2,\n   \"10\": 4,\n   \"2\": 1,\n}\n");
}

TEST(PropertyPrint, ChildrenOfAValueAreNotShown)
{
    const NodePointer root = Property::create();
    root->setValueString("s", "text");
    root->createProperty("s/t");

    EXPECT_EQ(printed(*root), "{\n   \"s\": \"text\",\n}\n");
}

TEST(PropertyPrint, ShowsTheOwnKeyOfAChildWhoseEntryHasAnother)
{
    const NodePointer root = Property::create();
    root->createGroup("entry")->copy(*Property::create()->createSingleGroup("own"));

    EXPECT_EQ(printed(*root), "{\n      \"own\": {\n   },\n}\n");
}

TEST(PropertyPrint, WithALevelWritesTheChildrenOfTheGivenNodeWithoutBraces)
{
    const NodePointer receiver = Property::create();
    receiver->setValueInt32("not shown", 1);
    const NodePointer node = Property::create();
    node->setValueInt32("a", 1);
    node->setValueInt32("g/b", 2);

    EXPECT_EQ(printed(*receiver, *node, 2), "      \"a\": 1,\n"
                                            "            \"g\": {\n"
                                            "         \"b\": 2,\n"
                                            "      },\n");
}

TEST(PropertyPrint, WithALevelThatIsNotPositiveIndentsOnlyWhatIsDeeper)
{
    const NodePointer node = Property::create();
    node->setValueInt32("g/b", 2);

    EXPECT_EQ(printed(*node, *node, 0), "\"g\": {\n   \"b\": 2,\n},\n");
    EXPECT_EQ(printed(*node, *node, -5), "\"g\": {\n\"b\": 2,\n},\n");
}

TEST(PropertyPrint, WithALevelWritesNothingForANodeWithoutChildren)
{
    const NodePointer node = Property::create();
    node->setValueInt32(5);

    EXPECT_EQ(printed(*node, *node, 3), "");
}

TEST(PropertyPrint, JustifyWritesThreeSpacesALevel)
{
    EXPECT_EQ(justified(0), "");
    EXPECT_EQ(justified(1), "   ");
    EXPECT_EQ(justified(7), std::string(21, ' '));
    EXPECT_EQ(justified(-1), "");
    EXPECT_EQ(justified(INT_MIN), "");
}

TEST(PropertyPrint, PrintsThroughTheVirtualOperations)
{
    class Framed : public Property
    {
    public:
        Framed() : Property("", nullptr) {}
        void printJustify(int level) const override { std::printf("<%d>", level); }
    };
    const auto node = std::make_shared<Framed>();
    node->setValueInt32("g/b", 2);

    EXPECT_EQ(printed(*node), "{\n<1><1>\"g\": {\n<2>\"b\": 2,\n<1>},\n}\n");
}

TEST(PropertyPrint, DoesNotChangeTheTree)
{
    const NodePointer root = Property::create();
    root->setValueInt32("g/b", 2);
    root->createProperty("u");

    const std::string first = printed(*root);

    EXPECT_EQ(printed(*root), first);
    EXPECT_EQ(root->childCount(), 2U);
    EXPECT_EQ(root->type("u"), static_cast<int>(Undefined));
}

} // namespace
