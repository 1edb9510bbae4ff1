// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/mongoc_handles.h"

#include <cstddef>
#include <memory>
#include <utility>

/// The driver's client of a DataBaseClient; null if not connected. Objects that use the driver's client, such as
/// cursors, can share it, so they stay usable after a disconnect. This class has the size of one pointer, because the
/// size of DataBaseClientPrivate must not change.
class SharedClient
{
public:
    mongoc_client_t* get() const noexcept { return m_state ? m_state->client.get() : nullptr; }
    explicit operator bool() const noexcept { return get() != nullptr; }
    friend bool operator!=(const SharedClient& client, std::nullptr_t) noexcept { return client.get() != nullptr; }

    void reset() noexcept
    {
        if (m_state)
            m_state->client.reset();
    }
    /// Takes ownership of @p client.
    void reset(mongoc_client_t* client)
    {
        ClientHandle owned(client);
        state().client = std::move(owned);
    }

    /// Returns shared ownership of the connected client; empty if not connected.
    const std::shared_ptr<mongoc_client_t>& share() const { return state().client; }
    /// Returns a pointer that expires with this object, connected or not.
    std::weak_ptr<const void> lifetime() const { return state().token; }

private:
    struct State
    {
        std::shared_ptr<mongoc_client_t> client;
        std::shared_ptr<const char> token = std::make_shared<const char>();
    };

    State& state() const
    {
        if (!m_state)
            m_state = std::make_unique<State>();
        return *m_state;
    }

    mutable std::unique_ptr<State> m_state; ///< null until state() is called
};

static_assert(sizeof(SharedClient) == sizeof(mongoc_client_t*), "the size of DataBaseClientPrivate is fixed");
