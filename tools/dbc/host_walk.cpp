#include "host_walk.h"

#include "database_client/mongoc_handles.h"
#include "dbc/connection_string.h"

#include <netdb.h>
#include <sys/un.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <memory>
#include <utility>

namespace {

constexpr std::int32_t stepTimeout = 5000; // milliseconds

struct FreeAddresses
{
    void operator()(addrinfo* addresses) const noexcept { ::freeaddrinfo(addresses); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

// Reports the failure and returns null if the name cannot be resolved.
Addresses resolve(const mongoc_host_list_t& host)
{
    addrinfo hints = {};
    hints.ai_family = host.family;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int status = ::getaddrinfo(host.host, std::to_string(host.port).c_str(), &hints, &found);
    if (status != 0)
    {
        reportFailure("address", std::string(host.host) + ": " + ::gai_strerror(status), "check the name of the host");
        return nullptr;
    }
    reportSuccess("address", std::string(host.host) + " is known");
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

// The texts belong to the connection string.
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
        return reportFailure("tls", place + ": cannot be started",
                             "check the files of tlsCAFile and tlsCertificateKeyFile");
    static_cast<void>(plain.release()); // belongs to the other now
    bson_error_t error{};
    if (mongoc_stream_tls_handshake_block(encrypted.get(), host.host, stepTimeout, &error))
    {
        reportSuccess("tls", place + " agrees on it");
        return true;
    }
    return reportFailure("tls", place + ": " + error.message,
                         "check tlsCAFile, and that the certificate is for this host; or the server has no TLS");
}

// No credentials: hello needs none.
ClientHandle clientOfOneHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host)
{
    const std::string place = host.family == AF_UNIX ? dbc::percentEncoded(host.host) : host.host_and_port;
    const UriHandle one(mongoc_uri_new(("mongodb://" + place + "/?directConnection=true").c_str()));
    if (!one)
        return nullptr;
    mongoc_uri_set_option_as_int32(one.get(), MONGOC_URI_CONNECTTIMEOUTMS, stepTimeout);
    mongoc_uri_set_option_as_int32(one.get(), MONGOC_URI_SOCKETTIMEOUTMS, stepTimeout);
    mongoc_uri_set_option_as_int32(one.get(), MONGOC_URI_SERVERSELECTIONTIMEOUTMS, stepTimeout);
    bson_error_t error{};
    ClientHandle client(mongoc_client_new_from_uri_with_error(one.get(), &error));
    if (client && mongoc_uri_get_tls(&uri))
    {
        const mongoc_ssl_opt_t options = tlsOptionsOf(uri);
        mongoc_client_set_ssl_opts(client.get(), &options);
    }
    return client;
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
        reportFailure("port", std::string(host.host_and_port) + " refuses or does not answer",
                      "check that the server runs and that no firewall stands between");
        return HostState::Unreachable;
    }
    reportSuccess("port", std::string(host.host_and_port) + " answers");
    return !mongoc_uri_get_tls(&uri) || agreeOnTls(uri, host, std::move(stream)) ? HostState::Good
                                                                                 : HostState::Unreachable;
}

std::vector<std::string> membersNamedBy(const mongoc_uri_t& uri, const mongoc_host_list_t& host)
{
    std::vector<std::string> members;
    const ClientHandle client = clientOfOneHost(uri, host);
    OwnedBson hello;
    BSON_APPEND_INT32(hello.get(), "isMaster", 1); // servers of every age have it
    OwnedBson reply;
    if (!client || !mongoc_client_command_simple(client.get(), "admin", hello.get(), nullptr, reply.get(), nullptr))
        return members;
    for (const char* const list : {"hosts", "passives", "arbiters"})
    {
        bson_iter_t iter;
        bson_iter_t member;
        if (!bson_iter_init_find(&iter, reply.get(), list) || !BSON_ITER_HOLDS_ARRAY(&iter) ||
            !bson_iter_recurse(&iter, &member))
            continue;
        while (bson_iter_next(&member))
        {
            if (BSON_ITER_HOLDS_UTF8(&member))
                members.emplace_back(bson_iter_utf8(&member, nullptr));
        }
    }
    return members;
}
