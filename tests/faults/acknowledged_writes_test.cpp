// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Writes through a connection with random faults at random times. Every acknowledged write must be stored.
//
// DATABASE_CLIENT_TEST_FAULTS: number of faults. DATABASE_CLIENT_TEST_SEED: start value of the random numbers.

#include "connection_options.h"
#include "database_client.h"
#include "dbc/results.h"
#include "environment.h"
#include "object_properties.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using test_support::Bytes;
using test_support::environmentNumber;
using test_support::Fault;
using test_support::ScratchDatabase;
using test_support::TestServer;
using test_support::WireGateway;
using test_support::withOptions;

Fault chosen(std::mt19937_64& random)
{
    switch (random() % 9)
    {
    case 0:
        return Fault::dropBeforeForwarding();
    case 1:
        return Fault::dropAfterForwarding();
    case 2:
        return Fault::cutReply(random() % 60);
    case 3:
        return Fault::answer(R"({"ok": 0, "errmsg": "not primary", "code": 10107, "codeName": "NotWritablePrimary"})");
    case 4:
        return Fault::answer(R"({"ok": 1, "n": 0, "writeErrors": [{"index": 0, "code": 11000, "errmsg": "taken"}]})");
    case 5:
        return Fault::replaceReply(R"({"ok": 0, "errmsg": "interrupted", "code": 11601})");
    case 6:
        return Fault::replaceReply(
            R"({"ok": 1, "n": 1, "writeConcernError": {"code": 64, "errmsg": "waiting for replication timed out"}})");
    case 7:
        // Too short for a document, so the driver rejects it. A longer reply that ends inside its document would make
        // libmongoc 1.23 read beyond the end, which can end the process.
        return Fault::shortenReply(16 + random() % 4);
    default:
        return Fault::rawReply(Bytes{1, 2, 3});
    }
}

TEST(AcknowledgedWrites, AreAllFoundWhateverHappensToTheConnection)
{
    WireGateway& gateway = TestServer::instance().gateway();
    ScratchDatabase database;
    DataBaseClient client;
    client.connect(withOptions(TestServer::instance().uri(), "socketTimeoutMS=2000&serverSelectionTimeoutMS=5000"));
    const auto seed = environmentNumber("DATABASE_CLIENT_TEST_SEED", 1);
    const auto faults = environmentNumber("DATABASE_CLIENT_TEST_FAULTS", 20);
    std::mt19937_64 random(seed);
    std::vector<std::string> acknowledged;
    std::size_t failures = 0;
    for (std::size_t i = 0; i < faults; ++i)
    {
        gateway.inject(chosen(random).onCommand("insert").number(1 + random() % 3));
        for (int write = 0; write < 4; ++write)
        {
            std::string id;
            const std::string text =
                test_support::thrownText([&] { client.write(database.name(), "c", ObjectProperties(), id); });
            if (text.empty())
                acknowledged.push_back(id);
            else
            {
                ++failures;
                EXPECT_EQ(text.rfind("runtime_error: Error occurred while insert operation: ", 0), 0U)
                    << "seed " << seed << ", fault " << i << ": " << text;
            }
            EXPECT_EQ(id.size(), 24U);
        }
        gateway.clearFaults();
    }
    EXPECT_GE(failures, faults) << "every fault is noticed";

    DataBaseClient reader; // a new client, because the driver pauses after a fault
    reader.connect(TestServer::instance().uri());
    dbc::Results results;
    reader.read(database.name(), "c", ObjectProperties(), results);
    std::set<std::string> stored;
    for (const ObjectProperties& result : results)
        stored.insert(result.valueAsId("_id", ""));
    for (const auto& id : acknowledged)
        EXPECT_EQ(stored.count(id), 1U) << "seed " << seed << ": " << id << " was acknowledged and is lost";
    EXPECT_LE(stored.size(), acknowledged.size() + failures);
}

} // namespace
