// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "object_filter.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "row_name.h"
#include "test_server.h"

#include <bson/bson.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <list>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <regex.h>

// Filters at work: which documents the server takes for a query is compared with a plain loop over the same data.
namespace {

constexpr long long firstTime = 1500000000000; // 2017-07-14T02:40:00Z
constexpr long long day = 24LL * 60 * 60 * 1000;

struct Record
{
    int number;
    double ratio;
    long long size;
    bool open;
    std::string name;
    std::string email; // empty: the document has no such field
    long long time;
    std::string town;
    int floor;
    std::string id; // given by the server's client when it is written
};

std::vector<Record> makeRecords()
{
    const char* const names[] = {"Anna", "anton", "Berta", "bruno", "Clara", "ANKE", "Dora (2)", "Dan\nAnn"};
    const char* const towns[] = {"Rome", "Oslo", "Bern"};
    std::vector<Record> records;
    for (int number = 0; number < 48; ++number)
    {
        const auto n = static_cast<unsigned>(number);
        records.push_back({number, number / 4.0 - 3, (number - 24) * 10000000000LL, number % 3 == 0, names[n % 8],
                           number % 4 == 0 ? "" : "user" + std::to_string(number) + "@example.org",
                           firstTime + number * day - 10 * day, towns[n % 3], number % 5, ""});
    }
    return records;
}

ObjectProperties documentOf(const Record& record)
{
    ObjectProperties document;
    document.setValueInt32("number", record.number);
    document.setValueDouble("ratio", record.ratio);
    document.setValueLongLong("size", record.size);
    document.setValueBool("open", record.open);
    document.setValueString("name", record.name);
    if (!record.email.empty())
        document.setValueString("email", record.email);
    document.setValueTime("time", record.time);
    document.setValueString("place/town", record.town);
    document.setValueInt32("place/floor", record.floor);
    return document;
}

bool found(const std::string& text, const char* pattern, int flags = 0)
{
    regex_t compiled;
    if (regcomp(&compiled, pattern, REG_EXTENDED | REG_NOSUB | flags) != 0)
        throw std::invalid_argument(pattern);
    const bool matches = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return matches;
}

using Records = std::vector<Record>;

struct Row
{
    const char* name;
    void (*build)(ObjectFilter& filter, const Records& records);
    bool (*matches)(const Record& record, const Records& records);

    friend std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }
};

const Row rows[] = {
    {"Nothing", [](ObjectFilter&, const Records&) {}, [](const Record&, const Records&) { return true; }},
    {"EqualInt", [](ObjectFilter& f, const Records&) { f.setFilterInt(OperationTypeEqual, "number", 7); },
     [](const Record& r, const Records&) { return r.number == 7; }},
    {"NotEqualString",
     [](ObjectFilter& f, const Records&) { f.setFilterString(OperationTypeNotEqual, "name", "Anna", ""); },
     [](const Record& r, const Records&) { return r.name != "Anna"; }},
    {"NotEqualWhereTheFieldIsMissing",
     [](ObjectFilter& f, const Records&) {
         f.setFilterString(OperationTypeNotEqual, "email", "user1@example.org", "");
     },
     [](const Record& r, const Records&) { return r.email != "user1@example.org"; }},
    {"EqualBool", [](ObjectFilter& f, const Records&) { f.setFilterBool(OperationTypeEqual, "open", true); },
     [](const Record& r, const Records&) { return r.open; }},
    {"RangeOfInts",
     [](ObjectFilter& f, const Records&) {
         f.setFilterInt(OperationTypeGreaterOrEqual, "number", 10);
         f.setFilterInt(OperationTypeLess, "number", 20);
     },
     [](const Record& r, const Records&) { return r.number >= 10 && r.number < 20; }},
    {"RangeOfDoubles",
     [](ObjectFilter& f, const Records&) {
         f.setFilterDouble(OperationTypeGreater, "ratio", -0.25);
         f.setFilterDouble(OperationTypeLessOrEqual, "ratio", 2.5);
     },
     [](const Record& r, const Records&) { return r.ratio > -0.25 && r.ratio <= 2.5; }},
    {"RangeOfLongLongs",
     [](ObjectFilter& f, const Records&) {
         f.setFilterLongLong(OperationTypeGreater, "size", -50000000000LL);
         f.setFilterLongLong(OperationTypeLess, "size", 70000000000LL);
     },
     [](const Record& r, const Records&) { return r.size > -50000000000LL && r.size < 70000000000LL; }},
    {"RangeOfStrings",
     [](ObjectFilter& f, const Records&) {
         f.setFilterString(OperationTypeGreaterOrEqual, "name", "B", "");
         f.setFilterString(OperationTypeLess, "name", "D", "");
     },
     [](const Record& r, const Records&) { return r.name >= "B" && r.name < "D"; }},
    {"EqualTime", [](ObjectFilter& f, const Records&) { f.setFilterTime(OperationTypeEqual, "time", firstTime); },
     [](const Record& r, const Records&) { return r.time == firstTime; }},
    {"RangeOfTimes",
     [](ObjectFilter& f, const Records&) {
         f.setFilterTime(OperationTypeGreater, "time", firstTime);
         f.setFilterTime(OperationTypeLessOrEqual, "time", firstTime + 7 * day);
     },
     [](const Record& r, const Records&) { return r.time > firstTime && r.time <= firstTime + 7 * day; }},
    {"EqualId", [](ObjectFilter& f, const Records& all) { f.setFilterId(OperationTypeEqual, "_id", all[5].id); },
     [](const Record& r, const Records& all) { return r.id == all[5].id; }},
    {"RangeOfIds",
     [](ObjectFilter& f, const Records& all) {
         f.setFilterId(OperationTypeGreater, "_id", all[11].id);
         f.setFilterId(OperationTypeNotEqual, "_id", all[20].id);
     },
     [](const Record& r, const Records& all) { return r.id > all[11].id && r.id != all[20].id; }},
    {"SomeOfTheIds",
     [](ObjectFilter& f, const Records& all) {
         f.start_or();
         for (const std::size_t place : {3U, 30U, 40U})
             f.setFilterId(OperationTypeEqual, "_id", all[place].id);
         f.finish_or();
     },
     [](const Record& r, const Records& all) { return r.id == all[3].id || r.id == all[30].id || r.id == all[40].id; }},
    {"Exists", [](ObjectFilter& f, const Records&) { f.setFilterBool(OperationTypeExists, "email", false); },
     [](const Record& r, const Records&) { return !r.email.empty(); }},
    {"NotExists", [](ObjectFilter& f, const Records&) { f.setFilterInt(OperationTypeNotExists, "email", 1); },
     [](const Record& r, const Records&) { return r.email.empty(); }},
    {"Regex", [](ObjectFilter& f, const Records&) { f.setFilterString(OperationTypeRegex, "name", "^A", ""); },
     [](const Record& r, const Records&) { return found(r.name, "^A"); }},
    {"RegexWhateverTheCase",
     [](ObjectFilter& f, const Records&) { f.setFilterString(OperationTypeRegex, "name", "^an", "i"); },
     [](const Record& r, const Records&) { return found(r.name, "^an", REG_ICASE); }},
    {"RegexOnEveryLine",
     [](ObjectFilter& f, const Records&) { f.setFilterString(OperationTypeRegex, "name", "^Ann", "m"); },
     [](const Record& r, const Records&) { return found(r.name, "^Ann", REG_NEWLINE); }},
    {"RegexWithEscapes",
     [](ObjectFilter& f, const Records&) { f.setFilterString(OperationTypeRegex, "name", R"(\(\d\)$)", ""); },
     [](const Record& r, const Records&) { return found(r.name, R"(\([0-9]\)$)"); }},
    {"FieldInsideAField", [](ObjectFilter& f, const Records&) { f.setFilterInt(OperationTypeLess, "place.floor", 2); },
     [](const Record& r, const Records&) { return r.floor < 2; }},
    {"WholeSubDocument",
     [](ObjectFilter& f, const Records&) {
         f.beginGroup("place");
         f.setFilterString(OperationTypeEqual, "town", "Oslo", "");
         f.setFilterInt(OperationTypeEqual, "floor", 1);
         f.endGroup();
     },
     [](const Record& r, const Records&) { return r.town == "Oslo" && r.floor == 1; }},
    {"AndList",
     [](ObjectFilter& f, const Records&) {
         f.start_and();
         f.setFilterString(OperationTypeRegex, "name", "a", "i");
         f.setFilterString(OperationTypeRegex, "name", "n", "");
         f.setFilterBool(OperationTypeEqual, "open", false);
         f.finish_and();
     },
     [](const Record& r, const Records&) { return found(r.name, "a", REG_ICASE) && found(r.name, "n") && !r.open; }},
    {"OrList",
     [](ObjectFilter& f, const Records&) {
         f.start_or();
         f.setFilterInt(OperationTypeLess, "number", 3);
         f.setFilterInt(OperationTypeGreaterOrEqual, "number", 45);
         f.setFilterString(OperationTypeEqual, "name", "Clara", "");
         f.finish_or();
     },
     [](const Record& r, const Records&) { return r.number < 3 || r.number >= 45 || r.name == "Clara"; }},
    {"OrListOfMoreThanTenElements",
     [](ObjectFilter& f, const Records&) {
         f.start_or();
         for (int number = 0; number < 48; number += 3)
             f.setFilterInt(OperationTypeEqual, "number", number);
         f.finish_or();
     },
     [](const Record& r, const Records&) { return r.number % 3 == 0; }},
    {"OrListBesideACondition",
     [](ObjectFilter& f, const Records&) {
         f.setFilterBool(OperationTypeEqual, "open", true);
         f.start_or();
         f.setFilterInt(OperationTypeLess, "number", 10);
         f.setFilterInt(OperationTypeGreater, "number", 40);
         f.finish_or();
     },
     [](const Record& r, const Records&) { return r.open && (r.number < 10 || r.number > 40); }},
    {"ListsInLists",
     [](ObjectFilter& f, const Records&) {
         f.start_or();
         f.start_and();
         f.setFilterString(OperationTypeEqual, "place.town", "Rome", "");
         f.start_or();
         f.setFilterInt(OperationTypeEqual, "place.floor", 0);
         f.setFilterInt(OperationTypeEqual, "place.floor", 4);
         f.finish_or();
         f.finish_and();
         f.start_and();
         f.setFilterBool(OperationTypeNotExists, "email", true);
         f.setFilterTime(OperationTypeGreater, "time", firstTime);
         f.finish_and();
         f.finish_or();
     },
     [](const Record& r, const Records&) {
         return (r.town == "Rome" && (r.floor == 0 || r.floor == 4)) || (r.email.empty() && r.time > firstTime);
     }},
    {"TwentyListsInEachOther",
     [](ObjectFilter& f, const Records&) {
         for (int list = 0; list < 20; ++list)
             list % 2 == 0 ? f.start_and() : f.start_or();
         f.setFilterInt(OperationTypeLess, "number", 5);
         for (int list = 0; list < 20; ++list)
             f.finish_and();
     },
     [](const Record& r, const Records&) { return r.number < 5; }},
    {"IncludedFilters",
     [](ObjectFilter& f, const Records&) {
         ObjectFilter few;
         few.setFilterInt(OperationTypeLess, "number", 8);
         few.setFilterBool(OperationTypeEqual, "open", true);
         ObjectFilter late;
         late.setFilterTime(OperationTypeGreaterOrEqual, "time", firstTime + 30 * day);
         f.start_or();
         f.include(few);
         f.include(late);
         f.finish_or();
     },
     [](const Record& r, const Records&) { return (r.number < 8 && r.open) || r.time >= firstTime + 30 * day; }},
    {"CopyTakenInsideAList",
     [](ObjectFilter& f, const Records&) {
         ObjectFilter source;
         source.start_or();
         source.setFilterInt(OperationTypeEqual, "number", 1);
         f = source;
         f.setFilterInt(OperationTypeEqual, "number", 2);
         f.finish_or();
     },
     [](const Record& r, const Records&) { return r.number == 1 || r.number == 2; }},
    {"NoMatch", [](ObjectFilter& f, const Records&) { f.setFilterInt(OperationTypeGreater, "number", 1000); },
     [](const Record&, const Records&) { return false; }},
};

using Numbers = std::vector<int>;

// Numbers of the records that match, or that do not.
Numbers numbersOf(const Records& records, const Row& row, bool matching)
{
    Numbers numbers;
    for (const Record& record : records)
    {
        if (row.matches(record, records) == matching)
            numbers.push_back(record.number);
    }
    return numbers;
}

class FilterOnServer : public testing::TestWithParam<Row>
{
protected:
    FilterOnServer() : m_records(makeRecords())
    {
        m_client.connect(test_support::TestServer::instance().uri());
        for (Record& record : m_records)
            m_client.write(m_database.name(), "records", documentOf(record), record.id);
    }

    ObjectProperties query() const
    {
        ObjectFilter filter;
        GetParam().build(filter, m_records);
        return filter.toObjectProeprties();
    }

    Numbers expected(bool matching) const { return numbersOf(m_records, GetParam(), matching); }

    Numbers numbersFound(const ObjectProperties& condition)
    {
        std::list<ObjectProperties*> results;
        m_client.find(m_database.name(), "records", condition, ObjectProperties(), results, 0, 0);
        Numbers numbers;
        for (ObjectProperties* const result : results)
        {
            const std::unique_ptr<ObjectProperties> document(result);
            numbers.push_back(document->valueAsInt32("number", -1));
        }
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }

    test_support::ScratchDatabase m_database;
    DataBaseClient m_client;
    Records m_records;
};

TEST_P(FilterOnServer, FindsTheDocumentsOfAPlainLoop)
{
    EXPECT_EQ(numbersFound(query()), expected(true));
}

TEST_P(FilterOnServer, UpdatesTheDocumentsOfAPlainLoop)
{
    ObjectProperties change;
    change.setValueInt32("marked", 1);

    m_client.update(m_database.name(), "records", query(), change, UpdateFlagMultiUpdate, UpdateCommandSet);

    ObjectFilter marked;
    marked.setFilterInt(OperationTypeEqual, "marked", 1);
    EXPECT_EQ(numbersFound(marked.toObjectProeprties()), expected(true));
    EXPECT_EQ(m_database.count("records"), m_records.size());
}

TEST_P(FilterOnServer, RemovesTheDocumentsOfAPlainLoop)
{
    m_client.remove(m_database.name(), "records", query());

    EXPECT_EQ(numbersFound(ObjectProperties()), expected(false));
}

TEST(FilterRows, MatchSomeDocumentsButNotAll)
{
    Records records = makeRecords();
    for (Record& record : records)
        record.id = std::to_string(1000 + record.number);
    for (const Row& row : rows)
    {
        const std::string name = row.name;
        EXPECT_EQ(numbersOf(records, row, true).empty(), name == "NoMatch") << name;
        EXPECT_EQ(numbersOf(records, row, false).empty(), name == "Nothing") << name;
    }
}

TEST(FilterOnTheWire, IsTheQueryByteForByte)
{
    ObjectFilter filter;
    filter.start_or();
    filter.setFilterString(OperationTypeRegex, "name", "^A", "i");
    filter.start_and();
    filter.setFilterTime(OperationTypeGreater, "time", firstTime);
    filter.setFilterBool(OperationTypeExists, "email", false);
    filter.finish_and();
    filter.finish_or();
    const ObjectProperties query = filter.toObjectProeprties();
    OwnedBson bson;
    ASSERT_TRUE(PropertiesToBson::convert(query, bson.get()));
    const test_support::ScratchDatabase database;
    auto& gateway = test_support::TestServer::instance().gateway();
    DataBaseClient client;
    client.connect(gateway.uri());
    gateway.clear();

    std::list<ObjectProperties*> results;
    client.read(database.name(), "records", query, results);

    ASSERT_TRUE(results.empty());
    ASSERT_EQ(gateway.commands("find").size(), 1U);
    const test_support::Bytes sent = gateway.commands("find").front().folded();
    bson_t command;
    bson_iter_t field;
    ASSERT_TRUE(bson_init_static(&command, sent.data(), sent.size()));
    ASSERT_TRUE(bson_iter_init_find(&field, &command, "filter"));
    std::uint32_t length = 0;
    const std::uint8_t* data = nullptr;
    bson_iter_document(&field, &length, &data);
    const std::uint8_t* const expected = bson_get_data(bson.get());
    EXPECT_EQ(test_support::Bytes(data, data + length), test_support::Bytes(expected, expected + bson.get()->len));
}

INSTANTIATE_TEST_SUITE_P(Queries, FilterOnServer, testing::ValuesIn(rows), RowName());

} // namespace
