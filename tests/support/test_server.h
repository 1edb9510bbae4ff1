// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "mongoc_handles.h"
#include "server_kind.h"
#include "wire_gateway.h"
#include "wire_socket.h"

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace test_support {

/// Sends `buildInfo` to the server at @p uri. @throws std::runtime_error  it does not reply
ServerKind serverKindAt(const std::string& uri);
/// Returns the changes that a gateway must make for such a server.
WireGateway::Rewrite rewriteFor(ServerKind kind);

/// The test server that scripts/with-server has started. It has two addresses, without and with authentication. There
/// is a gateway for each of them.
class TestServer
{
public:
    /// Returns the object of this process. The first call creates it.
    /// @throws std::runtime_error  no server in the environment: run the test with scripts/with-server
    static TestServer& instance();

    ServerKind kind() const { return m_kind; }
    /// True for any version of FerretDB. There, every user may read and write, and has no roles and no custom data.
    bool isFerretDb() const { return m_kind != ServerKind::MongoDb; }

    /// The gateways to the address without authentication, and to the address with authentication as root.
    WireGateway& gateway() { return m_gateway; }
    WireGateway& authGateway() { return m_authGateway; }
    std::string uri() const { return m_gateway.uri(); }
    std::string authUri() const { return m_authGateway.uri(); }

    /// The addresses of the server, without the gateways.
    const std::string& directUri() const { return m_directUri; }
    const std::string& directAuthUri() const { return m_directAuthUri; }

private:
    TestServer();

    std::string m_directUri;
    std::string m_directAuthUri;
    ServerKind m_kind;
    WireGateway m_gateway;
    WireGateway m_authGateway;
};

/// A new database with a unique name. The destructor drops it and its users. Its functions do not use the gateway, so
/// their commands are not recorded. On some servers users belong to all databases: name users with userName().
/// Documents are strings in Extended JSON; returned documents are in the relaxed form.
class ScratchDatabase
{
public:
    /// Uses the server without authentication.
    ScratchDatabase();
    /// Uses another server, such as directAuthUri().
    explicit ScratchDatabase(const std::string& uri);
    ~ScratchDatabase();
    ScratchDatabase(const ScratchDatabase&) = delete;
    ScratchDatabase& operator=(const ScratchDatabase&) = delete;

    const std::string& name() const { return m_name; }
    mongoc_client_t* client() const { return m_client.get(); }
    /// Returns a unique user name. The user is dropped with the database.
    std::string userName(const std::string& name);

    /// The following functions throw std::runtime_error with the driver's text if the server reports an error.
    void insert(const std::string& collection, const std::string& document);
    std::vector<std::string> documents(const std::string& collection, const std::string& filter = "{}",
                                       const std::string& options = R"({"sort": {"_id": 1}})") const;
    std::vector<Bytes> documentBytes(const std::string& collection, const std::string& filter = "{}",
                                     const std::string& options = R"({"sort": {"_id": 1}})") const;
    std::size_t count(const std::string& collection, const std::string& filter = "{}") const;
    std::vector<std::string> collections() const; ///< Sorted by name.
    /// Runs a command on this database and returns the server's reply.
    std::string run(const std::string& command) const;

private:
    ClientHandle m_client;
    std::string m_name;
    std::vector<std::string> m_users;
};

/// A separate server process of the same program. It can be stopped, and started again on the same port with the same
/// data. The thread that calls start() must live longer than the server, because the server is killed with that thread.
class ServerProcess
{
public:
    /// True if there is a program to start. False if the test server was given by MONGODB_URI.
    static bool available();

    /// Paths of files in PEM form.
    struct Tls
    {
        std::string certificate;
        std::string key;
        std::string authority;
    };

    /// Starts the server and waits until it accepts connections.
    ServerProcess();
    /// The same, but the server accepts only connections with TLS. The test must add the TLS options to uri().
    explicit ServerProcess(Tls tls);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    std::string uri() const;
    std::uint16_t port() const { return m_port; }
    WireGateway::Rewrite rewrite() const;
    /// Ends the server. The system then refuses connections to it.
    void stop();
    void start();

private:
    std::vector<std::string> commandLine() const;

    std::string m_directory;
    Tls m_tls; // empty without TLS
    std::uint16_t m_port = 0;
    FileDescriptor m_reservation; // reserves the port while no server listens on it
    pid_t m_process = -1;
};

} // namespace test_support
