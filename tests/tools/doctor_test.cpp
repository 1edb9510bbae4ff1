// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connection_options.h"
#include "pretended_set.h"
#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

// The test server, as the primary of a set that has another member. Only `dbc doctor` runs meanwhile.
class Doctor : public testing::Test
{
protected:
    static std::string setUri(const std::string& furtherHosts = "")
    {
        std::string uri = gateway().uri();
        uri.insert(uri.find(host()) + host().size(), furtherHosts);
        return withOptions(uri, "replicaSet=set");
    }

    void TearDown() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    static std::string host() { return hostOf(gateway()); }
};

TEST_F(Doctor, ReportsAnUnreachableHostAlthoughTheOthersWork)
{
    pretendSet(gateway(), "127.0.0.1:1");
    ToolProcess tool({"--uri", setUri(",127.0.0.1:1"), "doctor"});

    EXPECT_EQ(tool.wait(), 3) << tool.messages();

    const std::string output = tool.output();
    EXPECT_NE(output.find("ok    port: " + host() + " accepts connections\n"), std::string::npos) << output;
    EXPECT_NE(output.find("fail  port: 127.0.0.1:1 refuses"), std::string::npos) << output;
    EXPECT_NE(output.find("ok    login: "), std::string::npos) << output;
    EXPECT_EQ(output.find(" lists "), std::string::npos) << output;
}

TEST_F(Doctor, ReportsAnUnreachableMemberThatTheConnectionStringDoesNotName)
{
    pretendSet(gateway(), "127.0.0.1:1");
    ToolProcess tool({"--uri", setUri(), "doctor"});

    EXPECT_EQ(tool.wait(), 3) << tool.messages();

    const std::string output = tool.output();
    EXPECT_NE(output.find("ok    member: " + host() + " lists 127.0.0.1:1\n"), std::string::npos) << output;
    EXPECT_NE(output.find("fail  port: 127.0.0.1:1 refuses"), std::string::npos) << output;
    EXPECT_NE(output.find("ok    login: "), std::string::npos) << output;
}

TEST_F(Doctor, ReportsAMemberWhoseNameCannotBeResolved)
{
    pretendSet(gateway(), "no-such-host.invalid:27017");
    ToolProcess tool({"--uri", setUri(), "doctor"});

    EXPECT_EQ(tool.wait(), 3) << tool.messages();

    const std::string output = tool.output();
    EXPECT_NE(output.find("lists no-such-host.invalid:27017\n"), std::string::npos) << output;
    EXPECT_NE(output.find("fail  address: no-such-host.invalid: "), std::string::npos) << output;
    const bool wouldHang = !mongoc_check_version(1, 30, 0);
    EXPECT_EQ(output.find("fail  server: skipped: ") != std::string::npos, wouldHang) << output;
    EXPECT_EQ(output.find("ok    login: ") != std::string::npos, !wouldHang) << output;
}

TEST_F(Doctor, DoesNotAskForMembersIfTheDriverUsesOnlyOneHost)
{
    pretendSet(gateway(), "no-such-host.invalid:27017");
    for (const std::string& uri : {gateway().uri(), withOptions(setUri(), "directConnection=true")})
    {
        ToolProcess tool({"--uri", uri, "doctor"});

        EXPECT_EQ(tool.wait(), 0) << tool.messages() << tool.output();
    }
}

} // namespace
} // namespace test_support
