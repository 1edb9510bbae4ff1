// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace test_support {
namespace {

/// Twenty documents without an "_id", sent ten at a time.
class ImportCutOff : public testing::Test
{
protected:
    ImportCutOff()
    {
        std::string lines;
        for (int number = 0; number < 20; ++number)
            lines += "{\"n\": " + std::to_string(number) + "}\n";
        m_folder.write("lines", lines);
    }
    ~ImportCutOff() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    std::vector<std::string> line(const std::vector<std::string>& more) const
    {
        std::vector<std::string> all{"--uri", TestServer::instance().uri(), "import",  m_database.name() + ".c",
                                     "-f",    m_folder.path("lines"),       "--batch", "10"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    // The rest of the messages after the word.
    static std::string behind(const std::string& messages, const std::string& word)
    {
        const std::size_t place = messages.find(word);
        return place == std::string::npos
                   ? ""
                   : messages.substr(place + word.size(), messages.find('\n', place) - place - word.size());
    }

    ScratchDatabase m_database;
    ScratchFolder m_folder;
};

TEST_F(ImportCutOff, ContinuesWithoutStoringADocumentTwice)
{
    gateway().inject(Fault::dropAfterForwarding().onCommand("insert").number(2));
    ToolProcess first(line({}));
    EXPECT_EQ(first.wait(), 3) << first.messages();
    const std::string mark =
        behind(first.messages(), "stopped at line 11, after at least 10 documents; continue with --resume ");
    ASSERT_EQ(mark.substr(0, 3), "10:") << first.messages();
    ASSERT_EQ(m_database.count("c"), 20U) << "the second batch was to be stored";

    ToolProcess second(line({"--resume", mark}));
    EXPECT_EQ(second.wait(), 0) << second.messages();

    EXPECT_EQ(second.messages(), "imported 0\nskipped 10 with a duplicate key\n");
    EXPECT_EQ(m_database.count("c"), 20U);
}

TEST_F(ImportCutOff, KilledInItsFirstBatchStoresNoDocumentTwice)
{
    const std::vector<std::string> arguments = line({"--state", m_folder.path("state")});
    gateway().inject(Fault::holdReply().onCommand("insert"));
    {
        ToolProcess first(arguments);
        ASSERT_TRUE(gateway().waitForHeldReplies(1));
        first.signal(SIGKILL);
        ASSERT_EQ(first.wait(), 128 + SIGKILL);
    }
    gateway().clearFaults();
    ASSERT_EQ(m_database.count("c"), 10U) << "the first batch was to be stored";

    ToolProcess second(arguments);
    EXPECT_EQ(second.wait(), 0) << second.messages();

    EXPECT_EQ(second.messages(), "imported 10\nskipped 10 with a duplicate key\n");
    EXPECT_EQ(m_database.count("c"), 20U);
}

TEST_F(ImportCutOff, ContinuesWithTheDocumentsThatWereNotStored)
{
    gateway().inject(Fault::dropBeforeForwarding().onCommand("insert").number(2));
    ToolProcess first(line({}));
    EXPECT_EQ(first.wait(), 3) << first.messages();
    const std::string mark = behind(first.messages(), "continue with --resume ");
    ASSERT_EQ(m_database.count("c"), 10U);

    ToolProcess second(line({"--resume", mark}));
    EXPECT_EQ(second.wait(), 0) << second.messages();

    EXPECT_EQ(second.messages(), "imported 10\n");
    EXPECT_EQ(m_database.count("c"), 20U);
    EXPECT_EQ(m_database.count("c", R"({"n": {"$gte": 10}})"), 10U);
}

} // namespace
} // namespace test_support
