// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>

namespace test_support {
namespace {

/// A file of twenty chunks, which take two commands, and the tool that uploads it.
class FilesUpload : public testing::Test
{
protected:
    FilesUpload() { m_folder.write("large", std::string(chunksOfLarge * chunkSize, 'x')); }
    ~FilesUpload() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    std::vector<std::string> line(const std::string& command, const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> all{"--uri", TestServer::instance().uri(), "files", command, m_database.name()};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    std::vector<std::string> putLine() const { return line("put", {m_folder.path("large")}); }
    /// Runs a command to its end.
    int run(const std::string& command, const std::vector<std::string>& more = {})
    {
        ToolProcess tool(line(command, more));
        const int status = tool.wait();
        m_output = tool.output();
        return status;
    }
    /// As a program that is killed in the middle does.
    void leavePartOfAFile()
    {
        gateway().inject(Fault::holdReply().onCommand("insert").onTarget("fs.chunks").number(2));
        ToolProcess tool(putLine());
        ASSERT_TRUE(gateway().waitForHeldReplies(1));
        tool.signal(SIGKILL);
        ASSERT_EQ(tool.wait(), 128 + SIGKILL);
        gateway().clearFaults();
    }
    /// As a program that is killed while dbc::writeFile() uploads does.
    void leavePartialName()
    {
        m_database.insert("fs.files", R"({"_id": 1, "length": 5, "chunkSize": 5, "uploadDate": {"$date": 0},
                                          "filename": "large.partial-507f1f77bcf86cd799439011"})");
        m_database.insert("fs.chunks", R"({"_id": 1, "files_id": 1, "n": 0, "data": null})");
    }
    std::size_t files(const std::string& filter = "{}") const { return m_database.count("fs.files", filter); }
    std::size_t chunks() const { return m_database.count("fs.chunks"); }

    static constexpr std::size_t chunkSize = 261120;
    static constexpr std::size_t chunksOfLarge = 20;

    ScratchDatabase m_database;
    ScratchFolder m_folder;
    std::string m_output;
};

TEST_F(FilesUpload, HasItsNameOnlyAtTheEnd)
{
    gateway().inject(Fault::holdReply().onCommand("insert").onTarget("fs.chunks").number(2));
    ToolProcess tool(putLine());
    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    EXPECT_EQ(files(), 0U);

    gateway().releaseReplies();
    EXPECT_EQ(tool.wait(), 0) << tool.messages();
    EXPECT_EQ(files(R"({"filename": "large"})"), 1U);
    EXPECT_EQ(run("get", {"large", m_folder.path("back")}), 0);
    EXPECT_EQ(m_folder.read("back"), m_folder.read("large"));
}

TEST_F(FilesUpload, MayBeEmpty)
{
    m_folder.write("empty", "");
    EXPECT_EQ(run("put", {m_folder.path("empty")}), 0);
    EXPECT_EQ(run("ls"), 0);
    EXPECT_EQ(m_output, "empty\n");
    EXPECT_EQ(run("get", {"empty", "-"}), 0);
    EXPECT_EQ(m_output, "");
}

class FilesUploadInterrupted : public FilesUpload, public testing::WithParamInterface<int>
{};

TEST_P(FilesUploadInterrupted, LeavesNothing)
{
    gateway().inject(Fault::holdReply().onCommand("insert").onTarget("fs.chunks"));
    ToolProcess tool(putLine());
    ASSERT_TRUE(gateway().waitForHeldReplies(1));

    tool.signal(GetParam());
    gateway().releaseReplies();

    EXPECT_EQ(tool.wait(), 130) << tool.messages();
    EXPECT_NE(tool.messages().find("dbc: interrupted\n"), std::string::npos) << tool.messages();
    EXPECT_EQ(files(), 0U);
    EXPECT_EQ(chunks(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Signals, FilesUploadInterrupted, testing::Values(SIGINT, SIGTERM),
                         [](const auto& row) { return ::sigabbrev_np(row.param); });

TEST_F(FilesUpload, LeavesNothingWhenTheConnectionBreaks)
{
    for (const char* const target : {"fs.chunks", "fs.files"})
    {
        gateway().inject(Fault::dropBeforeForwarding().onCommand("insert").onTarget(target));
        EXPECT_EQ(run("put", {m_folder.path("large")}), 3);
        EXPECT_EQ(files(), 0U);
        EXPECT_EQ(chunks(), 0U);
    }
}

TEST_F(FilesUpload, ReportsWhatRemainsIfItCannotBeRemoved)
{
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "full", "code": 14031})")
                         .onCommand("insert")
                         .onTarget("fs.chunks")
                         .number(2));
    gateway().inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 13})").onCommand("delete").andLater());
    ToolProcess tool(putLine());

    EXPECT_EQ(tool.wait(), 4);

    EXPECT_NE(tool.messages().find("rm --partial"), std::string::npos) << tool.messages();
    EXPECT_NE(tool.messages().find("full"), std::string::npos) << tool.messages();
    EXPECT_EQ(files(), 0U);
    EXPECT_GT(chunks(), 0U);
}

TEST_F(FilesUpload, ThatWasKilledStoresNoFileAndItsContentIsRemoved)
{
    ASSERT_EQ(run("put", {m_folder.path("large"), "--name", "whole"}), 0);
    leavePartOfAFile();
    ASSERT_GT(chunks(), chunksOfLarge);
    EXPECT_EQ(run("get", {"large", m_folder.path("back")}), 1);
    EXPECT_EQ(run("ls"), 0);
    EXPECT_EQ(m_output, "whole\n");

    EXPECT_EQ(run("rm", {"--partial"}), 0);

    EXPECT_EQ(m_output, "removed 1\n");
    EXPECT_EQ(chunks(), chunksOfLarge);
    EXPECT_EQ(run("ls"), 0);
    EXPECT_EQ(m_output, "whole\n");
    EXPECT_EQ(run("rm", {"--partial"}), 1);
    EXPECT_EQ(m_output, "removed 0\n");
}

TEST_F(FilesUpload, WithATemporaryNameIsMarkedAndRemoved)
{
    ASSERT_EQ(run("put", {m_folder.path("large"), "--name", "whole"}), 0);
    leavePartialName();
    EXPECT_EQ(run("ls"), 0);
    EXPECT_EQ(m_output, "large.partial-507f1f77bcf86cd799439011 (incomplete)\nwhole\n");
    EXPECT_EQ(run("rm", {"other", "--partial"}), 1);
    EXPECT_EQ(run("rm", {"large"}), 1) << "only --partial removes it";
    EXPECT_EQ(files(), 2U);

    EXPECT_EQ(run("rm", {"LARGE", "--partial"}), 0);

    EXPECT_EQ(files(), 1U);
    EXPECT_EQ(chunks(), chunksOfLarge);
}

TEST_F(FilesUpload, ThatIsRemovedWhileItRunsFails)
{
    gateway().inject(Fault::holdReply().onCommand("insert").onTarget("fs.chunks").number(2));
    ToolProcess tool(putLine());
    ASSERT_TRUE(gateway().waitForHeldReplies(1));
    ASSERT_EQ(run("rm", {"--partial"}), 0);

    gateway().releaseReplies();

    EXPECT_EQ(tool.wait(), 4) << tool.messages();
    EXPECT_NE(tool.messages().find("removed"), std::string::npos) << tool.messages();
    EXPECT_EQ(files(), 0U);
    EXPECT_EQ(chunks(), 0U);
}

} // namespace
} // namespace test_support
