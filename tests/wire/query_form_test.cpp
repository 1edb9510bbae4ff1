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

ObjectProperties documentOf(const std::string& json)
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
    std::string query;
    std::string projection;
    int limit;
    int skip;
    std::string command; ///< empty: nothing is sent
    std::string error;
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

// The command of the query {"a": 1}, up to its options.
const std::string found = R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } })";

std::string commandWith(const std::string& options)
{
    return found + (options.empty() ? " }" : ", " + options + " }");
}

QueryRow query(const char* name, const std::string& options, int limit = 0, int skip = 0,
               const std::string& projection = "{}")
{
    return {name, R"({"a": 1})", projection, limit, skip, commandWith(options), ""};
}

/// The query {"a": 1} in $query, beside another key.
QueryRow modifier(const char* name, const std::string& key, const std::string& options, int limit = 0, int skip = 0,
                  const std::string& projection = "{}")
{
    return {name, R"({"$query": {"a": 1}, )" + key + "}", projection, limit, skip, commandWith(options), ""};
}

QueryRow refused(const char* name, const std::string& text, const std::string& error)
{
    return {name, text, "{}", 0, 0, "", error};
}

INSTANTIATE_TEST_SUITE_P(
    Queries, QueryOnTheWire,
    testing::Values(
        QueryRow{"Condition", R"({"a": 1})", "{}", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } } })", ""},
        QueryRow{
            "ConditionThatIsAnOperator", R"({"$or": [{"a": 1}, {"b": 2}]})", "{}", 0, 0,
            R"({ "find" : "c", "filter" : { "$or" : [ { "a" : { "$numberInt" : "1" } }, { "b" : { "$numberInt" : "2" } } ] } })",
            ""},
        QueryRow{"OrderByWithoutQuery", R"({"$orderby": {"b": -1}})", "{}", 0, 0,
                 R"({ "find" : "c", "filter" : { "$orderby" : { "b" : { "$numberInt" : "-1" } } } })", ""},
        QueryRow{"Query", R"({"$query": {"a": 1}})", "{}", 0, 0,
                 R"({ "find" : "c", "filter" : { "a" : { "$numberInt" : "1" } } })", ""},
        QueryRow{"EmptyQuery", R"({"$query": {}})", "{}", 0, 0, R"({ "find" : "c", "filter" : {  } })", ""},
        modifier("OrderBy", R"("$orderby": {"b": -1})", R"("sort" : { "b" : { "$numberInt" : "-1" } })"),
        modifier("OrderByTwoKeys", R"("$orderby": {"b": -1, "c": {"$numberLong": "1"}})",
                 R"("sort" : { "b" : { "$numberInt" : "-1" }, "c" : { "$numberLong" : "1" } })"),
        modifier("HintByKeys", R"("$hint": {"a": 1})", R"("hint" : { "a" : { "$numberInt" : "1" } })"),
        modifier("HintByName", R"("$hint": "a_1")", R"("hint" : "a_1")"),
        modifier("MaxTimeInt32", R"("$maxTimeMS": 2500)", R"("maxTimeMS" : { "$numberInt" : "2500" })"),
        modifier("MaxTimeInt64", R"("$maxTimeMS": {"$numberLong": "2500"})",
                 R"("maxTimeMS" : { "$numberLong" : "2500" })"),
        modifier("MaxTimeDouble", R"("$maxTimeMS": 2500.0)", R"("maxTimeMS" : { "$numberDouble" : "2500.0" })"),
        modifier("Comment", R"("$comment": "why")", R"("comment" : "why")"),
        modifier("CommentDocument", R"("$comment": {"by": "x"})", R"("comment" : { "by" : "x" })"),
        modifier("Max", R"("$max": {"a": 9})", R"("max" : { "a" : { "$numberInt" : "9" } })"),
        modifier("Min", R"("$min": {"a": 0})", R"("min" : { "a" : { "$numberInt" : "0" } })"),
        modifier("ReturnKey", R"("$returnKey": true)", R"("returnKey" : true)"),
        modifier("ShowDiskLoc", R"("$showDiskLoc": true)", R"("showRecordId" : true)"),
        modifier("ShowRecordId", R"("$showRecordId": true)", R"("showRecordId" : true)"),
        modifier("Snapshot", R"("$snapshot": true)", R"("snapshot" : true)"),
        modifier("Explain", R"("$explain": true)", R"("explain" : true)"),
        modifier("MaxScan", R"("$maxScan": 10)", R"("maxScan" : { "$numberInt" : "10" })"),
        modifier("ReadPreference", R"("$readPreference": {"mode": "secondaryPreferred"})",
                 R"("readPreference" : { "mode" : "secondaryPreferred" })"),
        modifier("Sort", R"("$sort": {"b": 1})", R"("sort" : { "b" : { "$numberInt" : "1" } })"),
        modifier("Collation", R"("$collation": {"locale": "fr"})", R"("collation" : { "locale" : "fr" })"),
        modifier("BatchSizeInt64", R"("$batchSize": {"$numberLong": "5"})", R"("batchSize" : { "$numberLong" : "5" })"),
        modifier("BatchSizeInt32", R"("$batchSize": 5)", R"("batchSize" : { "$numberInt" : "5" })"),
        modifier("LimitInt64", R"("$limit": {"$numberLong": "4"})", R"("limit" : { "$numberLong" : "4" })"),
        modifier("LimitInt32", R"("$limit": 4)", R"("limit" : { "$numberInt" : "4" })"),
        modifier("NegativeLimit", R"("$limit": {"$numberLong": "-4"})", R"("limit" : { "$numberLong" : "-4" })"),
        modifier("SkipInt64", R"("$skip": {"$numberLong": "4"})", R"("skip" : { "$numberLong" : "4" })"),
        modifier("SkipInt32", R"("$skip": 4)", R"("skip" : { "$numberInt" : "4" })"),
        modifier("SingleBatch", R"("$singleBatch": true)", R"("singleBatch" : true)"),
        modifier("Projection", R"("$projection": {"a": 1})", R"("projection" : { "a" : { "$numberInt" : "1" } })"),
        modifier("Filter", R"("$filter": {"b": 1})", R"("filter" : { "b" : { "$numberInt" : "1" } })"),
        modifier("Tailable", R"("$tailable": true)", R"("tailable" : true)"),
        modifier("AwaitData", R"("$awaitData": true)", R"("awaitData" : true)"),
        modifier("NoCursorTimeout", R"("$noCursorTimeout": true)", R"("noCursorTimeout" : true)"),
        modifier("AllowPartialResults", R"("$allowPartialResults": true)", R"("allowPartialResults" : true)"),
        modifier("OplogReplay", R"("$oplogReplay": true)", R"("oplogReplay" : true)"),
        modifier("AllowDiskUse", R"("$allowDiskUse": true)", R"("allowDiskUse" : true)"),
        modifier("Let", R"("$let": {"x": 1})", R"("let" : { "x" : { "$numberInt" : "1" } })"),
        modifier("ReadConcern", R"("$readConcern": {"level": "local"})", R"("readConcern" : { "level" : "local" })"),
        modifier("MaxAwaitTime", R"("$maxAwaitTimeMS": 10)", ""),
        modifier("Unknown", R"("$unheardOf": 1)", R"("unheardOf" : { "$numberInt" : "1" })"),
        modifier(
            "AllModifiers",
            R"("$orderby": {"b": -1}, "$hint": "a_1", "$maxTimeMS": 2500, "$comment": "why", "$max": {"a": 9}, "$min": {"a": 0}, "$returnKey": true, "$showDiskLoc": true, "$snapshot": true, "$explain": true, "$maxScan": 10, "$readPreference": {"mode": "secondaryPreferred"})",
            R"("comment" : "why", "explain" : true, "hint" : "a_1", "max" : { "a" : { "$numberInt" : "9" } }, "maxScan" : { "$numberInt" : "10" }, "maxTimeMS" : { "$numberInt" : "2500" }, "min" : { "a" : { "$numberInt" : "0" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "readPreference" : { "mode" : "secondaryPreferred" }, "returnKey" : true, "showRecordId" : true, "snapshot" : true)"),
        modifier(
            "AllModifiersWithEverything",
            R"("$orderby": {"b": -1}, "$hint": "a_1", "$maxTimeMS": 2500, "$comment": "why", "$max": {"a": 9}, "$min": {"a": 0}, "$returnKey": true, "$showDiskLoc": true, "$snapshot": true, "$explain": true, "$maxScan": 10, "$readPreference": {"mode": "secondaryPreferred"})",
            R"("comment" : "why", "explain" : true, "hint" : "a_1", "max" : { "a" : { "$numberInt" : "9" } }, "maxScan" : { "$numberInt" : "10" }, "maxTimeMS" : { "$numberInt" : "2500" }, "min" : { "a" : { "$numberInt" : "0" } }, "sort" : { "b" : { "$numberInt" : "-1" } }, "readPreference" : { "mode" : "secondaryPreferred" }, "returnKey" : true, "showRecordId" : true, "snapshot" : true, "projection" : { "a" : { "$numberInt" : "1" }, "b" : { "$numberInt" : "1" } }, "skip" : { "$numberLong" : "3" }, "limit" : { "$numberLong" : "5" })",
            5, 3, R"({"a": 1, "b": 1})"),
        modifier("OrderByAndSort", R"("$orderby": {"b": -1}, "$sort": {"c": 1})",
                 R"("sort" : { "b" : { "$numberInt" : "-1" } }, "sort" : { "c" : { "$numberInt" : "1" } })"),
        modifier("BothNamesOfTheRecordId", R"("$showDiskLoc": true, "$showRecordId": false)",
                 R"("showRecordId" : true, "showRecordId" : false)"),
        query("ConditionLimit", R"("limit" : { "$numberLong" : "5" })", 5),
        query("ConditionNegativeLimit", R"("limit" : { "$numberLong" : "2" }, "singleBatch" : true)", -2),
        query("ConditionSmallestLimit", R"("limit" : { "$numberLong" : "2147483648" }, "singleBatch" : true)",
              std::numeric_limits<int>::min()),
        query("ConditionLargestLimit", R"("limit" : { "$numberLong" : "2147483647" })", 2147483647),
        query("ConditionSkip", R"("skip" : { "$numberLong" : "3" })", 0, 3),
        query("ConditionNegativeSkip", R"("skip" : { "$numberLong" : "4294967295" })", 0, -1),
        query("ConditionProjection", R"("projection" : { "b" : { "$numberInt" : "0" } })", 0, 0, R"({"b": 0})"),
        query(
            "ConditionLimitSkipProjection",
            R"("projection" : { "b" : { "$numberInt" : "0" } }, "skip" : { "$numberLong" : "3" }, "limit" : { "$numberLong" : "2" }, "singleBatch" : true)",
            -2, 3, R"({"b": 0})"),
        modifier(
            "OrderByLimitSkipProjection", R"("$orderby": {"b": -1})",
            R"("sort" : { "b" : { "$numberInt" : "-1" } }, "projection" : { "b" : { "$numberInt" : "0" } }, "skip" : { "$numberLong" : "3" }, "limit" : { "$numberLong" : "5" })",
            5, 3, R"({"b": 0})"),
        modifier(
            "OrderByNegativeLimit", R"("$orderby": {"b": -1})",
            R"("sort" : { "b" : { "$numberInt" : "-1" } }, "limit" : { "$numberLong" : "5" }, "singleBatch" : true)",
            -5),
        modifier("LimitInt64AndLimit", R"("$limit": {"$numberLong": "4"})", R"("limit" : { "$numberLong" : "5" })", 5),
        modifier("LimitInt32AndLimit", R"("$limit": 4)", R"("limit" : { "$numberInt" : "4" })", 5),
        modifier("LimitInt64AndNegativeLimit", R"("$limit": {"$numberLong": "4"})",
                 R"("limit" : { "$numberLong" : "5" }, "singleBatch" : true)", -5),
        modifier("LimitInt32AndNegativeLimit", R"("$limit": 4)", R"("limit" : { "$numberInt" : "4" })", -5),
        modifier("SingleBatchAndNegativeLimit", R"("$singleBatch": false)",
                 R"("singleBatch" : true, "limit" : { "$numberLong" : "5" })", -5),
        modifier("SingleBatchNumberAndNegativeLimit", R"("$singleBatch": 0)",
                 R"("singleBatch" : { "$numberInt" : "0" }, "limit" : { "$numberLong" : "5" })", -5),
        modifier("SkipInt64AndSkip", R"("$skip": {"$numberLong": "4"})", R"("skip" : { "$numberLong" : "5" })", 0, 5),
        modifier("SkipInt32AndSkip", R"("$skip": 4)", R"("skip" : { "$numberInt" : "4" })", 0, 5),
        modifier("SkipInt64AndNegativeSkip", R"("$skip": {"$numberLong": "4"})",
                 R"("skip" : { "$numberLong" : "4294967295" })", 0, -1),
        modifier("ProjectionAndProjection", R"("$projection": {"a": 1})",
                 R"("projection" : { "a" : { "$numberInt" : "1" } }, "projection" : { "b" : { "$numberInt" : "0" } })",
                 0, 0, R"({"b": 0})"),
        refused("QueryAndPlainKey", R"({"$query": {"a": 1}, "b": 2})",
                "runtime_error: Find error.: Cannot mix $query with non-dollar field 'b'(code: 16)"),
        refused("PlainKeyBeforeQuery", R"({"$query": {"a": 1}, "!": 2})",
                "runtime_error: Find error.: Cannot mix $query with non-dollar field '!'(code: 16)"),
        refused("OrderByAndPlainKey", R"({"$query": {"a": 1}, "$orderby": {"b": 1}, "b": 2})",
                "runtime_error: Find error.: Cannot mix $query with non-dollar field 'b'(code: 16)"),
        refused("OnlyADollar", R"({"$query": {"a": 1}, "$": 2})",
                "runtime_error: Find error.: Invalid opts: empty key(code: 16)"),
        refused("TwoDollars", R"({"$query": {"a": 1}, "$$b": 2})",
                R"(runtime_error: Find error.: Cannot use $-modifiers in opts: "$b"(code: 16))"),
        refused("TwoDollarsAndPlainKey", R"({"$query": {"a": 1}, "$$b": 2, "b": 1})",
                "runtime_error: Find error.: Cannot mix $query with non-dollar field 'b'(code: 16)"),
        refused("QueryIsANumber", R"({"$query": 1})", "invalid_argument: Bad condition"),
        refused("QueryIsAnArray", R"({"$query": [{"a": 1}]})", "invalid_argument: Bad condition"),
        refused("BadReadConcern", R"({"$query": {"a": 1}, "$readConcern": 1})",
                "runtime_error: Find error.: Invalid readConcern(code: 22)"),
        refused("BadServer", R"({"$query": {"a": 1}, "$serverId": "x"})",
                "runtime_error: Find error.: The serverId option must be an integer(code: 16)"),
        refused("BadSession", R"({"$query": {"a": 1}, "$sessionId": 1})",
                "runtime_error: Find error.: Invalid sessionId(code: 22)")),
    RowName());

} // namespace
} // namespace test_support
