// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Threads with a client each work on collections, cursors, bulk writes and files at the same time. What each thread has
// written must be what it reads, and what is stored at the end.

#include "dbc/collection.h"
#include "dbc/file_store.h"
#include "environment.h"
#include "test_server.h"

#include <gtest/gtest.h>

#include <exception>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using dbc::Bulk;
using dbc::Collection;
using dbc::Cursor;
using dbc::Value;
using test_support::ScratchDatabase;
using test_support::TestServer;

constexpr int threadCount = 6;

void require(bool condition, const std::string& what)
{
    if (!condition)
        throw std::runtime_error(what);
}

/// The document that all threads send, and compare what they receive with. It has enough keys for an index.
Value sharedDocument()
{
    Value document;
    for (int number = 0; number < 40; ++number)
        document.append("key" + std::to_string(number), "a text that is not kept in place " + std::to_string(number));
    document.append("nested", Value{{"list", dbc::array({1, "two", 3.0})}});
    return document;
}

class Worker
{
public:
    Worker(const std::string& database, int number, const Value& shared) : m_number(number), m_shared(shared)
    {
        m_client.connect(TestServer::instance().directUri());
        m_own.emplace(m_client, database, "own" + std::to_string(number));
        m_common.emplace(m_client, database, "common");
        m_store.emplace(m_client, database, "fs" + std::to_string(number));
    }

    void round(int round)
    {
        m_common->insertOne({{"thread", m_number}, {"round", round}, {"document", m_shared}});

        Bulk bulk;
        for (int number = 0; number < 5; ++number)
            bulk.insertOne({{"_id", round * 5 + number}, {"value", number}, {"document", m_shared}});
        bulk.updateMany({{"value", 1}}, {{"$set", {{"changed", round}}}}).removeMany({{"value", 4}});
        const dbc::BulkResult result = m_own->bulkWrite(bulk);
        require(result.inserted == 5 && result.removed == 1, "counts of a bulk write");

        const std::optional<Value> changed =
            m_own->findOneAndUpdate({{"_id", round * 5}}, {{"$set", {{"seen", round}}}});
        require(changed && changed->at("document") == m_shared, "findOneAndUpdate");
        visitWithTwoCursors(round);
        require(m_own->count({}) == 4 * (round + 1), "count");
    }

    void storeAFile()
    {
        const std::string content(1000, static_cast<char>('a' + m_number));
        std::istringstream source(content);
        dbc::UploadOptions options;
        options.chunkSize = 300;
        m_store->upload("f", source, options);
        std::ostringstream target;
        m_store->download("f", target);
        require(target.str() == content, "a stored file");
    }

    /// A cursor outlives its client.
    Cursor openCursor() { return m_own->find({}, inBatchesOf(2)); }

private:
    static dbc::FindOptions inBatchesOf(int count)
    {
        dbc::FindOptions options;
        options.sort = {{"_id"}};
        options.batchSize = count;
        return options;
    }

    void visitWithTwoCursors(int round)
    {
        Cursor own = m_own->find({}, inBatchesOf(3));
        Cursor common = m_common->find({{"thread", m_number}}, inBatchesOf(2));
        int seen = 0;
        while (own.next())
        {
            require(own.value().at("document") == m_shared, "a document of the own collection");
            ++seen;
            if (common.next())
                require(common.value().getOr("thread", -1) == m_number, "a document of another thread");
        }
        require(seen == 4 * (round + 1), "all documents of the own collection");
    }

    int m_number;
    const Value& m_shared;
    DataBaseClient m_client;
    std::optional<Collection> m_own;
    std::optional<Collection> m_common;
    std::optional<dbc::FileStore> m_store;
};

void work(const std::string& database, int number, int rounds, const Value& shared)
{
    std::optional<Worker> worker(std::in_place, database, number, shared);
    for (int round = 0; round < rounds; ++round)
        worker->round(round);
    worker->storeAFile();
    Cursor cursor = worker->openCursor();
    worker.reset();
    int seen = 0;
    while (cursor.next())
        ++seen;
    require(seen == 4 * rounds, "a cursor without its client");
}

// DATABASE_CLIENT_TEST_ROUNDS: how often each thread writes and reads.
TEST(CollectionThreads, WorkAtTheSameTimeWithAClientEach)
{
    const int rounds = static_cast<int>(test_support::environmentNumber("DATABASE_CLIENT_TEST_ROUNDS", 4));
    const ScratchDatabase scratch(TestServer::instance().directUri());
    const DataBaseClient first; // initialises the driver before there are threads
    const Value shared = sharedDocument();
    std::vector<std::exception_ptr> failures(threadCount);
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number)
    {
        threads.emplace_back([&, number] {
            try
            {
                work(scratch.name(), number, rounds, shared);
            }
            catch (...)
            {
                failures[static_cast<std::size_t>(number)] = std::current_exception();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    for (const std::exception_ptr& failure : failures)
    {
        if (failure)
            std::rethrow_exception(failure);
    }
    EXPECT_EQ(scratch.count("common"), static_cast<std::size_t>(threadCount * rounds));
}

} // namespace
