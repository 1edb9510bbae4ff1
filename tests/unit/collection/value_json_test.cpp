// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "driver_texts.h"
#include "every_type.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using dbc::FormatError;
using dbc::JsonFormat;
using dbc::Value;
using test_support::inWordsOf123;

TEST(ValueJson, KeepsEveryTypeInTheCanonicalFormat)
{
    const Value value = test_support::everyType();
    EXPECT_EQ(Value::fromJson(value.toJson(JsonFormat::Canonical)).toBson(), value.toBson());
}

TEST(ValueJson, IsWrittenInThreeFormats)
{
    const Value value = {{"n", 1L}, {"t", dbc::timeFromMilliseconds(0)}};
    EXPECT_EQ(value.toJson(), R"({ "n" : 1, "t" : { "$date" : "1970-01-01T00:00:00Z" } })");
    EXPECT_EQ(value.toJson(JsonFormat::Canonical),
              R"({ "n" : { "$numberLong" : "1" }, "t" : { "$date" : { "$numberLong" : "0" } } })");
    EXPECT_EQ(value.toJson(JsonFormat::Legacy), R"({ "n" : 1, "t" : { "$date" : 0 } })");
    EXPECT_EQ(Value::fromJson(value.toJson()), value);
    EXPECT_EQ(Value::fromJson(value.toJson(JsonFormat::Legacy)), value);
}

TEST(ValueJson, ReadsAndWritesValuesThatAreNoObjects)
{
    for (const char* const json :
         {"5", "-1.5", "\"text\"", "true", "null", "[ 1, [ 2, { \"a\" : 3 } ] ]", "[  ]", "{ }"})
        EXPECT_EQ(inWordsOf123(Value::fromJson(json).toJson()), inWordsOf123(json));
    EXPECT_EQ(Value::fromJson(" \n[1]\t "), dbc::array({1}));
    EXPECT_EQ(Value::fromJson(R"({"$oid": "507f1f77bcf86cd799439011"})"),
              Value(dbc::ObjectId{"507f1f77bcf86cd799439011"}));
}

struct Fault
{
    const char* json;
    std::size_t position;
    const char* message;
};

void PrintTo(const Fault& fault, std::ostream* stream)
{
    *stream << fault.json;
}

class ValueJsonFault : public testing::TestWithParam<Fault>
{};

TEST_P(ValueJsonFault, IsRejectedWithItsPositionAndReason)
{
    const auto error =
        test_support::thrownError<FormatError>([] { static_cast<void>(Value::fromJson(GetParam().json)); });
    EXPECT_EQ(error.position(), GetParam().position) << error.what();
    EXPECT_EQ(std::string(error.what()).rfind(GetParam().message, 0), 0U) << error.what();
}

INSTANTIATE_TEST_SUITE_P(
    OfEveryKind, ValueJsonFault,
    testing::Values(
        Fault{"", 0, "JSON: the text ends before the value does, at byte 0"},
        Fault{"{\"a\": 1", 7, "JSON: the text ends before the value does, at byte 7"},
        Fault{"{\"a\": \"x", 8, "JSON: the text ends before the value does, at byte 8"},
        Fault{"{\"a\": 1} {}", 9, "JSON: text after the value, at byte 9"},
        Fault{"1, \"b\": 2", 1, "JSON: text after the value, at byte 1"},
        Fault{"1}, {\"b\": 2", 1, "JSON: text after the value, at byte 1"},
        Fault{"}", 0, "JSON: \"}\" closes nothing, at byte 0"},
        Fault{"{\"a\": 9223372036854775808}", 6, "JSON: the integer 9223372036854775808 is out of range, at byte 6"},
        Fault{"[-9223372036854775809]", 1, "JSON: the integer -9223372036854775809 is out of range, at byte 1"},
        Fault{"{\"$numberDouble\": \"x\"}", 18, "JSON: \"x\" is not a double"},
        Fault{"{\"$date\": \"2023-02-29T00:00:00Z\"}", 10, "JSON: 2023-02-29 is not a day"},
        Fault{"{\"$date\": \"1900-02-29T00:00:00Z\"}", 10, "JSON: 1900-02-29 is not a day"},
        Fault{"{\"$date\": \"2023-04-31T00:00:00Z\"}", 10, "JSON: 2023-04-31 is not a day"},
        Fault{"{\"$numberDouble\": \"1.5x\"}", 18, "JSON: \"1.5x\" is not a double"},
        Fault{"[{\"$numberDecimal\": \"1E99999\"}]", 20, "JSON: \"1E99999\" is not a decimal number"},
        Fault{"{\"$numberDouble\": \"123456789012345678901234567890123456789xy\"}", 18,
              "JSON: \"123456789012345678901234567890123456789x\" is not a double"},
        Fault{"{\"$numberDecimal\": \"123456789012345678901234567890123456789xy\"}", 19,
              "JSON: \"123456789012345678901234567890123456789x\" is not a decimal number"},
        Fault{"1234567890123456789012345678901234567890123", 0,
              "JSON: the integer 1234567890123456789012345678901234567890 is out of range, at byte 0"},
        Fault{"{\"a\": }", 6, "JSON: "}, Fault{"{\"a\": [1, 2}", 11, "JSON: \"}\" closes nothing, at byte 11"},
        Fault{"{\"a\": tru}", 9, "JSON: "}, Fault{"{'a': 1}", 1, "JSON: "},
        Fault{"{\"a\": {\"$oid\": \"zz\"}}", 18, "JSON: Invalid input string \"zz\", looking for OID"}));

TEST(ValueJson, ReadsTheLastDayOfEveryMonth)
{
    for (const char* const day : {"2023-01-31", "2023-02-28", "2024-02-29", "2000-02-29", "2023-04-30", "2023-12-31"})
    {
        const std::string json = "{ \"$date\" : \"" + std::string(day) + "T00:00:00Z\" }";
        EXPECT_EQ(Value::fromJson(json).toJson(), json);
    }
}

TEST(ValueJson, IsReadUpToNinetySixLevels)
{
    const auto nested = [](std::size_t levels) { return std::string(levels, '[') + "1" + std::string(levels, ']'); };
    EXPECT_NO_THROW(Value::fromJson(nested(96)));
    EXPECT_THROW(Value::fromJson(nested(97)), FormatError);
}

TEST(ValueJson, IsWrittenUpToNinetyLevelsWhichAreReadAgain)
{
    Value object = {{"pointer", dbc::DbPointer{"a", {"507f1f77bcf86cd799439011"}}}};
    Value list = dbc::array({dbc::RegularExpression{"a", "i"}});
    for (int level = 1; level < 90; ++level)
    {
        object = Value({{"a", object}});
        list = dbc::array({list});
    }
    for (const Value& value : {object, list})
    {
        EXPECT_EQ(Value::fromJson(value.toJson(JsonFormat::Canonical)), value);
        EXPECT_EQ(value.toJson(JsonFormat::Legacy).find("..."), std::string::npos) << "the driver leaves levels out";
        EXPECT_THROW(dbc::array({value}).toJson(), std::invalid_argument);
        EXPECT_THROW(Value({{"a", value}}).toJson(), std::invalid_argument);
    }
}

TEST(ValueJson, RefusesAStringThatIsNotUtf8)
{
    const Value value = {{"a", "\xFF"}};
    EXPECT_THROW(value.toJson(), std::invalid_argument);
    std::ostringstream stream;
    stream << value << ' ' << Value("\xFF");
    EXPECT_EQ(stream.str(), "<object> <string>");
}

TEST(ValueJson, IsWrittenToAStream)
{
    std::ostringstream stream;
    stream << Value({{"a", dbc::array({1, nullptr})}}) << Value("x") << Value(0.5);
    EXPECT_EQ(stream.str(), R"({ "a" : [ 1, null ] }"x"0.5)");
}

} // namespace
