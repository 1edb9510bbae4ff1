// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/connection_string.h"

#include "database_client.h"
#include "mongoc_handles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

using dbc::ConnectionString;
using dbc::percentEncoded;

TEST(PercentEncoding, LeavesOnlyUnreservedCharacters)
{
    EXPECT_EQ(percentEncoded("aZ09-._~"), "aZ09-._~");
    EXPECT_EQ(percentEncoded("p@ss:w/rd%?#[]"), "p%40ss%3Aw%2Frd%25%3F%23%5B%5D");
    EXPECT_EQ(percentEncoded("\xC3\xA9 "), "%C3%A9%20");
    EXPECT_EQ(percentEncoded(std::string("\0", 1)), "%00");
}

TEST(ConnectionString, NamesTheLocalServerByDefault)
{
    EXPECT_EQ(ConnectionString().text(), "mongodb://localhost/");
}

TEST(ConnectionString, HoldsItsPartsInOrder)
{
    EXPECT_EQ(
        ConnectionString()
            .host("a", 1)
            .host("b")
            .user("u@x", "p/w")
            .database("d b")
            .authSource("admin")
            .replicaSet("rs 0")
            .tls()
            .tlsCaFile("/etc/ca.pem")
            .appName("me")
            .connectTimeout(std::chrono::seconds(2))
            .socketTimeout(std::chrono::milliseconds(300))
            .serverSelectionTimeout(std::chrono::minutes(1))
            .text(),
        "mongodb://u%40x:p%2Fw@a:1,b:27017/d%20b?authSource=admin&replicaSet=rs%200&tls=true&tlsCAFile=%2Fetc%2Fca."
        "pem&appName=me&connectTimeoutMS=2000&socketTimeoutMS=300&serverSelectionTimeoutMS=60000");
}

TEST(ConnectionString, PutsAnAddressWithColonsIntoBrackets)
{
    EXPECT_EQ(ConnectionString().host("::1", 5).text(), "mongodb://[::1]:5/");
    EXPECT_EQ(ConnectionString().host("[::1]", 5).text(), "mongodb://[::1]:5/");
}

// The driver, not a second reading of ours, says what the parts were.
TEST(ConnectionString, IsParsedByTheDriverIntoTheSameParts)
{
    const std::string user = "u:@/?#[]%é";
    const std::string password = "p:@/?#[]% é";
    const std::string text = ConnectionString().host("h", 7).user(user, password).database("d").text();
    bson_error_t error{};
    const UriHandle uri(mongoc_uri_new_with_error(text.c_str(), &error));
    ASSERT_TRUE(uri) << error.message;
    EXPECT_EQ(mongoc_uri_get_username(uri.get()), user);
    EXPECT_EQ(mongoc_uri_get_password(uri.get()), password);
    EXPECT_STREQ(mongoc_uri_get_database(uri.get()), "d");
    EXPECT_STREQ(mongoc_uri_get_hosts(uri.get())->host_and_port, "h:7");

    const UriHandle trap(mongoc_uri_new(DataBaseClient::uri("h", 7, user, password, "d").c_str()));
    EXPECT_FALSE(trap) << "the trap: uri() escapes nothing";
}

} // namespace
