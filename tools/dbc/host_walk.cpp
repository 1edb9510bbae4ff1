// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "host_walk.h"

#include "database_client.h"
#include "dbc/connection_string.h"
#include "dbc/database.h"
#include "dbc/value.h"

#include <netdb.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::int32_t stepTimeout = 5000; // milliseconds

struct FreeAddresses
{
    void operator()(addrinfo* addresses) const noexcept { ::freeaddrinfo(addresses); }
};
struct DestroySocket
{
    void operator()(mongoc_socket_t* socket) const noexcept { mongoc_socket_destroy(socket); }
};
struct DestroyStream
{
    void operator()(mongoc_stream_t* stream) const noexcept { mongoc_stream_destroy(stream); }
};
using SocketHandle = std::unique_ptr<mongoc_socket_t, DestroySocket>;
using StreamHandle = std::unique_ptr<mongoc_stream_t, DestroyStream>;
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

// Returns null and reports the failure if the name does not resolve.
Addresses resolve(const mongoc_host_list_t& host)
{
    addrinfo hints = {};
    hints.ai_family = host.family;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int status = ::getaddrinfo(host.host, std::to_string(host.port).c_str(), &hints, &found);
    if (status != 0)
    {
        reportFailure("address", std::string(host.host) + ": " + ::gai_strerror(status), "check the host name");
        return nullptr;
    }
    reportSuccess("address", std::string(host.host) + " resolves");
    return Addresses(found);
}

StreamHandle connectTo(const sockaddr* address, socklen_t length)
{
    SocketHandle socket(mongoc_socket_new(address->sa_family, SOCK_STREAM, 0));
    const std::int64_t end = bson_get_monotonic_time() + std::int64_t{1000} * stepTimeout;
    if (!socket || mongoc_socket_connect(socket.get(), address, length, end) != 0)
        return nullptr;
    return StreamHandle(mongoc_stream_socket_new(socket.release()));
}

StreamHandle connectToPath(const char* path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path, std::min(std::strlen(path), sizeof address.sun_path - 1));
    return connectTo(reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

StreamHandle connectToFirst(const addrinfo* addresses)
{
    StreamHandle stream;
    for (const addrinfo* address = addresses; address && !stream; address = address->ai_next)
        stream = connectTo(address->ai_addr, address->ai_addrlen);
    return stream;
}

// The result has pointers to strings that @p uri owns.
mongoc_ssl_opt_t tlsOptionsOf(const mongoc_uri_t& uri)
{
    const bool isInsecure = mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSINSECURE, false);
    mongoc_ssl_opt_t options = {};
    options.pem_file = mongoc_uri_get_option_as_utf8(&uri, MONGOC_URI_TLSCERTIFICATEKEYFILE, nullptr);
    options.pem_pwd = mongoc_uri_get_option_as_utf8(&uri, MONGOC_URI_TLSCERTIFICATEKEYFILEPASSWORD, nullptr);
    options.ca_file = mongoc_uri_get_option_as_utf8(&uri, MONGOC_URI_TLSCAFILE, nullptr);
    options.weak_cert_validation =
        mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSALLOWINVALIDCERTIFICATES, isInsecure);
    options.allow_invalid_hostname =
        mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSALLOWINVALIDHOSTNAMES, isInsecure);
    return options;
}

bool agreeOnTls(const mongoc_uri_t& uri, const mongoc_host_list_t& host, StreamHandle plain)
{
    const std::string place = host.host_and_port;
    mongoc_ssl_opt_t options = tlsOptionsOf(uri);
    StreamHandle encrypted(mongoc_stream_tls_new_with_hostname(plain.get(), host.host, &options, 1));
    if (!encrypted)
    {
        return reportFailure("tls", place + ": TLS cannot be set up",
                             "check the files of tlsCAFile and tlsCertificateKeyFile");
    }
    static_cast<void>(plain.release()); // owned by the TLS stream now
    bson_error_t error{};
    if (mongoc_stream_tls_handshake_block(encrypted.get(), host.host, stepTimeout, &error))
    {
        reportSuccess("tls", place + ": handshake succeeded");
        return true;
    }
    return reportFailure("tls", place + ": " + error.message,
                         "check tlsCAFile, the host name in the certificate, and that the server supports TLS");
}

// Returns a connection string with the TLS options of @p uri, but without credentials: isMaster needs no login.
std::string uriOfOneHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host)
{
    std::string text = "mongodb://";
    text.append(host.family == AF_UNIX ? dbc::percentEncoded(host.host) : host.host_and_port);
    text.append("/?directConnection=true");
    const auto add = [&text](const char* option, const std::string& value) {
        text.append("&").append(option).append("=").append(dbc::percentEncoded(value));
    };
    for (const char* const limit :
         {MONGOC_URI_CONNECTTIMEOUTMS, MONGOC_URI_SOCKETTIMEOUTMS, MONGOC_URI_SERVERSELECTIONTIMEOUTMS})
        add(limit, std::to_string(stepTimeout));
    for (const char* const option : {MONGOC_URI_TLS, MONGOC_URI_TLSINSECURE, MONGOC_URI_TLSALLOWINVALIDCERTIFICATES,
                                     MONGOC_URI_TLSALLOWINVALIDHOSTNAMES})
    {
        if (mongoc_uri_get_option_as_bool(&uri, option, false))
            add(option, "true");
    }
    for (const char* const option :
         {MONGOC_URI_TLSCAFILE, MONGOC_URI_TLSCERTIFICATEKEYFILE, MONGOC_URI_TLSCERTIFICATEKEYFILEPASSWORD})
    {
        if (const char* const value = mongoc_uri_get_option_as_utf8(&uri, option, nullptr))
            add(option, value);
    }
    return text;
}

} // namespace

void reportSuccess(const std::string& step, const std::string& text)
{
    std::cout << "ok    " << step << ": " << text << '\n';
}

bool reportFailure(const std::string& step, const std::string& text, const std::string& advice)
{
    std::cout << "fail  " << step << ": " << text << "; " << advice << '\n';
    return false;
}

HostState lookAtHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host)
{
    StreamHandle stream;
    if (host.family == AF_UNIX)
        stream = connectToPath(host.host);
    else if (const Addresses addresses = resolve(host))
        stream = connectToFirst(addresses.get());
    else
        return HostState::Unresolved;
    if (!stream)
    {
        reportFailure("port", std::string(host.host_and_port) + " refuses connections or does not respond",
                      "check that the server runs and that no firewall blocks the port");
        return HostState::Unreachable;
    }
    reportSuccess("port", std::string(host.host_and_port) + " accepts connections");
    return !mongoc_uri_get_tls(&uri) || agreeOnTls(uri, host, std::move(stream)) ? HostState::Good
                                                                                 : HostState::Unreachable;
}

std::vector<std::string> membersNamedBy(const mongoc_uri_t& uri, const mongoc_host_list_t& host)
{
    std::vector<std::string> members;
    try
    {
        DataBaseClient client;
        client.connect(uriOfOneHost(uri, host));
        // All server versions have isMaster.
        const dbc::Value hello = dbc::Database(client, "admin").command({{"isMaster", 1}});
        for (const char* const list : {"hosts", "passives", "arbiters"})
        {
            const auto names = hello.get<std::vector<std::string>>(list).value_or(std::vector<std::string>());
            members.insert(members.end(), names.begin(), names.end());
        }
    }
    catch (const std::runtime_error&) // without the list, only the hosts of the connection string are checked
    {}
    return members;
}
