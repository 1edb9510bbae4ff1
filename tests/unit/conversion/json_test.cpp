// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "conversions.h"
#include "json_text.h"
#include "json_to_properties.h"
#include "properties_to_json.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

namespace {

using test_support::jsonOf;
using Document = ObjectProperties;

struct JsonWriterRow
{
    std::string name;
    std::function<void(Document&)> fill;
    std::string expected;
};

std::ostream& operator<<(std::ostream& stream, const JsonWriterRow& row)
{
    return stream << row.expected;
}

struct JsonReaderRow
{
    std::string name;
    std::string json;
    std::string expected;
};

std::ostream& operator<<(std::ostream& stream, const JsonReaderRow& row)
{
    return stream << row.json;
}

struct InvalidRow
{
    std::string name;
    std::string json;
};

std::ostream& operator<<(std::ostream& stream, const InvalidRow& row)
{
    return stream << row.json;
}

class WrittenJson : public testing::TestWithParam<JsonWriterRow>
{};

class ReadJson : public testing::TestWithParam<JsonReaderRow>
{};

class InvalidJson : public testing::TestWithParam<InvalidRow>
{};

// clang-format off
const JsonWriterRow writerRows[] = {
    {"Empty", [](Document&) {}, "{  }"},
    {"SortedByKey", [](Document& d) { d.setValueInt32("b", 1); d.setValueInt32("a", 2); }, R"({ "a" : 2, "b" : 1 })"},
    {"Undefined", [](Document& d) { d.valueAsInt32("k", 0); }, R"({ "k" : { "$undefined" : true } })"},
    {"Group", [](Document& d) { d.setValueInt32("k/v", 1); }, R"({ "k" : { "v" : 1 } })"},
    {"Array", [](Document& d) { d.beginArray("k"); d.setValueInt32("x", 1); d.setValueInt32("y", 2); },
     R"({ "k" : [ 1, 2 ] })"},
    {"String", [](Document& d) { d.setValueString("k", "a\"b\\c\n\xc3\xa9"); },
     "{ \"k\" : \"a\\\"b\\\\c\\n\xc3\xa9\" }"},
    {"Bool", [](Document& d) { d.setValueBool("k", true); }, R"({ "k" : true })"},
    {"Int32", [](Document& d) { d.setValueInt32("k", -5); }, R"({ "k" : -5 })"},
    {"Int64", [](Document& d) { d.setValueInt64("k", 5000000000L); }, R"({ "k" : 5000000000 })"},
    {"Double", [](Document& d) { d.setValueDouble("k", 1.5); }, R"({ "k" : 1.5 })"},
    {"DoubleWithoutFraction", [](Document& d) { d.setValueDouble("k", 2); }, R"({ "k" : 2.0 })"},
    {"Time", [](Document& d) { d.setValueTime("k", 1500000000000LL); }, R"({ "k" : { "$date" : 1500000000000 } })"},
    {"Id", [](Document& d) { d.setValueId("k", "507f1f77bcf86cd799439011"); },
     R"({ "k" : { "$oid" : "507f1f77bcf86cd799439011" } })"},
    {"Binary", [](Document& d) { d.setValueBinary("k", {0, 1, 255}); },
     R"({ "k" : { "$binary" : "AAH/", "$type" : "00" } })"},
    {"BinaryWithoutBytes", [](Document& d) { d.setValueBinary("k", {}); }, "{  }"},
    {"Regex", [](Document& d) { d.setValueRegex("k", "^a", "i"); }, R"({ "k" : { "$regex" : "^a", "$options" : "i" } })"},
    {"TextThatIsNotUtf8IsEmpty", [](Document& d) { d.setValueInt32("a", 1); d.setValueString("k", "\xff"); }, ""},
    {"NestedTextThatIsNotUtf8IsEmpty", [](Document& d) { d.setValueString("g/k", "\xc3"); }, ""},
    {"KeyThatIsNotUtf8IsEmpty", [](Document& d) { d.setValueInt32("\xff", 1); }, ""},
    {"RegexThatIsNotUtf8IsEmpty", [](Document& d) { d.setValueRegex("k", "\xff", ""); }, ""},
};

const JsonReaderRow readerRows[] = {
    {"Empty", "{}", "Group"},
    {"EmptyWithSpaces", " { } ", "Group"},
    {"NullIsSkipped", R"({ "n" : null })", "Group"},
    {"Int32", R"({ "k" : 5 })", "Group{\"k\":Int32=5}"},
    {"Int64", R"({ "k" : 5000000000 })", "Group{\"k\":Int64=5000000000}"},
    {"NumberLong", R"({ "k" : { "$numberLong" : "5" } })", "Group{\"k\":Int64=5}"},
    {"NumberInt", R"({ "k" : { "$numberInt" : "5" } })", "Group{\"k\":Int32=5}"},
    {"Double", R"({ "k" : 1.5 })", "Group{\"k\":Double=0x1.8p+0}"},
    {"NumberDouble", R"({ "k" : { "$numberDouble" : "1.5" } })", "Group{\"k\":Double=0x1.8p+0}"},
    {"NumberDecimalIsSkipped", R"({ "k" : { "$numberDecimal" : "1.5" }, "l" : 1 })", "Group{\"l\":Int32=1}"},
    {"Bool", R"({ "k" : true, "l" : false })", "Group{\"k\":Bool=true,\"l\":Bool=false}"},
    {"String", R"({ "k" : "a\"b\u00e9" })", "Group{\"k\":String=\"a\\x22b\\xc3\\xa9\"}"},
    {"StringIsCutAtAZeroByte", R"({ "k" : "ab\u0000cd" })", "Group{\"k\":String=\"ab\"}"},
    {"Date", R"({ "d" : { "$date" : 0 } })", "Group{\"d\":Time=0}"},
    {"DateAsNumberLong", R"({ "d" : { "$date" : { "$numberLong" : "-1" } } })", "Group{\"d\":Time=-1}"},
    {"DateAsText", R"({ "d" : { "$date" : "2017-07-14T02:40:00Z" } })", "Group{\"d\":Time=1500000000000}"},
    {"Oid", R"({ "i" : { "$oid" : "507f1f77bcf86cd799439011" } })", "Group{\"i\":Id=\"507f1f77bcf86cd799439011\"}"},
    {"Binary", R"({ "b" : { "$binary" : "AAH/", "$type" : "00" } })", "Group{\"b\":Binary=\"\\x00\\x01\\xff\"}"},
    {"BinaryOfTheNewForm", R"({ "b" : { "$binary" : { "base64" : "AAH/", "subType" : "04" } } })",
     "Group{\"b\":Binary=\"\\x00\\x01\\xff\"}"},
    {"Regex", R"({ "r" : { "$regex" : "^a", "$options" : "i" } })", "Group{\"r\":Regex=\"^a\"\"i\"}"},
    {"RegexOfTheNewForm", R"({ "r" : { "$regularExpression" : { "pattern" : "^a", "options" : "i" } } })",
     "Group{\"r\":Regex=\"^a\"\"i\"}"},
    {"Symbol", R"({ "s" : { "$symbol" : "sym" } })", "Group{\"s\":String=\"sym\"}"},
    {"UndefinedIsSkipped", R"({ "u" : { "$undefined" : true } })", "Group"},
    {"TimestampIsSkipped", R"({ "t" : { "$timestamp" : { "t" : 1, "i" : 2 } } })", "Group"},
    {"MinAndMaxKeyAreSkipped", R"({ "a" : { "$minKey" : 1 }, "b" : { "$maxKey" : 1 } })", "Group"},
    {"Group", R"({ "g" : { "v" : 1 }, "e" : {} })", "Group{\"e\":Group,\"g\":Group{\"v\":Int32=1}}"},
    {"Array", R"({ "a" : [ 1, "s", [], {} ] })",
     "Group{\"a\":Array{\"0\":Int32=1,\"1\":String=\"s\",\"2\":Array,\"3\":Group}}"},
    {"NullsInAnArrayLeaveAGap", R"({ "a" : [ null, 1 ] })", "Group{\"a\":Array{\"1\":Int32=1}}"},
    {"ASlashInAKeyIsAPath", R"({ "a/b" : 1 })", "Group{\"a\":Group{\"b\":Int32=1}}"},
    {"ARepeatedKeyKeepsTheLastValue", R"({ "a" : 1, "a" : 2 })", "Group{\"a\":Int32=2}"},
    {"NothingBehindAZeroByteIsRead", R"({ "a" : 1 })" + std::string(1, '\0') + "not json", "Group{\"a\":Int32=1}"},
};

const InvalidRow invalidRows[] = {
    {"NoJson", "not json"},
    {"EndsInTheMiddle", R"({ "a" : 1, "b")"},
    {"EndsInAText", R"({ "a" : "x)"},
    {"EndsAtAZeroByte", std::string(R"({ "a" : 1)") + std::string(1, '\0') + "}"},
    {"CommaAtTheEnd", R"({ "a" : 1, })"},
    {"NoQuotes", "{ a : 1 }"},
    {"WrongOid", R"({ "i" : { "$oid" : "507f" } })"},
    {"WrongDate", R"({ "d" : { "$date" : "yesterday" } })"},
    {"WrongBase64", R"({ "b" : { "$binary" : "%", "$type" : "00" } })"},
    {"NotUtf8", "{ \"a\" : \"\xff\" }"},
};
// clang-format on

TEST_P(WrittenJson, HasTheLegacyFormatOfTheDriver)
{
    ObjectProperties document;
    GetParam().fill(document);

    EXPECT_EQ(jsonOf(document), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, WrittenJson, testing::ValuesIn(writerRows), RowName());

TEST_P(ReadJson, HasTheFieldsOfTheString)
{
    ObjectProperties document;

    EXPECT_TRUE(JsonToProperties::convert(GetParam().json, &document));

    EXPECT_EQ(treeText(document), GetParam().expected);
    EXPECT_EQ(document.key(), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, ReadJson, testing::ValuesIn(readerRows), RowName());

TEST_P(InvalidJson, IsRejectedAndLeavesTheTargetUnchanged)
{
    ObjectProperties document;
    document.setValueInt32("g/kept", 1);
    document.beginGroup("g");

    EXPECT_FALSE(JsonToProperties::convert(GetParam().json, &document));

    EXPECT_EQ(treeText(document), "Group{\"g\":Group{\"kept\":Int32=1}}");
    EXPECT_EQ(document.group(), "g");
}

INSTANTIATE_TEST_SUITE_P(Rows, InvalidJson, testing::ValuesIn(invalidRows), RowName());

TEST(JsonWriter, StartsAtTheRootWhereverTheCursorIs)
{
    ObjectProperties document;
    document.setValueInt32("g/a", 1);
    document.beginGroup("g");

    EXPECT_EQ(jsonOf(document), R"({ "g" : { "a" : 1 } })");
    EXPECT_EQ(document.group(), "g");
}

TEST(JsonWriter, ReplacesALongerTextInFull)
{
    std::string json(1000, 'x');

    EXPECT_TRUE(PropertiesToJson::convert(ObjectProperties(), json));

    EXPECT_EQ(json, "{ }");
}

TEST(JsonWriter, WorkerFunctionWritesAsConvertDoes)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);
    std::string json;

    EXPECT_TRUE(PropertiesToJson::properties_to_json(document, json));

    EXPECT_EQ(json, R"({ "a" : 1 })");
}

TEST(JsonReader, RejectsANullTarget)
{
    EXPECT_FALSE(JsonToProperties::convert("{}", nullptr));
    EXPECT_FALSE(JsonToProperties::convert("not json", nullptr));
}

TEST(JsonReader, AddsFieldsAtTheCursorBesideExistingOnes)
{
    ObjectProperties document;
    document.setValueInt32("g/old", 1);
    document.beginGroup("g");

    EXPECT_TRUE(JsonToProperties::convert(R"({ "new" : { "v" : 2 } })", &document));

    EXPECT_EQ(treeText(document), "Group{\"g\":Group{\"new\":Group{\"v\":Int32=2},\"old\":Int32=1}}");
    EXPECT_EQ(document.group(), "g");
}

TEST(JsonReader, WorkerFunctionReadsAsConvertDoes)
{
    ObjectProperties document;

    EXPECT_TRUE(JsonToProperties::json_to_properties(R"({ "a" : 1 })", &document));

    EXPECT_EQ(treeText(document), "Group{\"a\":Int32=1}");
}

TEST(JsonReader, RejectsOrReadsJsonCutAtEveryByteAsTheDriverDoes)
{
    const std::string whole = R"({ "a" : [ 1, { "$oid" : "507f1f77bcf86cd799439011" } ], "g" : { "$date" : 0 } })";
    for (std::size_t length = 0; length <= whole.size(); ++length)
    {
        const std::string json = whole.substr(0, length);
        const BsonPointer driver(bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json.c_str()), -1, nullptr));
        ObjectProperties document;

        EXPECT_EQ(JsonToProperties::convert(json, &document), driver != nullptr) << json;

        EXPECT_EQ(document.isEmpty(), length < whole.size()) << json;
    }
}

TEST(JsonRoundTrip, KeepsEveryTypeExceptTheWidthOfSmallNumbers)
{
    ObjectProperties document;
    document.setValueString("string", "text");
    document.setValueBool("bool", true);
    document.setValueInt32("int32", 5);
    document.setValueInt64("int64", 5000000000L);
    document.setValueDouble("double", 1.25);
    document.setValueTime("time", 1500000000000LL);
    document.setValueId("id", "507f1f77bcf86cd799439011");
    document.setValueBinary("binary", {0, 1, 255});
    document.setValueRegex("regex", "^a", "i");
    document.beginArray("list");
    document.setValueInt32("0", 1);
    ObjectProperties copy;

    ASSERT_TRUE(JsonToProperties::convert(jsonOf(document), &copy));
    EXPECT_EQ(treeText(copy), treeText(document));

    document.setValueInt64("/int64", 5);
    ASSERT_TRUE(JsonToProperties::convert(jsonOf(document), &copy));
    EXPECT_EQ(copy.type("int64"), static_cast<int>(Int32));
}

} // namespace
