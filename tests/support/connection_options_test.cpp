// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connection_options.h"

#include "mongoc_handles.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace test_support {
namespace {

struct Row
{
    const char* name;
    const char* uri;
    const char* expected;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

class ConnectionOptions : public testing::TestWithParam<Row>
{};

TEST_P(ConnectionOptions, AreAddedToTheConnectionString)
{
    EXPECT_EQ(withOptions(GetParam().uri, "socketTimeoutMS=7&appname=a"), GetParam().expected);
}

TEST_P(ConnectionOptions, AreReadByTheDriver)
{
    bson_error_t error{};
    const UriHandle uri(
        mongoc_uri_new_with_error(withOptions(GetParam().uri, "socketTimeoutMS=7&appname=a").c_str(), &error));
    ASSERT_TRUE(uri) << error.message;
    EXPECT_EQ(mongoc_uri_get_option_as_int32(uri.get(), MONGOC_URI_SOCKETTIMEOUTMS, 0), 7);
    EXPECT_STREQ(mongoc_uri_get_appname(uri.get()), "a");
}

INSTANTIATE_TEST_SUITE_P(
    Uris, ConnectionOptions,
    testing::Values(
        Row{"HostAlone", "mongodb://h", "mongodb://h/?socketTimeoutMS=7&appname=a"},
        Row{"PathWithoutADatabase", "mongodb://h:1/", "mongodb://h:1/?socketTimeoutMS=7&appname=a"},
        Row{"Database", "mongodb://h/d", "mongodb://h/d?socketTimeoutMS=7&appname=a"},
        Row{"Query", "mongodb://h/?tls=true", "mongodb://h/?tls=true&socketTimeoutMS=7&appname=a"},
        Row{"DatabaseAndQuery", "mongodb://h/d?tls=true", "mongodb://h/d?tls=true&socketTimeoutMS=7&appname=a"},
        Row{"EmptyQuery", "mongodb://h/?", "mongodb://h/?socketTimeoutMS=7&appname=a"},
        Row{"QueryThatEndsInASeparator", "mongodb://h/?tls=true&", "mongodb://h/?tls=true&socketTimeoutMS=7&appname=a"},
        Row{"UserAndSeveralHosts", "mongodb://u:p%3F%2F@h,i:2/?authSource=admin",
            "mongodb://u:p%3F%2F@h,i:2/?authSource=admin&socketTimeoutMS=7&appname=a"},
        Row{"SameOption", "mongodb://h/?socketTimeoutMS=1",
            "mongodb://h/?socketTimeoutMS=1&socketTimeoutMS=7&appname=a"}),
    RowName());

} // namespace
} // namespace test_support
