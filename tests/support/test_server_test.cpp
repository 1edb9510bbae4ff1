// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace test_support {
namespace {

TEST(ScratchDatabase, ReturnsWhatWasInserted)
{
    ScratchDatabase database;

    database.insert("things", R"({"_id": 2, "name": "b"})");
    database.insert("things", R"({"_id": 1, "name": "a"})");

    EXPECT_EQ(database.documents("things"),
              (std::vector<std::string>{R"({ "_id" : 1, "name" : "a" })", R"({ "_id" : 2, "name" : "b" })"}));
    EXPECT_EQ(database.documents("things", R"({"name": "b"})"),
              (std::vector<std::string>{R"({ "_id" : 2, "name" : "b" })"}));
    EXPECT_EQ(database.count("things"), 2U);
    EXPECT_EQ(database.documentBytes("things").size(), 2U);
    EXPECT_EQ(database.collections(), std::vector<std::string>{"things"});
}

TEST(ScratchDatabase, IsDroppedAtTheEndOfItsBlock)
{
    std::string name;
    {
        ScratchDatabase database;
        name = database.name();
        database.insert("things", R"({"_id": 1})");
    }
    const ScratchDatabase other;
    EXPECT_NE(other.name(), name);
    EXPECT_EQ(other.run(R"({"listCollections": 1})").find("things"), std::string::npos);

    const DatabaseHandle gone(mongoc_client_get_database(other.client(), name.c_str()));
    EXPECT_FALSE(mongoc_database_has_collection(gone.get(), "things", nullptr));
}

TEST(ScratchDatabase, OnTheServerWithAuthenticationKnowsUsersAndDropsThem)
{
    const std::string& uri = TestServer::instance().directAuthUri();
    std::string name;
    {
        ScratchDatabase database(uri);
        name = database.name();
        database.run(R"({"createUser": ")" + database.userName("reader") + R"(", "pwd": "secret", "roles": []})");
        EXPECT_NE(database.run(R"({"usersInfo": 1})").find("reader"), std::string::npos);
    }
    const ScratchDatabase other(uri);
    EXPECT_EQ(other.run(R"({"usersInfo": {"forAllDBs": true}})").find(name), std::string::npos);
}

TEST(ScratchDatabase, ThrowsTheErrorOfTheServer)
{
    ScratchDatabase database;
    database.insert("things", R"({"_id": 1})");

    EXPECT_THROW(database.insert("things", R"({"_id": 1})"), std::runtime_error);
    EXPECT_THROW(database.run(R"({"noSuchCommand": 1})"), std::runtime_error);
    EXPECT_THROW(database.documents("things", R"({"a": {"$noSuchOperator": 1}})"), std::runtime_error);
    EXPECT_THROW(database.insert("things", "{"), std::runtime_error);
}

TEST(TestServerAuthentication, IsRequiredOnOneServerAndNotOnTheOther)
{
    TestServer& server = TestServer::instance();
    if (server.directUri() == server.directAuthUri())
        GTEST_SKIP() << "MONGODB_URI names one server for both";
    const std::string& root = server.directAuthUri();
    const std::string nobody = "mongodb://" + root.substr(root.rfind('@') + 1);
    mongoc_init();
    const ClientHandle client(mongoc_client_new(nobody.c_str()));
    OwnedBson command;
    BSON_APPEND_INT32(command.get(), "listDatabases", 1);

    EXPECT_FALSE(mongoc_client_command_simple(client.get(), "admin", command.get(), nullptr, nullptr, nullptr));
    EXPECT_NO_THROW(ScratchDatabase().insert("things", R"({"_id": 1})"));
}

TEST(ServerProcess, KeepsItsDataAndItsPortWhenItIsStartedAgain)
{
    if (!ServerProcess::available())
        GTEST_SKIP() << "a server given by MONGODB_URI is not ended";
    ServerProcess process;
    const std::string uri = process.uri();
    const ScratchDatabase before(uri);
    before.run(R"({"insert": "things", "documents": [{"_id": 5}]})");

    process.stop();
    EXPECT_THROW(connectTo("127.0.0.1", std::to_string(process.port())), std::runtime_error);
    process.start();

    EXPECT_EQ(process.uri(), uri);
    const ScratchDatabase after(uri);
    const CollectionHandle things(mongoc_client_get_collection(after.client(), before.name().c_str(), "things"));
    const CursorHandle cursor(mongoc_collection_find_with_opts(things.get(), OwnedBson().get(), nullptr, nullptr));
    const bson_t* document = nullptr;
    EXPECT_TRUE(mongoc_cursor_next(cursor.get(), &document));
}

} // namespace
} // namespace test_support
