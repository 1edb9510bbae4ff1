// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "test_server.h"
#include "tool_process.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

/// What the server of the tests answers depends on its kind, so the gateway answers in its place.
class SchemaSample : public testing::Test
{
protected:
    SchemaSample()
    {
        m_database.insert("c", R"({"_id": 1, "first": true})");
        m_database.insert("c", R"({"_id": 2, "last": true})");
        gateway().clear();
    }
    ~SchemaSample() override { gateway().clearFaults(); }

    static WireGateway& gateway() { return TestServer::instance().gateway(); }
    static Fault chosen()
    {
        return Fault::answer(
                   R"({"ok": 1, "cursor": {"id": {"$numberLong": "0"}, "ns": "d.c", "firstBatch": [{"last": true}]}})")
            .onCommand("aggregate");
    }
    static Fault refused(int code, const std::string& text)
    {
        return Fault::answer("{\"ok\": 0, \"code\": " + std::to_string(code) + ", \"errmsg\": \"" + text + "\"}")
            .onCommand("aggregate");
    }
    std::vector<std::string> line(const std::vector<std::string>& more) const
    {
        std::vector<std::string> all{"--uri", TestServer::instance().uri(), "schema", m_database.name() + ".c"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    ScratchDatabase m_database;
};

TEST_F(SchemaSample, IsChosenByTheServerAmongTheDocumentsThatMatch)
{
    gateway().inject(chosen());
    ToolProcess tool(line({"_id>0", "--sample", "1"}));

    EXPECT_EQ(tool.wait(), 0);

    EXPECT_EQ(tool.output(), "last  bool               1\n1 document\n");
    EXPECT_EQ(tool.messages(), "sample: chosen at random by the server\n");
    ASSERT_EQ(gateway().commands("aggregate").size(), 1U);
    EXPECT_EQ(gateway().commands("aggregate")[0].json("pipeline"),
              R"([ { "$match" : { "_id" : { "$gt" : 0 } } }, { "$sample" : { "size" : 1 } } ])");
    EXPECT_EQ(gateway().commands("find").size(), 0U);
}

TEST_F(SchemaSample, HasARangeOfTheNumbersThatAreNotNaN)
{
    gateway().inject(Fault::answer(R"({"ok": 1, "cursor": {"id": {"$numberLong": "0"}, "ns": "d.c", "firstBatch": )"
                                   R"([{"n": {"$numberDouble": "NaN"}}, {"n": 1.5}, {"n": 5.5}]}})")
                         .onCommand("aggregate"));
    ToolProcess tool(line({"--quiet", "--sample", "3"}));

    EXPECT_EQ(tool.wait(), 0);

    EXPECT_EQ(tool.output(), "n     double             3  1.5 .. 5.5\n");
}

TEST_F(SchemaSample, IsTheFirstDocumentsIfTheServerCannotChoose)
{
    gateway().inject(refused(40324, "Unrecognized pipeline stage name: '$sample'"));
    ToolProcess tool(line({"--sample", "1"}));

    EXPECT_EQ(tool.wait(), 0);

    EXPECT_EQ(tool.output(), "_id    int32              1  1 .. 1\nfirst  bool               1\n1 document\n");
    EXPECT_EQ(tool.messages(), "sample: the first ones, because the server does not support $sample: Aggregation "
                               "failed: Unrecognized pipeline stage name: '$sample'\n");
}

TEST_F(SchemaSample, IsNotReadInAnotherWayWithoutTheRightToRead)
{
    gateway().inject(refused(13, "not authorized"));
    ToolProcess tool(line({}));

    EXPECT_EQ(tool.wait(), 4);

    EXPECT_EQ(tool.messages(), "dbc: Aggregation failed: not authorized(code: 13)\n");
    EXPECT_EQ(gateway().commands("find").size(), 0U);
}

TEST_F(SchemaSample, OfAllDocumentsIsNotChosenByTheServer)
{
    ToolProcess tool(line({"--sample", "0"}));

    EXPECT_EQ(tool.wait(), 0);

    EXPECT_EQ(tool.messages(), "sample: all documents\n");
    EXPECT_EQ(gateway().commands("aggregate").size(), 0U);
}

TEST_F(SchemaSample, IsNotMentionedIfQuiet)
{
    gateway().inject(chosen());
    ToolProcess tool(line({"--quiet", "--sample", "1"}));

    EXPECT_EQ(tool.wait(), 0);

    EXPECT_EQ(tool.output(), "last  bool               1\n");
    EXPECT_EQ(tool.messages(), "");
}

} // namespace
} // namespace test_support
