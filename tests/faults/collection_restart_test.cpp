// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations on collections and files while the server stops and starts again.

#include "connection_options.h"
#include "dbc/collection.h"
#include "dbc/file_store.h"
#include "row_name.h"
#include "test_server.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using dbc::Collection;
using dbc::FileStore;
using dbc::Value;
using test_support::Fault;
using test_support::ServerProcess;
using test_support::WireGateway;

// With these options the driver waits until its pause after an error is over. By default it fails at once.
const std::string options = "serverSelectionTimeoutMS=20000&connectTimeoutMS=2000&serverSelectionTryOnce=false";

constexpr std::uint32_t chunkSize = 1U << 20U;

std::string largeContent()
{
    return std::string(4 * std::size_t{chunkSize}, 'x') + "the end";
}

/// A collection of {_id: 1} to {_id: 10}, and a file store with the file "stored".
struct Subject
{
    explicit Subject(DataBaseClient& client) : collection(client, "restart", "c"), store(client, "restart")
    {
        std::vector<Value> documents;
        for (int id = 1; id <= 10; ++id)
            documents.push_back(Value{{"_id", id}});
        collection.insertMany(documents);
        upload("stored");
    }

    void upload(const std::string& name)
    {
        dbc::UploadOptions upload;
        upload.chunkSize = chunkSize;
        std::istringstream content(largeContent());
        store.upload(name, content, upload);
    }

    Collection collection;
    FileStore store;
    std::size_t documentsSeen = 0;
    std::ostringstream downloaded;
};

/// An operation whose reply the gateway holds while the server stops.
struct OperationRow
{
    const char* name;
    const char* command;
    std::size_t number;
    void (*run)(Subject&);
    /// Checks the error, and the stored data after the restart.
    void (*check)(Subject&, const dbc::ServerError&);
};

void PrintTo(const OperationRow& row, std::ostream* out)
{
    *out << row.name;
}

const OperationRow operations[] = {
    {"BulkWrite", "update", 1,
     [](Subject& s) {
         dbc::Bulk bulk;
         bulk.insertOne({{"_id", 11}}).updateMany({}, {{"$set", {{"a", 1}}}}).removeMany({});
         s.collection.bulkWrite(bulk);
     },
     [](Subject& s, const dbc::ServerError& error) {
         const auto& bulkError = dynamic_cast<const dbc::BulkError&>(error);
         EXPECT_EQ(bulkError.result().inserted, 1);
         EXPECT_EQ(bulkError.result().matched, 0);
         EXPECT_TRUE(bulkError.errors().empty());
         EXPECT_EQ(s.collection.count({}), 11);
     }},
    {"Cursor", "getMore", 1,
     [](Subject& s) {
         dbc::FindOptions find;
         find.batchSize = 4;
         for (const Value& document : s.collection.find({}, find))
             s.documentsSeen += document.size();
     },
     [](Subject& s, const dbc::ServerError&) {
         EXPECT_EQ(s.documentsSeen, 4U);
         EXPECT_EQ(s.collection.count({}), 10);
     }},
    {"FindOneAndUpdate", "findAndModify", 1,
     [](Subject& s) {
         s.collection.findOneAndUpdate({{"_id", 1}}, {{"$set", {{"a", 1}}}});
     },
     [](Subject& s, const dbc::ServerError&) {
         EXPECT_EQ(s.collection.findOneAndUpdate({{"_id", 1}}, {{"$set", {{"a", 2}}}}), (Value{{"_id", 1}, {"a", 1}}));
     }},
    {"CreateIndex", "createIndexes", 1, [](Subject& s) { s.collection.createIndex({{"a"}}); },
     [](Subject& s, const dbc::ServerError&) { EXPECT_EQ(s.collection.createIndex({{"a"}}), "a_1"); }},
    {"Upload", "insert", 2, [](Subject& s) { s.upload("f"); },
     [](Subject& s, const dbc::ServerError&) {
         EXPECT_EQ(s.store.list().size(), 1U);
         s.upload("f");
         s.store.download("f", s.downloaded);
         EXPECT_TRUE(s.downloaded.str() == largeContent());
     }},
    {"Download", "getMore", 1, [](Subject& s) { s.store.download("stored", s.downloaded); },
     [](Subject& s, const dbc::ServerError&) {
         EXPECT_TRUE(s.downloaded.str() == largeContent().substr(0, 4 * std::size_t{chunkSize}));
         std::ostringstream again;
         s.store.download("stored", again);
         EXPECT_TRUE(again.str() == largeContent());
     }},
};

class CollectionRestart : public testing::TestWithParam<OperationRow>
{
protected:
    void SetUp() override
    {
        if (!ServerProcess::available())
            GTEST_SKIP() << "the server given by MONGODB_URI cannot be stopped";
        test_support::TestServer::instance(); // initializes the driver before there are threads
        m_server = std::make_unique<ServerProcess>();
    }

    std::unique_ptr<ServerProcess> m_server;
};

TEST_P(CollectionRestart, IsANetworkErrorAndTheSameObjectsWorkAgain)
{
    const OperationRow& row = GetParam();
    WireGateway gateway(m_server->uri(), m_server->rewrite());
    DataBaseClient client;
    client.connect(test_support::withOptions(gateway.uri(), options));
    Subject subject(client);
    gateway.inject(Fault::holdReply().onCommand(row.command).number(row.number));
    std::optional<dbc::BulkError> bulkError;
    std::optional<dbc::ServerError> error;
    std::thread operation([&] {
        try
        {
            row.run(subject);
        }
        catch (const dbc::BulkError& thrown)
        {
            bulkError = thrown;
        }
        catch (const dbc::ServerError& thrown)
        {
            error = thrown;
        }
    });

    EXPECT_TRUE(gateway.waitForHeldReplies(1));
    m_server->stop();
    gateway.closeConnections();
    m_server->start();
    operation.join(); // after the restart, because a failed upload needs the server to remove its chunks

    ASSERT_TRUE(error || bulkError) << "nothing was thrown";
    const dbc::ServerError& thrown = bulkError ? *bulkError : *error;
    EXPECT_EQ(thrown.kind(), dbc::ErrorKind::Network) << thrown.what();
    EXPECT_TRUE(thrown.mayRetry());
    row.check(subject, thrown);
}

INSTANTIATE_TEST_SUITE_P(Operations, CollectionRestart, testing::ValuesIn(operations), RowName());

} // namespace
