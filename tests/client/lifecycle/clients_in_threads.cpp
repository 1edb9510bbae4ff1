// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// After the first client was made, every thread makes and uses one of its own.

#include "database_client.h"
#include "dbc/results.h"
#include "driver_calls.h"
#include "server.h"

#include <atomic>
#include <thread>
#include <vector>

int main()
{
    constexpr int threadCount = 4;
    driver_calls::expect(1, threadCount + 1);
    DataBaseClient::instance()->connect(serverUri());
    std::atomic<int> finished{0};
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int index = 0; index < threadCount; ++index)
    {
        threads.emplace_back([&finished] {
            DataBaseClient client;
            client.connect(serverUri());
            for (int round = 0; round < 5; ++round)
            {
                dbc::Results results;
                client.read("lifecycle", "missing", ObjectProperties(), results);
            }
            ++finished;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return finished == threadCount ? 0 : 1;
}
