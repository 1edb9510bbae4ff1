// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "command_text.h"
#include "dbc/database.h"

#include <algorithm>

namespace test_support {
namespace {

using dbc::Database;
using dbc::Value;

class DatabaseCommand : public ConnectedClient
{
public:
    DatabaseCommand() : m_database(client(), database()) { gateway().clear(); }
    ~DatabaseCommand() override { gateway().clearFaults(); }

    Database& target() { return m_database; }

private:
    Database m_database;
};

TEST_F(DatabaseCommand, ListsDatabasesAndCollections)
{
    target().collection("b").insertOne({{"_id", 1}});
    target().createCollection("a");

    std::vector<std::string> names = target().collectionNames();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
    names = Database::names(client());
    EXPECT_NE(std::find(names.begin(), names.end(), database()), names.end());

    target().drop();
    EXPECT_TRUE(target().collectionNames().empty());
    EXPECT_EQ(thrownText([&] { target().drop(); }), "");
}

TEST_F(DatabaseCommand, OfACollectionWithRulesCarriesThem)
{
    dbc::CreateCollectionOptions options;
    options.validator = {{"a", {{"$exists", true}}}};
    options.validationLevel = dbc::ValidationLevel::Moderate;
    options.warnOnly = true;
    options.cappedBytes = 4096;
    options.cappedDocuments = 10;
    options.collation = {{"locale", "de"}};
    reply("create", R"({"ok": 1})");

    target().createCollection("c", options);

    EXPECT_PRED2(
        isSameCommand, sent("create"),
        R"({ "create" : "c", "collation" : { "locale" : "de" }, "validator" : { "a" : { "$exists" : true } }, )"
        R"("validationLevel" : "moderate", "validationAction" : "warn", "capped" : true, "size" : 4096, "max" : 10 })");
}

TEST_F(DatabaseCommand, OfACollectionWithoutRulesIsTheNameAlone)
{
    dbc::CreateCollectionOptions options;
    options.validationLevel = dbc::ValidationLevel::Moderate;
    options.warnOnly = true;
    reply("create", R"({"ok": 1})");
    target().createCollection("c", options); // without a validator, its level and its action have no meaning
    EXPECT_PRED2(isSameCommand, sent("create"), R"({ "create" : "c" })");

    gateway().clear();
    options = {};
    options.validator = {{"a", 1}};
    reply("create", R"({"ok": 1})");
    target().createCollection("c", options);
    EXPECT_PRED2(isSameCommand, sent("create"), R"({ "create" : "c", "validator" : { "a" : 1 } })");
}

TEST_F(DatabaseCommand, RunsAnyCommandAndReturnsTheReply)
{
    reply("ping", R"({"ok": 1, "b": 2, "a": "x"})");

    EXPECT_EQ(target().command({{"ping", 1}, {"z", 1}, {"a", 2}}).toJson(), R"({ "ok" : 1, "b" : 2, "a" : "x" })");

    EXPECT_EQ(sent("ping"), R"({ "ping" : 1, "z" : 1, "a" : 2 })");
    EXPECT_EQ(gateway().commands("ping").at(0).database, database());
    EXPECT_EQ(thrownText([&] { target().command({}); }), "invalid_argument: Bad command");
    EXPECT_EQ(thrownText([&] { target().command(Value(1)); }), "invalid_argument: Bad command");
}

TEST_F(DatabaseCommand, RefusedByTheServerIsAnErrorWithItsCode)
{
    const auto error = thrownError<dbc::ServerError>([&] { target().command({{"noSuchCommand", 1}}); });

    EXPECT_EQ(error.code(), 59) << error.what();
    EXPECT_EQ(error.codeName(), "CommandNotFound");
    EXPECT_EQ(std::string(error.what()).substr(0, 16), "Command failed: ");
}

TEST_F(DatabaseCommand, OfUsersCarriesNameRolesAndPassword)
{
    for (const char* const command : {"createUser", "dropUser"})
        reply(command, R"({"ok": 1})");
    gateway().inject(Fault::answer(R"({"ok": 1})").onCommand("updateUser").andLater());

    target().addUser("ada", "secret", {{"readWrite"}, {"read", "other"}});
    EXPECT_EQ(sent("createUser"),
              R"({ "createUser" : "ada", "pwd" : "secret", "roles" : [ { "role" : "readWrite", "db" : ")" + database() +
                  R"(" }, { "role" : "read", "db" : "other" } ] })");
    target().setRoles("ada", {});
    EXPECT_EQ(sent("updateUser"), R"({ "updateUser" : "ada", "roles" : [  ] })");
    gateway().clear();
    target().setPassword("ada", "new");
    EXPECT_EQ(sent("updateUser"), R"({ "updateUser" : "ada", "pwd" : "new" })");
    target().removeUser("ada");
    EXPECT_EQ(sent("dropUser"), R"({ "dropUser" : "ada" })");

    reply("usersInfo", R"({"ok": 1, "users": [{"_id": "d.ada", "user": "ada", "db": "d",
                                               "roles": [{"role": "read", "db": "other"}]}]})");
    const std::vector<dbc::UserInfo> users = target().users();
    EXPECT_EQ(sent("usersInfo"), R"({ "usersInfo" : 1 })");
    ASSERT_EQ(users.size(), 1U);
    EXPECT_EQ(users[0].name, "ada");
    EXPECT_EQ(users[0].database, "d");
    ASSERT_EQ(users[0].roles.size(), 1U);
    EXPECT_EQ(users[0].roles[0].name, "read");
    EXPECT_EQ(users[0].roles[0].database, "other");
}

TEST_F(DatabaseCommand, OfUsersIsRefusedForAnEmptyName)
{
    EXPECT_EQ(thrownText([&] { target().addUser("", "p", {}); }), "invalid_argument: User name is empty");
    EXPECT_EQ(thrownText([&] { target().addUser("u", "", {}); }), "invalid_argument: Password is empty");
    EXPECT_EQ(thrownText([&] { target().setRoles("", {}); }), "invalid_argument: User name is empty");
    EXPECT_EQ(thrownText([&] { target().setPassword("u", ""); }), "invalid_argument: Password is empty");
    EXPECT_EQ(thrownText([&] { target().removeUser(""); }), "invalid_argument: User name is empty");
    EXPECT_EQ(thrownText([&] { target().createCollection(""); }), "invalid_argument: Collection name is empty");
    EXPECT_EQ(thrownText([&] { Database(client(), "").drop(); }), "invalid_argument: Database name is empty");
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST_F(DatabaseCommand, IsRefusedForANameWithAZeroByte)
{
    const std::string zero("a\0b", 3);
    const auto refusal = [](const char* what) {
        return std::string("invalid_argument: ") + what + " contains a zero byte";
    };
    EXPECT_EQ(thrownText([&] { Database(client(), zero).drop(); }), refusal("Database name"));
    EXPECT_EQ(thrownText([&] { target().createCollection(zero); }), refusal("Collection name"));
    EXPECT_EQ(thrownText([&] { target().addUser(zero, "p", {}); }), refusal("User name"));
    EXPECT_EQ(thrownText([&] { target().addUser("u", zero, {}); }), refusal("Password"));
    EXPECT_EQ(thrownText([&] { target().addUser("u", "p", {{zero}}); }), refusal("Role name"));
    EXPECT_EQ(thrownText([&] { target().addUser("u", "p", {{"read", zero}}); }), refusal("Database name"));
    EXPECT_EQ(thrownText([&] { target().setRoles(zero, {}); }), refusal("User name"));
    EXPECT_EQ(thrownText([&] { target().setPassword("u", zero); }), refusal("Password"));
    EXPECT_EQ(thrownText([&] { target().removeUser(zero); }), refusal("User name"));
    EXPECT_EQ(gateway().names(), std::vector<std::string>{});
}

TEST(DatabaseUsers, AreCreatedListedAndRemovedOnAServerWithAuthentication)
{
    const ScratchDatabase scratch(TestServer::instance().directAuthUri());
    DataBaseClient client;
    client.connect(TestServer::instance().authUri());
    Database database(client, scratch.name());

    database.addUser("ada", "secret", {{"read"}});
    EXPECT_THROW(database.addUser("ada", "secret", {}), dbc::ServerError);
    ASSERT_EQ(database.users().size(), 1U);
    EXPECT_EQ(database.users()[0].name, "ada");
    database.setPassword("ada", "new");
    database.removeUser("ada");
    EXPECT_TRUE(database.users().empty());
    const auto error = thrownError<dbc::ServerError>([&] { database.removeUser("ada"); });
    EXPECT_EQ(error.kind(), dbc::ErrorKind::NotFound) << error.what();
}

} // namespace
} // namespace test_support
