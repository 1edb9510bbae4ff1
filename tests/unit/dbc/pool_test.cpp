// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/pool.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>
#include <set>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using dbc::ClientPool;
using std::chrono::milliseconds;

// A connection string is enough: connecting sends nothing.
const char* const nowhere = "mongodb://127.0.0.1:1/test?serverSelectionTimeoutMS=1";

TEST(ClientPool, ReturnsConnectedClients)
{
    ClientPool pool(nowhere, 2);
    const auto lease = pool.lease(milliseconds(0));
    EXPECT_TRUE(lease->isConnected());
    std::string name;
    lease->getDatabaseName(name);
    EXPECT_EQ(name, "test");
}

TEST(ClientPool, GivesEveryLeaseAClientOfItsOwnUpToTheLimit)
{
    ClientPool pool(nowhere, 2);
    const auto first = pool.lease(milliseconds(0));
    const auto second = pool.lease(milliseconds(0));
    EXPECT_NE(&*first, &*second);
    EXPECT_FALSE(pool.tryLease(milliseconds(1)));
    EXPECT_THROW(pool.lease(milliseconds(1)), std::runtime_error);
}

TEST(ClientPool, TakesAClientBackWhenItsLeaseEnds)
{
    ClientPool pool(nowhere, 1);
    const DataBaseClient* client = nullptr;
    {
        const auto lease = pool.lease(milliseconds(0));
        client = &*lease;
    }
    EXPECT_EQ(&*pool.lease(milliseconds(0)), client);
}

TEST(ClientPool, LeaseThatIsMovedIsReturnedOnce)
{
    ClientPool pool(nowhere, 2);
    {
        auto first = pool.lease(milliseconds(0));
        auto second = std::move(first);
        first = pool.lease(milliseconds(0));
        first = std::move(second);
        EXPECT_TRUE(pool.tryLease(milliseconds(0))) << "the client that the target held is free again";
    }
    const auto one = pool.lease(milliseconds(0));
    const auto two = pool.lease(milliseconds(0));
    EXPECT_NE(&*one, &*two);
}

TEST(ClientPool, WakesTheOneThatWaits)
{
    ClientPool pool(nowhere, 1);
    auto lease = std::make_optional(pool.lease(milliseconds(0)));
    std::thread waiter([&pool] { EXPECT_TRUE(pool.tryLease(std::chrono::minutes(1))); });
    lease.reset();
    waiter.join();
}

TEST(ClientPool, WaitsForTheLongestTimeThereIs)
{
    ClientPool pool(nowhere, 1);
    auto lease = std::make_optional(pool.lease(milliseconds(0)));
    auto waiter = std::async(std::launch::async, [&pool] { return pool.tryLease(milliseconds::max()).has_value(); });
    EXPECT_EQ(waiter.wait_for(milliseconds(100)), std::future_status::timeout) << "it did not wait";
    lease.reset();
    EXPECT_TRUE(waiter.get());
}

TEST(ClientPool, ServesManyThreads)
{
    ClientPool pool(nowhere, 3);
    std::mutex mutex;
    std::set<const DataBaseClient*> leased;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
    {
        threads.emplace_back([&] {
            for (int turn = 0; turn < 100; ++turn)
            {
                const auto lease = pool.lease(std::chrono::minutes(1));
                const DataBaseClient* client = &*lease;
                {
                    const std::lock_guard<std::mutex> lock(mutex);
                    EXPECT_TRUE(leased.insert(client).second) << "leased twice";
                }
                const std::lock_guard<std::mutex> lock(mutex);
                leased.erase(client);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
}

TEST(ClientPool, RefusesToLeaseInAChildProcess)
{
    ClientPool pool(nowhere, 2);
    const auto kept = pool.lease(milliseconds(0));
    const ::pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        try
        {
            pool.lease(milliseconds(0));
            ::_exit(1);
        }
        catch (const std::logic_error&)
        {
            ::_exit(0);
        }
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST(ClientPool, ThrowsForAnInvalidConnectionStringWhenItIsConstructed)
{
    EXPECT_THROW(ClientPool("nonsense", 1), std::runtime_error);
}

} // namespace
