// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client.h"
#include "database_client/database_client_d.h"
#include "database_client/shared_client.h"

#include <memory>
#include <stdexcept>

namespace dbc {

/// Access to the private part of a DataBaseClient for the classes in namespace dbc: its checks and the driver's client.
class ClientAccess
{
public:
    explicit ClientAccess(DataBaseClient& client)
        : m_client(&client), m_private(client.d.get()), m_lifetime(m_private->m_client.lifetime())
    {}

    /// Makes the checks that every operation starts with, and returns the driver's client.
    /// @throws std::logic_error       the DataBaseClient no longer exists
    /// @throws std::invalid_argument  it is not connected
    const std::shared_ptr<mongoc_client_t>& connected() const
    {
        checkLifetime();
        m_private->check_connection();
        return m_private->m_client.share();
    }

    /// @throws std::logic_error the DataBaseClient no longer exists
    DataBaseClient& client() const
    {
        checkLifetime();
        return *m_client;
    }

private:
    void checkLifetime() const
    {
        if (m_lifetime.expired())
            throw std::logic_error("The client of this object no longer exists");
    }

    DataBaseClient* m_client;
    const DataBaseClientPrivate* m_private;
    std::weak_ptr<const void> m_lifetime;
};

} // namespace dbc
