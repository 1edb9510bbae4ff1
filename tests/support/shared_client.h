// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client.h"
#include "test_server.h"

#include <array>
#include <streambuf>
#include <string>

namespace test_support {

/// A client that all tests of a program share, connected at the first call.
inline DataBaseClient& sharedClient(const std::string& uri = TestServer::instance().uri())
{
    static DataBaseClient client;
    if (!client.isConnected())
        client.connect(uri);
    return client;
}

/// The database of these tests.
inline ScratchDatabase& sharedScratch()
{
    sharedClient(); // made first: the library ends the driver after everything that was made later is gone
    static ScratchDatabase database;
    return database;
}

/// Source and target of a stream that needs no memory: a string stream would keep a failed allocation to itself.
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
