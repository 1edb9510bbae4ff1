// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace test_support {
namespace {

/// The tool while the server does not reply to its query.
class SlowQuery : public testing::Test
{
protected:
    SlowQuery() { m_database.insert("c", R"({"_id": 1})"); }
    ~SlowQuery() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    std::vector<std::string> line() const
    {
        return {"--uri", TestServer::instance().uri(), "find", m_database.name() + ".c"};
    }

    static constexpr const char* notice = "dbc: stopping after the current step; press Ctrl-C again to stop at once";

    ScratchDatabase m_database;
};

TEST_F(SlowQuery, InterruptedPrintsAMessageAndEndsAtTheSecondInterrupt)
{
    gateway().inject(Fault::holdReply().onCommand("find"));
    ToolProcess tool(line(), ToolProcess::Messages::OnATerminal);
    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    tool.signal(SIGINT);
    ASSERT_TRUE(tool.showsOnTerminal(notice)) << tool.messages();
    tool.signal(SIGINT); // the reply is still held: nothing else ends it

    EXPECT_EQ(tool.wait(), 128 + SIGINT) << tool.messages();
}

TEST_F(SlowQuery, InterruptedOnceEndsWithTheReplyAndReportsItOnce)
{
    gateway().inject(Fault::holdReply().onCommand("find"));
    ToolProcess tool(line(), ToolProcess::Messages::OnATerminal);
    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    tool.signal(SIGTERM);
    ASSERT_TRUE(tool.showsOnTerminal(notice)) << tool.messages();
    gateway().releaseReplies();

    EXPECT_EQ(tool.wait(), 130) << tool.messages();
    const std::string shown = tool.messages();
    EXPECT_EQ(shown.find(notice), shown.rfind(notice));
    EXPECT_NE(shown.find("dbc: interrupted"), std::string::npos);
    EXPECT_EQ(tool.output(), "");
}

} // namespace
} // namespace test_support
