// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Builds connection strings with percent-encoded user names, passwords, databases and options. Unlike it,
/// DataBaseClient::uri() does not escape anything.

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace dbc {

/// Percent-encodes all bytes except the unreserved characters of RFC 3986.
inline std::string percentEncoded(const std::string& text)
{
    static const char digits[] = "0123456789ABCDEF";
    static const std::string unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    std::string result;
    result.reserve(text.size());
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if (unreserved.find(character) != std::string::npos)
            result += character;
        else
            result.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return result;
}

/// Builds a connection string for DataBaseClient::connect(uri):
///
///     ConnectionString().host("db.example", 27017).user("ada", "p@ss/word").database("shop").tls().text()
///
/// The driver has default values for options that are not set. The parts are not checked: an invalid host name or
/// option is an error in connect(). Not thread-safe.
/// @since 1.0
class ConnectionString
{
public:
    /// Unit of the timeouts.
    using Milliseconds = std::chrono::milliseconds;

    /// Adds a server. Several servers are members of one replica set. Without a call the server is localhost. @p name
    /// is a host name, an IP address, or the percent-encoded path of a Unix domain socket. Adds brackets to an IPv6
    /// address.
    ConnectionString& host(const std::string& name, int port = 27017)
    {
        const bool isAddress6 = name.find(':') != std::string::npos && name.front() != '[';
        m_hosts.push_back((isAddress6 ? "[" + name + "]" : name) + ":" + std::to_string(port));
        return *this;
    }

    /// Sets the credentials. Use authSource() to set the authentication database.
    ConnectionString& user(const std::string& name, const std::string& password)
    {
        m_credentials = percentEncoded(name) + ":" + percentEncoded(password) + "@";
        return *this;
    }

    /// Sets the database that DataBaseClient::getDatabaseName() returns. It is also the authentication database, unless
    /// authSource() is called.
    ConnectionString& database(const std::string& name)
    {
        m_database = percentEncoded(name);
        return *this;
    }

    /// Adds any option of a connection string. Only the value is percent-encoded.
    ConnectionString& option(const std::string& name, const std::string& value)
    {
        m_options.emplace_back(name, percentEncoded(value));
        return *this;
    }

    /// Sets the authentication database.
    ConnectionString& authSource(const std::string& name) { return option("authSource", name); }
    /// Sets the name of the replica set of the hosts.
    ConnectionString& replicaSet(const std::string& name) { return option("replicaSet", name); }
    /// Sets the name of this program in the server's log and statistics.
    ConnectionString& appName(const std::string& name) { return option("appName", name); }
    /// Turns on TLS. The driver verifies the server's certificate with the system's certificate authorities.
    ConnectionString& tls() { return option("tls", "true"); }
    /// Sets a PEM file of certificate authorities. The driver verifies the server's certificate with them.
    ConnectionString& tlsCaFile(const std::string& path) { return option("tlsCAFile", path); }
    /// Sets a PEM file with the client's certificate and private key.
    ConnectionString& tlsCertificateKeyFile(const std::string& path) { return option("tlsCertificateKeyFile", path); }
    /// Sets the connect timeout: the longest wait for a connection to one host and for its first reply.
    ConnectionString& connectTimeout(Milliseconds limit) { return time("connectTimeoutMS", limit); }
    /// Sets the socket timeout: the longest wait for a reply.
    ConnectionString& socketTimeout(Milliseconds limit) { return time("socketTimeoutMS", limit); }
    /// Sets the server selection timeout: the longest wait for a server that can run an operation. Has no effect unless
    /// the option "serverSelectionTryOnce" is "false": by default only connectTimeout() limits the wait.
    ConnectionString& serverSelectionTimeout(Milliseconds limit) { return time("serverSelectionTimeoutMS", limit); }

    /// Returns the connection string.
    std::string text() const
    {
        std::string result = "mongodb://" + m_credentials + (m_hosts.empty() ? "localhost" : "");
        for (const std::string& host : m_hosts)
            result += (&host == &m_hosts.front() ? "" : ",") + host;
        result += "/" + m_database;
        for (const auto& [name, value] : m_options)
            result.append(&name == &m_options.front().first ? "?" : "&").append(name).append("=").append(value);
        return result;
    }

private:
    ConnectionString& time(const char* name, Milliseconds limit) { return option(name, std::to_string(limit.count())); }

    std::vector<std::string> m_hosts;
    std::string m_credentials;
    std::string m_database;
    std::vector<std::pair<std::string, std::string>> m_options;
};

} // namespace dbc
