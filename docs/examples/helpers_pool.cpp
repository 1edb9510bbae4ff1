// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A pool of clients for several threads. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/build.h>
#include <dbc/pool.h>
#include <dbc/results.h>

#include <chrono>
#include <thread>
#include <vector>

namespace {

void threads(const std::string& uri, const std::string& database)
{
    section("threads");
    //! [threads]
    dbc::ClientPool pool(uri, 2); // created before the threads
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number)
    {
        threads.emplace_back([&pool, &database, number] {
            const auto client = pool.lease(std::chrono::minutes(1)); // waits while other threads lease both clients
            client->write(database, "numbers", dbc::document({{"n", number}}));
        }); // the destructor of the lease returns the client
    }
    for (std::thread& thread : threads)
        thread.join();

    dbc::Results found;
    pool.lease(std::chrono::minutes(1))->read(database, "numbers", ObjectProperties(), found);
    std::cout << found.size() << " written\n";
    //! [threads]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase database;
    threads(test_support::TestServer::instance().uri(), database.name());
}
