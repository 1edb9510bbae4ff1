#include "host_walk.h"

#include "database_client/host_addresses.h"
#include "database_client/stream_initiator.h"

#include <iostream>
#include <utility>

namespace {

constexpr std::int32_t patience = 5000; // milliseconds, of each step

// Null, and said, when nobody answers.
StreamHandle reach(const mongoc_host_list_t& host, const addrinfo* addresses)
{
    for (const addrinfo* address = addresses; address; address = address->ai_next)
    {
        SocketHandle socket = socketFor(*address);
        const std::int64_t end = bson_get_monotonic_time() + std::int64_t{1000} * patience;
        if (!socket || mongoc_socket_connect(socket.get(), address->ai_addr, address->ai_addrlen, end) != 0)
            continue;
        good("port", std::string(host.host_and_port) + " answers");
        return StreamHandle(mongoc_stream_socket_new(socket.release()));
    }
    bad("port", std::string(host.host_and_port) + " refuses or does not answer",
        "check that the server runs and that no firewall stands between");
    return nullptr;
}

bool agreeOnTls(const mongoc_uri_t& uri, const mongoc_host_list_t& host, StreamHandle plain)
{
    const std::string place = host.host_and_port;
    mongoc_ssl_opt_t options = tlsOptionsOf(uri);
    StreamHandle encrypted(mongoc_stream_tls_new_with_hostname(plain.get(), host.host, &options, 1));
    if (!encrypted)
        return bad("tls", place + ": cannot be begun", "check the files of tlsCAFile and tlsCertificateKeyFile");
    static_cast<void>(plain.release()); // belongs to the other now
    bson_error_t error{};
    if (mongoc_stream_tls_handshake_block(encrypted.get(), host.host, patience, &error))
    {
        good("tls", place + " agrees on it");
        return true;
    }
    return bad("tls", place + ": " + error.message,
               "check tlsCAFile, and that the certificate is for this host; or the server has no TLS");
}

} // namespace

void good(const std::string& step, const std::string& text)
{
    std::cout << "ok    " << step << ": " << text << '\n';
}

bool bad(const std::string& step, const std::string& text, const std::string& advice)
{
    std::cout << "fail  " << step << ": " << text << "; " << advice << '\n';
    return false;
}

bool lookAtHost(const mongoc_uri_t& uri, const mongoc_host_list_t& host)
{
    const HostAddresses addresses(host);
    if (!addresses.first())
        return bad("address", std::string(host.host) + ": " + addresses.problem(), "check the name of the host");
    if (host.family != AF_UNIX)
        good("address", std::string(host.host) + " is known");
    StreamHandle stream = reach(host, addresses.first());
    if (!stream)
        return false;
    return !mongoc_uri_get_tls(&uri) || agreeOnTls(uri, host, std::move(stream));
}
