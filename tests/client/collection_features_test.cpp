// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// What FerretDB refuses or ignores, on a server that has it. The commands themselves are compared in tests/wire.

#include "connected_client.h"

#include "dbc/collection.h"
#include "dbc/database.h"

#include <cstdint>
#include <string>
#include <vector>

namespace test_support {
namespace {

using dbc::Value;

class CollectionFeature : public ConnectedClient
{
public:
    CollectionFeature() : m_collection(client(), database(), "c") {}

    void SetUp() override
    {
        if (TestServer::instance().isFerretDb())
            GTEST_SKIP() << "FerretDB does not have it; set MONGODB_URI to a MongoDB server";
    }

    dbc::Collection& collection() { return m_collection; }

    Value stored(int id) { return collection().findOne({{"_id", id}}).value_or(Value()); }

private:
    dbc::Collection m_collection;
};

TEST_F(CollectionFeature, ArrayFiltersChooseTheElementsThatChange)
{
    collection().insertOne({{"_id", 1}, {"grades", dbc::array({80, 95, 99})}});
    dbc::UpdateOptions options;
    options.arrayFilters = {{{"high", {{"$gte", 90}}}}};

    const dbc::UpdateResult result =
        collection().updateOne({{"_id", 1}}, {{"$set", {{"grades.$[high]", 100}}}}, options);

    EXPECT_EQ(result.modified, 1);
    EXPECT_EQ(stored(1), (Value{{"_id", 1}, {"grades", dbc::array({80, 100, 100})}}));
}

TEST_F(CollectionFeature, CollationComparesWithoutCase)
{
    collection().insertMany(
        {{{"_id", 1}, {"name", "ADA"}}, {{"_id", 2}, {"name", "ada"}}, {{"_id", 3}, {"name", "bob"}}});
    dbc::FindOptions find;
    find.collation = {{"locale", "en"}, {"strength", 2}};
    dbc::CountOptions count;
    count.collation = find.collation;

    int found = 0;
    for (const Value& document : collection().find({{"name", "Ada"}}, find))
        found += document.contains("_id") ? 1 : 0;

    EXPECT_EQ(found, 2);
    EXPECT_EQ(collection().count({{"name", "Ada"}}, count), 2);
    EXPECT_EQ(collection().count({{"name", "Ada"}}), 0);
}

TEST_F(CollectionFeature, UpdateTakesAPipeline)
{
    collection().insertOne({{"_id", 1}, {"a", 2}, {"b", 3}});

    collection().updateOne({{"_id", 1}},
                           dbc::array({Value{{"$set", {{"sum", {{"$add", dbc::array({"$a", "$b"})}}}}}}}));

    EXPECT_EQ(stored(1), (Value{{"_id", 1}, {"a", 2}, {"b", 3}, {"sum", 5}}));
}

TEST_F(CollectionFeature, AggregationWithOutWritesACollection)
{
    collection().insertMany({{{"_id", 1}, {"a", 1}}, {{"_id", 2}, {"a", 2}}});

    collection().aggregate(dbc::array({Value{{"$match", {{"a", {{"$gt", 1}}}}}}, Value{{"$out", "result"}}}));

    dbc::Collection result(client(), database(), "result");
    EXPECT_EQ(result.count({}), 1);
}

TEST_F(CollectionFeature, AggregationWithMergeKeepsTheOtherDocuments)
{
    dbc::Collection result(client(), database(), "result");
    result.insertOne({{"_id", 7}});
    collection().insertMany({{{"_id", 1}}, {{"_id", 2}}});

    collection().aggregate(dbc::array({Value{{"$merge", {{"into", "result"}}}}}));

    EXPECT_EQ(result.count({}), 3);
}

TEST_F(CollectionFeature, PartialIndexIsUniqueForItsDocumentsOnly)
{
    dbc::IndexOptions options;
    options.unique = true;
    options.partialFilter = {{"active", true}};
    collection().createIndex({{"name"}}, options);
    collection().insertMany({{{"name", "a"}, {"active", false}}, {{"name", "a"}, {"active", false}}});
    collection().insertOne({{"name", "a"}, {"active", true}});

    const auto error = thrownError<dbc::ServerError>([&] {
        collection().insertOne({{"name", "a"}, {"active", true}});
    });

    EXPECT_EQ(error.kind(), dbc::ErrorKind::DuplicateKey);
}

TEST_F(CollectionFeature, TextIndexFindsWords)
{
    collection().createIndex({{"title", dbc::IndexType::Text}});
    collection().insertMany({{{"_id", 1}, {"title", "a bridge"}}, {{"_id", 2}, {"title", "a river"}}});

    EXPECT_EQ(collection().count({{"$text", {{"$search", "bridge"}}}}), 1);
}

TEST_F(CollectionFeature, ValidationRulesRefuseADocument)
{
    dbc::CreateCollectionOptions options;
    options.validator = {{"a", {{"$type", "int"}}}};
    dbc::Collection validated = dbc::Database(client(), database()).createCollection("validated", options);

    validated.insertOne({{"a", 1}});

    const auto error = thrownError<dbc::ServerError>([&] { validated.insertOne({{"a", "one"}}); });

    EXPECT_EQ(error.code(), 121);
    EXPECT_EQ(validated.count({}), 1);
}

} // namespace
} // namespace test_support
