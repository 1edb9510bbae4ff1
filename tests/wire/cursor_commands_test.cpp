// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "command_text.h"
#include "dbc/collection.h"
#include "ten_documents.h"

#include <chrono>
#include <stdexcept>

namespace test_support {
namespace {

using dbc::Cursor;
using dbc::Value;

class CursorCommand : public TenDocuments
{};

constexpr const char* noDocuments = R"({"ok": 1, "cursor": {"id": 0, "ns": "d.c", "firstBatch": []}})";

TEST_F(CursorCommand, OfAFindWithoutOptionsCarriesTheFilterAlone)
{
    collection().find({{"b", 1}, {"a", 2}});

    EXPECT_PRED2(isSameCommand, sent("find"), R"({ "find" : "c", "filter" : { "b" : 1, "a" : 2 } })");
}

TEST_F(CursorCommand, OfAFindCarriesEveryOption)
{
    dbc::FindOptions options;
    options.sort = {{"b", dbc::Order::Descending}, {"a"}};
    options.projection = {{"a", 1}};
    options.limit = 5;
    options.skip = 3;
    options.batchSize = 2;
    options.timeLimit = std::chrono::seconds(1);
    options.hint = "i";
    options.collation = {{"locale", "de"}};
    options.let = {{"v", 1}};
    options.comment = "why";
    options.allowDiskUse = true;
    gateway().inject(Fault::answer(noDocuments).onCommand("find"));

    collection().find({}, options);

    EXPECT_PRED2(
        isSameCommand, sent("find"),
        R"({ "find" : "c", "filter" : {  }, "sort" : { "b" : -1, "a" : 1 }, "projection" : { "a" : 1 }, )"
        R"("limit" : 5, "skip" : 3, "batchSize" : 2, "maxTimeMS" : 1000, "hint" : "i", )"
        R"("collation" : { "locale" : "de" }, "let" : { "v" : 1 }, "comment" : "why", "allowDiskUse" : true })");
}

TEST_F(CursorCommand, OfAnAggregationCarriesEveryOption)
{
    dbc::AggregateOptions options;
    options.batchSize = 2;
    options.timeLimit = std::chrono::seconds(1);
    options.hint = "i";
    options.collation = {{"locale", "de"}};
    options.let = {{"v", 1}};
    options.comment = "why";
    options.allowDiskUse = true;
    options.bypassValidation = true;
    options.writeConcern = dbc::WriteConcern{1, "", std::nullopt, std::nullopt};
    gateway().inject(Fault::answer(noDocuments).onCommand("aggregate"));

    collection().aggregate(dbc::array({Value{{"$match", {{"a", 1}}}}, Value{{"$out", "o"}}}), options);

    EXPECT_PRED2(
        isSameCommand, sent("aggregate"),
        R"({ "aggregate" : "c", "pipeline" : [ { "$match" : { "a" : 1 } }, { "$out" : "o" } ], "cursor" : { "batchSize" : 2 }, )"
        R"("maxTimeMS" : 1000, "hint" : "i", "collation" : { "locale" : "de" }, "let" : { "v" : 1 }, "comment" : "why", )"
        R"("allowDiskUse" : true, "bypassDocumentValidation" : true, "writeConcern" : { "w" : 1 } })");
}

TEST_F(CursorCommand, OfAnAggregationIsSentAlthoughNobodyReadsTheResult)
{
    collection().aggregate(dbc::array({Value{{"$limit", 1}}}));

    EXPECT_EQ(gateway().names(), std::vector<std::string>{"aggregate"});
}

TEST_F(CursorCommand, FetchesTheNextBatchWhenTheLastIsUsedUp)
{
    std::vector<std::string> texts;
    for (const ObjectProperties& document : openInBatchesOf(4))
        texts.push_back(document.valueAsString("text", ""));

    EXPECT_EQ(texts.size(), 10U);
    EXPECT_EQ(texts.front(), "t1");
    EXPECT_EQ(texts.back(), "t10");
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"find", "getMore", "getMore"}));
}

TEST_F(CursorCommand, ReturnsTheDocumentInEveryForm)
{
    Cursor cursor = openInBatchesOf(0);
    ASSERT_TRUE(cursor.next());

    EXPECT_EQ(cursor.value(), (Value{{"_id", 1}, {"text", "t1"}}));
    EXPECT_EQ(cursor.properties().valueAsInt32("_id", 0), 1);
    const dbc::BsonView bson = cursor.bson();
    EXPECT_EQ(Bytes(bson.data, bson.data + bson.size), scratch().documentBytes("c", R"({"_id": 1})").at(0));
}

TEST_F(CursorCommand, RangeYieldsTheFormOfTheLoopVariable)
{
    std::size_t count = 0;
    for (const Value& document : openInBatchesOf(0))
        count += document == Value{{"_id", 3}, {"text", "t3"}} ? 1 : 0;
    EXPECT_EQ(count, 1U);

    std::size_t bytes = 0;
    for (const dbc::BsonView document : openInBatchesOf(0))
        bytes += document.size;
    EXPECT_EQ(bytes, 10 * scratch().documentBytes("c").at(0).size() + 1);
}

TEST_F(CursorCommand, KeepsOnlyTheFieldsOfTheCurrentDocumentInItsObjectProperties)
{
    scratch().insert("c", R"({"_id": 11, "other": {"a": 1}})");
    Cursor cursor = openInBatchesOf(0);
    while (cursor.next())
    {
        cursor.properties().beginGroup("other"); // creates the group if the document does not have it
        EXPECT_TRUE(cursor.properties().contains("/_id"));
    }
    EXPECT_EQ(thrownText([&] { cursor.next(); }), "");

    cursor = collection().find({{"_id", 11}});
    cursor.next();
    EXPECT_FALSE(cursor.properties().contains("/text"));
}

TEST_F(CursorCommand, ConvertsEachDocumentOnce)
{
    scratch().insert("c", R"({"_id": 11, "other": {"a": 1}})");
    Cursor cursor = collection().find({{"_id", 11}});
    ASSERT_TRUE(cursor.next());

    cursor.properties().beginGroup("other");
    EXPECT_EQ(cursor.properties().valueAsInt32("a", 0), 1) << "the second call has moved the cursor of the document";
    const Value* const field = &cursor.value().at("other");
    EXPECT_EQ(&cursor.value().at("other"), field);
}

TEST_F(CursorCommand, HasNoDocumentBeforeTheFirstAndAfterTheLast)
{
    dbc::FindOptions options;
    options.limit = 1;
    Cursor cursor = collection().find({}, options);

    EXPECT_THROW(cursor.properties(), std::logic_error);
    EXPECT_TRUE(cursor.next());
    EXPECT_FALSE(cursor.next());
    EXPECT_FALSE(cursor.next());
    EXPECT_THROW(cursor.value(), std::logic_error);
    EXPECT_THROW(cursor.bson(), std::logic_error);
}

TEST_F(CursorCommand, IsClosedOnTheServerWhenItEndsEarly)
{
    {
        Cursor cursor = openInBatchesOf(2);
        cursor.next();
    }
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"find", "killCursors"}));

    gateway().clear();
    Cursor cursor = openInBatchesOf(2);
    cursor.close();
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"find", "killCursors"}));
    EXPECT_FALSE(cursor.next());

    gateway().clear();
    cursor = openInBatchesOf(2);
    const auto loopThatThrows = [&cursor] {
        for (const ObjectProperties& document : cursor)
            throw std::domain_error(document.group());
    };
    EXPECT_THROW(loopThatThrows(), std::domain_error);
    cursor = openInBatchesOf(100);
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"find", "find", "killCursors"}));
}

TEST_F(CursorCommand, ContinuesAfterADisconnect)
{
    Cursor cursor = openInBatchesOf(2);
    client().disconnect();

    std::size_t count = 0;
    while (cursor.next())
        ++count;

    EXPECT_EQ(count, 10U);
}

TEST_F(CursorCommand, IsNotSentWhenAnArgumentIsRefused)
{
    EXPECT_EQ(thrownText([&] { collection().find(Value(5)); }), "invalid_argument: Bad condition");
    EXPECT_EQ(thrownText([&] { collection().aggregate(Value(5)); }), "invalid_argument: Bad pipeline");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
    client().disconnect();
    EXPECT_EQ(thrownText([&] { collection().find({}); }),
              "invalid_argument: Connection is not established. Run connect before");
}

} // namespace
} // namespace test_support
