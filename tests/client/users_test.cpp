// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client.h"
#include "dbc/results.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <string>

namespace test_support {
namespace {

class UserAdministration : public testing::Test
{
public:
    UserAdministration() : m_scratch(TestServer::instance().directAuthUri())
    {
        m_client.connect(TestServer::instance().authUri());
    }

    DataBaseClient& client() { return m_client; }
    const std::string& database() const { return m_scratch.name(); }
    std::string userName(const std::string& name) { return m_scratch.userName(name); }
    bool exists(const std::string& user) const
    {
        return m_scratch.run(R"({"usersInfo": ")" + user + R"("})").find("\"user\"") != std::string::npos;
    }

    /// What an operation of somebody who logs in through the library comes to; empty when it works.
    std::string loginFailure(const std::string& user, const std::string& password)
    {
        DataBaseClient other;
        other.connect(database(), "127.0.0.1", TestServer::instance().authGateway().port(), user, password);
        dbc::Results results;
        return thrownText([&] { other.read(database(), "c", ObjectProperties(), results); });
    }

    static constexpr const char* refused = "runtime_error: Find error.: Authentication failed.(code: 11)";

private:
    ScratchDatabase m_scratch;
    DataBaseClient m_client;
};

TEST_F(UserAdministration, AddedUserLogsInThroughConnect)
{
    const std::string reader = userName("reader");
    client().addUser(database(), reader, "secret", ObjectProperties(), ObjectProperties());

    EXPECT_TRUE(exists(reader));
    // MongoDB lets the user in and then refuses the read itself. FerretDB does not limit users by roles.
    const std::string text = loginFailure(reader, "secret");
    EXPECT_NE(text, refused);
    EXPECT_EQ(text.empty(), TestServer::instance().isFerretDb()) << text;
    EXPECT_EQ(loginFailure(reader, "wrong"), refused);
    EXPECT_EQ(loginFailure("nobody", "secret"), refused);
}

TEST_F(UserAdministration, ChangedPasswordReplacesTheOldOne)
{
    const std::string reader = userName("reader");
    client().addUser(database(), reader, "old", ObjectProperties(), ObjectProperties());

    client().changeUserPassword(database(), reader, "new");

    EXPECT_EQ(loginFailure(reader, "old"), refused);
    EXPECT_NE(loginFailure(reader, "new"), refused);
}

TEST_F(UserAdministration, RemovedUserIsGone)
{
    const std::string reader = userName("reader");
    client().addUser(database(), reader, "secret", ObjectProperties(), ObjectProperties());

    client().removeUser(database(), reader);

    EXPECT_FALSE(exists(reader));
    EXPECT_EQ(loginFailure(reader, "secret"), refused);
}

TEST_F(UserAdministration, SecondUserOfANameIsRefusedWithTheServersTextAndCode)
{
    const std::string reader = userName("reader");
    client().addUser(database(), reader, "secret", ObjectProperties(), ObjectProperties());

    const std::string text =
        thrownText([&] { client().addUser(database(), reader, "secret", ObjectProperties(), ObjectProperties()); });

    EXPECT_EQ(text.rfind("runtime_error: Error occurred while adding user: ", 0), 0U) << text;
    EXPECT_EQ(text.substr(text.size() - 13), "(code: 51003)") << text;
    EXPECT_EQ(text.find("secret"), std::string::npos) << text;
}

TEST_F(UserAdministration, UserWithoutAPasswordIsSentToTheServer)
{
    const std::string reader = userName("reader");
    const std::string text =
        thrownText([&] { client().addUser(database(), reader, "", ObjectProperties(), ObjectProperties()); });

    EXPECT_EQ(text.rfind("runtime_error: Error occurred while adding user: ", 0), 0U) << text;
    EXPECT_EQ(text.substr(text.size() - 9), "(code: 2)") << text;
    EXPECT_FALSE(exists(reader));
}

TEST_F(UserAdministration, OperationsOnAnUnknownUserThrowTheirOwnMessages)
{
    const std::string update =
        thrownText([&] { client().updateUser(database(), "nobody", ObjectProperties(), ObjectProperties()); });
    const std::string password = thrownText([&] { client().changeUserPassword(database(), "nobody", "secret"); });
    const std::string remove = thrownText([&] { client().removeUser(database(), "nobody"); });

    EXPECT_EQ(update.rfind("runtime_error: Error occurred while updating user: ", 0), 0U) << update;
    EXPECT_EQ(password.rfind("runtime_error: Error occurred while changing password: ", 0), 0U) << password;
    EXPECT_EQ(password.substr(password.size() - 10), "(code: 11)") << password;
    EXPECT_EQ(password.find("secret"), std::string::npos) << password;
    EXPECT_EQ(remove.rfind("runtime_error: Error occurred while removing user: ", 0), 0U) << remove;
    EXPECT_EQ(remove.substr(remove.size() - 10), "(code: 11)") << remove;
}

} // namespace
} // namespace test_support
