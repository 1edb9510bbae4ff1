// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client.h"
#include "test_server.h"

#include <array>
#include <streambuf>
#include <string>

namespace test_support {

/// Returns a client that all tests of a program share. The first call connects it.
inline DataBaseClient& sharedClient(const std::string& uri = TestServer::instance().uri())
{
    static DataBaseClient client;
    if (!client.isConnected())
        client.connect(uri);
    return client;
}

/// Returns a database that all tests of a program share.
inline ScratchDatabase& sharedScratch()
{
    sharedClient(); // created first: the library cleans up the driver after later static objects were destroyed
    static ScratchDatabase database;
    return database;
}

/// A stream buffer that allocates no memory. A string stream would not throw std::bad_alloc, but set an error state.
class FixedBuffer : public std::streambuf
{
public:
    FixedBuffer()
    {
        setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + 2500);
        setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
    }

private:
    std::array<char, 8192> m_bytes{};
};

} // namespace test_support
