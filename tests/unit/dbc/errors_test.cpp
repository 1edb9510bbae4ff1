// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/errors.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <stdexcept>
#include <string>

namespace {

using dbc::describe;
using dbc::ErrorKind;

struct Row
{
    const char* name;
    const char* text;
    ErrorKind kind;
    std::optional<int> code;
};

class RuntimeErrors : public testing::TestWithParam<Row>
{};

TEST_P(RuntimeErrors, HaveTheKindAndCodeOfTheirText)
{
    const auto info = describe(std::runtime_error(GetParam().text));
    EXPECT_EQ(info.kind, GetParam().kind) << nameOf(info.kind);
    EXPECT_EQ(info.code, GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RuntimeErrors,
    testing::Values(
        Row{"DuplicateKey", "Error occurred while insert operation: E11000 duplicate key error(code: 11000)",
            ErrorKind::DuplicateKey, 11000},
        Row{"NoServer",
            "Find error.: No suitable servers found: `serverSelectionTimeoutMS` expired: [connection refused calling "
            "hello on '127.0.0.1:1'](code: 13053)",
            ErrorKind::Timeout, 13053},
        Row{"NoServerYet", "Find error.: No servers yet eligible for rescan(code: 13053)", ErrorKind::Network, 13053},
        Row{"SocketClosed",
            "Find error.: Failed to send \"find\" command with database \"a\": socket error or timeout(code: 4)",
            ErrorKind::Timeout, 4},
        Row{"SocketBroken", "Updating failed: Failed to read 4 bytes: socket error(code: 4)", ErrorKind::Network, 4},
        Row{"WrongPassword", "Find error.: Authentication failed.(code: 11)", ErrorKind::Authentication, 11},
        Row{"UnknownUser", "Error occurred while removing user: User 'u@d' not found(code: 11)", ErrorKind::NotFound,
            11},
        Row{"ServerRefusedLogin", "Find error.: Authentication failed.(code: 18)", ErrorKind::Authentication, 18},
        Row{"TooLarge",
            "Error occurred while insert operation: Document 0 is too large for the cluster. Document is 17000000 "
            "bytes, max is 16777216.(code: 18)",
            ErrorKind::TooLarge, 18},
        Row{"NotAuthorized", "Find error.: not authorized on a(code: 13)", ErrorKind::NotAuthorized, 13},
        Row{"MissingFile", "Error occurred while mongoc_gridfs_find_one_by_filename operation", ErrorKind::NotFound,
            std::nullopt},
        Row{"ConnectionFailed", "Connection failed", ErrorKind::NotConnected, std::nullopt},
        Row{"WriteErrorWithoutCode", "Updating failed: Unknown modifier: $x", ErrorKind::Other, std::nullopt},
        Row{"TimeLimit", "Find error.: operation exceeded time limit(code: 50)", ErrorKind::Timeout, 50},
        Row{"NegativeCode", "Find error.: odd(code: -1)", ErrorKind::Other, -1},
        Row{"CodeInTheMiddle", "Updating failed: (code: 11000) was before", ErrorKind::Other, std::nullopt},
        Row{"CodeThatIsNoNumber", "Updating failed: odd(code: x1)", ErrorKind::Other, std::nullopt},
        Row{"CodeTooLong", "Updating failed: odd(code: 99999999999999)", ErrorKind::Other, std::nullopt},
        Row{"TooLargeForTheServer", "Updating failed: object to insert too large(code: 10334)", ErrorKind::TooLarge,
            10334},
        Row{"NoSuchNamespace", "Find error.: ns not found(code: 26)", ErrorKind::NotFound, 26},
        Row{"LoginWithoutCode", "Updating failed: Authentication failed.", ErrorKind::Authentication, std::nullopt},
        Row{"TimeoutWithoutCode", "Updating failed: connection timeout", ErrorKind::Timeout, std::nullopt},
        Row{"RefusedWithoutCode", "Updating failed: connection refused", ErrorKind::Network, std::nullopt},
        Row{"Empty", "", ErrorKind::Other, std::nullopt}),
    RowName());

TEST(Errors, OfArgumentsDifferFromAMissingConnection)
{
    EXPECT_EQ(describe(std::invalid_argument("Connection is not established. Run connect before")).kind,
              ErrorKind::NotConnected);
    EXPECT_EQ(describe(std::invalid_argument("Database name is empty")).kind, ErrorKind::BadArgument);
    EXPECT_EQ(describe(std::invalid_argument("Uncknown command")).kind, ErrorKind::BadArgument);
}

TEST(Errors, TextDoesNotContainTheCode)
{
    EXPECT_EQ(describe(std::runtime_error("Updating failed: D(code: 7)")).text, "Updating failed: D");
    EXPECT_EQ(describe(std::runtime_error("Updating failed: D(code: x)")).text, "Updating failed: D(code: x)");
}

TEST(Errors, OfATextWithAZeroByteAreDescribed)
{
    dbc::ErrorDetails details;
    details.text = std::string("a\0b", 3);
    details.code = 7;
    const auto info = describe(dbc::ServerError("Find failed", details));
    EXPECT_EQ(info.text, "Find failed: a");
    EXPECT_EQ(info.code, 7);
}

TEST(ErrorKinds, HaveDifferentNames)
{
    std::set<std::string> names;
    for (const ErrorKind kind : {ErrorKind::NotConnected, ErrorKind::BadArgument, ErrorKind::DuplicateKey,
                                 ErrorKind::NotFound, ErrorKind::Authentication, ErrorKind::NotAuthorized,
                                 ErrorKind::Timeout, ErrorKind::Network, ErrorKind::TooLarge, ErrorKind::Other})
        EXPECT_TRUE(names.insert(nameOf(kind)).second) << nameOf(kind);
    EXPECT_STREQ(nameOf(ErrorKind::NotAuthorized), "not authorized");
    EXPECT_STREQ(nameOf(static_cast<ErrorKind>(99)), "");
}

} // namespace
