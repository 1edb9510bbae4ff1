// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

class DataBaseClient;

namespace tour {

/// Connects, and asks the server one question, because
/// DataBaseClient::connect() sends nothing.
/// @throws std::runtime_error "Connection failed", or "no answer from the
/// server" with it
void connect(DataBaseClient& client, const std::string& uri,
             const std::string& database);

/// Prints the driver's errors and warnings on standard error, and none of its
/// other messages. FerretDB does not have the command endSessions, and the
/// driver warns of that at every disconnect: this warning is left out as
/// well.
void quietDriverLog();

/// A database that the tour has made on a server: dropped at the end, and
/// also when the tour fails on the way.
class OwnDatabase
{
public:
    OwnDatabase(std::string uri, std::string name);
    OwnDatabase(const OwnDatabase&) = delete;
    OwnDatabase& operator=(const OwnDatabase&) = delete;
    /// Drops what drop() has not.
    ~OwnDatabase();
    /// @throws std::runtime_error with the server's answer
    void drop();

private:
    std::string m_uri;
    std::string m_name;
    bool m_dropped = false;
};

} // namespace tour
