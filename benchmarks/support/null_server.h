// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "wire_gateway.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A server that sends prepared replies and stores nothing. It runs in its own threads of this process, so the CPU time
/// of the client's thread contains only the work of the client.
class NullServer
{
public:
    NullServer();

    std::string uri() const { return m_gateway.uri(); }
    /// Replies to each insert as if it had stored @p documents.
    void answerInserts(std::size_t documents);
    /// Replies to the next find and its getMores with @p batches batches of @p perBatch copies of @p document.
    void answerFind(const std::vector<std::uint8_t>& document, std::size_t batches, std::size_t perBatch);

private:
    void answerHandshakes();

    test_support::WireGateway m_gateway;
};
