// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "server_kind.h"

#include "bson_rewrite.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <ostream>

namespace test_support {
namespace {

struct Row
{
    const char* name;
    const char* buildInfo;
    ServerKind expected;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

class KindOfServer : public testing::TestWithParam<Row>
{};

TEST_P(KindOfServer, FollowsFromItsBuildInfo)
{
    const Bytes bytes = bsonFromJson(GetParam().buildInfo);
    bson_t reply;
    ASSERT_TRUE(bson_init_static(&reply, bytes.data(), bytes.size()));

    EXPECT_EQ(serverKindFrom(&reply), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, KindOfServer,
    testing::Values(
        Row{"MongoDb", R"({"version": "7.0.14", "gitVersion": "a", "modules": [], "ok": 1})", ServerKind::MongoDb},
        Row{"MongoDbOfVersionOne", R"({"version": "v1.24.0", "ok": 1})", ServerKind::MongoDb},
        Row{"Empty", "{}", ServerKind::MongoDb},
        Row{"FerretDbV1",
            R"({"version": "7.0.42", "ferretdbVersion": "v1.24.0", "ferretdbFeatures": {"a": true}, "ok": 1})",
            ServerKind::FerretDbV1},
        Row{"FerretDbV1Early", R"({"version": "6.0.42", "ferretdbVersion": "v1.0.0-rc.1-5-gabc", "ok": 1})",
            ServerKind::FerretDbV1},
        Row{"FerretDbV1InTheLaterForm", R"({"ferretdb": {"version": "v1.25.0"}, "ok": 1})", ServerKind::FerretDbV1},
        Row{"FerretDbV2", R"({"version": "7.0.77", "ferretdb": {"version": "v2.7.0", "package": "debian"}, "ok": 1})",
            ServerKind::FerretDbV2},
        Row{"FerretDbV2InTheEarlierForm", R"({"ferretdbVersion": "v2.0.0", "ok": 1})", ServerKind::FerretDbV2},
        Row{"FerretDbV10", R"({"ferretdb": {"version": "v10.0.0"}, "ok": 1})", ServerKind::FerretDbV2},
        Row{"FerretDbOfUnknownVersion", R"({"ferretdb": {"version": "unknown"}, "ok": 1})", ServerKind::FerretDbV2},
        Row{"FerretDbWhoseVersionIsNoText", R"({"ferretdb": {"version": 1}, "ok": 1})", ServerKind::FerretDbV2}),
    RowName());

} // namespace
} // namespace test_support
