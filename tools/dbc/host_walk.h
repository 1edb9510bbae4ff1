#pragma once

#include <mongoc/mongoc.h>

#include <string>
#include <vector>

/// Print the result of one step of `dbc doctor`.
void reportSuccess(const std::string& step, const std::string& text);
/// @return false
bool reportFailure(const std::string& step, const std::string& text, const std::string& advice);

enum class HostState
{
    Good,
    Unresolved, ///< its name has no address
    Unreachable ///< the port, or TLS
};

/// Checks one host: name resolution, port, and TLS if the connection string asks for it. Prints a line for each step.
HostState lookAtHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host);

/// The members of the replica set, as HOST:PORT, that a host names. Connects to this host only. Empty if it is not a
/// member of a set or cannot be asked.
std::vector<std::string> membersNamedBy(const mongoc_uri_t& uri, const mongoc_host_list_t& host);
