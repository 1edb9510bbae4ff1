// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client/database_client_d.h"
#include "row_name.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

using test_support::thrownText;

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
    const Row& row = GetParam();
    EXPECT_EQ(thrownText([&] { DataBaseClientPrivate::throw_runtime_error(row.message, row.detail, row.code); }),
              std::string("runtime_error: ") + row.text);
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
    EXPECT_EQ(thrownText([] { DataBaseClientPrivate::check_argument("", "Database name"); }),
              "invalid_argument: Database name is empty");
}

TEST(ArgumentCheck, AcceptsEveryOtherName)
{
    EXPECT_NO_THROW(DataBaseClientPrivate::check_argument(" ", "Database name"));
    EXPECT_NO_THROW(DataBaseClientPrivate::check_argument("$", "Database name"));
}

TEST(ArgumentCheck, TreatsANameThatBeginsWithAZeroByteAsEmpty)
{
    EXPECT_EQ(thrownText([] { DataBaseClientPrivate::check_argument(std::string("\0name", 5), "Collection name"); }),
              "invalid_argument: Collection name is empty");
}

TEST(ConnectionCheck, ThrowsUntilThereIsAConnection)
{
    const std::string notConnected = "invalid_argument: Connection is not established. Run connect before";
    DataBaseClientPrivate client;
    const auto check = [&client] { client.check_connection(); };
    EXPECT_EQ(thrownText(check), notConnected);

    client.connect("mongodb://127.0.0.1:1/");
    EXPECT_EQ(thrownText(check), "");

    client.disconnect();
    EXPECT_EQ(thrownText(check), notConnected);
}

} // namespace
