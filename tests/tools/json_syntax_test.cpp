// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/value.h"
#include "json_syntax.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test_support {
namespace {

struct Row
{
    std::string text;
    std::size_t offset;
    std::string reason;
};

TEST(JsonSyntax, FaultsAreFoundWhereTheyAre)
{
    const std::vector<Row> rows{{"", 0, "a value is expected, not the end"},
                                {"{", 1, "a key in double quotes is expected, not the end"},
                                {"{a: 1}", 1, "a key in double quotes is expected, not \"a\""},
                                {R"({"a" 1})", 5, "\":\" is expected after the key, not \"1\""},
                                {R"({"a": })", 6, "a value is expected, not \"}\""},
                                {R"({"a": 1 "b": 2})", 8, "\",\" or \"}\" is expected, not a quote"},
                                {R"({"a": [1, 2})", 11, "\",\" or \"]\" is expected, not \"}\""},
                                {R"({"a": 1,})", 7, "no comma is allowed before \"}\""},
                                {R"([1, ])", 2, "no comma is allowed before \"]\""},
                                {R"({"a": 'x'})", 6, "strings need double quotes, not single quotes"},
                                {R"({"a": x})", 6, "\"x\" is not a value; a string needs double quotes"},
                                {R"({"a": 01})", 6, "\"01\" is not a number"},
                                {R"({"a": 1.})", 6, "\"1.\" is not a number"},
                                {R"({"a": "x)", 6, "the string that begins here has no closing quote"},
                                {R"({"a": "\q"})", 7, "a backslash and \"q\" are not an escape sequence"},
                                {R"({"a": "\u12"})", 7, "four hexadecimal digits are expected after \\u"},
                                {"{\"a\": \"x\ny\"}", 8, "a line break inside a string is written \\n"},
                                {"{\"a\": \"x\ty\"}", 8, "the control character 0x09 must be escaped inside a string"},
                                {"{\"a\": \"x\xff\"}", 8, "the byte 0xFF is not UTF-8"},
                                {"{} {}", 3, "the value has ended, but \"{\" follows"}};
    for (const Row& row : rows)
    {
        const auto fault = findJsonFault(row.text);
        ASSERT_TRUE(fault) << row.text;
        EXPECT_EQ(fault->offset, row.offset) << row.text;
        EXPECT_EQ(fault->reason, row.reason) << row.text;
    }
}

// A text that the library reads has no fault; one that it refuses has, as long as its syntax is the reason.
TEST(JsonSyntax, AgreesWithTheReaderOnEveryBeginningOfAText)
{
    const std::string text =
        R"([{"a": [1, -2.5e3, 0, true, false, null, {}, []], "\u00e9\n": {"b": "x\\"}}, "é€𝄞", {"$oid": "507f1f77bcf86cd799439011"}])";
    EXPECT_FALSE(findJsonFault(text));
    EXPECT_NO_THROW(dbc::Value::fromJson(text));
    for (std::size_t length = 0; length < text.size(); ++length)
    {
        EXPECT_TRUE(findJsonFault(text.substr(0, length))) << length;
        EXPECT_THROW(dbc::Value::fromJson(text.substr(0, length)), dbc::FormatError) << length;
    }
}

TEST(JsonSyntax, DepthIsNotLimited)
{
    const std::size_t levels = 1'000'000;

    EXPECT_FALSE(findJsonFault(std::string(levels, '[') + std::string(levels, ']')));
    EXPECT_EQ(findJsonFault(std::string(levels, '['))->offset, levels);
}

TEST(JsonSyntax, BytesThatAreNotUtf8AreFound)
{
    for (const std::string& good : {std::string("a\xc2\x80\xe0\xa0\x80\xed\x9f\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf")})
        EXPECT_EQ(validUtf8Length(good), good.size());
    for (const char* bad : {"a\x80", "a\xc1\xbf", "a\xc2", "a\xe0\x9f\xbf", "a\xed\xa0\x80", "a\xf0\x8f\xbf\xbf",
                            "a\xf4\x90\x80\x80", "a\xf5\x80\x80\x80", "a\xe2\x82"})
        EXPECT_EQ(validUtf8Length(bad), 1U);
}

} // namespace
} // namespace test_support
