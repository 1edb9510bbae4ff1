// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The client if memory runs out. Calls of malloc by the driver do not fail here, because the driver then ends the
// process.

#include "allocation_failure.h"
#include "database_client.h"
#include "dbc/results.h"
#include "factories.h"
#include "object_properties.h"
#include "row_name.h"
#include "scratch_folder.h"
#include "shared_client.h"
#include "thrown_text.h"

#include <iostream>
#include <list>
#include <memory>
#include <string>

namespace {

using test_support::FixedBuffer;
using test_support::ScratchDatabase;
using test_support::sharedClient;
using test_support::sharedScratch;
using test_support::TestServer;
using test_support::thrownText;

const std::string longText = "a text that is too long for the small buffer of a string";

DataBaseClient& connectedUserClient()
{
    static DataBaseClient client;
    if (!client.isConnected())
        client.connect(TestServer::instance().authUri());
    return client;
}

const std::string& inputFile()
{
    static const test_support::ScratchFolder folder;
    static const std::string path = folder.write("input", std::string(5000, 'x'));
    return path;
}

const std::string& database()
{
    static const std::string name = sharedScratch().name();
    return name;
}

const std::string collection = "a collection whose name is long enough";

// The users of this test. Created before allocations are counted.
struct Users
{
    ScratchDatabase scratch{TestServer::instance().directAuthUri()};
    std::string database = scratch.name();
    std::string changed = scratch.userName("a user with a long name");
    std::string removed = scratch.userName("a user who will be removed");
    std::string added = scratch.userName("a new user with a long name");
    std::string unknown = scratch.userName("another user with a long name");
};

const Users& users()
{
    static const Users made;
    return made;
}

struct Setting
{
    Setting() : stream(&buffer)
    {
        document.setValueString("text", longText);
        document.setValueInt32("group/number", 1);
        query.setValueInt32("group/number", 1);
        change.setValueString("text", longText + longText);
    }
    void use()
    {
        EXPECT_TRUE(client.isConnected());
        ObjectProperties nothing;
        nothing.setValueString("text", "none has this");
        EXPECT_NO_THROW(client.read(database(), collection, nothing, results));
    }

    DataBaseClient& client = sharedClient();
    DataBaseClient& userClient = connectedUserClient();
    const ObjectProperties none;
    ObjectProperties document;
    ObjectProperties query;
    ObjectProperties change;
    dbc::Results results;
    std::list<std::string> names;
    FixedBuffer buffer;
    std::iostream stream;
};

class ClientOperationWithoutMemory : public testing::TestWithParam<test_support::AllocatingOperation<Setting>>
{
protected:
    static void SetUpTestSuite()
    {
        // Allocates everything that is allocated only once, before blocks are counted.
        Setting setting;
        for (int i = 0; i < 3; ++i)
            setting.client.write(database(), collection, setting.document);
        setting.client.writeFile(database(), "files", "stored", inputFile());
        for (const std::string& user : {users().changed, users().removed})
            setting.userClient.addUser(users().database, user, "password", setting.none, setting.none);
        thrownText([&] { setting.userClient.removeUser(users().database, users().unknown); });
        setting.use();
    }
};

TEST_P(ClientOperationWithoutMemory, ThrowsAndLeavesItsObjectUsable)
{
    test_support::expectUsableAfterEveryFailure<Setting>(GetParam().operate);
}

const test_support::AllocatingOperation<Setting> operations[] = {
    {"construction", [](Setting&) { const DataBaseClient made; }},
    {"factory", [](Setting&) { const std::unique_ptr<DataBaseClient> made(createDataBaseClient()); }},
    {"uri", [](Setting&) { DataBaseClient::uri(longText, 1, longText, longText, longText); }},
    {"connect",
     [](Setting&) {
         DataBaseClient made;
         made.connect("a-database-with-a-long-name", "127.0.0.1", 1, "user", "password");
     }},
    {"connectThatFails",
     [](Setting&) {
         DataBaseClient made;
         thrownText([&made] { made.connect("no connection string"); });
     }},
    {"connectToAHost",
     [](Setting&) {
         DataBaseClient made;
         made.connect("127.0.0.1", 1);
     }},
    {"getDatabaseName",
     [](Setting& s) {
         std::string name;
         s.client.getDatabaseName(name);
     }},
    {"createId", [](Setting& s) { s.client.createId(); }},
    {"parseOldCollectionName",
     [](Setting&) {
         std::string before;
         std::string after;
         parseOldCollectionName(longText + "." + longText, before, after);
     }},
    {"write", [](Setting& s) { s.client.write(database(), collection, s.document); }},
    {"writeWithId",
     [](Setting& s) {
         std::string id;
         s.client.write(database(), collection, s.document, id);
     }},
    {"writeWithFullName", [](Setting& s) { s.client.write(database() + "." + collection, s.document); }},
    {"update",
     [](Setting& s) { s.client.update(database(), collection, s.query, s.change, UpdateFlagNone, UpdateCommandSet); }},
    {"replace",
     [](Setting& s) {
         s.client.update(database(), collection, s.query, s.document, UpdateFlagNone, UpdateCommandReplace);
     }},
    {"find", [](Setting& s) { s.client.find(database(), collection, s.query, s.change, s.results, 2, 1); }},
    {"read", [](Setting& s) { s.client.find(database(), collection, s.query, ObjectProperties(), s.results, 3, 0); }},
    {"readWithFullName",
     [](Setting& s) {
         ObjectProperties noMatch;
         noMatch.setValueInt32("none", 1);
         s.client.read(database() + "." + collection, noMatch, s.results);
     }},
    {"aggregate",
     [](Setting& s) {
         ObjectProperties pipeline;
         pipeline.setValueInt32("0/$limit", 2);
         s.client.aggregate(database(), collection, pipeline, s.results);
     }},
    {"findThatFails",
     [](Setting& s) {
         ObjectProperties bad;
         bad.setValueString("$a name that is no operator", longText);
         thrownText([&] { s.client.read(database(), collection, bad, s.results); });
     }},
    {"remove",
     [](Setting& s) {
         ObjectProperties noMatch;
         noMatch.setValueInt32("none", 1);
         s.client.remove(database(), collection, noMatch);
     }},
    {"removeWithFullName",
     [](Setting& s) {
         ObjectProperties noMatch;
         noMatch.setValueInt32("none", 1);
         s.client.remove(database() + "." + collection, noMatch);
     }},
    {"writeFile", [](Setting& s) { s.client.writeFile(database(), "files", "again", inputFile()); }},
    {"readFile", [](Setting& s) { s.client.readFile(database(), "files", "stored", &s.stream); }},
    {"listFiles", [](Setting& s) { s.client.listFiles(database(), "files", s.names); }},
    {"removeFile", [](Setting& s) { s.client.removeFile(database(), "files", "again"); }},
    {"readFileThatFails",
     [](Setting& s) { thrownText([&s] { s.client.readFile(database(), "files", "missing", &s.stream); }); }},
    {"addUser", [](Setting& s) { s.userClient.addUser(users().database, users().added, longText, s.none, s.none); }},
    {"addUserThatFails",
     [](Setting& s) {
         thrownText([&s] { s.userClient.addUser(users().database, users().unknown, "", s.none, s.none); });
     }},
    // Fails with FerretDB, which rejects an update without a change.
    {"updateUser",
     [](Setting& s) {
         thrownText([&s] { s.userClient.updateUser(users().database, users().changed, s.none, s.none); });
     }},
    {"changeUserPassword",
     [](Setting& s) { s.userClient.changeUserPassword(users().database, users().changed, longText); }},
    {"removeUser", [](Setting& s) { s.userClient.removeUser(users().database, users().removed); }},
};

INSTANTIATE_TEST_SUITE_P(Client, ClientOperationWithoutMemory, testing::ValuesIn(operations), RowName());

} // namespace
