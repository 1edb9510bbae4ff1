// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "every_type.h"

#include "json_text.h"
#include "properties_to_bson.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using dbc::Value;
using test_support::jsonOf;

std::vector<std::string> texts(const std::vector<dbc::LossAt>& losses)
{
    std::vector<std::string> lines;
    for (const dbc::LossAt& loss : losses)
        lines.push_back(loss.path + ": " + dbc::nameOf(loss.loss));
    return lines;
}

TEST(ValueProperties, KeepEveryTypeTheyHold)
{
    const Value value = {{"array", dbc::array({1, dbc::array({2}), {{"x", 3}}})},
                         {"binary", dbc::Bytes{1, 2}},
                         {"bool", true},
                         {"double", 0.5},
                         {"empty", {}},
                         {"id", dbc::ObjectId{"507f1f77bcf86cd799439011"}},
                         {"int32", 7},
                         {"int64", 1L << 40},
                         {"nested", {{"a/b", 1}, {"deep", {{"deeper", "x"}}}}},
                         {"regex", dbc::RegularExpression{"^a", "i"}},
                         {"string", "text"},
                         {"time", dbc::timeFromMilliseconds(-5)},
                         {"undefined", Value::undefined()}};
    const ObjectProperties document = value.toProperties();
    EXPECT_EQ(Value::fromProperties(document).toBson(), value.toBson());
    EXPECT_TRUE(dbc::findLosses(value).empty());
}

TEST(ValueProperties, KeepTheOrderOfMoreThanTenElements)
{
    std::vector<int> numbers;
    for (int number = 0; number < 1100; ++number)
        numbers.push_back(number);
    const Value value = {{"n", numbers}};
    EXPECT_EQ(Value::fromProperties(value.toProperties()), value);

    ObjectProperties read; // as the converters make it
    read.beginArray("n");
    for (int number = 0; number < 12; ++number)
        read.setValueInt32(std::to_string(number), number);
    EXPECT_EQ(Value::fromProperties(read).at("n"), Value(std::vector<int>(numbers.begin(), numbers.begin() + 12)));
}

TEST(ValueProperties, NameEveryFieldThatDoesNotFit)
{
    const Value value = {{"fits", 1},
                         {"null", nullptr},
                         {"nested", {{"list", dbc::array({1, dbc::Timestamp{1, 1}})}}},
                         {"symbol", dbc::Symbol{"s"}},
                         {"code", dbc::CodeWithScope{"f()", {}}},
                         {"uuid", dbc::Binary{dbc::Bytes(16, 1), 4}},
                         {"bytes", dbc::Bytes()},
                         {"zero", std::string("a\0b", 3)},
                         {"fits", 2}};
    const std::vector<std::string> expected{"null: null is dropped",
                                            "nested.list.1: timestamp is dropped",
                                            "symbol: symbol becomes a string",
                                            "code: code with scope is dropped",
                                            "uuid: binary loses its subtype",
                                            "bytes: binary without bytes is dropped",
                                            "zero: string is cut at its zero byte",
                                            "fits: duplicate key"};
    EXPECT_EQ(texts(dbc::findLosses(value)), expected);
    const auto error = test_support::thrownError<dbc::LossError>([&] { static_cast<void>(value.toProperties()); });
    EXPECT_EQ(texts(error.losses()), expected);
    EXPECT_NE(std::string(error.what()).find("nested.list.1 (timestamp is dropped)"), std::string::npos);
    std::vector<dbc::LossAt> losses;
    const ObjectProperties document = value.toProperties(losses);
    EXPECT_EQ(texts(losses), expected);
    EXPECT_EQ(document.valueAsInt32("fits", 0), 2) << "the last of two fields";
    EXPECT_EQ(document.valueAsString("symbol", ""), "s");
    EXPECT_FALSE(document.contains("null"));
}

TEST(ValueProperties, ThrowForEveryTypeThatTheyCannotRepresent)
{
    for (const Value& value :
         {Value(nullptr), Value(dbc::Timestamp{1, 2}), Value(dbc::Decimal128()), Value(dbc::Code{"c"}),
          Value(dbc::CodeWithScope{"c", {}}), Value(dbc::DbPointer{"a", {"507f1f77bcf86cd799439011"}}), Value::minKey(),
          Value::maxKey(), Value(dbc::Symbol{"s"})})
    {
        EXPECT_THROW(static_cast<void>(Value({{"a", value}}).toProperties()), dbc::LossError) << value;
        EXPECT_THROW(static_cast<void>(dbc::document({{"a", value}})), dbc::LossError) << value;
        ASSERT_EQ(dbc::findLosses(value).size(), 1U) << value;
        EXPECT_EQ(dbc::findLosses(value).front().loss, dbc::lossOf(value.type())) << value;
    }
}

TEST(ValueProperties, AreMadeOfAnObjectOnly)
{
    EXPECT_THROW(static_cast<void>(Value(1).toProperties()), std::logic_error);
    EXPECT_THROW(static_cast<void>(dbc::array().toProperties()), std::logic_error);
}

TEST(ValueProperties, AreReadWhereverTheirCursorIs)
{
    ObjectProperties document;
    document.setValueInt32("group/x", 1);
    document.beginGroup("group");
    EXPECT_EQ(Value::fromProperties(document), Value({{"group", {{"x", 1}}}}));
    EXPECT_EQ(document.group(), "group");
}

TEST(ValueProperties, ThrowForAnInvalidId)
{
    ObjectProperties document;
    document.setValueId("id", "not an id");
    EXPECT_THROW(Value::fromProperties(document), std::invalid_argument);
}

TEST(ValueProperties, AreWrittenAsTheConvertersWriteThem)
{
    const Value value = {{"a", dbc::array({1, "x", {{"b", true}}})}, {"c", {{"d", 0.5}}}};
    EXPECT_EQ(jsonOf(value.toProperties()), value.toJson(dbc::JsonFormat::Legacy));
}

} // namespace
