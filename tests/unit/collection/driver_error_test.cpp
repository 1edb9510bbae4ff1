// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/driver_error.h"

#include "mongoc_handles.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using dbc::ErrorKind;

bson_error_t driverError(std::uint32_t domain, std::uint32_t code, const char* text)
{
    bson_error_t error{};
    bson_set_error(&error, domain, code, "%s", text);
    return error;
}

dbc::ServerError thrown(const char* message, const bson_error_t& error, const char* json = "{}")
{
    const BsonPointer reply(bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json), -1, nullptr));
    return test_support::thrownError<dbc::ServerError>([&] { dbc::throwServerError(message, error, reply.get()); });
}

TEST(ServerError, TextJoinsMessageDriverTextAndCode)
{
    EXPECT_STREQ(dbc::ServerError("X", {}).what(), "X");
    dbc::ErrorDetails details;
    details.code = 5;
    EXPECT_STREQ(dbc::ServerError("X", details).what(), "X(code: 5)");
    details.text = "d";
    details.code = -1;
    EXPECT_STREQ(dbc::ServerError("X", details).what(), "X: d(code: -1)");
    details.code = 0;
    EXPECT_STREQ(dbc::ServerError("X", details).what(), "X: d");
}

TEST(ServerError, CarriesWhatTheServerReplied)
{
    const dbc::ServerError error =
        thrown("Find failed", driverError(MONGOC_ERROR_QUERY, 10107, "not primary"),
               R"({"ok": 0, "errmsg": "not primary", "code": 10107, "codeName": "NotWritablePrimary",
                   "errorLabels": ["RetryableWriteError", "Other"]})");

    EXPECT_STREQ(error.what(), "Find failed: not primary(code: 10107)");
    EXPECT_EQ(error.code(), 10107);
    EXPECT_EQ(error.codeName(), "NotWritablePrimary");
    EXPECT_EQ(error.labels(), (std::vector<std::string>{"RetryableWriteError", "Other"}));
    EXPECT_TRUE(error.hasLabel("Other"));
    EXPECT_FALSE(error.hasLabel("Othe"));
    EXPECT_TRUE(error.mayRetry());
}

TEST(ServerError, IsARuntimeErrorThatDescribeReadsExactly)
{
    // By its text alone this would be a broken connection.
    const dbc::ServerError error =
        thrown("Find failed", driverError(MONGOC_ERROR_QUERY, 2, "no socket"), R"({"ok": 0, "errmsg": "no socket"})");

    const dbc::ErrorInfo info = dbc::describe(error);

    EXPECT_EQ(info.kind, ErrorKind::Other);
    EXPECT_EQ(info.code, 2);
    EXPECT_EQ(info.text, "Find failed: no socket");
    EXPECT_EQ(dbc::describe(dbc::ServerError("X", {})).code, std::nullopt);
}

TEST(ServerError, MayBeRetriedForTheCodesThatServersSpecify)
{
    std::vector<std::uint32_t> codes;
    for (std::uint32_t code = 0; code < 20000; ++code)
    {
        if (dbc::errorDetails(driverError(MONGOC_ERROR_SERVER, code, "x"), nullptr).mayRetry)
            codes.push_back(code);
    }
    EXPECT_EQ(codes,
              (std::vector<std::uint32_t>{6, 7, 89, 91, 112, 134, 189, 262, 9001, 10107, 11600, 11602, 13435, 13436}));
}

TEST(ServerError, TakesTheTextOfAWriteErrorWithoutCodeFromTheReply)
{
    const dbc::ServerError error =
        thrown("Update failed", driverError(0, 0, ""),
               R"({"writeErrors": [{"index": 0, "code": 0, "errmsg": "Unknown modifier"}]})");

    EXPECT_STREQ(error.what(), "Update failed: Unknown modifier");
    EXPECT_EQ(error.kind(), ErrorKind::Other);
    EXPECT_FALSE(error.mayRetry());
}

struct KindRow
{
    std::uint32_t domain;
    std::uint32_t code;
    const char* reply;
    ErrorKind kind;
    bool mayRetry;
};

void PrintTo(const KindRow& row, std::ostream* out)
{
    *out << "domain " << row.domain << " code " << row.code << ' ' << row.reply;
}

class ErrorKindOf : public testing::TestWithParam<KindRow>
{};

TEST_P(ErrorKindOf, FollowsFromDomainAndCodeWhateverTheText)
{
    const KindRow& row = GetParam();
    for (const char* const text : {"", "socket timeout", "Authentication failed", "too large"})
    {
        const dbc::ServerError error = thrown("X", driverError(row.domain, row.code, text), row.reply);
        EXPECT_EQ(error.kind(), row.kind) << text;
        EXPECT_EQ(error.mayRetry(), row.mayRetry) << text;
    }
}

constexpr const char* writeError = R"({"writeErrors": [{"index": 0, "code": 1, "errmsg": "x"}]})";
constexpr const char* refusal = R"({"ok": 0, "errmsg": "x", "code": 1})";

INSTANTIATE_TEST_SUITE_P(
    , ErrorKindOf,
    testing::Values(
        KindRow{MONGOC_ERROR_STREAM, MONGOC_ERROR_STREAM_SOCKET, "{}", ErrorKind::Network, true},
        KindRow{MONGOC_ERROR_SERVER_SELECTION, MONGOC_ERROR_SERVER_SELECTION_FAILURE, "{}", ErrorKind::Network, true},
        KindRow{MONGOC_ERROR_CLIENT, MONGOC_ERROR_CLIENT_AUTHENTICATE, "{}", ErrorKind::Authentication, false},
        // The driver 1.30 labels the failed login before a write.
        KindRow{MONGOC_ERROR_CLIENT, MONGOC_ERROR_CLIENT_AUTHENTICATE, R"({"errorLabels": ["RetryableWriteError"]})",
                ErrorKind::Authentication, false},
        KindRow{MONGOC_ERROR_CLIENT, MONGOC_ERROR_CLIENT_SESSION_FAILURE, "{}", ErrorKind::Other, false},
        KindRow{MONGOC_ERROR_SCRAM, MONGOC_ERROR_SCRAM_PROTOCOL_ERROR, "{}", ErrorKind::Authentication, false},
        KindRow{MONGOC_ERROR_COMMAND, MONGOC_ERROR_COMMAND_INVALID_ARG, "{}", ErrorKind::BadArgument, false},
        KindRow{MONGOC_ERROR_PROTOCOL, MONGOC_ERROR_PROTOCOL_INVALID_REPLY, "{}", ErrorKind::Other, false},
        KindRow{MONGOC_ERROR_CURSOR, MONGOC_ERROR_CURSOR_INVALID_CURSOR, "{}", ErrorKind::Other, false},
        // The driver's 11 is a failed login, the server's an unknown user.
        KindRow{MONGOC_ERROR_QUERY, 11, refusal, ErrorKind::NotFound, false},
        // The driver's 18 is a malformed document, the server's a failed login.
        KindRow{MONGOC_ERROR_QUERY, 18, refusal, ErrorKind::Authentication, false},
        KindRow{MONGOC_ERROR_BSON, 18, "{}", ErrorKind::BadArgument, false},
        KindRow{MONGOC_ERROR_QUERY, 13, refusal, ErrorKind::NotAuthorized, false},
        KindRow{MONGOC_ERROR_QUERY, 26, refusal, ErrorKind::NotFound, false},
        KindRow{MONGOC_ERROR_QUERY, 50, refusal, ErrorKind::Timeout, false},
        KindRow{MONGOC_ERROR_SERVER, 262, refusal, ErrorKind::Timeout, true},
        KindRow{MONGOC_ERROR_QUERY, 11600, refusal, ErrorKind::Other, true},
        KindRow{MONGOC_ERROR_QUERY, 112, refusal, ErrorKind::Other, true},
        KindRow{MONGOC_ERROR_QUERY, 11000, refusal, ErrorKind::DuplicateKey, false},
        KindRow{MONGOC_ERROR_COMMAND, 11000, writeError, ErrorKind::DuplicateKey, false},
        KindRow{MONGOC_ERROR_COMMAND, 22, writeError, ErrorKind::Other, false},
        KindRow{MONGOC_ERROR_COMMAND, 17419, writeError, ErrorKind::TooLarge, false},
        KindRow{MONGOC_ERROR_WRITE_CONCERN, 64, "{}", ErrorKind::Timeout, false},
        KindRow{MONGOC_ERROR_QUERY, 251, R"({"ok": 0, "errmsg": "x", "errorLabels": ["TransientTransactionError"]})",
                ErrorKind::Other, true}));

} // namespace
