// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <mongoc/mongoc.h>

#include <string>
#include <vector>

/// Prints the result of one step of `dbc doctor`.
void reportSuccess(const std::string& step, const std::string& text);
/// Prints the result and an advice for the user. @return false
bool reportFailure(const std::string& step, const std::string& text, const std::string& advice);

enum class HostState
{
    Good,
    Unresolved, ///< the host name does not resolve
    Unreachable ///< the port or TLS failed
};

/// Checks name resolution and port of a host, and TLS if the connection string has it. Prints a line for each step.
HostState lookAtHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host);

/// Returns the members of the replica set, as HOST:PORT, that a host lists. Connects only to this host. Empty if the
/// host is not a member of a replica set or does not respond.
std::vector<std::string> membersNamedBy(const mongoc_uri_t& uri, const mongoc_host_list_t& host);
