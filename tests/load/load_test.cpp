// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Threads with a client each write, find, update and remove through the real server. What they keep count of must be
// what is found at the end, and the memory of the process must not grow with the number of operations.

#include "database_client.h"
#include "dbc/results.h"
#include "object_properties.h"
#include "test_server.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Arguments
{
    unsigned threads = 8;
    std::size_t operations = 4000;
    double seconds = 0;
    std::uint64_t seed = 1;
};

struct Counts
{
    std::size_t writes = 0;
    std::size_t finds = 0;
    std::size_t updates = 0;
    std::size_t removals = 0;

    std::size_t all() const { return writes + finds + updates + removals; }
};

void require(bool condition, const std::string& what)
{
    if (!condition)
        throw std::runtime_error(what);
}

/// The resident memory of this process, in bytes.
std::size_t residentMemory()
{
    std::size_t whole = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> whole >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// One thread's client, and what it knows to be stored.
class Worker
{
public:
    Worker(const std::string& uri, const std::string& database, unsigned number, std::uint64_t seed)
        : m_database(database), m_collection("worker" + std::to_string(number)), m_random(seed + number)
    {
        m_client.connect(uri);
    }

    void step()
    {
        constexpr std::size_t most = 50; // so that neither the server's work nor ours grows with time
        const auto choice = m_random() % 4;
        if (m_stored.empty() || (choice == 0 && m_stored.size() < most))
            write();
        else if (choice == 1)
            find();
        else if (choice == 2)
            update();
        else
            remove();
    }

    void checkAll()
    {
        const auto found = read(ObjectProperties());
        require(found.size() == m_stored.size(), m_collection + ": not as many documents as were written");
        for (const auto& document : found)
        {
            const auto entry = m_stored.find(document.valueAsId("_id", ""));
            require(entry != m_stored.end(), m_collection + ": a document that is not known");
            require(document.valueAsLongLong("value", -1) == entry->second, m_collection + ": another value");
        }
    }

    const Counts& counts() const { return m_counts; }
    std::size_t stored() const { return m_stored.size(); }

private:
    using Stored = std::map<std::string, long long>;

    dbc::Results read(const ObjectProperties& query)
    {
        dbc::Results results;
        m_client.read(m_database, m_collection, query, results);
        return results;
    }

    Stored::iterator any()
    {
        return std::next(m_stored.begin(), static_cast<std::ptrdiff_t>(m_random() % m_stored.size()));
    }

    static ObjectProperties byId(const std::string& id)
    {
        ObjectProperties query;
        query.setValueId("_id", id);
        return query;
    }

    void write()
    {
        const auto value = static_cast<long long>(m_random() >> 1U);
        ObjectProperties document;
        document.setValueLongLong("value", value);
        document.setValueString("group/text", "a text of some length, so that it is not kept in place");
        std::string id;
        m_client.write(m_database, m_collection, document, id);
        m_stored[id] = value;
        ++m_counts.writes;
    }

    void find()
    {
        const auto entry = any();
        const auto found = read(byId(entry->first));
        require(found.size() == 1, m_collection + ": a document that was written is not found");
        require(found.begin()->valueAsLongLong("value", -1) == entry->second, m_collection + ": not the last value");
        ++m_counts.finds;
    }

    void update()
    {
        const auto entry = any();
        const auto value = static_cast<long long>(m_random() >> 1U);
        ObjectProperties change;
        change.setValueLongLong("value", value);
        m_client.update(m_database, m_collection, byId(entry->first), change, UpdateFlagNone, UpdateCommandSet);
        entry->second = value;
        ++m_counts.updates;
    }

    void remove()
    {
        const auto entry = any();
        m_client.remove(m_database, m_collection, byId(entry->first));
        m_stored.erase(entry);
        ++m_counts.removals;
    }

    DataBaseClient m_client;
    std::string m_database;
    std::string m_collection;
    std::mt19937_64 m_random;
    Stored m_stored;
    Counts m_counts;
};

/// Runs the workers; the first exception of any of them ends them all.
class Load
{
public:
    Load(const Arguments& arguments, std::vector<std::unique_ptr<Worker>>& workers)
        : m_arguments(arguments), m_workers(workers), m_failures(workers.size())
    {}

    void run()
    {
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < m_workers.size(); ++i)
            threads.emplace_back([this, i] { work(*m_workers[i], m_failures[i]); });
        for (auto& thread : threads)
            thread.join();
        for (const auto& failure : m_failures)
        {
            if (failure)
                std::rethrow_exception(failure);
        }
    }

    /// The most memory used in the second and in the last fifth of the run.
    std::size_t earlyMemory() const { return m_earlyMemory; }
    std::size_t lateMemory() const { return m_lateMemory; }

private:
    using Clock = std::chrono::steady_clock;

    // 0 at the start, 1 at the end.
    double progress() const
    {
        if (m_arguments.seconds > 0)
            return std::chrono::duration<double>(Clock::now() - m_begin).count() / m_arguments.seconds;
        return static_cast<double>(m_done) / static_cast<double>(m_arguments.operations);
    }

    void sampleMemory()
    {
        const double now = progress();
        auto& most = now >= 0.2 && now < 0.4 ? m_earlyMemory : m_lateMemory;
        if (now >= 0.2 && (now < 0.4 || now >= 0.8))
            most = std::max(most.load(), residentMemory());
    }

    void work(Worker& worker, std::exception_ptr& failure)
    {
        constexpr std::size_t pause = 64; // operations between two samples
        try
        {
            while (!m_failed && progress() < 1)
            {
                worker.step();
                if (++m_done % pause == 0)
                    sampleMemory();
            }
        }
        catch (...)
        {
            failure = std::current_exception();
            m_failed = true;
        }
    }

    const Arguments& m_arguments;
    std::vector<std::unique_ptr<Worker>>& m_workers;
    std::vector<std::exception_ptr> m_failures;
    const Clock::time_point m_begin = Clock::now();
    std::atomic<std::size_t> m_done{0};
    std::atomic<bool> m_failed{false};
    std::atomic<std::size_t> m_earlyMemory{0};
    std::atomic<std::size_t> m_lateMemory{0};
};

void requireFlatMemory(const Load& load)
{
    constexpr std::size_t mebibyte = std::size_t{1} << 20U;
    std::cout << "resident memory: " << load.earlyMemory() / mebibyte << " MiB early, " << load.lateMemory() / mebibyte
              << " MiB late\n";
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they keep what was freed
    require(load.lateMemory() < load.earlyMemory() + 16 * mebibyte, "memory grows");
#endif
}

void run(const Arguments& arguments)
{
    test_support::ScratchDatabase database(test_support::TestServer::instance().directUri());
    std::vector<std::unique_ptr<Worker>> workers;
    for (unsigned i = 0; i < arguments.threads; ++i)
    {
        workers.push_back(std::make_unique<Worker>(test_support::TestServer::instance().directUri(), database.name(), i,
                                                   arguments.seed));
    }
    Load load(arguments, workers);
    const auto begin = std::chrono::steady_clock::now();
    load.run();
    const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - begin;

    Counts total;
    std::size_t stored = 0;
    for (const auto& worker : workers)
    {
        worker->checkAll();
        total.writes += worker->counts().writes;
        total.finds += worker->counts().finds;
        total.updates += worker->counts().updates;
        total.removals += worker->counts().removals;
        stored += worker->stored();
    }
    require(total.writes == total.removals + stored, "the counts do not add up");
    std::cout << arguments.threads << " threads, seed " << arguments.seed << ": " << total.all() << " operations ("
              << total.writes << " written, " << total.finds << " found, " << total.updates << " updated, "
              << total.removals << " removed, " << stored << " left) in " << duration.count() << " s, no error\n";
    requireFlatMemory(load);
}

} // namespace

int main(int argc, char** argv)
{
    Arguments arguments;
    CLI::App app("Works on the test server with many threads; run it through scripts/with-server");
    app.add_option("--threads", arguments.threads)->capture_default_str();
    app.add_option("--operations", arguments.operations, "of all threads together")->capture_default_str();
    app.add_option("--seconds", arguments.seconds, "for how long, instead of how many operations");
    app.add_option("--seed", arguments.seed)->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try
    {
        run(arguments);
    }
    catch (const std::exception& error)
    {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
