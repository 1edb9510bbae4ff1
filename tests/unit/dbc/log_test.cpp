// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/log.h"

#include "captured_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mongoc/mongoc.h>

#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Entry = std::tuple<dbc::LogLevel, std::string, std::string>;

class DriverLog : public testing::Test
{
protected:
    void TearDown() override { dbc::useDefaultLog(); }
};

struct LevelRow
{
    mongoc_log_level_t driver;
    dbc::LogLevel level;
    const char* name;
};

TEST_F(DriverLog, EveryLevelReachesTheHandlerWithItsDomainAndMessage)
{
    std::vector<Entry> entries;
    dbc::setLogHandler([&entries](dbc::LogLevel level, const std::string& domain, const std::string& message) {
        entries.emplace_back(level, domain, message);
    });

    const LevelRow rows[] = {
        {MONGOC_LOG_LEVEL_ERROR, dbc::LogLevel::Error, "error"},
        {MONGOC_LOG_LEVEL_CRITICAL, dbc::LogLevel::Critical, "critical"},
        {MONGOC_LOG_LEVEL_WARNING, dbc::LogLevel::Warning, "warning"},
        {MONGOC_LOG_LEVEL_MESSAGE, dbc::LogLevel::Message, "message"},
        {MONGOC_LOG_LEVEL_INFO, dbc::LogLevel::Info, "info"},
        {MONGOC_LOG_LEVEL_DEBUG, dbc::LogLevel::Debug, "debug"},
    };
    for (const LevelRow& row : rows)
    {
        SCOPED_TRACE(row.name);
        entries.clear();
        mongoc_log(row.driver, "test", "number %d", 7);
        ASSERT_EQ(entries.size(), 1U);
        EXPECT_EQ(entries.front(), Entry(row.level, "test", "number 7"));
        EXPECT_STREQ(dbc::nameOf(row.level), row.name);
    }
}

TEST_F(DriverLog, AnEmptyHandlerDiscardsEveryMessage)
{
    dbc::setLogHandler(nullptr);
    test_support::CapturedOutput output;
    mongoc_log(MONGOC_LOG_LEVEL_MESSAGE, "test", "unwanted");
    EXPECT_EQ(output.text(), "");
}

TEST_F(DriverLog, TheDefaultWritesMessagesToStandardOutput)
{
    dbc::setLogHandler(nullptr);
    dbc::useDefaultLog();
    test_support::CapturedOutput output;
    mongoc_log(MONGOC_LOG_LEVEL_MESSAGE, "test", "wanted");
    EXPECT_THAT(output.text(), testing::HasSubstr("wanted"));
}

TEST_F(DriverLog, AnExceptionOfTheHandlerIsDiscarded)
{
    bool called = false;
    dbc::setLogHandler([&called](dbc::LogLevel, const std::string&, const std::string&) {
        called = true;
        throw std::runtime_error("from the handler");
    });
    mongoc_log(MONGOC_LOG_LEVEL_WARNING, "test", "message");
    EXPECT_TRUE(called);
}

TEST_F(DriverLog, ASecondHandlerReplacesTheFirst)
{
    int first = 0;
    int second = 0;
    dbc::setLogHandler([&first](dbc::LogLevel, const std::string&, const std::string&) { ++first; });
    dbc::setLogHandler([&second](dbc::LogLevel, const std::string&, const std::string&) { ++second; });
    mongoc_log(MONGOC_LOG_LEVEL_WARNING, "test", "message");
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

} // namespace
