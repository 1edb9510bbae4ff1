// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client/database_client_d.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>

namespace {

struct Row
{
    const char* name;
    const char* message;
    const char* detail;
    int code;
    const char* text;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.text;
}

class ErrorText : public testing::TestWithParam<Row>
{};

TEST_P(ErrorText, JoinsMessageDetailAndCode)
{
    try
    {
        DataBaseClientPrivate::throw_runtime_error(GetParam().message, GetParam().detail, GetParam().code);
        FAIL() << "nothing was thrown";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), GetParam().text);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ErrorText,
    testing::Values(Row{"MessageAlone", "X", "", 0, "X"}, Row{"CodeWithoutDetail", "X", "", 5, "X(code: 5)"},
                    Row{"DetailWithoutCode", "X", "d", 0, "X: d"}, Row{"NegativeCode", "X", "d", -1, "X: d(code: -1)"},
                    Row{"NothingStandsBetweenDetailAndCode", "Updating failed", "D", 7, "Updating failed: D(code: 7)"},
                    Row{"SmallestCode", "X", "d", INT_MIN, "X: d(code: -2147483648)"},
                    Row{"EmptyMessage", "", "d", 1, ": d(code: 1)"}),
    RowName());

TEST(ArgumentCheck, NamesTheEmptyArgument)
{
    try
    {
        DataBaseClientPrivate::check_argument("", "Database name");
        FAIL() << "an empty name was accepted";
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_STREQ(error.what(), "Database name is empty");
    }
}

TEST(ArgumentCheck, AcceptsEveryOtherName)
{
    EXPECT_NO_THROW(DataBaseClientPrivate::check_argument(" ", "Database name"));
    EXPECT_NO_THROW(DataBaseClientPrivate::check_argument("$", "Database name"));
}

TEST(ArgumentCheck, TreatsANameThatBeginsWithAZeroByteAsEmpty)
{
    EXPECT_THROW(DataBaseClientPrivate::check_argument(std::string("\0name", 5), "Collection name"),
                 std::invalid_argument);
}

TEST(ConnectionCheck, ThrowsUntilThereIsAConnection)
{
    DataBaseClientPrivate client;
    try
    {
        client.check_connection();
        FAIL() << "a client without a connection passed";
    }
    catch (const std::invalid_argument& error)
    {
        EXPECT_STREQ(error.what(), "Connection is not established. Run connect before");
    }

    client.connect("mongodb://127.0.0.1:1/");
    EXPECT_NO_THROW(client.check_connection());

    client.disconnect();
    EXPECT_THROW(client.check_connection(), std::invalid_argument);
}

} // namespace
