// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/bson_reader.h"

#include "bson_handles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

BsonPointer replyOf(const char* json)
{
    return BsonPointer(bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json), -1, nullptr));
}

TEST(ReplyField, IsFoundByItsDottedPath)
{
    const BsonPointer reply = replyOf(R"({"a": {"b": "text"}, "list": [{"n": 1}, {"n": 2}]})");
    bson_iter_t iter;

    EXPECT_EQ(dbc::textField(reply.get(), "a.b"), "text");
    EXPECT_EQ(dbc::numberField(reply.get(), "list.1.n"), 2);
    EXPECT_TRUE(dbc::findField(reply.get(), "a", &iter));
    EXPECT_FALSE(dbc::findField(reply.get(), "a.c", &iter));
}

TEST(ReplyField, OfEveryNumericTypeIsANumber)
{
    const BsonPointer reply = replyOf(R"({"int": 5, "long": {"$numberLong": "5000000000"}, "real": 5.0})");

    EXPECT_EQ(dbc::numberField(reply.get(), "int"), 5);
    EXPECT_EQ(dbc::numberField(reply.get(), "long"), 5000000000);
    EXPECT_EQ(dbc::numberField(reply.get(), "real"), 5);
}

TEST(ReplyField, OfAnotherTypeIsTreatedAsMissing)
{
    const BsonPointer reply =
        replyOf(R"({"number": 5, "text": "x", "flag": true, "object": {"0": "x"}, "mixed": [1, "x", {"n": 1}]})");
    const auto documentsIn = [&reply](const char* path) {
        int count = 0;
        dbc::forEachDocument(reply.get(), path, [&count](const bson_t* document) {
            EXPECT_EQ(dbc::numberField(document, "n"), 1);
            ++count;
        });
        return count;
    };

    for (const char* const path : {"number", "flag", "object", "mixed", "missing"})
        EXPECT_EQ(dbc::textField(reply.get(), path), "") << path;
    for (const char* const path : {"text", "flag", "object", "mixed", "missing"})
        EXPECT_EQ(dbc::numberField(reply.get(), path), 0) << path;
    for (const char* const path : {"number", "text", "flag", "object", "missing"})
    {
        EXPECT_EQ(dbc::textListField(reply.get(), path), std::vector<std::string>{}) << path;
        EXPECT_EQ(documentsIn(path), 0) << path;
    }
    EXPECT_EQ(dbc::textListField(reply.get(), "mixed"), std::vector<std::string>{"x"});
    EXPECT_EQ(documentsIn("mixed"), 1);
}

} // namespace
