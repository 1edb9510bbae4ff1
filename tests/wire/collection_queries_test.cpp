// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "command_text.h"
#include "dbc/collection.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace test_support {
namespace {

using dbc::Collection;
using dbc::Value;

/// A collection "c" of three documents {_id, a, l}.
class CollectionQuery : public ConnectedClient
{
public:
    CollectionQuery() : m_collection(client(), database(), "c")
    {
        m_collection.insertMany({{{"_id", 1}, {"a", 5}}, {{"_id", 2}, {"a", 7}}, {{"_id", 3}, {"a", 5}}});
        gateway().clear();
    }
    ~CollectionQuery() override { gateway().clearFaults(); }

    Collection& collection() { return m_collection; }

private:
    Collection m_collection;
};

TEST_F(CollectionQuery, FindOneReturnsTheFirstMatchAndAsksForNoCursor)
{
    dbc::FindOneOptions options;
    options.sort = {{"_id", dbc::Order::Descending}};
    options.projection = {{"_id", 1}};

    EXPECT_EQ(collection().findOne({{"a", 5}}, options), (Value{{"_id", 3}}));

    EXPECT_PRED2(isSameCommand, sent("find"),
                 R"({ "find" : "c", "filter" : { "a" : 5 }, "sort" : { "_id" : -1 }, )"
                 R"("projection" : { "_id" : 1 }, "limit" : 1, "singleBatch" : true })");
    EXPECT_EQ(collection().findOne({{"a", 6}}), std::nullopt);
}

TEST_F(CollectionQuery, FindOneAndUpdateReturnsTheDocumentBeforeOrAfter)
{
    dbc::FindOneAndUpdateOptions options;
    EXPECT_EQ(collection().findOneAndUpdate({{"_id", 1}}, {{"$set", {{"a", 6}}}}), (Value{{"_id", 1}, {"a", 5}}));
    options.which = dbc::Return::After;
    EXPECT_EQ(collection().findOneAndUpdate({{"_id", 1}}, {{"$set", {{"a", 7}}}}, options),
              (Value{{"_id", 1}, {"a", 7}}));
    EXPECT_EQ(collection().findOneAndUpdate({{"_id", 9}}, {{"$set", {{"a", 7}}}}, options), std::nullopt);
}

TEST_F(CollectionQuery, FindOneAndUpdateCarriesEveryOption)
{
    dbc::FindOneAndUpdateOptions options;
    options.which = dbc::Return::After;
    options.upsert = true;
    options.sort = {{"b"}, {"a", dbc::Order::Descending}};
    options.projection = {{"a", 1}};
    options.arrayFilters = {Value{{"e.a", 1}}};
    options.timeLimit = std::chrono::seconds(1);
    options.hint = "i";
    options.collation = {{"locale", "de"}};
    options.let = {{"v", 1}};
    options.comment = "why";
    options.writeConcern = dbc::WriteConcern{std::nullopt, "majority", std::nullopt, std::nullopt};
    options.bypassValidation = true;
    reply("findAndModify", R"({"ok": 1, "value": null})");

    EXPECT_EQ(collection().findOneAndUpdate({{"a", 1}}, {{"$set", {{"l.$[e].b", 2}}}}, options), std::nullopt);

    const std::string command = sent("findAndModify");
    for (const char* const part :
         {R"("query" : { "a" : 1 })", R"("sort" : { "b" : 1, "a" : -1 })",
          R"("update" : { "$set" : { "l.$[e].b" : 2 } })", R"("fields" : { "a" : 1 })", R"("upsert" : true)",
          R"("new" : true)", R"("bypassDocumentValidation" : true)", R"("maxTimeMS" : 1000)", R"("hint" : "i")",
          R"("collation" : { "locale" : "de" })", R"("let" : { "v" : 1 })", R"("comment" : "why")",
          R"("writeConcern" : { "w" : "majority" })", R"("arrayFilters" : [ { "e.a" : 1 } ])"})
        EXPECT_NE(command.find(part), std::string::npos) << part << " in " << command;
}

TEST_F(CollectionQuery, FindOneAndRemoveSendsAProjectionThatIsNoObject)
{
    dbc::FindOneAndRemoveOptions options;
    options.projection = "a";
    reply("findAndModify", R"({"ok": 0, "errmsg": "fields must be an object", "code": 14})");

    EXPECT_THROW(collection().findOneAndRemove({}, options), dbc::ServerError);

    EXPECT_NE(sent("findAndModify").find(R"("fields" : "a")"), std::string::npos) << sent("findAndModify");
}

TEST_F(CollectionQuery, FindOneAndReplaceAndRemoveReturnTheDocumentBefore)
{
    EXPECT_EQ(collection().findOneAndReplace({{"_id", 2}}, {{"b", 1}}), (Value{{"_id", 2}, {"a", 7}}));
    EXPECT_EQ(collection().findOneAndRemove({{"_id", 2}}), (Value{{"_id", 2}, {"b", 1}}));
    EXPECT_EQ(scratch().count("c"), 2U);

    gateway().clear();
    dbc::FindOneAndRemoveOptions options;
    options.sort = {{"a"}};
    reply("findAndModify", R"({"ok": 1, "value": null})");
    collection().findOneAndRemove({}, options);
    EXPECT_PRED2(isSameCommand, sent("findAndModify"),
                 R"({ "findAndModify" : "c", "query" : {  }, "sort" : { "a" : 1 }, "remove" : true })");
}

TEST_F(CollectionQuery, CountCountsMatches)
{
    EXPECT_EQ(collection().count({}), 3);
    EXPECT_EQ(collection().count({{"a", 5}}), 2);
    EXPECT_EQ(collection().count({{"a", 6}}), 0);
    EXPECT_EQ(collection().estimatedCount(), 3);
    EXPECT_EQ(Collection(client(), database(), "missing").estimatedCount(), 0);
}

TEST_F(CollectionQuery, CountCarriesItsOptions)
{
    dbc::CountOptions options;
    options.limit = 5;
    options.skip = 1;
    options.timeLimit = std::chrono::seconds(1);
    options.hint = "i";
    options.collation = {{"locale", "de"}};
    options.comment = "why";
    reply("aggregate", R"({"ok": 1, "cursor": {"id": 0, "ns": "d.c", "firstBatch": [{"_id": 1, "n": 4}]}})");

    EXPECT_EQ(collection().count({{"a", 1}}, options), 4);

    EXPECT_PRED2(isSameCommand, sent("aggregate"),
                 R"({ "aggregate" : "c", "cursor" : {  }, "pipeline" : [ { "$match" : { "a" : 1 } }, { "$skip" : 1 }, )"
                 R"({ "$limit" : 5 }, { "$group" : { "_id" : 1, "n" : { "$sum" : 1 } } } ], )"
                 R"("collation" : { "locale" : "de" }, "maxTimeMS" : 1000, "hint" : "i", "comment" : "why" })");
}

TEST_F(CollectionQuery, DistinctReturnsTheDifferentValues)
{
    EXPECT_EQ(collection().distinct("a"), (std::vector<Value>{5, 7}));
    EXPECT_PRED2(isSameCommand, sent("distinct"), R"({ "distinct" : "c", "key" : "a", "query" : {  } })");

    EXPECT_EQ(collection().distinct("a", {{"_id", 2}}), std::vector<Value>{7});
    EXPECT_EQ(collection().distinct("b"), std::vector<Value>{});
    EXPECT_EQ(thrownText([&] { collection().distinct(""); }), "invalid_argument: Field name is empty");
}

TEST_F(CollectionQuery, CreateIndexSendsTheKeysInTheirOrder)
{
    dbc::IndexOptions options;
    options.unique = true;

    EXPECT_EQ(collection().createIndex({{"b"}, {"a", dbc::IndexType::Descending}}, options), "b_1_a_-1");

    EXPECT_PRED2(isSameCommand, sent("createIndexes"),
                 R"({ "createIndexes" : "c", "indexes" : [ { "key" : { "b" : 1, "a" : -1 }, )"
                 R"("name" : "b_1_a_-1", "unique" : true } ] })");
    std::vector<std::string> names;
    for (const dbc::IndexInfo& index : collection().indexes())
    {
        names.push_back(index.name);
        EXPECT_EQ(index.unique, index.name != "_id_");
        EXPECT_EQ(index.keys, index.name == "_id_" ? (Value{{"_id", 1}}) : (Value{{"b", 1}, {"a", -1}}));
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"_id_", "b_1_a_-1"}));

    collection().dropIndex("b_1_a_-1");
    EXPECT_EQ(collection().indexes().size(), 1U);
}

TEST_F(CollectionQuery, CreateIndexCarriesEveryOption)
{
    dbc::IndexOptions options;
    options.name = "n";
    options.sparse = true;
    options.partialFilter = {{"a", 1}};
    options.expireAfter = std::chrono::hours(1);
    options.collation = {{"locale", "de"}};
    reply("createIndexes", R"({"ok": 1})");

    collection().createIndex(
        {{"t", dbc::IndexType::Text}, {"h", dbc::IndexType::Hashed}, {"p", dbc::IndexType::Sphere2d}}, options);

    EXPECT_PRED2(
        isSameCommand, sent("createIndexes"),
        R"({ "createIndexes" : "c", "indexes" : [ { "key" : { "t" : "text", "h" : "hashed", "p" : "2dsphere" }, )"
        R"("name" : "n", "sparse" : true, "partialFilterExpression" : { "a" : 1 }, )"
        R"("collation" : { "locale" : "de" }, "expireAfterSeconds" : 3600 } ] })");
}

TEST_F(CollectionQuery, UnknownIndexIsNotFound)
{
    const auto error = thrownError<dbc::ServerError>([&] { collection().dropIndex("missing"); });
    EXPECT_EQ(error.kind(), dbc::ErrorKind::NotFound) << error.what();
    EXPECT_EQ(thrownText([&] { collection().dropIndex(""); }), "invalid_argument: Index name is empty");
    EXPECT_EQ(thrownText([&] { collection().createIndex({}); }), "invalid_argument: Index keys are empty");
    EXPECT_TRUE(Collection(client(), database(), "missing").indexes().empty());
}

TEST_F(CollectionQuery, DropAndRenameChangeTheCollectionAsAWhole)
{
    collection().rename("other");
    EXPECT_EQ(collection().name(), "other");
    EXPECT_EQ(collection().count({}), 3);

    scratch().insert("third", R"({"_id": 1})");
    EXPECT_THROW(collection().rename("third"), dbc::ServerError);
    EXPECT_EQ(collection().name(), "other");
    EXPECT_EQ(thrownText([&] { collection().rename(""); }), "invalid_argument: New collection name is empty");

    collection().drop();
    collection().drop();
    EXPECT_EQ(scratch().collections(), std::vector<std::string>{"third"});
}

TEST_F(CollectionQuery, DropFailsIfSomethingElseThanTheCollectionDoesNotExist)
{
    reply("drop", R"({"ok": 0, "errmsg": "no", "code": 26})");
    EXPECT_EQ(thrownText([&] { collection().drop(); }), "");
    reply("drop", R"({"ok": 0, "errmsg": "no", "code": 27})");
    EXPECT_EQ(thrownText([&] { collection().drop(); }), "runtime_error: Dropping the collection failed: no(code: 27)");
}

} // namespace
} // namespace test_support
