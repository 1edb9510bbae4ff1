// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Documents near and beyond the size limit of a server, and many results.

#include "database_client.h"
#include "dbc/results.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using test_support::ScratchDatabase;
using test_support::TestServer;

constexpr std::size_t limit = std::size_t{16} << 20U; // bytes of one document

// Returns a document that has this number of bytes in BSON when write() has added the "_id".
ObjectProperties documentOf(std::size_t bytes)
{
    // Size of everything except the bytes: length and end of the document, header of the binary "b", and the "_id".
    constexpr std::size_t around = 5 + (1 + 2 + 4 + 1) + (1 + 4 + 12);
    ObjectProperties document;
    document.setValueBinary("b", std::vector<unsigned char>(bytes - around, 7));
    return document;
}

class LargeDocument : public testing::Test
{
protected:
    LargeDocument() { m_client.connect(TestServer::instance().uri()); }

    std::string failureOf(const ObjectProperties& document)
    {
        return test_support::thrownText([&] { m_client.write(m_database.name(), "c", document); });
    }

    ScratchDatabase m_database;
    DataBaseClient m_client;
};

TEST_F(LargeDocument, IsWrittenAndFoundJustBelowTheLimit)
{
    const ObjectProperties document = documentOf(limit - 1024);
    std::string id;
    m_client.write(m_database.name(), "c", document, id);
    dbc::Results results;
    m_client.read(m_database.name(), "c", ObjectProperties(), results);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results.front().valueAsId("_id", ""), id);
    EXPECT_EQ(results.front().valueAsBinary("b", {}), document.valueAsBinary("b", {}));
}

TEST_F(LargeDocument, IsRefusedBeyondTheLimitBeforeAnythingIsSent)
{
    m_client.write(m_database.name(), "c", ObjectProperties());
    TestServer::instance().gateway().clear();
    for (const std::size_t size : {limit + 17 * 1024, 2 * limit, 4 * limit})
    {
        EXPECT_THAT(
            failureOf(documentOf(size)),
            testing::MatchesRegex(
                "runtime_error: Error occurred while insert operation: Document 0 is too large.+\\(code: 18\\)"));
    }
    EXPECT_TRUE(TestServer::instance().gateway().commands("insert").empty());
    EXPECT_EQ(m_database.count("c"), 1U);
    EXPECT_EQ(failureOf(ObjectProperties()), "") << "the client works on";
}

TEST_F(LargeDocument, IsRefusedAsAnUpdateAndNothingIsChanged)
{
    ObjectProperties query;
    query.setValueInt32("n", 1);
    m_client.write(m_database.name(), "c", query);
    const auto update = [&] {
        m_client.update(m_database.name(), "c", query, documentOf(4 * limit), UpdateFlagNone, UpdateCommandSet);
    };
    EXPECT_THROW(update(), std::runtime_error);
    EXPECT_EQ(m_database.count("c", R"({"n": 1, "b": {"$exists": false}})"), 1U);
}

TEST_F(LargeDocument, IsRefusedAsAQueryAndNothingIsFoundOrRemoved)
{
    m_client.write(m_database.name(), "c", ObjectProperties());
    const ObjectProperties query = documentOf(4 * limit);
    dbc::Results results;
    EXPECT_THROW(m_client.read(m_database.name(), "c", query, results), std::runtime_error);
    EXPECT_TRUE(results.empty());
    EXPECT_THROW(m_client.remove(m_database.name(), "c", query), std::runtime_error);
    EXPECT_EQ(m_database.count("c"), 1U);
}

// Inserts with the plain driver, many documents per command, because single writes take minutes.
void insertMany(ScratchDatabase& database, const std::string& collection, int count)
{
    const CollectionHandle target(
        mongoc_client_get_collection(database.client(), database.name().c_str(), collection.c_str()));
    constexpr int batch = 1000;
    for (int first = 0; first < count; first += batch)
    {
        std::vector<std::unique_ptr<OwnedBson>> owned;
        std::vector<const _bson_t*> documents; // without the alignment that a template argument cannot carry
        for (int i = 0; i < batch; ++i)
        {
            owned.push_back(std::make_unique<OwnedBson>());
            BSON_APPEND_INT32(owned.back()->get(), "n", first + i);
            documents.push_back(owned.back()->get());
        }
        bson_error_t error;
        if (!mongoc_collection_insert_many(target.get(), documents.data(), documents.size(), nullptr, nullptr, &error))
            throw std::runtime_error(error.message);
    }
}

TEST_F(LargeDocument, AHundredThousandResultsAllArriveOnce)
{
    constexpr int count = 100000;
    insertMany(m_database, "many", count);
    dbc::Results results;
    m_client.read(m_database.name(), "many", ObjectProperties(), results);
    ASSERT_EQ(results.size(), static_cast<std::size_t>(count));
    std::vector<bool> seen(count);
    for (const ObjectProperties& result : results)
    {
        const int n = result.valueAsInt32("n", -1);
        ASSERT_TRUE(n >= 0 && n < count && !seen[static_cast<std::size_t>(n)]) << n;
        seen[static_cast<std::size_t>(n)] = true;
    }
}

} // namespace
