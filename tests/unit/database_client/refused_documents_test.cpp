// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// What the driver would end the process over becomes the operation's own error. Nothing listens where the clients are
// connected to: an error about servers would mean that something was to be sent.

#include "bson_handles.h"
#include "database_client.h"
#include "database_client/sendable.h"
#include "driver_texts.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "row_name.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <sstream>
#include <string>

namespace {

class RefusedDocument : public testing::Test
{
public:
    template <typename Call>
    static std::string refusal(Call call)
    {
        DataBaseClient client;
        client.connect("mongodb://127.0.0.1:1/?serverSelectionTimeoutMS=1");
        return test_support::thrownText([&] { call(client); });
    }

    static std::string findRefusal(const ObjectProperties& query, const ObjectProperties& projection = {})
    {
        return refusal([&](DataBaseClient& client) {
            std::list<ObjectProperties*> results;
            client.find("d", "c", query, projection, results, 0, 0);
        });
    }

    // Drivers from 1.30 refuse more than 500 levels themselves.
    static bool reachesTheDriver(const std::string& text)
    {
        return text.find("No suitable servers") != text.npos || text.find("nesting depth is too deep") != text.npos;
    }

    static ObjectProperties nested(int levels)
    {
        ObjectProperties document;
        for (int level = 0; level < levels; ++level)
            document.beginGroup("a");
        document.setValueInt32("a", 1);
        return document;
    }
};

struct QueryRow
{
    const char* name;
    void (*fill)(ObjectProperties& query);
};

void PrintTo(const QueryRow& row, std::ostream* out)
{
    *out << row.name;
}

class QueryOfKind : public RefusedDocument, public testing::WithParamInterface<QueryRow>
{};

TEST_P(QueryOfKind, AsTheValueOfDollarQueryIsABadCondition)
{
    ObjectProperties query;
    GetParam().fill(query);

    EXPECT_EQ(findRefusal(query), "invalid_argument: Bad condition");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, QueryOfKind,
    testing::Values(QueryRow{"Undefined", [](ObjectProperties& query) { query.valueAsInt32("$query", 0); }},
                    QueryRow{"Array",
                             [](ObjectProperties& query) {
                                 query.beginArray("$query");
                                 query.endArray();
                             }},
                    QueryRow{"String", [](ObjectProperties& query) { query.setValueString("$query", "text"); }},
                    QueryRow{"Bool", [](ObjectProperties& query) { query.setValueBool("$query", true); }},
                    QueryRow{"Int32", [](ObjectProperties& query) { query.setValueInt32("$query", 1); }},
                    QueryRow{"Int64", [](ObjectProperties& query) { query.setValueLongLong("$query", 1); }},
                    QueryRow{"Double", [](ObjectProperties& query) { query.setValueDouble("$query", 1.5); }},
                    QueryRow{"Time", [](ObjectProperties& query) { query.setValueTime("$query", 1LL); }},
                    QueryRow{"Id",
                             [](ObjectProperties& query) { query.setValueId("$query", "507f1f77bcf86cd799439011"); }},
                    QueryRow{"Binary",
                             [](ObjectProperties& query) {
                                 query.setValueBinary("$query", {1, 2});
                             }},
                    QueryRow{"Regex", [](ObjectProperties& query) { query.setValueRegex("$query", "^a", "i"); }}),
    RowName());

TEST_F(RefusedDocument, QueryWithDollarQueryGoesToTheDriver)
{
    ObjectProperties query;
    query.beginGroup("$query");
    query.setValueInt32("a", 1);
    query.endGroup();

    EXPECT_TRUE(reachesTheDriver(findRefusal(query)));
}

TEST_F(RefusedDocument, NestedDollarQueryGoesToTheServer)
{
    ObjectProperties query;
    query.beginGroup("a");
    query.setValueInt32("$query", 1);

    EXPECT_TRUE(reachesTheDriver(findRefusal(query)));
}

using Client = DataBaseClient;
using Document = ObjectProperties;

struct DeepRow
{
    const char* name;
    const char* text;
    void (*call)(Client&, const Document&);
};

void PrintTo(const DeepRow& row, std::ostream* out)
{
    *out << row.name;
}

class NestedArgument : public RefusedDocument, public testing::WithParamInterface<DeepRow>
{};

TEST_P(NestedArgument, IsRefusedBeforeTheDriverExhaustsTheStack)
{
    for (const int levels : {1001, 20'000})
    {
        const ObjectProperties document = nested(levels);
        EXPECT_EQ(refusal([&](Client& client) { GetParam().call(client, document); }),
                  std::string("invalid_argument: ") + GetParam().text)
            << levels << " levels";
    }
}

TEST_P(NestedArgument, OfAThousandLevelsGoesToTheDriver)
{
    const ObjectProperties document = nested(1000);
    EXPECT_TRUE(reachesTheDriver(refusal([&](DataBaseClient& client) { GetParam().call(client, document); })));
}

const ObjectProperties& empty()
{
    static const ObjectProperties document;
    return document;
}

const DeepRow deepRows[] = {
    {"Write", "Bad properties", [](Client& client, const Document& deep) { client.write("d", "c", deep); }},
    {"WriteWithId", "Bad properties",
     [](Client& client, const Document& deep) {
         std::string id;
         client.write("d", "c", deep, id);
     }},
    {"WriteByFullName", "Bad properties", [](Client& client, const Document& deep) { client.write("d.c", deep); }},
    {"UpdateReplacement", "Bad properties",
     [](Client& client, const Document& deep) {
         client.update("d", "c", empty(), deep, UpdateFlagNone, UpdateCommandReplace);
     }},
    {"UpdateDocument", "Bad properties",
     [](Client& client, const Document& deep) {
         client.update("d", "c", empty(), deep, UpdateFlagNone, UpdateCommandSet);
     }},
    {"UpdateCondition", "Bad condition",
     [](Client& client, const Document& deep) {
         client.update("d", "c", deep, empty(), UpdateFlagNone, UpdateCommandSet);
     }},
    {"Remove", "Bad condition", [](Client& client, const Document& deep) { client.remove("d", "c", deep); }},
    {"RemoveByFullName", "Bad condition", [](Client& client, const Document& deep) { client.remove("d.c", deep); }},
    {"Read", "Bad condition",
     [](Client& client, const Document& deep) {
         std::list<ObjectProperties*> results;
         client.read("d", "c", deep, results);
     }},
    {"ReadByFullName", "Bad condition",
     [](Client& client, const Document& deep) {
         std::list<ObjectProperties*> results;
         client.read("d.c", deep, results);
     }},
    {"FindCondition", "Bad condition",
     [](Client& client, const Document& deep) {
         std::list<ObjectProperties*> results;
         client.find("d", "c", deep, empty(), results, 0, 0);
     }},
    {"FindProjection", "Bad propjection",
     [](Client& client, const Document& deep) {
         std::list<ObjectProperties*> results;
         client.find("d", "c", empty(), deep, results, 0, 0);
     }},
    {"Aggregate", "Bad pipeline",
     [](Client& client, const Document& deep) {
         std::list<ObjectProperties*> results;
         client.aggregate("d", "c", deep, results);
     }},
    {"AddUserRoles", "Bad roles.",
     [](Client& client, const Document& deep) { client.addUser("d", "u", "p", deep, empty()); }},
    {"AddUserCustomData", "Bad custom data",
     [](Client& client, const Document& deep) { client.addUser("d", "u", "p", empty(), deep); }},
    {"AddUserWithoutPasswordRoles", "Bad roles.",
     [](Client& client, const Document& deep) { client.addUser("d", "u", "", deep, empty()); }},
    {"AddUserWithoutPasswordCustomData", "Bad custom data",
     [](Client& client, const Document& deep) { client.addUser("d", "u", "", empty(), deep); }},
    {"UpdateUserRoles", "Bad roles.",
     [](Client& client, const Document& deep) { client.updateUser("d", "u", deep, empty()); }},
    {"UpdateUserCustomData", "Bad custom data",
     [](Client& client, const Document& deep) { client.updateUser("d", "u", empty(), deep); }},
};

INSTANTIATE_TEST_SUITE_P(Operations, NestedArgument, testing::ValuesIn(deepRows), RowName());

TEST_F(RefusedDocument, UpdateNamesTheDocumentBeforeTheCondition)
{
    const ObjectProperties deep = nested(2000);
    EXPECT_EQ(
        refusal([&](DataBaseClient& client) { client.update("d", "c", deep, deep, UpdateFlagNone, UpdateCommandSet); }),
        "invalid_argument: Bad properties");
}

TEST_F(RefusedDocument, UsersNameTheRolesBeforeTheCustomData)
{
    const ObjectProperties deep = nested(2000);
    EXPECT_EQ(refusal([&](DataBaseClient& client) { client.addUser("d", "u", "p", deep, deep); }),
              "invalid_argument: Bad roles.");
    EXPECT_EQ(refusal([&](DataBaseClient& client) { client.updateUser("d", "u", deep, deep); }),
              "invalid_argument: Bad roles.");
}

TEST_F(RefusedDocument, FindNamesTheConditionBeforeTheProjection)
{
    const ObjectProperties deep = nested(2000);
    EXPECT_EQ(findRefusal(deep, deep), "invalid_argument: Bad condition");
}

// No level takes fewer bytes than one under an empty key.
TEST_F(RefusedDocument, DepthUnderEmptyKeysCountsLikeAnyOther)
{
    for (const int levels : {1000, 1001})
    {
        const ObjectProperties document;
        auto node = document.root();
        for (int level = 0; level < levels; ++level)
            node = node->createSingleGroup("");
        const std::string expected = levels > 1000 ? "invalid_argument: Bad condition"
                                                   : "runtime_error: Find error.: Invalid filter: empty key(code: 16)";
        EXPECT_EQ(test_support::inWordsOf123(findRefusal(document)), expected);
    }
}

TEST_F(RefusedDocument, OneDeepBranchIsEnough)
{
    ObjectProperties document = nested(1001);
    document.beginGroup("/b/c");
    document.setValueInt32("/z", 1);

    EXPECT_EQ(findRefusal(document), "invalid_argument: Bad condition");
}

TEST_F(RefusedDocument, PartThatWasWrittenIsWellFormed)
{
    ObjectProperties document = nested(1001);
    document.setValueInt32("/z", 1);
    OwnedBson bson;

    EXPECT_FALSE(appendSendable(document, bson.get()));

    EXPECT_TRUE(bson_has_field(bson.get(), "z"));
    EXPECT_TRUE(BSON_APPEND_INT32(bson.get(), "more", 1));
    EXPECT_TRUE(canBeSent(bson.get()));
}

TEST_F(RefusedDocument, DepthOfBytesHasTheSameLimit)
{
    for (const int levels : {1, 1000, 1001, 100'000})
    {
        OwnedBson bson;
        PropertiesToBson::convert(nested(levels), bson.get());
        EXPECT_EQ(canBeSent(bson.get()), levels <= 1000) << levels << " levels";
    }
}

// The driver's validation calls itself for these documents too.
TEST_F(RefusedDocument, ScopesOfCodeCountAsLevels)
{
    for (const int levels : {1, 1000, 1001, 5000})
    {
        OwnedBson bson;
        for (int level = 0; level < levels; ++level)
        {
            OwnedBson outer;
            BSON_APPEND_CODE_WITH_SCOPE(outer.get(), "", "", bson.get());
            bson_destroy(bson.get());
            bson_copy_to(outer.get(), bson.get());
        }
        EXPECT_EQ(canBeSent(bson.get()), levels <= 1000) << levels << " levels";
    }
}

TEST_F(RefusedDocument, WideAndLongDocumentsOfLittleDepthGoToTheDriver)
{
    ObjectProperties document;
    for (int index = 0; index < 5000; ++index)
    {
        document.beginGroup("g" + std::to_string(index));
        document.setValueString("text", "value");
        document.endGroup();
    }
    EXPECT_TRUE(reachesTheDriver(findRefusal(document)));
}

struct StoreRow
{
    const char* name;
    std::function<void(DataBaseClient&, const std::string&)> call;
};

void PrintTo(const StoreRow& row, std::ostream* out)
{
    *out << row.name;
}

class StoreName : public RefusedDocument, public testing::WithParamInterface<StoreRow>
{};

TEST_P(StoreName, OfMoreThanAHundredAndNineteenBytesIsRefused)
{
    for (const std::size_t length : {120U, 121U, 128U, 100'000U})
    {
        EXPECT_EQ(refusal([&](DataBaseClient& client) { GetParam().call(client, std::string(length, 'n')); }),
                  "runtime_error: Error occurred while mongoc_client_get_gridfs operation: the name of the store is "
                  "longer than 119 bytes");
    }
}

TEST_P(StoreName, OfAHundredAndNineteenBytesGoesToTheDriver)
{
    EXPECT_TRUE(
        reachesTheDriver(refusal([&](DataBaseClient& client) { GetParam().call(client, std::string(119, 'n')); })));
}

INSTANTIATE_TEST_SUITE_P(Operations, StoreName,
                         testing::Values(StoreRow{"ReadFile",
                                                  [](DataBaseClient& client, const std::string& store) {
                                                      std::stringstream content;
                                                      client.readFile("d", store, "f", &content);
                                                  }},
                                         StoreRow{"WriteFile",
                                                  [](DataBaseClient& client, const std::string& store) {
                                                      client.writeFile("d", store, "f", "/dev/null");
                                                  }},
                                         StoreRow{"ListFiles",
                                                  [](DataBaseClient& client, const std::string& store) {
                                                      std::list<std::string> names;
                                                      client.listFiles("d", store, names);
                                                  }},
                                         StoreRow{"RemoveFile",
                                                  [](DataBaseClient& client, const std::string& store) {
                                                      client.removeFile("d", store, "f");
                                                  }}),
                         RowName());

} // namespace
