#include "host_walk.h"

#include "database_client/mongoc_handles.h"

#include <netdb.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <vector>

namespace {

constexpr std::int32_t patience = 5000; // milliseconds, of each step

struct Address
{
    sockaddr_storage place = {};
    socklen_t length = 0;
};

Address copyOf(const void* place, std::size_t length)
{
    Address address;
    std::memcpy(&address.place, place, length);
    address.length = static_cast<socklen_t>(length);
    return address;
}

Address socketAt(const char* path)
{
    sockaddr_un place = {};
    place.sun_family = AF_UNIX;
    std::memcpy(place.sun_path, path, std::min(std::strlen(path), sizeof place.sun_path - 1));
    return copyOf(&place, sizeof place);
}

struct FreeAddresses
{
    void operator()(addrinfo* addresses) const noexcept { ::freeaddrinfo(addresses); }
};

// Empty, and said, when there is none.
std::vector<Address> addressesOf(const mongoc_host_list_t& host)
{
    if (host.family == AF_UNIX)
        return {socketAt(host.host)};
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* first = nullptr;
    const int status = ::getaddrinfo(host.host, std::to_string(host.port).c_str(), &hints, &first);
    const std::unique_ptr<addrinfo, FreeAddresses> owner(first);
    std::vector<Address> found;
    for (const addrinfo* one = status == 0 ? first : nullptr; one; one = one->ai_next)
        found.push_back(copyOf(one->ai_addr, one->ai_addrlen));
    if (found.empty())
        bad("address", std::string(host.host) + ": " + ::gai_strerror(status), "check the name of the host");
    else
        good("address", std::string(host.host) + " is known");
    return found;
}

// Empty, and said, when nobody answers.
StreamHandle reach(const mongoc_host_list_t& host, const std::vector<Address>& addresses)
{
    for (const Address& address : addresses)
    {
        SocketHandle socket(mongoc_socket_new(address.place.ss_family, SOCK_STREAM, 0));
        const auto* const place = reinterpret_cast<const sockaddr*>(&address.place);
        const std::int64_t end = bson_get_monotonic_time() + std::int64_t{1000} * patience;
        if (!socket || mongoc_socket_connect(socket.get(), place, address.length, end) != 0)
            continue;
        good("port", std::string(host.host_and_port) + " answers");
        return StreamHandle(mongoc_stream_socket_new(socket.release()));
    }
    bad("port", std::string(host.host_and_port) + " refuses or does not answer",
        "check that the server runs and that no firewall stands between");
    return nullptr;
}

mongoc_ssl_opt_t tlsOptionsOf(const mongoc_uri_t& uri)
{
    const bool isInsecure = mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSINSECURE, false);
    mongoc_ssl_opt_t options = *mongoc_ssl_opt_get_default();
    options.pem_file = mongoc_uri_get_option_as_utf8(&uri, MONGOC_URI_TLSCERTIFICATEKEYFILE, nullptr);
    options.pem_pwd = mongoc_uri_get_option_as_utf8(&uri, MONGOC_URI_TLSCERTIFICATEKEYFILEPASSWORD, nullptr);
    options.ca_file = mongoc_uri_get_option_as_utf8(&uri, MONGOC_URI_TLSCAFILE, nullptr);
    options.weak_cert_validation =
        isInsecure || mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSALLOWINVALIDCERTIFICATES, false);
    options.allow_invalid_hostname =
        isInsecure || mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSALLOWINVALIDHOSTNAMES, false);
    return options;
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
    const auto addresses = addressesOf(host);
    if (addresses.empty())
        return false;
    StreamHandle stream = reach(host, addresses);
    if (!stream)
        return false;
    return !mongoc_uri_get_tls(&uri) || agreeOnTls(uri, host, std::move(stream));
}
