// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "command_text.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

TEST(SameCommand, MayHaveItsOptionsInAnotherOrder)
{
    EXPECT_PRED2(isSameCommand, R"({"find": "c", "limit": 1, "filter": {"a": 1}})",
                 R"({"find": "c", "filter": {"a": 1}, "limit": 1})");
    EXPECT_PRED2(isSameCommand, R"({"update": "c", "updates": [{"q": {}, "u": {"a": 1}, "multi": false}]})",
                 R"({"update": "c", "updates": [{"multi": false, "q": {}, "u": {"a": 1}}]})");
}

TEST(SameCommand, HasTheSameNameAndTheSameOrderInsideItsOptions)
{
    const std::string sort = R"({"find": "c", "sort": {"a": 1, "b": 1}})";
    EXPECT_FALSE(isSameCommand(sort, R"({"find": "c", "sort": {"b": 1, "a": 1}})"));
    EXPECT_FALSE(isSameCommand(sort, R"({"sort": {"a": 1, "b": 1}, "find": "c"})"));
    EXPECT_FALSE(isSameCommand(sort, R"({"find": "c", "sort": {"a": 1, "b": 1}, "limit": 1})"));
    EXPECT_FALSE(isSameCommand(sort, "2 commands"));
    EXPECT_FALSE(isSameCommand(R"({"update": "c", "updates": [{"u": {"a": 1, "b": 1}}]})",
                               R"({"update": "c", "updates": [{"u": {"b": 1, "a": 1}}]})"));
    EXPECT_FALSE(isSameCommand(R"({"insert": "c", "documents": [{"a": 1, "b": 1}]})",
                               R"({"insert": "c", "documents": [{"b": 1, "a": 1}]})"));
    EXPECT_FALSE(isSameCommand(R"({"delete": "c", "deletes": [{"q": {"a": 1}}, {"q": {"b": 1}}]})",
                               R"({"delete": "c", "deletes": [{"q": {"b": 1}}, {"q": {"a": 1}}]})"));
}

} // namespace
} // namespace test_support
