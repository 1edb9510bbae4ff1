// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Every call of the driver and every allocation fails, one per run. The operation throws, no object of the driver
// leaks, and the same client works afterwards.

#include "allocation_failure.h"
#include "connected_client.h"
#include "counted_driver.h"
#include "database_client/database_client_d.h"
#include "dbc/file_store.h"
#include "pattern_text.h"
#include "row_name.h"
#include "scratch_folder.h"

#include <functional>
#include <istream>
#include <set>
#include <sstream>
#include <streambuf>

namespace test_support {
namespace {

// Does not allocate, because streams do not pass on std::bad_alloc.
class DiscardingBuffer : public std::streambuf
{
protected:
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

struct OperationRow
{
    const char* name;
    std::set<std::string> messages; ///< The expected texts of the exceptions.
    std::function<void(DataBaseClient&, const std::string& database, const std::string& source)> run;
};

void PrintTo(const OperationRow& row, std::ostream* out)
{
    *out << row.name;
}

const char* const openStore = "Error occurred while mongoc_client_get_gridfs operation: injected(code: 7)";
const char* const brokenList = "Error occurred while list gridFS files operation: injected(code: 7)";
const char* const malformedList =
    "Error occurred while list gridFS files operation: the record of a stored file is malformed";

const OperationRow operations[] = {
    {"Connect",
     {"Connection failed"},
     [](DataBaseClient& client, const std::string&, const std::string&) {
         client.connect(TestServer::instance().uri());
     }},
    {"Write",
     {"Error occurred while insert operation: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         std::string id;
         client.write(database, "written", ConnectedClient::number("a", 1), id);
     }},
    {"Update",
     {"Updating failed: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.update(database, "updated", ConnectedClient::number("a", 1), ConnectedClient::number("b", 1),
                       UpdateFlagUpsert, UpdateCommandSet);
     }},
    {"Replace",
     {"Error creating update document.", "Updating failed: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.update(database, "updated", ConnectedClient::number("a", 1), ConnectedClient::number("b", 1),
                       UpdateFlagUpsert, UpdateCommandReplace);
     }},
    {"Remove",
     {"Error occurred while remove operation: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.remove(database, "written", ConnectedClient::number("a", 1));
     }},
    {"Find",
     {"Find error.: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         dbc::Results results;
         client.find(database, "c", ObjectProperties(), ConnectedClient::number("a", 1), results, 2, 0);
     }},
    {"Aggregate",
     {"Aggregation error.: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         dbc::Results results;
         client.aggregate(database, "c",
                          ConnectedClient::pipeline([](ObjectProperties& stage) { stage.setValueInt32("$limit", 2); }),
                          results);
     }},
    {"AddUser",
     {"Error occurred while adding user: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.addUser(database, "u", "secret", ObjectProperties(), ConnectedClient::number("a", 1));
     }},
    {"AddUserWithoutPassword",
     {"Error occurred while adding user: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.addUser(database, "u", "", ObjectProperties(), ConnectedClient::number("a", 1));
     }},
    {"UpdateUser",
     {"Error occurred while updating user: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.updateUser(database, "u", ObjectProperties(), ConnectedClient::number("a", 1));
     }},
    {"ChangeUserPassword",
     {"Error occurred while changing password: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.changeUserPassword(database, "u", "secret");
     }},
    {"RemoveUser",
     {"Error occurred while removing user: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) { client.removeUser(database, "u"); }},
    {"ReadFile",
     {openStore, "Error occurred while mongoc_gridfs_find_one_by_filename operation: injected(code: 7)",
      "Error occurred while mongoc_stream_gridfs_new operation", "Error occurred while read gridFS file operation"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         DiscardingBuffer buffer;
         std::iostream stream(&buffer);
         client.readFile(database, "fs", "kept", &stream);
     }},
    {"WriteFile",
     {openStore, "Error occurred while mongoc_stream_file_new_for_path operation",
      "Error occurred while mongoc_gridfs_create_file_from_stream operation",
      "Error occurred while save gridFS file operation"},
     [](DataBaseClient& client, const std::string& database, const std::string& source) {
         client.writeFile(database, "written", "file", source);
     }},
    {"ListFiles",
     {openStore, brokenList, malformedList},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         std::list<std::string> names;
         client.listFiles(database, "fs", names);
     }},
    {"RemoveFile",
     {openStore, brokenList, malformedList, "Error occurred while remove gridFS file operation: injected(code: 7)"},
     [](DataBaseClient& client, const std::string& database, const std::string&) {
         client.removeFile(database, "fs", "gone");
     }},
};

class DriverFailure : public ConnectedClient, public testing::WithParamInterface<OperationRow>
{
public:
    DriverFailure()
    {
        for (const char* const name : {"createUser", "updateUser", "dropUser"})
            gateway().inject(Fault::answer(R"({"ok": 1})").onCommand(name).andLater());
        for (int index = 0; index < 3; ++index)
        {
            scratch().insert("c", R"({"_id": )" + std::to_string(index) +
                                      R"(, "a": "a text of some length, to be allocated"})");
        }
        client().writeFile(database(), "fs", "kept", m_folder.write("source", patternText(300'000))); // two chunks
        client().writeFile(database(), "fs", "Gone", m_folder.write("source", patternText(5000)));
    }
    ~DriverFailure() override { gateway().clearFaults(); }

    void run() { GetParam().run(client(), database(), m_folder.path("source")); }

private:
    ScratchFolder m_folder;
};

TEST_P(DriverFailure, OfAnyCallThrowsAndLeaksNothing)
{
    // The connections and the objects of the test itself. The number must be the same after each failure.
    const long before = counted_driver::liveObjects();
    const bool connects = std::string(GetParam().name) == "Connect";
    std::size_t number = 1;
    for (;; ++number)
    {
        bool happened = false;
        std::string text;
        {
            const counted_driver::FailingCall failure(number);
            text = thrownText([this] { run(); });
            happened = failure.happened();
        }
        ASSERT_EQ(counted_driver::liveObjects(), before - (connects && happened ? 1 : 0)) << "call " << number;
        if (!happened)
        {
            EXPECT_EQ(text, "");
            break;
        }
        const std::string prefix = "runtime_error: ";
        ASSERT_EQ(text.rfind(prefix, 0), 0U) << "call " << number << ": " << text;
        EXPECT_EQ(GetParam().messages.count(text.substr(prefix.size())), 1U) << "call " << number << ": " << text;
        EXPECT_EQ(client().isConnected(), !connects);
    }
    EXPECT_GT(number, 1U) << "no call failed";
}

TEST_P(DriverFailure, ToAllocateThrowsAndLeaksNothing)
{
    const long before = counted_driver::liveObjects();

    failEveryAllocation([] { return 0; }, [this](int) { run(); },
                        [before](int) { ASSERT_LE(counted_driver::liveObjects(), before); });

    EXPECT_EQ(counted_driver::liveObjects(), before);
}

INSTANTIATE_TEST_SUITE_P(Operations, DriverFailure, testing::ValuesIn(operations), RowName());

class BrokenResult : public ConnectedClient
{
public:
    BrokenResult()
    {
        for (int index = 0; index < 3; ++index)
            scratch().insert("c", R"({"_id": )" + std::to_string(index) + "}");
    }

    // The second result is invalid: the first one stays in the list, and the third one is not fetched.
    template <typename Call>
    void expectOneResult(Call call)
    {
        const long before = counted_driver::liveObjects();
        dbc::Results results;
        {
            const counted_driver::BrokenResult broken(2);
            EXPECT_EQ(thrownText([&] { call(results); }), "invalid_argument: Bad results");
        }
        ASSERT_EQ(results.size(), 1U);
        EXPECT_EQ(results.front().valueAsInt32("_id", -1), 0);
        EXPECT_EQ(counted_driver::liveObjects(), before);

        EXPECT_EQ(thrownText([&] { call(results); }), "");
        EXPECT_EQ(results.size(), 4U);
    }
};

TEST_F(BrokenResult, FromAFindThrowsBadResultsAndKeepsTheResultsBeforeIt)
{
    expectOneResult([this](std::list<ObjectProperties*>& results) {
        client().find(database(), "c", ObjectProperties(), ObjectProperties(), results, 0, 0);
    });
}

TEST_F(BrokenResult, FromAnAggregationThrowsBadResultsAndKeepsTheResultsBeforeIt)
{
    expectOneResult([this](std::list<ObjectProperties*>& results) {
        client().aggregate(database(), "c", pipeline([](ObjectProperties& stage) { stage.setValueInt32("$skip", 0); }),
                           results);
    });
}

using ImplementationOfAClient = ConnectedClient;

TEST_F(ImplementationOfAClient, ReadsAllThatMatchesTheQuery)
{
    for (const char* const document : {R"({"_id": 1, "a": 1})", R"({"_id": 2, "a": 2})", R"({"_id": 3, "a": 1})"})
        scratch().insert("c", document);
    DataBaseClientPrivate implementation;
    implementation.connect(TestServer::instance().uri());

    dbc::Results some;
    implementation.read(database(), "c", number("a", 1), some);
    ASSERT_EQ(some.size(), 2U);
    EXPECT_EQ(some.front().valueAsInt32("_id", 0), 1);

    dbc::Results all;
    implementation.read(database(), "c", ObjectProperties(), all);
    EXPECT_EQ(all.size(), 3U);
}

using StoreOfFiles = ConnectedClient;

TEST_F(StoreOfFiles, UploadsChunksWhoseIdsDescend)
{
    const counted_driver::DescendingIds descending;
    dbc::FileStore store(client(), database());
    dbc::UploadOptions options;
    options.chunkSize = 10;
    std::istringstream source("a file of three chunks");

    EXPECT_EQ(thrownText([&] { store.upload("f", source, options); }), "");

    std::ostringstream target;
    store.download("f", target);
    EXPECT_EQ(target.str(), "a file of three chunks");
}

TEST(DriverObjects, AreDestroyedWithTheClient)
{
    const long before = counted_driver::liveObjects();
    {
        DataBaseClient client;
        client.connect(TestServer::instance().uri());
        EXPECT_EQ(counted_driver::liveObjects(), before + 1);
        client.connect(TestServer::instance().uri());
        EXPECT_EQ(counted_driver::liveObjects(), before + 1);
    }
    EXPECT_EQ(counted_driver::liveObjects(), before);
}

} // namespace
} // namespace test_support
