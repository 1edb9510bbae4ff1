// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Queries of the form {"$query": ..., "$orderby": ...}: the option of the find command for each modifier. The expected
// commands are those that libmongoc 1.23 sends for its legacy query function.

#include "connected_client.h"

#include "driver_texts.h"
#include "json_to_properties.h"
#include "mongoc_handles.h"
#include "row_name.h"

#include <limits>
#include <ostream>
#include <vector>

namespace test_support {
namespace {

ObjectProperties documentOf(const char* json)
{
    ObjectProperties document;
    EXPECT_TRUE(JsonToProperties::convert(json, &document)) << json;
    return document;
}

/// Returns the command as canonical Extended JSON, without the fields that the driver adds.
std::string canonicalText(const RecordedCommand& command)
{
    const Bytes folded = command.folded();
    bson_t all;
    if (!bson_init_static(&all, folded.data(), folded.size()))
        return "not BSON";
    OwnedBson kept;
    bson_copy_to_excluding_noinit(&all, kept.get(), "lsid", "$db", "$clusterTime", nullptr);
    return inWordsOf123(BsonText(bson_as_canonical_extended_json(kept.get(), nullptr)).get());
}

struct QueryRow
{
    const char* name;
    const char* query;
    const char* projection;
    int limit;
    int skip;
    const char* command; ///< Empty if nothing is sent.
    const char* error;
};

void PrintTo(const QueryRow& row, std::ostream* out)
{
    *out << row.query << ", projection " << row.projection << ", limit " << row.limit << ", skip " << row.skip;
}

class QueryOnTheWire : public ConnectedClient, public testing::WithParamInterface<QueryRow>
{};

TEST_P(QueryOnTheWire, IsSentAsTheRecordedCommand)
{
    const QueryRow& row = GetParam();
    gateway().clear();
    gateway().inject(
        Fault::answer(R"({"ok": 1, "cursor": {"id": {"$numberLong": "0"}, "ns": "d.c", "firstBatch": []}})")
            .onCommand("find")
            .andLater());
    dbc::Results results;

    const std::string error = thrownText([&] {
        client().find(database(), "c", documentOf(row.query), documentOf(row.projection), results, row.limit, row.skip);
    });

    const std::vector<RecordedCommand> commands = gateway().commands("find");
    EXPECT_EQ(commands.empty() ? std::string() : canonicalText(commands[0]), row.command);
    EXPECT_LE(commands.size(), 1U);
    EXPECT_EQ(inWordsOf123(error), row.error);
}

INSTANTIATE_TEST_SUITE_P(
    Queries, QueryOnTheWire,
    testing::Values(
        QueryRow{"Condition", R"({"a": 1})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } } })", ""},
        QueryRow{
            "ConditionThatIsAnOperator", R"({"$or": [{"a": 1}, {"b": 2}]})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "$or" : [ { "a" : { "$numberInt" : "1" } }, { "b" : { "$numberInt" : "2" } } ] } })",
            ""},
        QueryRow{"OrderByWithoutQuery", R"({"$orderby": {"b": -1}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "$orderby" : { "b" : { "$numberInt" : "-1" } } } })", ""},
        QueryRow{"Query", R"({"$query": {"a": 1}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } } })", ""},
        QueryRow{"EmptyQuery", R"({"$query": {}})", R"({})", 0, 0, R"({ "find" : "c", "filter" : {  } })", ""},
        QueryRow{
            "OrderBy", R"({"$query": {"a": 1}, "$orderby": {"b": -1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "sort" : { "b" : { "$numberInt" : "-1" } } })",
            ""},
        QueryRow{
            "OrderByTwoKeys", R"({"$query": {"a": 1}, "$orderby": {"b": -1, "c": {"$numberLong": "1"}}})", R"({})", 0,
            0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "sort" : { "b" : { "$numberInt" : "-1" }, "c" : { "$numberLong" : "1" } } })",
            ""},
        QueryRow{
            "HintByKeys", R"({"$query": {"a": 1}, "$hint": {"a": 1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "hint" : { "a" : { "$numberInt" : "1" } } })",
            ""},
        QueryRow{"HintByName", R"({"$query": {"a": 1}, "$hint": "a_1"})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "hint" : "a_1" })", ""},
        QueryRow{
            "MaxTimeInt32", R"({"$query": {"a": 1}, "$maxTimeMS": 2500})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "maxTimeMS" : { "$numberInt" : "2500" } })",
            ""},
        QueryRow{
            "MaxTimeInt64", R"({"$query": {"a": 1}, "$maxTimeMS": {"$numberLong": "2500"}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "maxTimeMS" : { "$numberLong" : "2500" } })",
            ""},
        QueryRow{
            "MaxTimeDouble", R"({"$query": {"a": 1}, "$maxTimeMS": 2500.0})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "maxTimeMS" : { "$numberDouble" : "2500.0" } })",
            ""},
        QueryRow{"Comment", R"({"$query": {"a": 1}, "$comment": "why"})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "comment" : "why" })", ""},
        QueryRow{"CommentDocument", R"({"$query": {"a": 1}, "$comment": {"by": "x"}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "comment" : { "by" : "x" } })", ""},
        QueryRow{
            "Max", R"({"$query": {"a": 1}, "$max": {"a": 9}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "max" : { "a" : { "$numberInt" : "9" } } })",
            ""},
        QueryRow{
            "Min", R"({"$query": {"a": 1}, "$min": {"a": 0}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "min" : { "a" : { "$numberInt" : "0" } } })",
            ""},
        QueryRow{"ReturnKey", R"({"$query": {"a": 1}, "$returnKey": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "returnKey" : true })", ""},
        QueryRow{"ShowDiskLoc", R"({"$query": {"a": 1}, "$showDiskLoc": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "showRecordId" : true })", ""},
        QueryRow{"ShowRecordId", R"({"$query": {"a": 1}, "$showRecordId": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "showRecordId" : true })", ""},
        QueryRow{"Snapshot", R"({"$query": {"a": 1}, "$snapshot": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "snapshot" : true })", ""},
        QueryRow{"Explain", R"({"$query": {"a": 1}, "$explain": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "explain" : true })", ""},
        QueryRow{
            "MaxScan", R"({"$query": {"a": 1}, "$maxScan": 10})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "maxScan" : { "$numberInt" : "10" } })",
            ""},
        QueryRow{
            "ReadPreference", R"({"$query": {"a": 1}, "$readPreference": {"mode": "secondaryPreferred"}})", R"({})", 0,
            0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "readPreference" : { "mode" : "secondaryPreferred" } })",
            ""},
        QueryRow{
            "Sort", R"({"$query": {"a": 1}, "$sort": {"b": 1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "sort" : { "b" : { "$numberInt" : "1" } } })",
            ""},
        QueryRow{"Collation", R"({"$query": {"a": 1}, "$collation": {"locale": "fr"}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "collation" : { "locale" : "fr" } })",
                 ""},
        QueryRow{
            "BatchSizeInt64", R"({"$query": {"a": 1}, "$batchSize": {"$numberLong": "5"}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "batchSize" : { "$numberLong" : "5" } })",
            ""},
        QueryRow{
            "BatchSizeInt32", R"({"$query": {"a": 1}, "$batchSize": 5})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "batchSize" : { "$numberInt" : "5" } })",
            ""},
        QueryRow{"LimitInt64", R"({"$query": {"a": 1}, "$limit": {"$numberLong": "4"}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "4" } })",
                 ""},
        QueryRow{"LimitInt32", R"({"$query": {"a": 1}, "$limit": 4})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberInt" : "4" } })",
                 ""},
        QueryRow{"NegativeLimit", R"({"$query": {"a": 1}, "$limit": {"$numberLong": "-4"}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "-4" } })",
                 ""},
        QueryRow{"SkipInt64", R"({"$query": {"a": 1}, "$skip": {"$numberLong": "4"}})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "4" } })",
                 ""},
        QueryRow{"SkipInt32", R"({"$query": {"a": 1}, "$skip": 4})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberInt" : "4" } })",
                 ""},
        QueryRow{"SingleBatch", R"({"$query": {"a": 1}, "$singleBatch": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "singleBatch" : true })", ""},
        QueryRow{
            "Projection", R"({"$query": {"a": 1}, "$projection": {"a": 1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "projection" : { "a" : { "$numberInt" : "1" } } })",
            ""},
        QueryRow{
            "Filter", R"({"$query": {"a": 1}, "$filter": {"b": 1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "filter" : { "b" : { "$numberInt" : "1" } } })",
            ""},
        QueryRow{"Tailable", R"({"$query": {"a": 1}, "$tailable": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "tailable" : true })", ""},
        QueryRow{"AwaitData", R"({"$query": {"a": 1}, "$awaitData": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "awaitData" : true })", ""},
        QueryRow{"NoCursorTimeout", R"({"$query": {"a": 1}, "$noCursorTimeout": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "noCursorTimeout" : true })", ""},
        QueryRow{"AllowPartialResults", R"({"$query": {"a": 1}, "$allowPartialResults": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "allowPartialResults" : true })", ""},
        QueryRow{"OplogReplay", R"({"$query": {"a": 1}, "$oplogReplay": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "oplogReplay" : true })", ""},
        QueryRow{"AllowDiskUse", R"({"$query": {"a": 1}, "$allowDiskUse": true})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "allowDiskUse" : true })", ""},
        QueryRow{
            "Let", R"({"$query": {"a": 1}, "$let": {"x": 1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "let" : { "x" : { "$numberInt" : "1" } } })",
            ""},
        QueryRow{
            "ReadConcern", R"({"$query": {"a": 1}, "$readConcern": {"level": "local"}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "readConcern" : { "level" : "local" } })",
            ""},
        QueryRow{"MaxAwaitTime", R"({"$query": {"a": 1}, "$maxAwaitTimeMS": 10})", R"({})", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } } })", ""},
        QueryRow{
            "Unknown", R"({"$query": {"a": 1}, "$unheardOf": 1})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "unheardOf" : { "$numberInt" : "1" } })",
            ""},
        QueryRow{
            "AllModifiers",
            R"({"$query": {"a": 1}, "$orderby": {"b": -1}, "$hint": "a_1", "$maxTimeMS": 2500, "$comment": "why", "$max": {"a": 9}, "$min": {"a": 0}, "$returnKey": true, "$showDiskLoc": true, "$snapshot": true, "$explain": true, "$maxScan": 10, "$readPreference": {"mode": "secondaryPreferred"}})",
            R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "comment" : "why", "explain" : true, "hint" : "a_1", "max" : { "a" : { "$numberInt" : "9" } }, "maxScan" : { "$numberInt" : "10" }, "maxTimeMS" : { "$numberInt" : "2500" }, "min" : { "a" : { "$numberInt" : "0" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "readPreference" : { "mode" : "secondaryPreferred" }, "returnKey" : true, "showRecordId" : true, "snapshot" : true })",
            ""},
        QueryRow{
            "AllModifiersWithEverything",
            R"({"$query": {"a": 1}, "$orderby": {"b": -1}, "$hint": "a_1", "$maxTimeMS": 2500, "$comment": "why", "$max": {"a": 9}, "$min": {"a": 0}, "$returnKey": true, "$showDiskLoc": true, "$snapshot": true, "$explain": true, "$maxScan": 10, "$readPreference": {"mode": "secondaryPreferred"}})",
            R"({"a": 1, "b": 1})", 5, 3,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "comment" : "why", "explain" : true, "hint" : "a_1", "max" : { "a" : { "$numberInt" : "9" } }, "maxScan" : { "$numberInt" : "10" }, "maxTimeMS" : { "$numberInt" : "2500" }, "min" : { "a" : { "$numberInt" : "0" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "readPreference" : { "mode" : "secondaryPreferred" }, "returnKey" : true, "showRecordId" : true, "snapshot" : true, "projection" : { "a" : { "$numberInt" : "1" }, "b" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "3" }, "limit" : { "$numberLong" : "5" } })",
            ""},
        QueryRow{
            "OrderByAndSort", R"({"$query": {"a": 1}, "$orderby": {"b": -1}, "$sort": {"c": 1}})", R"({})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "sort" : { "c" : { "$numberInt" : "1" } } })",
            ""},
        QueryRow{
            "BothNamesOfTheRecordId", R"({"$query": {"a": 1}, "$showDiskLoc": true, "$showRecordId": false})", R"({})",
            0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "showRecordId" : true, "showRecordId" : false })",
            ""},
        QueryRow{"ConditionLimit", R"({"a": 1})", R"({})", 5, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "5" } })",
                 ""},
        QueryRow{
            "ConditionNegativeLimit", R"({"a": 1})", R"({})", -2, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "2" }, "singleBatch" : true })",
            ""},
        QueryRow{
            "ConditionSmallestLimit", R"({"a": 1})", R"({})", std::numeric_limits<int>::min(), 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "2147483648" }, "singleBatch" : true })",
            ""},
        QueryRow{
            "ConditionLargestLimit", R"({"a": 1})", R"({})", 2147483647, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "2147483647" } })",
            ""},
        QueryRow{"ConditionSkip", R"({"a": 1})", R"({})", 0, 3,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "3" } })",
                 ""},
        QueryRow{
            "ConditionNegativeSkip", R"({"a": 1})", R"({})", 0, -1,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "4294967295" } })",
            ""},
        QueryRow{
            "ConditionProjection", R"({"a": 1})", R"({"b": 0})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "projection" : { "b" : { "$numberInt" : "0" } } })",
            ""},
        QueryRow{
            "ConditionLimitSkipProjection", R"({"a": 1})", R"({"b": 0})", -2, 3,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "projection" : { "b" : { "$numberInt" : "0" } }, "skip" : { "$numberLong" : "3" }, "limit" : { "$numberLong" : "2" }, "singleBatch" : true })",
            ""},
        QueryRow{
            "OrderByLimitSkipProjection", R"({"$query": {"a": 1}, "$orderby": {"b": -1}})", R"({"b": 0})", 5, 3,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "projection" : { "b" : { "$numberInt" : "0" } }, "skip" : { "$numberLong" : "3" }, "limit" : { "$numberLong" : "5" } })",
            ""},
        QueryRow{
            "OrderByNegativeLimit", R"({"$query": {"a": 1}, "$orderby": {"b": -1}})", R"({})", -5, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "limit" : { "$numberLong" : "5" }, "singleBatch" : true })",
            ""},
        QueryRow{"LimitInt64AndLimit", R"({"$query": {"a": 1}, "$limit": {"$numberLong": "4"}})", R"({})", 5, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "5" } })",
                 ""},
        QueryRow{"LimitInt32AndLimit", R"({"$query": {"a": 1}, "$limit": 4})", R"({})", 5, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberInt" : "4" } })",
                 ""},
        QueryRow{
            "LimitInt64AndNegativeLimit", R"({"$query": {"a": 1}, "$limit": {"$numberLong": "4"}})", R"({})", -5, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberLong" : "5" }, "singleBatch" : true })",
            ""},
        QueryRow{"LimitInt32AndNegativeLimit", R"({"$query": {"a": 1}, "$limit": 4})", R"({})", -5, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "limit" : { "$numberInt" : "4" } })",
                 ""},
        QueryRow{
            "SingleBatchAndNegativeLimit", R"({"$query": {"a": 1}, "$singleBatch": false})", R"({})", -5, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "singleBatch" : true, "limit" : { "$numberLong" : "5" } })",
            ""},
        QueryRow{
            "SingleBatchNumberAndNegativeLimit", R"({"$query": {"a": 1}, "$singleBatch": 0})", R"({})", -5, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "singleBatch" : { "$numberInt" : "0" }, "limit" : { "$numberLong" : "5" } })",
            ""},
        QueryRow{"SkipInt64AndSkip", R"({"$query": {"a": 1}, "$skip": {"$numberLong": "4"}})", R"({})", 0, 5,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "5" } })",
                 ""},
        QueryRow{"SkipInt32AndSkip", R"({"$query": {"a": 1}, "$skip": 4})", R"({})", 0, 5,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberInt" : "4" } })",
                 ""},
        QueryRow{
            "SkipInt64AndNegativeSkip", R"({"$query": {"a": 1}, "$skip": {"$numberLong": "4"}})", R"({})", 0, -1,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "4294967295" } })",
            ""},
        QueryRow{
            "ProjectionAndProjection", R"({"$query": {"a": 1}, "$projection": {"a": 1}})", R"({"b": 0})", 0, 0,
            R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } }, "projection" : { "a" : { "$numberInt" : "1" } }, "projection" : { "b" : { "$numberInt" : "0" } } })",
            ""},
        QueryRow{"QueryAndPlainKey", R"({"$query": {"a": 1}, "b": 2})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Cannot mix $query with non-dollar field 'b'(code: 16))"},
        QueryRow{"PlainKeyBeforeQuery", R"({"$query": {"a": 1}, "!": 2})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Cannot mix $query with non-dollar field '!'(code: 16))"},
        QueryRow{"OrderByAndPlainKey", R"({"$query": {"a": 1}, "$orderby": {"b": 1}, "b": 2})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Cannot mix $query with non-dollar field 'b'(code: 16))"},
        QueryRow{"OnlyADollar", R"({"$query": {"a": 1}, "$": 2})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Invalid opts: empty key(code: 16))"},
        QueryRow{"TwoDollars", R"({"$query": {"a": 1}, "$$b": 2})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Cannot use $-modifiers in opts: "$b"(code: 16))"},
        QueryRow{"TwoDollarsAndPlainKey", R"({"$query": {"a": 1}, "$$b": 2, "b": 1})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Cannot mix $query with non-dollar field 'b'(code: 16))"},
        QueryRow{"QueryIsANumber", R"({"$query": 1})", R"({})", 0, 0, "", R"(invalid_argument: Bad condition)"},
        QueryRow{"QueryIsAnArray", R"({"$query": [{"a": 1}]})", R"({})", 0, 0, "",
                 R"(invalid_argument: Bad condition)"},
        QueryRow{"BadReadConcern", R"({"$query": {"a": 1}, "$readConcern": 1})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Invalid readConcern(code: 22))"},
        QueryRow{"BadServer", R"({"$query": {"a": 1}, "$serverId": "x"})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: The serverId option must be an integer(code: 16))"},
        QueryRow{"BadSession", R"({"$query": {"a": 1}, "$sessionId": 1})", R"({})", 0, 0, "",
                 R"(runtime_error: Find error.: Invalid sessionId(code: 22))"}),
    RowName());

} // namespace
} // namespace test_support
