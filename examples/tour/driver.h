// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

class DataBaseClient;

namespace tour {

/// Connects, and sends one query, because DataBaseClient::connect() sends
/// nothing.
/// @throws std::runtime_error "Connection failed" or "no answer from the
/// server", each with the reason
void connect(DataBaseClient& client, const std::string& uri,
             const std::string& database);

/// Prints only errors and warnings of the driver, to standard error. Leaves
/// out the warning about endSessions: FerretDB does not have this command, so
/// the driver would log it at every disconnect.
void quietDriverLog();

/// A database that the tour has created. It is dropped at the end, also if
/// the tour fails.
class OwnDatabase
{
public:
    OwnDatabase(std::string uri, std::string name);
    OwnDatabase(const OwnDatabase&) = delete;
    OwnDatabase& operator=(const OwnDatabase&) = delete;
    /// Drops the database, unless drop() was called.
    ~OwnDatabase();
    /// @throws std::runtime_error with the error of the server
    void drop();

private:
    std::string m_uri;
    std::string m_name;
    bool m_dropped = false;
};

} // namespace tour
