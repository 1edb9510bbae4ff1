// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "command_text.h"
#include "dbc/collection.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace test_support {
namespace {

using dbc::Bulk;
using dbc::Collection;
using dbc::Value;

/// A collection "c" of a connected client. The tests compare the recorded commands.
class CollectionCommand : public ConnectedClient
{
public:
    CollectionCommand() : m_collection(client(), database(), "c") { gateway().clear(); }
    ~CollectionCommand() override { gateway().clearFaults(); }

    Collection& collection() { return m_collection; }

private:
    Collection m_collection;
};

constexpr const char* noneMatched = R"({"ok": 1, "n": 0, "nModified": 0})";

TEST_F(CollectionCommand, InsertOneSendsTheFieldsOfAValueInTheirOrderAndANewIdFirst)
{
    const dbc::InsertOneResult result = collection().insertOne({{"b", 2}, {"a", 1}});

    EXPECT_PRED2(isSameCommand, sent("insert"),
                 R"({ "insert" : "c", "ordered" : true, "documents" : [ { "_id" : { "$oid" : ")" +
                     result.id.get<dbc::ObjectId>()->text + R"(" }, "b" : 2, "a" : 1 } ] })");
    EXPECT_TRUE(result.acknowledged);
}

TEST_F(CollectionCommand, InsertOneSendsTheWholeObjectPropertiesWhereverItsCursorIs)
{
    ObjectProperties document = number("b", 2);
    document.setValueInt32("_id", 7);
    document.beginGroup("a");

    const dbc::InsertOneResult result = collection().insertOne(document);

    EXPECT_PRED2(isSameCommand, sent("insert"),
                 R"({ "insert" : "c", "ordered" : true, "documents" : [ { "_id" : 7, "a" : {  }, "b" : 2 } ] })");
    EXPECT_EQ(result.id, Value(7));
}

TEST_F(CollectionCommand, InsertOneCarriesItsOptions)
{
    dbc::InsertOneOptions options;
    options.comment = "import";
    options.writeConcern = dbc::WriteConcern{1, "", true, std::chrono::milliseconds(500)};
    options.bypassValidation = true;
    reply("insert", R"({"ok": 1, "n": 1})");

    collection().insertOne({{"_id", 1}}, options);

    EXPECT_PRED2(isSameCommand, sent("insert"),
                 R"({ "insert" : "c", "ordered" : true, "bypassDocumentValidation" : true, )"
                 R"("comment" : "import", "writeConcern" : { "w" : 1, "j" : true, "wtimeout" : 500 }, )"
                 R"("documents" : [ { "_id" : 1 } ] })");
}

TEST_F(CollectionCommand, InsertManySendsOneCommandForARangeOfAnyForm)
{
    const std::vector<ObjectProperties> documents = {number("_id", 1), number("_id", 2)};

    const dbc::InsertManyResult result = collection().insertMany(documents);

    EXPECT_PRED2(isSameCommand, sent("insert"),
                 R"({ "insert" : "c", "ordered" : true, "documents" : [ { "_id" : 1 }, { "_id" : 2 } ] })");
    EXPECT_EQ(result.inserted, 2);
    EXPECT_EQ(result.ids, (std::vector<Value>{1, 2}));
}

TEST_F(CollectionCommand, InsertManyTakesDocumentsInBraces)
{
    dbc::InsertManyOptions options;
    options.ordered = false;

    EXPECT_EQ(collection().insertMany({{{"_id", 1}}, {{"_id", 2}, {"a", "x"}}}, options).inserted, 2);

    EXPECT_PRED2(isSameCommand, sent("insert"),
                 R"({ "insert" : "c", "ordered" : false, "documents" : [ { "_id" : 1 }, { "_id" : 2, "a" : "x" } ] })");
}

TEST_F(CollectionCommand, InsertManySendsWhatAGeneratorReturnsInBatches)
{
    const std::string text(1 << 20, 'x');
    int count = 0;
    dbc::InsertManyOptions options;
    options.returnIds = false;

    const dbc::InsertManyResult result = collection().insertMany(
        [&]() -> std::optional<Value> {
            return count < 9 ? std::optional<Value>(Value{{"_id", ++count}, {"text", text}}) : std::nullopt;
        },
        options);

    EXPECT_EQ(result.inserted, 9);
    EXPECT_TRUE(result.ids.empty());
    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"insert", "insert", "insert"}));
    EXPECT_EQ(scratch().count("c"), 9U);
}

TEST_F(CollectionCommand, OfAnEmptyRangeOrBulkIsNotSent)
{
    EXPECT_EQ(collection().insertMany(std::vector<Value>()).inserted, 0);
    EXPECT_EQ(collection().bulkWrite(Bulk()).inserted, 0);

    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(CollectionCommand, UpdateCarriesEveryOption)
{
    dbc::UpdateOptions options;
    options.upsert = true;
    options.arrayFilters = {Value{{"e.a", 1}}};
    options.hint = "i";
    options.collation = {{"locale", "de"}};
    options.let = {{"v", 1}};
    options.comment = "why";
    options.writeConcern = dbc::WriteConcern{std::nullopt, "majority", std::nullopt, std::nullopt};
    reply("update", noneMatched);

    collection().updateOne({{"a", 1}}, {{"$set", {{"l.$[e].b", 2}}}}, options);

    EXPECT_PRED2(isSameCommand, sent("update"),
                 R"({ "update" : "c", "ordered" : true, "comment" : "why", "let" : { "v" : 1 }, )"
                 R"("writeConcern" : { "w" : "majority" }, "updates" : [ { "q" : { "a" : 1 }, )"
                 R"("u" : { "$set" : { "l.$[e].b" : 2 } }, "upsert" : true, "multi" : false, )"
                 R"("arrayFilters" : [ { "e.a" : 1 } ], "collation" : { "locale" : "de" }, "hint" : "i" } ] })");
}

TEST_F(CollectionCommand, UpdateTakesAPipeline)
{
    reply("update", noneMatched);

    collection().updateMany({}, dbc::array({Value{{"$set", {{"a", "$b"}}}}}));

    EXPECT_PRED2(isSameCommand, sent("update"),
                 R"({ "update" : "c", "ordered" : true, "updates" : [ { "q" : {  }, )"
                 R"("u" : [ { "$set" : { "a" : "$b" } } ], "upsert" : false, "multi" : true } ] })");
}

TEST_F(CollectionCommand, ReplaceAndRemoveCarryTheirOptions)
{
    dbc::ReplaceOptions replace;
    replace.upsert = true;
    replace.hint = {{"a", 1}};
    replace.collation = {{"locale", "de"}};
    reply("update", noneMatched);
    collection().replaceOne({{"a", 1}}, {{"b", 2}}, replace);
    EXPECT_PRED2(isSameCommand, sent("update"),
                 R"({ "update" : "c", "ordered" : true, "updates" : [ { "q" : { "a" : 1 }, "u" : { "b" : 2 }, )"
                 R"("upsert" : true, "multi" : false, "collation" : { "locale" : "de" }, "hint" : { "a" : 1 } } ] })");

    dbc::RemoveOptions remove;
    remove.hint = "i";
    remove.collation = {{"locale", "de"}};
    remove.let = {{"v", 1}};
    reply("delete", R"({"ok": 1, "n": 0})");
    collection().removeOne({{"a", 1}}, remove);
    EXPECT_PRED2(
        isSameCommand, sent("delete"),
        R"({ "delete" : "c", "ordered" : true, "let" : { "v" : 1 }, "deletes" : [ { "q" : { "a" : 1 }, "limit" : 1, )"
        R"("collation" : { "locale" : "de" }, "hint" : "i" } ] })");
}

TEST_F(CollectionCommand, RemoveManyRemovesEveryMatch)
{
    collection().removeMany({{"a", 1}});

    EXPECT_PRED2(isSameCommand, sent("delete"),
                 R"({ "delete" : "c", "ordered" : true, "deletes" : [ { "q" : { "a" : 1 }, "limit" : 0 } ] })");
}

TEST_F(CollectionCommand, BulkWriteSendsNeighboursOfOneTypeTogether)
{
    Bulk bulk;
    bulk.insertOne({{"_id", 1}})
        .insertOne({{"_id", 2}})
        .updateOne({{"_id", 1}}, {{"$set", {{"a", 1}}}})
        .replaceOne({{"_id", 2}}, {{"a", 2}})
        .removeMany({{"a", 2}})
        .removeOne({{"_id", 1}});
    EXPECT_EQ(bulk.size(), 6U);

    const dbc::BulkResult result = collection().bulkWrite(bulk);

    EXPECT_EQ(gateway().names(), (std::vector<std::string>{"insert", "update", "delete"}));
    EXPECT_EQ(result.inserted, 2);
    EXPECT_EQ(result.matched, 2);
    EXPECT_EQ(result.modified, 2);
    EXPECT_EQ(result.removed, 2);
    ASSERT_EQ(result.insertedIds.size(), 2U);
    EXPECT_EQ(result.insertedIds[1].index, 1U);
    EXPECT_EQ(result.insertedIds[1].id, Value(2));
}

TEST_F(CollectionCommand, IsNotSentWhenAnArgumentIsRefused)
{
    const auto refusal = [](const auto& call) { return thrownText(call); };
    const Value noObject(5);
    const dbc::BsonView noBson{reinterpret_cast<const unsigned char*>("\x05\0\0\0\1"), 5};
    DataBaseClient unconnected;

    EXPECT_EQ(refusal([&] { Collection(unconnected, "", "").removeOne(noObject); }),
              "invalid_argument: Connection is not established. Run connect before");
    EXPECT_EQ(refusal([&] { Collection(client(), "", "").removeOne(noObject); }),
              "invalid_argument: Database name is empty");
    EXPECT_EQ(refusal([&] { Collection(client(), "d", std::string("\0x", 2)).removeOne(noObject); }),
              "invalid_argument: Collection name is empty");
    EXPECT_EQ(refusal([&] { collection().insertOne(noObject); }), "invalid_argument: Bad properties");
    EXPECT_EQ(refusal([&] { collection().insertOne(noBson); }), "invalid_argument: Bad properties");
    EXPECT_EQ(refusal([&] { collection().insertMany({noObject}); }), "invalid_argument: Bad properties");
    EXPECT_EQ(refusal([&] {
                  collection().updateOne(noObject, {{"$set", {{"a", 1}}}});
              }),
              "invalid_argument: Bad condition");
    EXPECT_EQ(refusal([&] { collection().updateOne({}, noObject); }), "invalid_argument: Bad properties");
    EXPECT_EQ(refusal([&] { collection().removeMany(noObject); }), "invalid_argument: Bad condition");
    EXPECT_EQ(refusal([&] { Bulk().insertOne(noObject); }), "invalid_argument: Bad properties");
    EXPECT_EQ(refusal([&] { Bulk().removeOne(noObject); }), "invalid_argument: Bad condition");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(CollectionCommand, IsNotSentForANameWithAZeroByte)
{
    const std::string zero("a\0b", 3);
    const auto refusal = [](const char* what) {
        return std::string("invalid_argument: ") + what + " contains a zero byte";
    };
    EXPECT_EQ(thrownText([&] { Collection(client(), zero, "c").drop(); }), refusal("Database name"));
    EXPECT_EQ(thrownText([&] { Collection(client(), "d", zero).drop(); }), refusal("Collection name"));
    EXPECT_EQ(thrownText([&] { collection().rename(zero); }), refusal("New collection name"));
    EXPECT_EQ(thrownText([&] { collection().dropIndex(zero); }), refusal("Index name"));
    EXPECT_EQ(thrownText([&] { collection().createIndex({{zero}}); }), refusal("Field name"));
    EXPECT_EQ(thrownText([&] { collection().distinct(zero); }), refusal("Field name"));
    dbc::IndexOptions index;
    index.name = zero;
    EXPECT_EQ(thrownText([&] { collection().createIndex({{"a"}}, index); }), refusal("Index name"));
    dbc::FindOptions sorted;
    sorted.sort = {{zero}};
    EXPECT_EQ(thrownText([&] { collection().find({}, sorted); }), refusal("Field name"));
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

Value nested(int levels)
{
    Value value = 1;
    for (int level = 0; level < levels; ++level)
    {
        Value outer;
        outer.append("a", std::move(value));
        value = std::move(outer);
    }
    return value;
}

TEST_F(CollectionCommand, IsNotSentWithAnOptionNestedDeeperThanTheDriverCanWalk)
{
    const Value deep = nested(300000); // exhausts the stack of a recursive function
    const std::string refusal = "invalid_argument: Bad options";
    dbc::FindOptions find;
    find.comment = deep;
    EXPECT_EQ(thrownText([&] { collection().find({}, find); }), refusal);
    dbc::CountOptions count;
    count.hint = deep;
    EXPECT_EQ(thrownText([&] { collection().count({}, count); }), refusal);
    dbc::InsertOneOptions insert;
    insert.comment = deep;
    EXPECT_EQ(thrownText([&] { collection().insertOne({{"a", 1}}, insert); }), refusal);
    dbc::RemoveOptions remove;
    remove.hint = deep;
    EXPECT_EQ(thrownText([&] { collection().removeMany({}, remove); }), refusal);
    dbc::FindOneAndRemoveOptions findAndRemove;
    findAndRemove.projection = deep;
    EXPECT_EQ(thrownText([&] { collection().findOneAndRemove({}, findAndRemove); }), refusal);
    dbc::IndexOptions index;
    index.partialFilter = deep;
    EXPECT_EQ(thrownText([&] { collection().createIndex({{"a"}}, index); }), refusal);
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(CollectionCommand, IsNotSentWithADocumentNestedDeeperThanTheDriverCanWalk)
{
    const std::vector<std::uint8_t> bytes = nested(1002).toBson();

    EXPECT_EQ(thrownText([&] { collection().insertOne(nested(1002)); }), "invalid_argument: Bad properties");
    EXPECT_EQ(thrownText([&] {
                  collection().insertOne(dbc::BsonView{bytes.data(), bytes.size()});
              }),
              "invalid_argument: Bad properties");
    EXPECT_EQ(thrownText([&] { collection().removeOne(nested(1002)); }), "invalid_argument: Bad condition");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(CollectionCommand, IsNotSentWithAnUpdateThatTheDriverRefuses)
{
    Bulk bulk;
    bulk.removeOne({}).updateOne({}, {{"a", 1}});

    const auto error = thrownError<dbc::BulkError>([&] { collection().bulkWrite(bulk); });

    EXPECT_EQ(error.kind(), dbc::ErrorKind::BadArgument);
    ASSERT_EQ(error.errors().size(), 1U);
    EXPECT_EQ(error.errors()[0].index, 1U);
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(CollectionCommand, OfAnUnacknowledgedWriteReturnsAnUnacknowledgedResult)
{
    dbc::RemoveOptions options;
    options.writeConcern = dbc::WriteConcern{0, "", std::nullopt, std::nullopt};

    const dbc::RemoveResult result = collection().removeOne({}, options);

    EXPECT_FALSE(result.acknowledged);
    EXPECT_EQ(result.removed, 0);
    EXPECT_TRUE(gateway().waitForCommands("delete", 1));
    // FerretDB replies to unacknowledged writes too. Without disconnect(), the driver would use that reply for its next
    // command.
    client().disconnect();
}

TEST_F(CollectionCommand, ResultHasTheCountsAndTheUpsertedId)
{
    reply("update", R"({"ok": 1, "n": 3, "nModified": 2})");
    dbc::UpdateResult result = collection().updateMany({}, {{"$set", {{"a", 1}}}});
    EXPECT_EQ(result.matched, 3);
    EXPECT_EQ(result.modified, 2);
    EXPECT_FALSE(result.upsertedId);

    reply("update", R"({"ok": 1, "n": 1, "nModified": 0, "upserted": [{"index": 0, "_id": "new"}]})");
    result = collection().updateOne({}, {{"$set", {{"a", 1}}}});
    EXPECT_EQ(result.matched, 0);
    EXPECT_EQ(result.upsertedId, Value("new"));
}

TEST_F(CollectionCommand, DocumentOverTheServersLimitIsTooLarge)
{
    const auto error = thrownError<dbc::ServerError>([&] {
        collection().insertOne({{"text", std::string(17 << 20, 'x')}});
    });
    EXPECT_EQ(error.kind(), dbc::ErrorKind::TooLarge);
}

TEST_F(CollectionCommand, ExceptionOfAGeneratorPassesOnAndLeavesTheClientUsable)
{
    EXPECT_EQ(thrownText([&] {
                  collection().insertMany([]() -> std::optional<Value> { throw std::runtime_error("source"); });
              }),
              "runtime_error: source");

    EXPECT_EQ(collection().insertMany(std::vector<Value>{Value{{"_id", 1}}}).inserted, 1);
}

TEST_F(CollectionCommand, OfACollectionThatOutlivesItsClientIsALogicError)
{
    auto owner = std::make_unique<DataBaseClient>();
    owner->connect(TestServer::instance().uri());
    Collection orphan(*owner, database(), "c");
    owner.reset();

    EXPECT_THROW(orphan.removeOne({}), std::logic_error);
}

TEST_F(CollectionCommand, FollowsAClientThatConnectsLaterAndAgain)
{
    DataBaseClient late;
    Collection target(late, database(), "c");
    late.connect(TestServer::instance().uri());
    target.insertOne({{"_id", 1}});
    late.connect(TestServer::instance().uri());

    EXPECT_EQ(target.removeOne({{"_id", 1}}).removed, 1);
}

} // namespace
} // namespace test_support
