// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "connected_client.h"

#include <set>

namespace test_support {
namespace {

using DocumentWrite = ConnectedClient;

TEST_F(DocumentWrite, StoresTheDocumentWithTheIdThatItReturns)
{
    std::string id = "replaced";
    client().write(database(), "c", number("a", 1), id);

    EXPECT_EQ(id.size(), 24U);
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos) << id;
    EXPECT_EQ(scratch().documents("c"),
              std::vector<std::string>{R"({ "_id" : { "$oid" : ")" + id + R"(" }, "a" : 1 })"});
}

TEST_F(DocumentWrite, OfAnEmptyDocumentStoresTheIdAlone)
{
    std::string id;
    client().write(database(), "c", ObjectProperties(), id);

    EXPECT_EQ(scratch().documents("c"), std::vector<std::string>{R"({ "_id" : { "$oid" : ")" + id + R"(" } })"});
}

TEST_F(DocumentWrite, WithoutAnIdParameterStoresOneToo)
{
    client().write(database(), "c", number("a", 1));
    client().write(database() + ".c", number("a", 2));

    EXPECT_EQ(scratch().count("c", R"({"_id": {"$exists": true}})"), 2U);
}

TEST_F(DocumentWrite, GivesEveryDocumentItsOwnId)
{
    std::set<std::string> ids;
    for (int index = 0; index < 50; ++index)
    {
        std::string id;
        client().write(database(), "c", number("a", index), id);
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 50U);
    EXPECT_EQ(scratch().count("c"), 50U);
}

TEST_F(DocumentWrite, KeepsValuesOfEveryType)
{
    ObjectProperties document;
    document.setValueString("string", "text");
    document.setValueBool("bool", true);
    document.setValueInt32("int32", -5);
    document.setValueLongLong("int64", 5'000'000'000);
    document.setValueDouble("double", 1.5);
    document.setValueTime("time", 1'500'000'000'000LL);
    document.setValueId("other", "507f1f77bcf86cd799439011");
    document.setValueBinary("binary", {1, 2, 3});
    document.setValueRegex("regex", "^a", "i");
    document.beginGroup("group");
    document.beginArray("array");
    document.setValueString("0", "x");
    client().write(database(), "c", document);

    EXPECT_EQ(scratch().documents("c", "{}", R"({"projection": {"_id": 0}})"),
              std::vector<std::string>{
                  R"({ "binary" : { "$binary" : { "base64" : "AQID", "subType" : "00" } }, "bool" : true, )"
                  R"("double" : 1.5, "group" : { "array" : [ "x" ] }, "int32" : -5, "int64" : 5000000000, )"
                  R"("other" : { "$oid" : "507f1f77bcf86cd799439011" }, )"
                  R"("regex" : { "$regularExpression" : { "pattern" : "^a", "options" : "i" } }, )"
                  R"("string" : "text", "time" : { "$date" : "2017-07-14T02:40:00Z" } })"});
}

TEST_F(DocumentWrite, WithNamesOfSeveralPartsGoesToThatCollection)
{
    client().write(database() + ".a.b", number("a", 1));

    EXPECT_EQ(scratch().collections(), std::vector<std::string>{"a.b"});
}

TEST_F(DocumentWrite, RejectedByTheServerThrowsItsTextAndCodeAndKeepsTheNewId)
{
    scratch().run(R"({"createIndexes": "c", "indexes": [{"key": {"a": 1}, "name": "a", "unique": true}]})");
    client().write(database(), "c", number("a", 1));

    std::string id = "replaced";
    const std::string text = thrownText([&] { client().write(database(), "c", number("a", 1), id); });

    // The server's own words differ.
    EXPECT_EQ(text.rfind("runtime_error: Error occurred while insert operation: ", 0), 0U) << text;
    EXPECT_NE(text.find("uplicate key"), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 13), "(code: 11000)") << text;
    EXPECT_EQ(id.size(), 24U);
    EXPECT_EQ(scratch().count("c"), 1U);
    client().write(database(), "c", number("a", 2));
    EXPECT_EQ(scratch().count("c"), 2U);
}

} // namespace
} // namespace test_support
