// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations on collections, databases and files if memory runs out. Calls of malloc by the driver do not fail here,
// because the driver then ends the process.

#include "allocation_failure.h"
#include "dbc/collection.h"
#include "dbc/database.h"
#include "dbc/file_store.h"
#include "row_name.h"
#include "shared_client.h"
#include "thrown_text.h"

#include <array>
#include <memory>
#include <ostream>
#include <string>

namespace {

using dbc::Bulk;
using dbc::Collection;
using dbc::Database;
using dbc::FileStore;
using dbc::Value;
using test_support::FixedBuffer;
using test_support::sharedClient;
using test_support::sharedScratch;
using test_support::thrownText;

const std::string longText = "a text that is too long for the small buffer of a string";

const std::string collectionName = "a collection whose name is long enough";
const Value newId("another id that is too long for the small buffer of a string");
const Value storedId("an id that is too long for the small buffer of a string");

/// The objects of a test. Created before allocations fail.
struct Setting
{
    Setting()
        : database(sharedClient(), sharedScratch().name()),
          collection(sharedClient(), sharedScratch().name(), collectionName),
          store(sharedClient(), sharedScratch().name()), stream(&buffer)
    {
        upload.id = newId;
        upload.chunkSize = 1000;
        upload.contentType = longText;
        upload.metadata = {{"owner", longText}};
        update.arrayFilters = {Value{{"e.a", 1}}};
        update.comment = Value(longText);
        upsert.upsert = true;
        one.limit = 3;
        one.sort = {{"_id"}};
        one.projection = {{"a", 1}};
        index.name = "an index with a long name, made again and again";
        bulk.insertOne({{"text", longText}})
            .updateOne({{"none", longText}}, {{"$set", {{"text", longText}}}}, upsert)
            .removeMany({{"text", longText}});
    }

    void use()
    {
        EXPECT_NO_THROW(EXPECT_GE(collection.count({{"kept", true}}), 5));
        EXPECT_NO_THROW(EXPECT_EQ(collection.findOne({{"kept", true}})->at("kept"), Value(true)));
        EXPECT_NO_THROW(EXPECT_EQ(store.list({{"_id", storedId}}).size(), 1U));
        EXPECT_NO_THROW(collection.removeMany({{"text", longText}}));
        // A failed upload leaves no chunks, a successful upload a complete file.
        const std::size_t files = store.list({{"_id", newId}}).size();
        Collection chunks = database.collection("fs.chunks");
        EXPECT_EQ(chunks.count({{"files_id", newId}}), files == 0 ? 0 : 3);
        EXPECT_EQ(chunks.count({{"files_id", storedId}}), 3);
        store.removeById(newId);
    }

    Database database;
    Collection collection;
    FileStore store;
    FixedBuffer buffer;
    std::iostream stream;
    dbc::UploadOptions upload;
    dbc::UpdateOptions update;
    dbc::BulkUpdateOptions upsert;
    dbc::FindOptions one;
    dbc::IndexOptions index;
    Bulk bulk;
    const Value document{{"text", longText}, {"list", dbc::array({1, longText})}};
    const Value filter{{"text", longText}};
    const Value change{{"$set", {{"text", longText}}}};
};

class CollectionOperationWithoutMemory : public testing::TestWithParam<test_support::AllocatingOperation<Setting>>
{
protected:
    static void SetUpTestSuite()
    {
        // Allocates everything that is allocated only once, before blocks are counted.
        Setting setting;
        for (int id = 0; id < 5; ++id)
            setting.collection.insertOne({{"_id", id}, {"kept", true}, {"a", longText}});
        dbc::UploadOptions options = setting.upload;
        options.id = storedId;
        setting.store.upload("a stored file with a long name", setting.stream, options);
        setting.collection.createIndex({{"text"}}, setting.index);
        setting.use();
        thrownText([&] { setting.database.command({{"noSuchCommand", 1}}); });
    }
};

TEST_P(CollectionOperationWithoutMemory, ThrowsAndLeavesItsObjectUsable)
{
    test_support::expectUsableAfterEveryFailure<Setting>(GetParam().operate);
}

const test_support::AllocatingOperation<Setting> operations[] = {
    {"construction",
     [](Setting& s) {
         const Database database(sharedClient(), longText);
         const Collection collection(sharedClient(), longText, longText);
         const FileStore store(sharedClient(), longText, longText);
         const Collection other = s.database.collection(longText);
     }},
    {"insertOne", [](Setting& s) { s.collection.insertOne(s.document); }},
    {"insertOneOfBraces",
     [](Setting& s) {
         s.collection.insertOne({{"text", longText}, {"group", {{"a", 1}}}});
     }},
    {"insertOneOfObjectProperties",
     [](Setting& s) {
         ObjectProperties document;
         document.setValueString("text", longText);
         s.collection.insertOne(document);
     }},
    {"insertMany",
     [](Setting& s) {
         s.collection.insertMany(std::array<Value, 3>{s.document, s.document, s.document});
     }},
    {"insertManyOfAGenerator",
     [](Setting& s) {
         int count = 0;
         s.collection.insertMany(
             [&]() -> std::optional<Value> { return count++ < 3 ? std::optional<Value>(s.document) : std::nullopt; });
     }},
    {"insertManyThatFails",
     [](Setting& s) {
         dbc::InsertManyOptions options;
         options.ordered = false;
         thrownText([&] { s.collection.insertMany({{{"_id", 0}}, {{"text", longText}}, {{"_id", 1}}}, options); });
     }},
    {"updateOne", [](Setting& s) { s.collection.updateOne(s.filter, s.change); }},
    {"updateManyWithOptions",
     [](Setting& s) {
         s.update.upsert = true;
         s.update.arrayFilters.clear();
         s.collection.updateMany(s.filter, s.change, s.update);
     }},
    // Fails because the test server does not support array filters.
    {"updateThatFails", [](Setting& s) { thrownText([&] { s.collection.updateOne(s.filter, s.change, s.update); }); }},
    {"replaceOne", [](Setting& s) { s.collection.replaceOne(s.filter, s.document); }},
    {"removeOne", [](Setting& s) { s.collection.removeOne(s.filter); }},
    {"bulk",
     [](Setting& s) {
         Bulk bulk;
         bulk.insertOne(s.document)
             .updateOne(s.filter, s.change, s.upsert)
             .updateMany(s.filter, s.change)
             .replaceOne(s.filter, s.document)
             .removeOne(s.filter)
             .removeMany(s.filter);
     }},
    {"bulkWrite", [](Setting& s) { s.collection.bulkWrite(s.bulk); }},
    {"bulkWriteUnordered",
     [](Setting& s) {
         dbc::BulkOptions options;
         options.ordered = false;
         options.comment = Value(longText);
         s.collection.bulkWrite(s.bulk, options);
     }},
    {"bulkWriteThatFails",
     [](Setting& s) {
         s.bulk.insertOne({{"_id", 0}});
         thrownText([&] { s.collection.bulkWrite(s.bulk); });
     }},
    {"find",
     [](Setting& s) {
         for (const Value& document : s.collection.find({{"kept", true}}, s.one))
             static_cast<void>(document);
     }},
    {"findAsObjectProperties",
     [](Setting& s) {
         for (const ObjectProperties& document : s.collection.find({{"kept", true}}, s.one))
             static_cast<void>(document);
     }},
    {"findInBatches",
     [](Setting& s) {
         s.one.limit = 0;
         s.one.batchSize = 2;
         for (const dbc::BsonView document : s.collection.find({{"kept", true}}, s.one))
             static_cast<void>(document);
     }},
    {"findThatFails",
     [](Setting& s) { thrownText([&] {
                          s.collection.find({{"a", {{"$noSuchOperator", longText}}}});
                      }); }},
    {"aggregate",
     [](Setting& s) {
         dbc::Cursor cursor =
             s.collection.aggregate(dbc::array({Value{{"$match", {{"kept", true}}}}, Value{{"$limit", 2}}}));
         while (cursor.next())
             cursor.value();
     }},
    {"aggregateThatFails",
     [](Setting& s) { thrownText([&] {
                          s.collection.aggregate(dbc::array({Value{{"$noSuchStage", longText}}}));
                      }); }},
    {"findOne",
     [](Setting& s) {
         s.collection.findOne({{"kept", true}});
     }},
    {"findOneAndUpdate",
     [](Setting& s) {
         dbc::FindOneAndUpdateOptions options;
         options.sort = {{"_id"}};
         options.upsert = true;
         options.which = dbc::Return::After;
         s.collection.findOneAndUpdate(s.filter, s.change, options);
     }},
    {"findOneAndReplace", [](Setting& s) { s.collection.findOneAndReplace(s.filter, s.document); }},
    {"findOneAndRemove", [](Setting& s) { s.collection.findOneAndRemove(s.filter); }},
    {"count", [](Setting& s) { s.collection.count(s.filter); }},
    {"estimatedCount", [](Setting& s) { s.collection.estimatedCount(); }},
    {"distinct", [](Setting& s) { s.collection.distinct("a"); }},
    {"createIndex", [](Setting& s) { s.collection.createIndex({{"text"}}, s.index); }},
    {"createIndexWithoutAName",
     [](Setting& s) {
         s.collection.createIndex({{"a field with a long name", dbc::IndexType::Descending}});
     }},
    {"indexes", [](Setting& s) { s.collection.indexes(); }},
    {"dropIndexThatFails",
     [](Setting& s) { thrownText([&] { s.collection.dropIndex("no index has this long name"); }); }},
    {"drop", [](Setting& s) { s.database.collection("a collection that nobody has made").drop(); }},
    {"renameThatFails",
     [](Setting& s) {
         Collection missing = s.database.collection("a collection that nobody has made");
         thrownText([&] { missing.rename(longText); });
     }},
    {"collectionNames", [](Setting& s) { s.database.collectionNames(); }},
    {"databaseNames", [](Setting&) { Database::names(sharedClient()); }},
    {"command",
     [](Setting& s) {
         s.database.command({{"ping", 1}});
     }},
    {"commandThatFails", [](Setting& s) { thrownText([&] {
                                              s.database.command({{"noSuchCommand", longText}});
                                          }); }},
    // There is no "uploadThatFails": if memory runs out while an upload removes its chunks, no std::bad_alloc is
    // thrown.
    {"upload", [](Setting& s) { s.store.upload("a file with a long name that is new", s.stream, s.upload); }},
    {"download", [](Setting& s) { s.store.downloadById(storedId, s.stream); }},
    {"downloadThatFails",
     [](Setting& s) { thrownText([&] { s.store.download("no file has this long name", s.stream); }); }},
    {"reader",
     [](Setting& s) {
         const std::unique_ptr<dbc::FileReader> reader = s.store.openById(storedId);
         reader->exceptions(std::ios::badbit);
         std::array<char, 2500> content{};
         reader->read(content.data(), 1500);
         reader->seekg(100);
         reader->read(content.data(), content.size());
     }},
    {"findFile", [](Setting& s) { s.store.find("a stored file with a long name"); }},
    {"listFiles", [](Setting& s) { s.store.list(); }},
    {"renameFile", [](Setting& s) { s.store.rename(storedId, "a stored file with a long name"); }},
    {"removeFile", [](Setting& s) { s.store.remove("no file has this long name"); }},
};

INSTANTIATE_TEST_SUITE_P(Collections, CollectionOperationWithoutMemory, testing::ValuesIn(operations), RowName());

TEST(BulkWithoutMemory, KeepsItsOperationsIfAnAllocationOfAnAddFails)
{
    const Value document{{"text", longText}};
    const auto untouched = [](const Bulk& bulk) { EXPECT_EQ(bulk.size(), 1U); };
    const auto prepare = [&] {
        Bulk bulk;
        bulk.insertOne(document);
        return bulk;
    };

    EXPECT_GT(test_support::failEveryAllocation(
                  prepare, [&](Bulk& bulk) { bulk.updateOne(document, document, {}); }, untouched),
              0U);
    EXPECT_GT(test_support::failEveryAllocation(
                  prepare, [&](Bulk& bulk) { bulk.insertOne(document); }, untouched),
              0U);
}

} // namespace
