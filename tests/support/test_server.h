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

/// Asks the server at @p uri. @throws std::runtime_error  it does not answer
ServerKind serverKindAt(const std::string& uri);
/// What a gateway in front of such a server has to change.
WireGateway::Rewrite rewriteFor(ServerKind kind);

/// The server that scripts/with-server put into the environment, behind one gateway for each of its two addresses.
class TestServer
{
public:
    /// The one of this process, made at the first call.
    /// @throws std::runtime_error  the environment names no server: run the test through scripts/with-server.
    static TestServer& instance();

    ServerKind kind() const { return m_kind; }
    /// Any version: every user may read and write, and has neither roles nor custom data.
    bool isFerretDb() const { return m_kind != ServerKind::MongoDb; }

    /// In front of the server without authentication, and in front of the one that knows users, as root.
    WireGateway& gateway() { return m_gateway; }
    WireGateway& authGateway() { return m_authGateway; }
    std::string uri() const { return m_gateway.uri(); }
    std::string authUri() const { return m_authGateway.uri(); }

    /// The servers themselves, past the gateways.
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

/// A database of its own name, read and written past the gateway, and dropped with its users at the end of the block.
/// Some servers have users for all databases together: name users with userName().
/// Documents are texts in extended JSON, going in and coming out relaxed.
class ScratchDatabase
{
public:
    /// On the server without authentication.
    ScratchDatabase();
    /// On another one, directAuthUri() say.
    explicit ScratchDatabase(const std::string& uri);
    ~ScratchDatabase();
    ScratchDatabase(const ScratchDatabase&) = delete;
    ScratchDatabase& operator=(const ScratchDatabase&) = delete;

    const std::string& name() const { return m_name; }
    mongoc_client_t* client() const { return m_client.get(); }
    /// A user name that no other test has. The user is dropped with the database.
    std::string userName(const std::string& name);

    /// All of these throw std::runtime_error with the driver's text when the server refuses.
    void insert(const std::string& collection, const std::string& document);
    std::vector<std::string> documents(const std::string& collection, const std::string& filter = "{}",
                                       const std::string& options = R"({"sort": {"_id": 1}})") const;
    std::vector<Bytes> documentBytes(const std::string& collection, const std::string& filter = "{}",
                                     const std::string& options = R"({"sort": {"_id": 1}})") const;
    std::size_t count(const std::string& collection, const std::string& filter = "{}") const;
    std::vector<std::string> collections() const; ///< in the order of their names
    /// Runs a command on this database and gives the server's reply.
    std::string run(const std::string& command) const;

private:
    ClientHandle m_client;
    std::string m_name;
    std::vector<std::string> m_users;
};

/// A server of the test's own, of the same program, to be ended and started again on the same port with the same data.
/// The thread that starts it must not end before it: the server is killed with that thread.
class ServerProcess
{
public:
    /// Whether there is a program to start; not so with a server given by MONGODB_URI.
    static bool available();

    /// Paths of files in PEM form.
    struct Tls
    {
        std::string certificate;
        std::string key;
        std::string authority;
    };

    /// Starts it and waits until it takes connections.
    ServerProcess();
    /// The same, but it takes connections with TLS only. uri() does not ask for TLS: that is for the test to add.
    explicit ServerProcess(Tls tls);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    std::string uri() const;
    std::uint16_t port() const { return m_port; }
    WireGateway::Rewrite rewrite() const;
    /// Ends it; connections to it are then refused.
    void stop();
    void start();

private:
    std::vector<std::string> commandLine() const;

    std::string m_directory;
    Tls m_tls; // empty: without
    std::uint16_t m_port = 0;
    FileDescriptor m_reservation; // the port stays ours while no server listens on it
    pid_t m_process = -1;
};

} // namespace test_support
