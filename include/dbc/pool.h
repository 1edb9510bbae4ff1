// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// A pool of clients for several threads.

#include "database_client.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace dbc {

/// Leases connected clients to threads. The limit of the constructor is the maximum number of clients; 0 is used as 1.
/// Clients are created when needed and reused. The pool never connects a client again, so do not disconnect a leased
/// client. Create the pool before other threads use the library. End every lease before you destroy the pool.
///
/// Thread-safe. A connection must not be shared with a child process: after `fork`, the child must create its own pool.
/// The pool of the parent throws in the child.
/// @since 1.0
class ClientPool
{
public:
    /// Owns a client until this object is destroyed, and then returns it to the pool.
    class Lease
    {
    public:
        /// Moves the client.
        Lease(Lease&& other) noexcept
            : m_pool(std::exchange(other.m_pool, nullptr)), m_client(std::move(other.m_client))
        {}
        /// Returns its own client to the pool, then moves the client of @p other.
        Lease& operator=(Lease&& other) noexcept
        {
            if (this != &other)
            {
                giveBack();
                m_pool = std::exchange(other.m_pool, nullptr);
                m_client = std::move(other.m_client);
            }
            return *this;
        }
        /// Returns the client to the pool.
        ~Lease() { giveBack(); }

        /// The client.
        DataBaseClient& operator*() const noexcept { return *m_client; }
        /// The client.
        DataBaseClient* operator->() const noexcept { return m_client.get(); }

    private:
        friend class ClientPool;
        Lease(ClientPool& pool, std::unique_ptr<DataBaseClient> client) : m_pool(&pool), m_client(std::move(client)) {}

        void giveBack() noexcept
        {
            if (m_pool)
                m_pool->takeBack(std::move(m_client));
            m_pool = nullptr;
        }

        ClientPool* m_pool;
        std::unique_ptr<DataBaseClient> m_client;
    };

    /// Creates the pool and one client. Sends nothing.
    /// @throws std::runtime_error "Connection failed" if @p uri is not a valid connection string
    ClientPool(std::string uri, std::size_t limit)
        : m_uri(std::move(uri)), m_limit(limit > 0 ? limit : 1), m_owner(::getpid())
    {
        m_idle.reserve(m_limit);
        m_idle.push_back(newClient());
        m_clients = 1;
    }
    ClientPool(const ClientPool&) = delete;
    ClientPool& operator=(const ClientPool&) = delete;

    ~ClientPool()
    {
        // Closing these connections in the child would also close them for the parent.
        if (::getpid() != m_owner)
        {
            for (auto& client : m_idle)
                static_cast<void>(client.release());
        }
    }

    /// Leases a client. Waits up to @p timeout if all clients are leased.
    /// @return empty after a timeout
    /// @throws std::logic_error in a child process of the process that created the pool
    std::optional<Lease> tryLease(std::chrono::milliseconds timeout)
    {
        if (::getpid() != m_owner)
            throw std::logic_error("The pool belongs to the parent process");
        // A longer wait would overflow the clock, and end at once.
        constexpr std::chrono::hours longest(24 * 365);
        std::unique_lock<std::mutex> lock(m_mutex);
        const auto isFree = [this] { return !m_idle.empty() || m_clients < m_limit; };
        if (!m_returned.wait_for(lock, std::min<std::chrono::milliseconds>(timeout, longest), isFree))
            return std::nullopt;
        if (!m_idle.empty())
        {
            auto client = std::move(m_idle.back());
            m_idle.pop_back();
            return Lease(*this, std::move(client));
        }
        auto client = newClient();
        ++m_clients;
        return Lease(*this, std::move(client));
    }

    /// Leases a client. Waits up to @p timeout if all clients are leased.
    /// @throws std::runtime_error "No client was free in time"
    /// @throws std::logic_error   in a child process of the process that created the pool
    Lease lease(std::chrono::milliseconds timeout)
    {
        auto result = tryLease(timeout);
        if (!result)
            throw std::runtime_error("No client was free in time");
        return *std::move(result);
    }

private:
    std::unique_ptr<DataBaseClient> newClient() const
    {
        auto client = std::make_unique<DataBaseClient>();
        client->connect(m_uri);
        return client;
    }

    void takeBack(std::unique_ptr<DataBaseClient> client) noexcept
    {
        if (::getpid() != m_owner)
        {
            static_cast<void>(client.release());
            return;
        }
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_idle.push_back(std::move(client));
        }
        m_returned.notify_one();
    }

    const std::string m_uri;
    const std::size_t m_limit;
    const ::pid_t m_owner;
    std::mutex m_mutex;
    std::condition_variable m_returned;
    std::vector<std::unique_ptr<DataBaseClient>> m_idle;
    std::size_t m_clients = 0;
};

} // namespace dbc
