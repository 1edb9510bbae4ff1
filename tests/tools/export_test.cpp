// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace test_support {
namespace {

/// A collection that takes several replies, and an older file where it is exported to.
class Export : public testing::Test
{
protected:
    Export()
    {
        for (int number = 0; number < documents; ++number)
            m_database.insert("c", "{\"_id\": " + std::to_string(number) + "}");
        m_folder.write("file", "older");
    }
    ~Export() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    std::vector<std::string> line() const
    {
        return {"--uri", TestServer::instance().uri(), "export", m_database.name() + ".c", "-f", m_folder.path("file")};
    }
    void expectTheOlderFileAndNothingBeside() const
    {
        EXPECT_EQ(m_folder.read("file"), "older");
        EXPECT_EQ(m_folder.names(), std::vector<std::string>{"file"});
    }

    static constexpr int documents = 150; // the first reply holds 101

    ScratchDatabase m_database;
    ScratchFolder m_folder;
};

TEST_F(Export, ReplacesTheOlderFileWhenItIsComplete)
{
    ToolProcess tool(line());

    EXPECT_EQ(tool.wait(), 0) << tool.messages();

    const std::string written = m_folder.read("file");
    EXPECT_EQ(std::count(written.begin(), written.end(), '\n'), documents);
    EXPECT_EQ(m_folder.names(), std::vector<std::string>{"file"});
}

TEST_F(Export, LeavesTheOlderFileWhileItIsWriting)
{
    gateway().inject(Fault::holdReply().onCommand("getMore"));
    ToolProcess tool(line());

    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    EXPECT_EQ(m_folder.read("file"), "older");
    gateway().releaseReplies();
    EXPECT_EQ(tool.wait(), 0) << tool.messages();
}

TEST_F(Export, LeavesTheOlderFileWhenTheConnectionBreaks)
{
    gateway().inject(Fault::dropBeforeForwarding().onCommand("getMore"));
    ToolProcess tool(line());

    EXPECT_EQ(tool.wait(), 3) << tool.messages();

    expectTheOlderFileAndNothingBeside();
}

TEST_F(Export, LeavesTheOlderFileWhenTheServerRefuses)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "cursor not found", "code": 43})").onCommand("getMore"));
    ToolProcess tool(line());

    EXPECT_EQ(tool.wait(), 4) << tool.messages();

    expectTheOlderFileAndNothingBeside();
}

class ExportInterrupted : public Export, public testing::WithParamInterface<int>
{};

TEST_P(ExportInterrupted, LeavesTheOlderFile)
{
    gateway().inject(Fault::holdReply().onCommand("getMore"));
    ToolProcess tool(line());
    ASSERT_TRUE(gateway().waitForHeldReplies(1));
    ASSERT_EQ(m_folder.names().size(), 2U) << "it is not writing";

    tool.signal(GetParam());
    const bool isNoted = GetParam() == SIGINT || GetParam() == SIGTERM;
    if (isNoted)
        gateway().releaseReplies(); // the work ends behind the next document; the other signals end it at once

    EXPECT_EQ(tool.wait(), isNoted ? 130 : 128 + GetParam()) << tool.messages();
    expectTheOlderFileAndNothingBeside();
}

INSTANTIATE_TEST_SUITE_P(Signals, ExportInterrupted, testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT),
                         [](const auto& row) { return ::sigabbrev_np(row.param); });

TEST_F(Export, InterruptedTwiceLeavesTheOlderFile)
{
    gateway().inject(Fault::holdReply().onCommand("getMore"));
    ToolProcess tool(line());
    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    tool.signal(SIGTERM);
    tool.signal(SIGINT);

    EXPECT_EQ(tool.wait(), 130) << tool.messages();
    expectTheOlderFileAndNothingBeside();
}

} // namespace
} // namespace test_support
