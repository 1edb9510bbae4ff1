#include "database_client/reply_check.h"

#include "messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace {

using test_support::bsonFromJson;
using test_support::putInt32;

Bytes opReplyOf(const std::string& json, std::int32_t documents = 1)
{
    Bytes head(20);
    putInt32(head, 16, documents);
    return message(opReply, joined(head, bsonFromJson(json)));
}

// As a greeting is sent: flags, the name of the namespace, what to skip and return, the command.
Bytes opQueryOf(const std::string& json)
{
    const std::string name = "admin.$cmd";
    Bytes head(4);
    head.insert(head.end(), name.c_str(), name.c_str() + name.size() + 1);
    head.resize(head.size() + 8);
    return message(opQuery, joined(head, bsonFromJson(json)));
}

const Bytes ping = opMsgOf(R"({"ping": 1})");
const Bytes pong = opMsgOf(R"({"ok": 1.0})");
const Bytes greeting = opQueryOf(R"({"isMaster": 1})");
const Bytes welcome = opReplyOf(R"({"ismaster": true, "ok": 1.0})");

bool take(ReplyCheck& check, const Bytes& reply, std::size_t pieceSize)
{
    for (std::size_t at = 0; at < reply.size(); at += pieceSize)
        if (!check.received(reply.data() + at, std::min(pieceSize, reply.size() - at)))
            return false;
    return true;
}

bool isTaken(const Bytes& request, const Bytes& reply, std::size_t pieceSize)
{
    ReplyCheck check(true);
    check.sent(request.data(), request.size());
    return take(check, reply, pieceSize);
}

void expectTaken(const Bytes& request, const Bytes& reply, bool expected)
{
    for (std::size_t pieceSize = 1; pieceSize <= reply.size(); ++pieceSize)
        ASSERT_EQ(isTaken(request, reply, pieceSize), expected) << "in pieces of " << pieceSize;
}

TEST(ReplyCheck, TakesTheReplyOfTheKindThatWasAskedFor)
{
    expectTaken(ping, pong, true);
    expectTaken(greeting, welcome, true);
}

TEST(ReplyCheck, RefusesTheReplyOfAnotherKind)
{
    expectTaken(ping, welcome, false);
    expectTaken(greeting, pong, false);
    expectTaken(ping, message(opCompressed, Bytes(30)), false);
    expectTaken(ping, message(opQuery, Bytes(30)), false);
    expectTaken(ping, message(0, Bytes(30)), false);
}

TEST(ReplyCheck, RefusesAReplyToNothing)
{
    ReplyCheck check(true);
    EXPECT_FALSE(take(check, pong, pong.size()));
}

TEST(ReplyCheck, TakesOneReplyAfterAnother)
{
    ReplyCheck check(true);
    for (int round = 0; round < 3; ++round)
    {
        check.sent(greeting.data(), greeting.size());
        EXPECT_TRUE(take(check, welcome, 7));
        check.sent(ping.data(), ping.size());
        EXPECT_TRUE(take(check, pong, 4));
    }
}

TEST(ReplyCheck, FollowsRequestsThatAreSentInPieces)
{
    for (std::size_t pieceSize = 1; pieceSize <= ping.size(); ++pieceSize)
    {
        ReplyCheck check(true);
        const Bytes both = joined(greeting, ping);
        for (std::size_t at = 0; at < both.size(); at += pieceSize)
            check.sent(both.data() + at, std::min(pieceSize, both.size() - at));
        EXPECT_TRUE(take(check, pong, pong.size())) << pieceSize;
    }
}

TEST(ReplyCheck, RefusesAReplyThatEndsBeforeItsDocument)
{
    for (std::size_t size = 0; size < pong.size(); ++size)
    {
        Bytes cut = pong;
        putInt32(cut, 0, static_cast<std::int32_t>(size));
        for (const std::size_t pieceSize : {std::size_t{1}, std::size_t{4}, pong.size()})
            EXPECT_FALSE(isTaken(ping, cut, pieceSize)) << "length " << size << " in pieces of " << pieceSize;
    }
    for (std::size_t size = 0; size < welcome.size(); ++size)
    {
        Bytes cut = welcome;
        putInt32(cut, 0, static_cast<std::int32_t>(size));
        EXPECT_FALSE(isTaken(greeting, cut, welcome.size())) << "length " << size;
    }
}

TEST(ReplyCheck, RefusesAReplyThatGoesOnAfterItsDocument)
{
    Bytes longer = joined(pong, {0});
    putInt32(longer, 0, static_cast<std::int32_t>(longer.size()));
    expectTaken(ping, longer, false);
    Bytes another = joined(pong, joined({0}, bsonFromJson(R"({"ok": 1.0})")));
    putInt32(another, 0, static_cast<std::int32_t>(another.size()));
    expectTaken(ping, another, false);
}

TEST(ReplyCheck, RefusesAReplyThatBeginsWithNoBody)
{
    Bytes sequence = pong;
    sequence[20] = 1;
    expectTaken(ping, sequence, false);
}

TEST(ReplyCheck, RefusesAGreetingOfNotOneDocument)
{
    for (const std::int32_t documents : {-1, 0, 2})
        expectTaken(greeting, opReplyOf(R"({"ok": 1.0})", documents), false);
}

TEST(ReplyCheck, RefusesADocumentThatIsMalformedInside)
{
    Bytes malformed = opMsgOf(R"({"a": {"b": 1}, "ok": 1.0})");
    const auto text = std::find(malformed.begin() + 21, malformed.end(), 'b');
    ASSERT_NE(text, malformed.end());
    *(text - 1) = 0x55;
    expectTaken(ping, malformed, false);
}

TEST(ReplyCheck, RefusesContentsThatTheDriverDoesNotSurvive)
{
    expectTaken(ping, opMsgOf(R"({"ok": 0.0, "code": 0})"), false);
    expectTaken(greeting, opReplyOf(R"({"ok": 1.0, "speculativeAuthenticate": 1})"), false);
}

TEST(ReplyCheck, LooksIntoIndexesOnlyWhenTheyWereAskedFor)
{
    const Bytes reply = opMsgOf(R"({"cursor": {"ns": "d.c", "firstBatch": [{"key": 1}]}, "ok": 1.0})");
    expectTaken(opMsgOf(R"({"find": "c"})"), reply, true);
    expectTaken(opMsgOf(R"({"listIndexesToo": "c"})"), reply, true);
    expectTaken(opMsgOf(R"({"listIndexes": "c"})"), reply, false);
}

TEST(ReplyCheck, RefusesAHugeReplyBeforeItComes)
{
    Bytes length(4);
    putInt32(length, 0, (1 << 28) + 1);
    EXPECT_FALSE(isTaken(ping, length, 4));
    putInt32(length, 0, -1);
    EXPECT_FALSE(isTaken(ping, length, 4));
    putInt32(length, 0, 1 << 28);
    EXPECT_TRUE(isTaken(ping, length, 4));
}

} // namespace
