// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/build.h"
#include "failure.h"
#include "scalar_text.h"
#include "scratch_folder.h"
#include "table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test_support {
namespace {

std::string tableOf(const std::vector<dbc::Value>& documents, char separator, bool hasTypes = true)
{
    ColumnFinder finder;
    std::uint64_t number = 0;
    for (const dbc::Value& document : documents)
        finder.look(document, ++number);
    std::vector<Column> columns = finder.columns();
    for (Column& column : columns)
        column.type = hasTypes ? column.type : ColumnType::Any;
    std::ostringstream stream;
    TableWriter::Format format;
    format.separator = separator;
    TableWriter writer(stream, columns, format);
    number = 0;
    for (const dbc::Value& document : documents)
        writer.write(document, ++number);
    writer.finish();
    return stream.str();
}

std::vector<dbc::Value> documentsOf(const std::string& table, char separator, const std::string& header = "")
{
    const ScratchFolder folder;
    InputFile input(folder.write("table", table));
    TableReader reader(input, separator, header);
    std::vector<dbc::Value> documents;
    while (auto document = reader.next())
        documents.push_back(*std::move(document));
    return documents;
}

std::string canonical(const std::vector<dbc::Value>& documents)
{
    std::string text;
    for (const dbc::Value& document : documents)
        text += document.toJson(dbc::JsonFormat::Canonical) + "\n";
    return text;
}

void expectRoundTrip(const std::vector<dbc::Value>& documents)
{
    for (const char separator : {',', '\t'})
    {
        const std::string table = tableOf(documents, separator);
        EXPECT_EQ(canonical(documentsOf(table, separator)), canonical(documents)) << table;
    }
}

const std::vector<dbc::Value>& valuesOfEveryType()
{
    using Limits32 = std::numeric_limits<std::int32_t>;
    using Limits64 = std::numeric_limits<std::int64_t>;
    static const std::vector<dbc::Value> values{"",
                                                " ",
                                                "text",
                                                "007",
                                                "null",
                                                "true",
                                                "5",
                                                "2023-01-31",
                                                "a,b\t\"c\"\r\nd",
                                                "\"",
                                                std::string("\0x", 2),
                                                "507f1f77bcf86cd799439011",
                                                0,
                                                Limits32::min(),
                                                Limits32::max(),
                                                std::int64_t{0},
                                                Limits64::min(),
                                                Limits64::max(),
                                                0.0,
                                                -0.0,
                                                0.1,
                                                2.0,
                                                1e300,
                                                std::numeric_limits<double>::denorm_min(),
                                                std::numeric_limits<double>::infinity(),
                                                -std::numeric_limits<double>::infinity(),
                                                std::nan(""),
                                                dbc::Decimal128::parse("1.50"),
                                                dbc::Decimal128::parse("-1E+6000"),
                                                true,
                                                false,
                                                nullptr,
                                                dbc::timeFromMilliseconds(0),
                                                dbc::timeFromMilliseconds(-1),
                                                dbc::timeFromMilliseconds(-62167219200000), // the first of the year 0
                                                dbc::timeFromMilliseconds(253402300799999), // the last of the year 9999
                                                dbc::timeFromMilliseconds(253402300800000),
                                                dbc::timeFromMilliseconds(-62167219200001),
                                                dbc::ObjectId{"507f1f77bcf86cd799439011"},
                                                dbc::Binary{{0, 1, 255}, 0},
                                                dbc::RegularExpression{"^a,", "i"},
                                                dbc::Timestamp{1, 2},
                                                dbc::Code{"f()"},
                                                dbc::Value::undefined(),
                                                dbc::Value::minKey(),
                                                dbc::Value::maxKey(),
                                                dbc::Value(),
                                                dbc::Value::array(),
                                                dbc::array({1, "b", {{"c", std::int64_t{5}}}}),
                                                {{"x", 1}, {"y", {{"z", "deep"}}}},
                                                {{"with.dot", 1}},
                                                {{"", 1}},
                                                {{"twice", 1}, {"twice", 2}}};
    return values;
}

TEST(Table, TakesEveryTypeAndReturnsIt)
{
    for (const dbc::Value& value : valuesOfEveryType())
        expectRoundTrip({{{"_id", 1}, {"v", value}}});
}

TEST(Table, TakesTypesThatAreMixedInAColumn)
{
    std::vector<dbc::Value> documents;
    for (const dbc::Value& value : valuesOfEveryType())
        documents.push_back({{"_id", static_cast<int>(documents.size())}, {"v", value}});

    expectRoundTrip(documents);
}

TEST(Table, KeepsWhichDocumentsHaveAField)
{
    expectRoundTrip({{{"a", 1}}, {{"b", ""}}, {{"a", 2}, {"b", "x"}}, dbc::Value()});
}

TEST(Table, KeepsTheOrderOfFieldsThatSomeDocumentsLack)
{
    expectRoundTrip({{{"a", 1}, {"d", 1}},
                     {{"a", 1}, {"b", {{"y", 1}}}, {"d", 1}},
                     {{"a", 1}, {"b", {{"x", 1}, {"y", 1}}}, {"c", 1}, {"d", 1}, {"e", 1}},
                     {{"c", 1}, {"e", 1}}});
}

TEST(Table, OfOneColumnKeepsADocumentWithoutIt)
{
    expectRoundTrip({{{"a", 1}}, dbc::Value(), {{"a", 2}}});
}

TEST(Table, TakesObjectsAsDeepAsTheyAre)
{
    dbc::Value deep = 1;
    for (int level = 0; level < 60; ++level)
        deep = dbc::Value{{"k", deep}};

    expectRoundTrip({{{"v", deep}}, {{"v", 5}}});
}

TEST(Table, WithoutTypesReturnsWhatLooksLikeItsType)
{
    const std::vector<dbc::Value> documents{
        {{"s", "5"}, {"n", 5}, {"d", 2.0}, {"b", true}, {"w", dbc::timeFromMilliseconds(5)}},
        {{"s", "true"}, {"n", nullptr}, {"d", 1e300}, {"b", false}},
        {{"s", "2023-01-31"}, {"n", std::int64_t{5'000'000'000}}},
        {{"s", ""}, {"n", -1}}};

    const std::string table = tableOf(documents, ',', false);

    EXPECT_EQ(canonical(documentsOf(table, ',')), canonical(documents)) << table;
}

TEST(Table, ReturnsRandomTextsUnchanged)
{
    std::mt19937 random(1);
    const std::string characters = "a,\t\"\r\n :.é0";
    std::vector<dbc::Value> documents;
    for (int count = 0; count < 500; ++count)
    {
        std::string text;
        for (auto length = random() % 8; length > 0; --length)
        {
            const auto place = random() % (characters.size() - 3);
            text += characters.substr(place < 9 ? place : 9, place < 9 ? 1 : 2);
        }
        documents.push_back({{"a", text}, {"b", text + "x"}});
    }

    expectRoundTrip(documents);
}

TEST(Table, RejectsTopLevelKeysThatCannotBeColumns)
{
    for (const dbc::Value& document : {dbc::Value{{"a.b", 1}}, dbc::Value{{"", 1}}, dbc::Value{{"a", 1}, {"a", 2}}})
        EXPECT_THROW(ColumnFinder().look(document, 1), Failure) << document;
}

TEST(ScalarText, TimesAreReadInEveryForm)
{
    const std::vector<std::pair<std::string, long>> rows{{"1970-01-01", 0},
                                                         {"1970-01-01T00:00", 0},
                                                         {"1970-01-01 00:00:01", 1000},
                                                         {"1970-01-01T00:00:00.5", 500},
                                                         {"1970-01-01T00:00:00.123456Z", 123},
                                                         {"1970-01-01T01:00+01:00", 0},
                                                         {"1970-01-01T01:00:00-0130", 9'000'000},
                                                         {"1970-01-01T01:00+01", 0},
                                                         {"2000-02-29", 951'782'400'000},
                                                         {"1969-12-31T23:59:59.999Z", -1}};
    for (const auto& [text, milliseconds] : rows)
        EXPECT_EQ(parseTime(text), dbc::timeFromMilliseconds(milliseconds)) << text;
}

TEST(ScalarText, InvalidTimesAreRejected)
{
    for (const char* text :
         {"", "2023", "2023-1-1", "2023-01-01T", "2023-01-01T00", "2023-01-01x", "2023-01-01T00:00:00.", "2023-02-29",
          "1900-02-29", "2023-13-01", "2023-00-01", "2023-01-00", "2023-01-01T24:00"})
        EXPECT_FALSE(parseTime(text)) << text;
}

TEST(ScalarText, EveryDayIsWrittenAndReadAsTheSameDay)
{
    for (long day = -719'528; day <= 2'932'896; day += 97)
    {
        const dbc::Time time = dbc::timeFromMilliseconds(day * 86'400'000 + 1);
        ASSERT_EQ(parseTime(timeText(time)), time) << timeText(time);
    }
}

} // namespace
} // namespace test_support
