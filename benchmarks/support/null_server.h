// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "wire_gateway.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Answers a client of this process with prepared replies and stores nothing, in threads of its own: the CPU time of
/// the client's thread is then the client's work alone.
class NullServer
{
public:
    NullServer();

    std::string uri() const { return m_gateway.uri(); }
    /// Answers each insert as if it had stored @p documents.
    void answerInserts(std::size_t documents);
    /// Answers the next find, and what follows it, with @p batches times @p perBatch copies of @p document.
    void answerFind(const std::vector<std::uint8_t>& document, std::size_t batches, std::size_t perBatch);

private:
    void answerHandshakes();

    test_support::WireGateway m_gateway;
};
