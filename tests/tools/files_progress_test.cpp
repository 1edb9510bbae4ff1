// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

/// A file of four chunks. Where the server is held up, there the bar stands, so what it shows is certain.
class FilesProgress : public testing::Test
{
protected:
    FilesProgress() { m_folder.write("large", std::string(4 * chunkSize, 'x')); }
    ~FilesProgress() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    std::vector<std::string> line(const std::string& command, const std::vector<std::string>& more) const
    {
        std::vector<std::string> all{"--uri", TestServer::instance().uri(), "files", command, m_database.name()};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    void put() const
    {
        ToolProcess tool(line("put", {m_folder.path("large")}));
        ASSERT_EQ(tool.wait(), 0) << tool.messages();
    }

    static constexpr std::size_t chunkSize = 261120;

    ScratchDatabase m_database;
    ScratchFolder m_folder;
};

TEST_F(FilesProgress, OfAStoredFileIsHowFarItWasRead)
{
    gateway().inject(Fault::holdReply().onCommand("insert").onTarget("fs.chunks"));
    ToolProcess tool(line("put", {m_folder.path("large")}), ToolProcess::Messages::OnATerminal);
    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    EXPECT_TRUE(tool.showsOnTerminal("large [#######                       ]  25%")) << tool.messages();

    gateway().releaseReplies();
    EXPECT_EQ(tool.wait(), 0) << tool.messages();
}

TEST_F(FilesProgress, OfAFetchedFileIsWhatArrivedOfItsLength)
{
    put();
    ToolProcess tool(line("get", {"large", m_folder.path("back")}), ToolProcess::Messages::OnATerminal);

    EXPECT_TRUE(tool.showsOnTerminal("large [")) << tool.messages();

    EXPECT_EQ(tool.wait(), 0) << tool.messages();
    EXPECT_EQ(m_folder.read("back"), m_folder.read("large"));
}

TEST_F(FilesProgress, IsNotShownWhenQuietOrWithoutATerminal)
{
    ToolProcess quiet(line("put", {m_folder.path("large"), "--quiet"}), ToolProcess::Messages::OnATerminal);
    EXPECT_EQ(quiet.wait(), 0);
    EXPECT_EQ(quiet.messages(), "");

    ToolProcess inAFile(line("put", {m_folder.path("large")}));
    EXPECT_EQ(inAFile.wait(), 0);
    EXPECT_EQ(inAFile.messages(), "stored large, 1044480 bytes\n");
}

} // namespace
} // namespace test_support
