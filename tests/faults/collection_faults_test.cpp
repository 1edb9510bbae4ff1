// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Faults in every operation on collections, databases and files: the exception, the stored data, and whether the same
// objects work afterwards.

#include "connected_client.h"

#include "dbc/collection.h"
#include "dbc/database.h"
#include "dbc/file_store.h"
#include "row_name.h"

#include <functional>
#include <ostream>
#include <sstream>
#include <vector>

namespace test_support {
namespace {

using dbc::Bulk;
using dbc::Collection;
using dbc::ErrorKind;
using dbc::FileStore;
using dbc::ServerError;
using dbc::Value;

/// The fields of an error reply that a function of the driver passes on, in addition to message and code.
enum class PassesOn
{
    Nothing,
    Labels,
    All ///< The labels and the name of the code.
};

/// The objects that an operation uses, with unique names: a collection of {_id: 1, a: 5} and {_id: 2, a: 7} with the
/// index "old", and a file store with the file "f", whose "_id" is 1.
struct Subject
{
    Subject(DataBaseClient& client, const std::string& databaseName, const std::string& name)
        : database(client, databaseName), collection(client, databaseName, name),
          store(client, databaseName, name + "fs")
    {
        collection.insertMany({{{"_id", 1}, {"a", 5}}, {{"_id", 2}, {"a", 7}}});
        dbc::IndexOptions index;
        index.name = "old";
        collection.createIndex({{"o"}}, index);
        dbc::UploadOptions options;
        options.id = Value(1);
        std::istringstream content("content");
        store.upload("f", content, options);
    }

    dbc::Database database;
    Collection collection;
    FileStore store;
};

struct OperationRow
{
    const char* name;
    const char* command; ///< The command that the fault affects.
    const char* message;
    void (*run)(Subject&);
    /// Returns true if the operation took effect. Null for operations that only read.
    bool (*isDone)(Subject&);
    PassesOn reply = PassesOn::All;
};

void PrintTo(const OperationRow& row, std::ostream* out)
{
    *out << row.name;
}

bool hasDocument(Subject& s, const Value& filter)
{
    return s.collection.count(filter) > 0;
}

bool hasIndex(Subject& s, const std::string& name)
{
    for (const dbc::IndexInfo& index : s.collection.indexes())
    {
        if (index.name == name)
            return true;
    }
    return false;
}

bool hasCollection(Subject& s, const std::string& name)
{
    for (const std::string& existing : s.database.collectionNames())
    {
        if (existing == name)
            return true;
    }
    return false;
}

const Value setNine{{"$set", {{"a", 9}}}};

const OperationRow operations[] = {
    {"InsertOne", "insert", "Insert failed",
     [](Subject& s) {
         s.collection.insertOne({{"_id", 9}});
     },
     [](Subject& s) {
         return hasDocument(s, {{"_id", 9}});
     },
     PassesOn::Labels},
    {"InsertMany", "insert", "Insert failed",
     [](Subject& s) {
         s.collection.insertMany({{{"_id", 8}}, {{"_id", 9}}});
     },
     [](Subject& s) {
         return hasDocument(s, {{"_id", 9}});
     },
     PassesOn::Labels},
    {"UpdateOne", "update", "Update failed",
     [](Subject& s) {
         s.collection.updateOne({{"_id", 1}}, setNine);
     },
     [](Subject& s) {
         return hasDocument(s, {{"a", 9}});
     },
     PassesOn::Labels},
    {"UpdateMany", "update", "Update failed", [](Subject& s) { s.collection.updateMany({}, setNine); },
     [](Subject& s) {
         return hasDocument(s, {{"a", 9}});
     },
     PassesOn::Labels},
    {"ReplaceOne", "update", "Replace failed",
     [](Subject& s) {
         s.collection.replaceOne({{"_id", 1}}, {{"b", 1}});
     },
     [](Subject& s) {
         return hasDocument(s, {{"b", 1}});
     },
     PassesOn::Labels},
    {"RemoveOne", "delete", "Remove failed",
     [](Subject& s) {
         s.collection.removeOne({{"_id", 1}});
     },
     [](Subject& s) {
         return !hasDocument(s, {{"_id", 1}});
     },
     PassesOn::Labels},
    {"RemoveMany", "delete", "Remove failed", [](Subject& s) { s.collection.removeMany({}); },
     [](Subject& s) {
         return !hasDocument(s, {{"_id", 1}});
     },
     PassesOn::Labels},
    {"BulkWrite", "insert", "Bulk write failed",
     [](Subject& s) {
         Bulk bulk;
         bulk.insertOne({{"_id", 9}});
         s.collection.bulkWrite(bulk);
     },
     [](Subject& s) {
         return hasDocument(s, {{"_id", 9}});
     },
     PassesOn::Labels},
    {"FindOneAndUpdate", "findAndModify", "Find and update failed",
     [](Subject& s) {
         s.collection.findOneAndUpdate({{"_id", 1}}, setNine);
     },
     [](Subject& s) {
         return hasDocument(s, {{"a", 9}});
     }},
    {"FindOneAndReplace", "findAndModify", "Find and replace failed",
     [](Subject& s) {
         s.collection.findOneAndReplace({{"_id", 1}}, {{"b", 1}});
     },
     [](Subject& s) {
         return hasDocument(s, {{"b", 1}});
     }},
    {"FindOneAndRemove", "findAndModify", "Find and remove failed",
     [](Subject& s) {
         s.collection.findOneAndRemove({{"_id", 1}});
     },
     [](Subject& s) {
         return !hasDocument(s, {{"_id", 1}});
     }},
    {"Find", "find", "Find failed", [](Subject& s) { s.collection.find({}); }, nullptr},
    {"FindOne", "find", "Find failed", [](Subject& s) { s.collection.findOne({}); }, nullptr},
    {"Aggregate", "aggregate", "Aggregation failed",
     [](Subject& s) {
         s.collection.aggregate(dbc::array({Value{{"$limit", 1}}}));
     },
     nullptr},
    {"Count", "aggregate", "Count failed", [](Subject& s) { s.collection.count({}); }, nullptr},
    {"EstimatedCount", "count", "Count failed", [](Subject& s) { s.collection.estimatedCount(); }, nullptr},
    {"Distinct", "distinct", "Distinct failed", [](Subject& s) { s.collection.distinct("a"); }, nullptr},
    {"CreateIndex", "createIndexes", "Creating the index failed", [](Subject& s) { s.collection.createIndex({{"a"}}); },
     [](Subject& s) { return hasIndex(s, "a_1"); }},
    {"Indexes", "listIndexes", "Listing indexes failed", [](Subject& s) { s.collection.indexes(); }, nullptr},
    {"DropIndex", "dropIndexes", "Dropping the index failed", [](Subject& s) { s.collection.dropIndex("old"); },
     [](Subject& s) { return !hasIndex(s, "old"); }, PassesOn::Nothing},
    {"Drop", "drop", "Dropping the collection failed", [](Subject& s) { s.collection.drop(); },
     [](Subject& s) { return !hasDocument(s, {}); }, PassesOn::Nothing},
    {"Rename", "renameCollection", "Renaming the collection failed",
     [](Subject& s) { s.collection.rename(s.collection.name() + "new"); },
     [](Subject& s) { return hasCollection(s, s.collection.name() + "new"); }, PassesOn::Nothing},
    {"CreateCollection", "create", "Creating the collection failed",
     [](Subject& s) { s.database.createCollection(s.collection.name() + "new"); },
     [](Subject& s) { return hasCollection(s, s.collection.name() + "new"); }, PassesOn::Nothing},
    {"CollectionNames", "listCollections", "Listing collections failed",
     [](Subject& s) { s.database.collectionNames(); }, nullptr, PassesOn::Nothing},
    {"Command", "ping", "Command failed",
     [](Subject& s) {
         s.database.command({{"ping", 1}});
     },
     nullptr},
    {"FindFile", "find", "Listing files failed", [](Subject& s) { s.store.find("f"); }, nullptr},
    {"ListFiles", "find", "Listing files failed", [](Subject& s) { s.store.list(); }, nullptr},
    {"OpenFile", "find", "Download failed", [](Subject& s) { s.store.open("f"); }, nullptr},
    {"RemoveFile", "delete", "Removing the file failed", [](Subject& s) { s.store.removeById(Value(1)); },
     [](Subject& s) { return !s.store.find("f"); }, PassesOn::Labels},
    {"RenameFile", "update", "Renaming the file failed", [](Subject& s) { s.store.rename(Value(1), "g"); },
     [](Subject& s) { return s.store.find("g").has_value(); }, PassesOn::Labels},
};

class CollectionFault : public ConnectedClient, public testing::WithParamInterface<OperationRow>
{
public:
    ~CollectionFault() override { gateway().clearFaults(); }

    /// Runs the operation of this row on new objects, and calls @p check with the error.
    void expectError(const char* trace, Fault fault, bool reachesServer,
                     const std::function<void(const ServerError&)>& check)
    {
        SCOPED_TRACE(trace);
        const OperationRow& row = GetParam();
        Subject subject(client(), database(), "c" + std::to_string(m_subjects++));
        // Affects later commands too, because the driver retries reads itself.
        gateway().inject(std::move(fault).onCommand(row.command).andLater());
        const auto error = thrownError<ServerError>([&] { row.run(subject); });
        EXPECT_EQ(std::string(error.what()).rfind(std::string(row.message) + ": ", 0), 0U) << error.what();
        check(error);
        EXPECT_EQ(gateway().pendingFaults(), 0U);
        gateway().clearFaults();
        EXPECT_TRUE(client().isConnected());
        EXPECT_EQ(thrownText([&] { subject.collection.count({}); }), "");
        if (row.isDone)
        {
            EXPECT_EQ(row.isDone(subject), reachesServer);
        }
    }

private:
    int m_subjects = 0;
};

TEST_P(CollectionFault, OfTheConnectionIsANetworkErrorThatMayBeRetried)
{
    const auto isNetwork = [](const ServerError& error) {
        EXPECT_EQ(error.kind(), ErrorKind::Network) << error.what();
        EXPECT_TRUE(error.mayRetry());
        EXPECT_NE(error.code(), 0);
    };
    expectError("dropped before the server saw the command", Fault::dropBeforeForwarding(), false, isNetwork);
    expectError("dropped after the server carried it out", Fault::dropAfterForwarding(), true, isNetwork);
    expectError("dropped inside the reply", Fault::cutReply(20), true, isNetwork);
}

TEST_P(CollectionFault, OfAMalformedReplyIsAServerError)
{
    expectError("no message", Fault::rawReply(Bytes(64, 0xFF)), true, [](const ServerError&) {});
}

struct Refusal
{
    int code;
    const char* codeName;
    const char* labels;
    ErrorKind kind;
    bool mayRetry;
};

const Refusal refusals[] = {
    {13, "Unauthorized", "[]", ErrorKind::NotAuthorized, false},
    {50, "MaxTimeMSExpired", "[]", ErrorKind::Timeout, false},
    {91, "ShutdownInProgress", "[]", ErrorKind::Other, true},
    {112, "WriteConflict", R"(["TransientTransactionError"])", ErrorKind::Other, true},
    {10107, "NotWritablePrimary", R"(["RetryableWriteError"])", ErrorKind::Other, true},
    {14031, "OutOfDiskSpace", "[]", ErrorKind::Other, false},
};

TEST_P(CollectionFault, OfTheServerHasItsTextCodeAndKind)
{
    const OperationRow& row = GetParam();
    for (const Refusal& refusal : refusals)
    {
        std::ostringstream reply;
        reply << R"({"ok": 0, "errmsg": "refused for a test", "code": )" << refusal.code << R"(, "codeName": ")"
              << refusal.codeName << R"(", "errorLabels": )" << refusal.labels << "}";
        expectError(refusal.codeName, Fault::answer(reply.str()), false, [&](const ServerError& error) {
            EXPECT_EQ(error.what(),
                      std::string(row.message) + ": refused for a test(code: " + std::to_string(refusal.code) + ")");
            EXPECT_EQ(error.code(), refusal.code);
            EXPECT_EQ(error.kind(), refusal.kind);
            EXPECT_EQ(error.mayRetry(), refusal.mayRetry);
            if (row.reply == PassesOn::All)
            {
                EXPECT_EQ(error.codeName(), refusal.codeName);
            }
            if (row.reply != PassesOn::Nothing)
            {
                EXPECT_EQ(error.labels().empty(), std::string(refusal.labels) == "[]");
            }
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, CollectionFault, testing::ValuesIn(operations), RowName());

std::vector<OperationRow> writes()
{
    std::vector<OperationRow> found;
    for (const OperationRow& row : operations)
    {
        if (row.isDone)
            found.push_back(row);
    }
    return found;
}

class CollectionWriteFault : public CollectionFault
{};

TEST_P(CollectionWriteFault, OfTheWriteConcernIsATimeoutAlthoughTheWriteWasDone)
{
    const char* const reply =
        R"({"ok": 1, "n": 1, "nModified": 1, "value": null,
            "writeConcernError": {"code": 64, "codeName": "WriteConcernFailed", "errmsg": "too slow"}})";
    expectError("not confirmed", Fault::replaceReply(reply), true, [](const ServerError& error) {
        EXPECT_NE(std::string(error.what()).find("too slow(code: 64)"), std::string::npos) << error.what();
        EXPECT_EQ(error.kind(), ErrorKind::Timeout);
        EXPECT_FALSE(error.mayRetry());
    });
}

INSTANTIATE_TEST_SUITE_P(Operations, CollectionWriteFault, testing::ValuesIn(writes()), RowName());

} // namespace
} // namespace test_support
