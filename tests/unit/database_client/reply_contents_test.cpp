// Replies that are well formed and still end the process inside the driver, beside such as it can take.

#include "database_client/reply_contents.h"

#include "bson_bytes.h"
#include "bson_rewrite.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using test_support::BorrowedBson;
using test_support::bsonFromJson;

bool isTaken(const std::string& json, bool listsIndexes = false, bool usesScram = true)
{
    const BorrowedBson reply(bsonFromJson(json));
    return isHarmless(*reply.get(), {listsIndexes, usesScram});
}

struct ReplyRow
{
    const char* name;
    const char* harmless;
    const char* harmful;
};

void PrintTo(const ReplyRow& row, std::ostream* out)
{
    *out << row.name;
}

const ReplyRow replies[] = {
    {"CodeOfAnError", R"({"ok": 0, "code": 13})", R"({"ok": 0, "code": 0})"},
    {"CodeOfAnErrorAsDouble", R"({"ok": 0, "code": 1.5})", R"({"ok": 0, "code": 0.5})"},
    {"CodeOfAnErrorBeyond32Bits", R"({"code": {"$numberLong": "4294967297"}})",
     R"({"code": {"$numberLong": "4294967296"}})"},
    {"CodeThatIsNoNumber", R"({"code": "0"})", R"({"code": {"$numberLong": "0"}})"},
    {"CodeOfASuccess", R"({"ok": 1, "code": 1})", R"({"ok": 1, "code": 0})"},
    {"WriteConcernError", R"({"ok": 1, "writeConcernError": {"code": 64, "errmsg": "late"}})",
     R"({"ok": 1, "writeConcernError": "late"})"},
    {"CodeOfAWriteConcernError", R"({"writeConcernError": {"code": 64}})", R"({"writeConcernError": {"code": 0}})"},
    {"TextOfAWriteConcernError", R"({"writeConcernError": {"errmsg": ""}})", R"({"writeConcernError": {"errmsg": 1}})"},
    {"WriteErrors", R"({"writeErrors": [{"index": 0, "code": 0, "errmsg": "no"}]})",
     R"({"writeErrors": [{"errmsg": "no"}, {"errmsg": null}]})"},
    {"ErrorLabels", R"({"errorLabels": ["RetryableWriteError", 1]})", R"({"errorLabels": "RetryableWriteError"})"},
    {"NamespaceOfACursor", R"({"cursor": {"id": 0, "ns": "d.c", "firstBatch": []}})",
     R"({"cursor": {"id": 0, "ns": 1, "firstBatch": []}})"},
    {"NamespaceWithSeveralDots", R"({"cursor": {"ns": "d.$cmd.aggregate"}})", R"({"cursor": {"ns": "d"}})"},
    {"NamespaceWithoutDatabase", R"({"cursor": {"ns": "d..c"}})", R"({"cursor": {"ns": ".c"}})"},
    {"NamespaceWithoutCollection", R"({"cursor": {"ns": "d.c."}})", R"({"cursor": {"ns": "d."}})"},
    {"NamespaceWithAZeroByte", R"({"cursor": {"ns": "d.c"}})", R"({"cursor": {"ns": "d.c\u0000"}})"},
    {"CursorThatIsNoDocument", R"({"cursor": 1})", R"({"cursor": {"ns": null}})"},
    {"Hosts", R"({"hosts": ["a", "a.example:1", "[::1]", "[::1]:65535", "/tmp/a.sock"]})", R"({"hosts": ["a", 1]})"},
    {"HostWithoutName", R"({"hosts": []})", R"({"hosts": [":27017"]})"},
    {"EmptyHost", R"({"hosts": 1})", R"({"hosts": [""]})"},
    {"PortAboveAll", R"({"hosts": ["a:65535"]})", R"({"hosts": ["a:65536"]})"},
    {"PortOfNoDigits", R"({"hosts": ["a:1"]})", R"({"hosts": ["a:"]})"},
    {"PortZero", R"({"hosts": ["a:01"]})", R"({"hosts": ["a:0"]})"},
    {"NegativePort", R"({"hosts": ["a:1"]})", R"({"hosts": ["a:-1"]})"},
    {"BracketThatIsNotClosed", R"({"hosts": ["[::1]"]})", R"({"hosts": ["[::1"]})"},
    {"BracketThatIsNotOpened", R"({"hosts": ["a"]})", R"({"hosts": ["a]"]})"},
    {"BracketBehindThePort", R"({"hosts": ["a:1"]})", R"({"hosts": ["a:1]"]})"},
    {"TextBehindTheBracket", R"({"hosts": ["[::1]:1"]})", R"({"hosts": ["[::1]a"]})"},
    {"NothingInTheBrackets", R"({"hosts": ["[:]"]})", R"({"hosts": ["[]"]})"},
    {"Passives", R"({"passives": ["a:1"]})", R"({"passives": [{}]})"},
    {"Arbiters", R"({"arbiters": ["a:1"]})", R"({"arbiters": [true]})"},
    {"Tags", R"({"tags": {"dc": "east"}})", R"({"tags": {"dc": 1}})"},
    {"Compression", R"({"compression": ["zlib"]})", R"({"compression": [1]})"},
    {"SpeculativeAuthentication",
     R"({"speculativeAuthenticate": {"payload": {"$binary": {"base64": "cj1hLHM9Yg==", "subType": "0"}}}})",
     R"({"speculativeAuthenticate": 1})"},
    {"PayloadOfASpeculativeAuthentication", R"({"speculativeAuthenticate": {"payload": 1}})",
     R"({"speculativeAuthenticate": {"payload": {"$binary": {"base64": "cg==", "subType": "0"}}}})"},
};

class ReplyContents : public testing::TestWithParam<ReplyRow>
{};

TEST_P(ReplyContents, ThatTheDriverDoesNotSurviveAreTold)
{
    EXPECT_TRUE(isTaken(GetParam().harmless));
    EXPECT_TRUE(isTaken(GetParam().harmless, true));
    EXPECT_FALSE(isTaken(GetParam().harmful));
    EXPECT_FALSE(isTaken(GetParam().harmful, true));
}

INSTANTIATE_TEST_SUITE_P(Fields, ReplyContents, testing::ValuesIn(replies), RowName());

TEST(ReplyContents, OfAHostNameAreAsLongAsOneMayBe)
{
    EXPECT_TRUE(isTaken(R"({"hosts": [")" + std::string(255, 'a') + R"(:1"]})"));
    EXPECT_FALSE(isTaken(R"({"hosts": [")" + std::string(256, 'a') + R"("]})"));
}

struct ScramRow
{
    const char* name;
    const char* message;
    bool isTaken;
};

void PrintTo(const ScramRow& row, std::ostream* out)
{
    *out << row.name;
}

const ScramRow messages[] = {
    {"Empty", "", true},
    {"First", "r=nonce,s=c2FsdA==,i=4096", true},
    {"Final", "v=c2ln", true},
    {"Error", "e=other-error", true},
    {"CommaAtTheEnd", "r=a,", true},
    {"EmptyValue", "r=,s=,v=", true},
    {"NameAtTheEnd", "r=a,s", false},
    {"NoName", "r=a,,s=b", false},
    {"NoEqualsSign", "ra", false},
    {"NoIterations", "i=", false},
    {"IterationsThatAreNoNumber", "i=x", false},
    {"IterationsWithASign", "i=-1", false},
    {"IterationsWithMoreBehind", "i=4096x", false},
};

class ScramMessage : public testing::TestWithParam<ScramRow>
{};

TEST_P(ScramMessage, IsTakenWhenItsAttributesAre)
{
    bson_t reply = BSON_INITIALIZER;
    const std::string message = GetParam().message;
    BSON_APPEND_BINARY(&reply, "payload", BSON_SUBTYPE_BINARY, reinterpret_cast<const std::uint8_t*>(message.data()),
                       static_cast<std::uint32_t>(message.size()));
    EXPECT_EQ(isHarmless(reply, {false, true}), GetParam().isTaken);
    EXPECT_TRUE(isHarmless(reply, {false, false}));
    bson_destroy(&reply);
}

INSTANTIATE_TEST_SUITE_P(Messages, ScramMessage, testing::ValuesIn(messages), RowName());

TEST(ReplyContents, OfASpeculativeAuthenticationAreADocumentWhateverTheMechanism)
{
    EXPECT_FALSE(isTaken(R"({"speculativeAuthenticate": 1})", false, false));
    EXPECT_TRUE(isTaken(R"({"speculativeAuthenticate": {"payload": {"$binary": {"base64": "cg==", "subType": "0"}}}})",
                        false, false));
}

TEST(ReplyContents, OfAnIndexListHaveKeysThatAreDocuments)
{
    EXPECT_TRUE(isTaken(R"({"cursor": {"ns": "d.c", "firstBatch": [{"key": {"a": 1}}, {"name": "n"}]}})", true));
    EXPECT_FALSE(isTaken(R"({"cursor": {"ns": "d.c", "firstBatch": [{"key": {"a": 1}}, {"key": 1}]}})", true));
    EXPECT_FALSE(isTaken(R"({"cursor": {"ns": "d.c", "nextBatch": [{"key": []}]}})", true));
}

TEST(ReplyContents, OfStoredDocumentsMayBeAnything)
{
    EXPECT_TRUE(isTaken(R"({"cursor": {"ns": "d.c", "firstBatch": [{"key": 1, "code": 0, "ns": 1, "hosts": [1],
                            "errmsg": null, "writeConcernError": 0, "payload": {"$binary": {"base64": "cg==",
                            "subType": "0"}}}]}, "ok": 1.0})"));
}

} // namespace
