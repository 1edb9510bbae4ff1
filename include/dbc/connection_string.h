#pragma once

/// @file
/// Builds connection strings in which every part is percent-encoded, where DataBaseClient::uri escapes nothing.

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace dbc {

/// Percent-encodes everything but the unreserved characters of RFC 3986.
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

/// A connection string, for DataBaseClient::connect(uri):
///
///     ConnectionString().host("db.example", 27017).user("ada", "p@ss/word").database("shop").tls().text()
///
/// Options for which nothing is called are left to the driver.
class ConnectionString
{
public:
    /// Unit of the time limits.
    using Milliseconds = std::chrono::milliseconds;

    /// Adds a server; several are members of one replica set. Without a call: localhost. An IPv6 address is bracketed.
    ConnectionString& host(const std::string& name, int port = 27017)
    {
        const bool isAddress6 = name.find(':') != std::string::npos && name.front() != '[';
        m_hosts.push_back((isAddress6 ? "[" + name + "]" : name) + ":" + std::to_string(port));
        return *this;
    }

    /// Credentials. Give the database that knows the user to authSource().
    ConnectionString& user(const std::string& name, const std::string& password)
    {
        m_credentials = percentEncoded(name) + ":" + percentEncoded(password) + "@";
        return *this;
    }

    /// The database that DataBaseClient::getDatabaseName() answers.
    ConnectionString& database(const std::string& name)
    {
        m_database = percentEncoded(name);
        return *this;
    }

    /// Any option of a connection string.
    ConnectionString& option(const std::string& name, const std::string& value)
    {
        m_options.emplace_back(name, percentEncoded(value));
        return *this;
    }

    /// The database that knows the user.
    ConnectionString& authSource(const std::string& name) { return option("authSource", name); }
    /// Name of the replica set whose members the hosts are.
    ConnectionString& replicaSet(const std::string& name) { return option("replicaSet", name); }
    /// Name under which the server lists this program.
    ConnectionString& appName(const std::string& name) { return option("appName", name); }
    /// Encrypts the connection and checks the server's certificate against the system's authorities.
    ConnectionString& tls() { return option("tls", "true"); }
    /// Checks the server's certificate against the authorities in this PEM file.
    ConnectionString& tlsCaFile(const std::string& path) { return option("tlsCAFile", path); }
    /// Presents the certificate and key in this PEM file to the server.
    ConnectionString& tlsCertificateKeyFile(const std::string& path) { return option("tlsCertificateKeyFile", path); }
    /// Longest wait for a connection to open.
    ConnectionString& connectTimeout(Milliseconds limit) { return time("connectTimeoutMS", limit); }
    /// Longest wait for a reply.
    ConnectionString& socketTimeout(Milliseconds limit) { return time("socketTimeoutMS", limit); }
    /// Longest search for a server that can take an operation.
    ConnectionString& serverSelectionTimeout(Milliseconds limit) { return time("serverSelectionTimeoutMS", limit); }

    /// The connection string.
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
