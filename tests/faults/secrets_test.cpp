// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Passwords must not appear in messages, and passwords with reserved characters must work.

#include "database_client.h"
#include "dbc/connection_string.h"
#include "object_properties.h"
#include "test_server.h"

#include <gtest/gtest.h>

#include <list>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using dbc::percentEncoded;
using test_support::TestServer;

// A part of every password in this file, so that the tests also find a part of a password.
const std::string secret = "tell-nobody";

// Returns the text of the exception of a call, and everything that it writes to standard output and standard error.
template <typename Call>
std::string everythingSaid(Call call)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::string said;
    try
    {
        call();
    }
    catch (const std::exception& error)
    {
        said = error.what();
    }
    return said + testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
}

// Returns host and port of the gateway to the server with authentication.
std::string authHost()
{
    return "127.0.0.1:" + std::to_string(TestServer::instance().authGateway().port());
}

TEST(Secrets, DoNotAppearWhenAConnectionStringIsRefused)
{
    const std::vector<std::string> passwords{secret,       secret + ":x", secret + "@x", secret + "/x",  secret + "%x",
                                             secret + "?", secret + "#",  secret + " ",  secret + "\xff"};
    for (const auto& password : passwords)
    {
        DataBaseClient client;
        const auto said = everythingSaid([&] { client.connect("database", "host", 1, "user", password); });
        EXPECT_EQ(said.find(secret), std::string::npos) << said;
    }
    for (const std::string end : {"@", "@:1/", "@h:99999/", "@h/?maxPoolSize=x", "@h/?x", "@h/?authMechanism="})
    {
        DataBaseClient client;
        const auto said = everythingSaid([&] { client.connect("mongodb://user:" + secret + end); });
        EXPECT_EQ(said.find(secret), std::string::npos) << said;
    }
}

TEST(Secrets, DoNotAppearWhenAuthenticationIsRefused)
{
    DataBaseClient client;
    client.connect("mongodb://root:" + secret + "@" + authHost() + "/?authSource=admin");
    std::string said = everythingSaid([&] { client.write("secrets", "c", ObjectProperties()); });
    EXPECT_EQ(said.find("Error occurred while insert operation: "), 0U) << said;
    EXPECT_NE(said.find("Authentication failed"), std::string::npos) << said;
    EXPECT_EQ(said.find(secret), std::string::npos) << said;

    std::list<ObjectProperties*> results;
    said = everythingSaid([&] { client.read("secrets", "c", ObjectProperties(), results); });
    EXPECT_EQ(said.find("Find error.: "), 0U) << said;
    EXPECT_EQ(said.find(secret), std::string::npos) << said;
    EXPECT_TRUE(results.empty());
}

TEST(Secrets, DoNotAppearWhenAUserCommandIsRefused)
{
    DataBaseClient client;
    client.connect(TestServer::instance().uri()); // a server without users
    const ObjectProperties none;
    const auto adding = everythingSaid([&] { client.addUser("", "user", secret, none, none); });
    EXPECT_EQ(adding, "Database name is empty");
    DataBaseClient authClient;
    authClient.connect(TestServer::instance().authUri());
    const auto changing = everythingSaid([&] { authClient.changeUserPassword("secrets", "no such user", secret); });
    EXPECT_EQ(changing.find("Error occurred while changing password: "), 0U) << changing;
    EXPECT_EQ(changing.find(secret), std::string::npos) << changing;
}

TEST(ReservedCharacters, OfAPasswordReachTheServerWhenTheyAreEscaped)
{
    const std::string password = secret + ":/?#[]@!$&'()*+,;=% \"<>\\^`{|}";
    const std::string user = "user with : / @ and %";
    DataBaseClient root;
    root.connect(TestServer::instance().authUri());
    const ObjectProperties none;
    root.addUser("admin", user, password, none, none);

    DataBaseClient client;
    client.connect("mongodb://" + percentEncoded(user) + ":" + percentEncoded(password) + "@" + authHost() +
                   "/?authSource=admin");
    const auto said = everythingSaid([&] {
        std::list<ObjectProperties*> results;
        client.read("secrets", "c", none, results);
    });
    EXPECT_EQ(said.find("uthentication"), std::string::npos) << said;

    // The password differs at its start: libmongoc 1.30 reuses a login of this process if only later characters differ.
    DataBaseClient refused;
    refused.connect("mongodb://" + percentEncoded(user) + ":x" + percentEncoded(password) + "@" + authHost() +
                    "/?authSource=admin");
    const auto refusal = everythingSaid([&] { refused.write("secrets", "c", none); });
    EXPECT_NE(refusal.find("Authentication failed"), std::string::npos) << refusal;
    EXPECT_EQ(refusal.find(secret), std::string::npos) << refusal;
    root.removeUser("admin", user);
}

TEST(ReservedCharacters, OfADatabaseNameAreReadBackWhenTheyAreEscaped)
{
    DataBaseClient client;
    client.connect("mongodb://h:1/" + percentEncoded("a?b#c%"));
    std::string name;
    client.getDatabaseName(name);
    EXPECT_EQ(name, "a?b#c%");
    // Without escaping, these characters have a meaning in a connection string.
    EXPECT_THROW(client.connect("a?b", "h", 1, "", ""), std::runtime_error);
    EXPECT_THROW(client.connect("a%b", "h", 1, "", ""), std::runtime_error);
    client.connect("a?appname=b", "h", 1, "", "");
    client.getDatabaseName(name);
    EXPECT_EQ(name, "a");
}

} // namespace
