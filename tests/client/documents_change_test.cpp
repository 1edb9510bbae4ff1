// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include "row_name.h"

namespace test_support {
namespace {

using DocumentUpdate = ConnectedClient;
using DocumentRemove = ConnectedClient;
using Documents = std::vector<std::string>;

struct CommandRow
{
    const char* name;
    UpdateCommand command;
    void (*fill)(ObjectProperties& document);
    const char* before;
    const char* after;
};

void PrintTo(const CommandRow& row, std::ostream* out)
{
    *out << row.name;
}

class UpdateWith : public ConnectedClient, public testing::WithParamInterface<CommandRow>
{};

TEST_P(UpdateWith, ChangesTheDocument)
{
    scratch().insert("c", GetParam().before);
    ObjectProperties document;
    GetParam().fill(document);

    client().update(database(), "c", number("_id", 1), document, UpdateFlagNone, GetParam().command);

    EXPECT_EQ(scratch().documents("c"), Documents{GetParam().after});
}

INSTANTIATE_TEST_SUITE_P(
    Commands, UpdateWith,
    testing::Values(
        CommandRow{"Replace", UpdateCommandReplace, [](ObjectProperties& document) { document.setValueInt32("b", 2); },
                   R"({"_id": 1, "a": 1})", R"({ "_id" : 1, "b" : 2 })"},
        CommandRow{"ReplaceHoldingTheOperatorItself", UpdateCommandReplace,
                   [](ObjectProperties& document) {
                       document.beginGroup("$inc");
                       document.setValueInt32("a", 2);
                   },
                   R"({"_id": 1, "a": 1})", R"({ "_id" : 1, "a" : 3 })"},
        CommandRow{"Rename", UpdateCommandRename, [](ObjectProperties& document) { document.setValueString("a", "b"); },
                   R"({"_id": 1, "a": 1})", R"({ "_id" : 1, "b" : 1 })"},
        CommandRow{"Set", UpdateCommandSet, [](ObjectProperties& document) { document.setValueInt32("b", 2); },
                   R"({"_id": 1, "a": 1})", R"({ "_id" : 1, "a" : 1, "b" : 2 })"},
        CommandRow{"Unset", UpdateCommandUnset, [](ObjectProperties& document) { document.setValueString("b", ""); },
                   R"({"_id": 1, "a": 1, "b": 2})", R"({ "_id" : 1, "a" : 1 })"},
        CommandRow{"AddToSet", UpdateCommandAddToSet,
                   [](ObjectProperties& document) { document.setValueInt32("a", 2); }, R"({"_id": 1, "a": [1]})",
                   R"({ "_id" : 1, "a" : [ 1, 2 ] })"},
        CommandRow{"AddToSetOfAMember", UpdateCommandAddToSet,
                   [](ObjectProperties& document) { document.setValueInt32("a", 1); }, R"({"_id": 1, "a": [1]})",
                   R"({ "_id" : 1, "a" : [ 1 ] })"},
        CommandRow{"Pop", UpdateCommandPop, [](ObjectProperties& document) { document.setValueInt32("a", -1); },
                   R"({"_id": 1, "a": [1, 2]})", R"({ "_id" : 1, "a" : [ 2 ] })"},
        CommandRow{"Pull", UpdateCommandPull, [](ObjectProperties& document) { document.setValueInt32("a", 1); },
                   R"({"_id": 1, "a": [1, 2, 1]})", R"({ "_id" : 1, "a" : [ 2 ] })"},
        CommandRow{"PullAll", UpdateCommandPullAll,
                   [](ObjectProperties& document) {
                       document.beginArray("a");
                       document.setValueInt32("0", 1);
                       document.setValueInt32("1", 2);
                   },
                   R"({"_id": 1, "a": [1, 2, 3]})", R"({ "_id" : 1, "a" : [ 3 ] })"},
        CommandRow{"Push", UpdateCommandPush, [](ObjectProperties& document) { document.setValueInt32("a", 1); },
                   R"({"_id": 1, "a": [1]})", R"({ "_id" : 1, "a" : [ 1, 1 ] })"}),
    RowName());

TEST_F(DocumentUpdate, WithoutAFlagChangesTheFirstMatchOnly)
{
    scratch().insert("c", R"({"_id": 1, "k": 1})");
    scratch().insert("c", R"({"_id": 2, "k": 1})");

    client().update(database(), "c", number("k", 1), number("a", 1), UpdateFlagNone, UpdateCommandSet);

    EXPECT_EQ(scratch().count("c", R"({"a": 1})"), 1U);
}

TEST_F(DocumentUpdate, WithTheMultiFlagChangesEveryMatch)
{
    scratch().insert("c", R"({"_id": 1, "k": 1})");
    scratch().insert("c", R"({"_id": 2, "k": 1})");
    scratch().insert("c", R"({"_id": 3, "k": 2})");

    client().update(database(), "c", number("k", 1), number("a", 1), UpdateFlagMultiUpdate, UpdateCommandSet);

    EXPECT_EQ(scratch().count("c", R"({"a": 1})"), 2U);
}

TEST_F(DocumentUpdate, WithTheUpsertFlagInsertsWhatIsMissing)
{
    client().update(database(), "c", number("_id", 7), number("a", 1), UpdateFlagUpsert, UpdateCommandSet);
    client().update(database(), "c", number("_id", 7), number("a", 2), UpdateFlagUpsert, UpdateCommandSet);

    EXPECT_EQ(scratch().documents("c"), Documents{R"({ "_id" : 7, "a" : 2 })"});
}

TEST_F(DocumentUpdate, WithoutAMatchChangesNothing)
{
    scratch().insert("c", R"({"_id": 1})");

    client().update(database(), "c", number("_id", 2), number("a", 1), UpdateFlagNone, UpdateCommandSet);

    EXPECT_EQ(scratch().documents("c"), Documents{R"({ "_id" : 1 })"});
}

TEST_F(DocumentUpdate, RejectedByTheServerThrowsItsTextAndCode)
{
    scratch().insert("c", R"({"_id": 1, "a": 1})");

    const std::string text = thrownText([&] {
        client().update(database(), "c", number("_id", 1), number("a", 1), UpdateFlagMultiUpdate, UpdateCommandReplace);
    });

    EXPECT_EQ(text.rfind("runtime_error: Updating failed: ", 0), 0U) << text;
    EXPECT_EQ(text.substr(text.size() - 9), "(code: 9)") << text;
    EXPECT_EQ(scratch().documents("c"), Documents{R"({ "_id" : 1, "a" : 1 })"});
}

TEST_F(DocumentRemove, RemovesEveryMatchAndNothingElse)
{
    scratch().insert("c", R"({"_id": 1, "k": 1})");
    scratch().insert("c", R"({"_id": 2, "k": 1})");
    scratch().insert("c", R"({"_id": 3, "k": 2})");

    client().remove(database(), "c", number("k", 1));

    EXPECT_EQ(scratch().documents("c"), Documents{R"({ "_id" : 3, "k" : 2 })"});
}

TEST_F(DocumentRemove, WithAnEmptyQueryRemovesAllDocuments)
{
    scratch().insert("c", R"({"_id": 1})");
    scratch().insert("c", R"({"_id": 2})");

    client().remove(database() + ".c", ObjectProperties());

    EXPECT_EQ(scratch().count("c"), 0U);
}

TEST_F(DocumentRemove, RejectedByTheServerThrowsItsTextAndCode)
{
    scratch().insert("c", R"({"_id": 1})");
    ObjectProperties query;
    query.beginGroup("a");
    query.setValueInt32("$noSuchOperator", 1);

    const std::string text = thrownText([&] { client().remove(database(), "c", query); });

    EXPECT_EQ(text.rfind("runtime_error: Error occurred while remove operation: ", 0), 0U) << text;
    EXPECT_NE(text.find("$noSuchOperator"), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 9), "(code: 2)") << text;
}

} // namespace
} // namespace test_support
