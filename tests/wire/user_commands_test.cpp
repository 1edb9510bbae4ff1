// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <string>

namespace test_support {
namespace {

// The gateway replies to the commands, so no users are created and the tests do not depend on the server.
class UserCommand : public testing::Test
{
public:
    UserCommand()
    {
        m_client.connect(TestServer::instance().uri());
        for (const char* const name : {"createUser", "updateUser", "dropUser"})
            gateway().inject(Fault::answer(R"({"ok": 1})").onCommand(name).andLater());
        gateway().clear();
    }
    ~UserCommand() override { gateway().clearFaults(); }

    DataBaseClient& client() { return m_client; }
    WireGateway& gateway() { return TestServer::instance().gateway(); }

    static ObjectProperties roles()
    {
        ObjectProperties document;
        document.setValueString("0", "read");
        document.beginGroup("1");
        document.setValueString("role", "dbAdmin");
        document.setValueString("db", "other");
        document.endGroup();
        return document;
    }

    static ObjectProperties customData()
    {
        ObjectProperties document;
        document.setValueString("team", "ops");
        return document;
    }

    std::string sent()
    {
        const std::vector<RecordedCommand> commands = gateway().commands();
        return commands.size() == 1 ? commands[0].database + ": " + commands[0].json()
                                    : std::to_string(commands.size()) + " commands";
    }

private:
    DataBaseClient m_client;
};

TEST_F(UserCommand, ThatAddsAUserCarriesPasswordCustomDataAndRolesInThisOrder)
{
    client().addUser("d", "u", "secret", roles(), customData());

    EXPECT_EQ(sent(), R"(d: { "createUser" : "u", "pwd" : "secret", "customData" : { "team" : "ops" }, )"
                      R"("roles" : [ "read", { "db" : "other", "role" : "dbAdmin" } ] })");
}

TEST_F(UserCommand, ThatAddsAUserWithoutAPasswordCarriesTheRestInTheSameOrder)
{
    client().addUser("d", "u", "", roles(), customData());

    EXPECT_EQ(sent(), R"(d: { "createUser" : "u", "customData" : { "team" : "ops" }, )"
                      R"("roles" : [ "read", { "db" : "other", "role" : "dbAdmin" } ] })");
}

TEST_F(UserCommand, ThatAddsAUserCarriesEmptyRolesAndCustomDataToo)
{
    client().addUser("d", "u", "p", ObjectProperties(), ObjectProperties());

    EXPECT_EQ(sent(), R"(d: { "createUser" : "u", "pwd" : "p", "customData" : {  }, "roles" : [  ] })");
}

TEST_F(UserCommand, ThatUpdatesAUserCarriesCustomDataBeforeRolesAndNoPassword)
{
    client().updateUser("d", "u", roles(), customData());

    EXPECT_EQ(sent(), R"(d: { "updateUser" : "u", "customData" : { "team" : "ops" }, )"
                      R"("roles" : [ "read", { "db" : "other", "role" : "dbAdmin" } ] })");
}

TEST_F(UserCommand, ThatUpdatesAUserCarriesEmptyRolesAndCustomDataToo)
{
    client().updateUser("d", "u", ObjectProperties(), ObjectProperties());

    EXPECT_EQ(sent(), R"(d: { "updateUser" : "u", "customData" : {  }, "roles" : [  ] })");
}

TEST_F(UserCommand, ThatChangesAPasswordCarriesNothingElse)
{
    client().changeUserPassword("d", "u", "secret");

    EXPECT_EQ(sent(), R"(d: { "updateUser" : "u", "pwd" : "secret" })");
}

TEST_F(UserCommand, ThatRemovesAUserNamesIt)
{
    client().removeUser("d", "u");

    EXPECT_EQ(sent(), R"(d: { "dropUser" : "u" })");
}

} // namespace
} // namespace test_support
