// Opens the connections of the driver, as it would itself, so that there is a place to look at what comes through them.

#include "database_client/stream_initiator.h"

#include "database_client/checked_stream.h"
#include "database_client/happy_eyeballs.h"
#include "database_client/host_addresses.h"

#include <strings.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <utility>

// Missing in the driver's headers; null with a driver that does not have it.
extern "C" void driverLogHandler(mongoc_log_func_t* handler, void** data) __asm__("_mongoc_log_get_handler")
    __attribute__((weak));

namespace {

// The driver's own texts for what may go wrong here.
StreamHandle failed(bson_error_t* error, std::uint32_t code, const char* text, const char* detail)
{
    bson_set_error(error, MONGOC_ERROR_STREAM, code, text, detail);
    return nullptr;
}

StreamHandle openLocal(const addrinfo& address, bson_error_t* error)
{
    SocketHandle socket = socketFor(address);
    constexpr std::int64_t noLimit = -1;
    if (socket && mongoc_socket_connect(socket.get(), address.ai_addr, address.ai_addrlen, noLimit) == 0)
        return StreamHandle(mongoc_stream_socket_new(socket.release()));
    char place[128];
    const int reason = socket ? mongoc_socket_errno(socket.get()) : errno;
    return failed(error, MONGOC_ERROR_STREAM_CONNECT, "Failed to connect to UNIX domain socket: %s",
                  bson_strerror_r(reason, place, sizeof place));
}

StreamHandle openOnNetwork(const addrinfo* addresses, const mongoc_uri_t& uri, const mongoc_host_list_t& host,
                           bson_error_t* error)
{
    const std::int64_t limit =
        mongoc_uri_get_option_as_int32(&uri, MONGOC_URI_CONNECTTIMEOUTMS, MONGOC_DEFAULT_CONNECTTIMEOUTMS);
    const std::int64_t end = bson_get_monotonic_time() + 1000 * limit;
    SocketHandle socket = connectToFirst(addresses, end);
    if (socket)
        return StreamHandle(mongoc_stream_socket_new(socket.release()));
    return failed(error, MONGOC_ERROR_STREAM_CONNECT,
                  bson_get_monotonic_time() < end ? "connection refused calling hello on '%s'"
                                                  : "connection timeout calling hello on '%s'",
                  host.host_and_port);
}

// The driver agrees with the server on the encryption afterwards, within its own time limits.
StreamHandle encrypted(StreamHandle plain, const mongoc_uri_t& uri, const mongoc_host_list_t& host, bson_error_t* error)
{
    mongoc_ssl_opt_t options = tlsOptionsOf(uri);
    StreamHandle stream(mongoc_stream_tls_new_with_hostname(plain.get(), host.host, &options, 1));
    if (!stream)
        return failed(error, MONGOC_ERROR_STREAM_CONNECT, "connection error calling hello on '%s'", host.host_and_port);
    static_cast<void>(plain.release()); // belongs to the other now
    return stream;
}

// Unless the connection string names something else.
bool usesScram(const mongoc_uri_t& uri)
{
    const char* const mechanism = mongoc_uri_get_auth_mechanism(&uri);
    return !mechanism || ::strncasecmp(mechanism, "SCRAM-", std::strlen("SCRAM-")) == 0;
}

mongoc_stream_t* openConnection(const mongoc_uri_t* uri, const mongoc_host_list_t* host, void* /*data*/,
                                bson_error_t* error)
{
    const HostAddresses addresses(*host);
    StreamHandle stream;
    if (!addresses.first())
        failed(error, MONGOC_ERROR_STREAM_NAME_RESOLUTION, "Failed to resolve '%s'", host->host);
    else if (host->family == AF_UNIX)
        stream = openLocal(*addresses.first(), error);
    else
        stream = openOnNetwork(addresses.first(), *uri, *host, error);
    if (stream && mongoc_uri_get_tls(uri))
        stream = encrypted(std::move(stream), *uri, *host, error);
    return stream ? checkedStream(std::move(stream), usesScram(*uri)).release() : nullptr;
}

// Keeps from the log that the driver's connections are made by someone else, which it says of every client on standard
// output: nothing is logged here. Whatever else is said meanwhile is passed on.
class InitiatorUnmentioned
{
public:
    InitiatorUnmentioned() : m_lock(mutex())
    {
        if (driverLogHandler)
            driverLogHandler(&m_handler, &m_data);
        if (m_handler)
            mongoc_log_set_handler(passOn, this);
    }
    InitiatorUnmentioned(const InitiatorUnmentioned&) = delete;
    InitiatorUnmentioned& operator=(const InitiatorUnmentioned&) = delete;
    ~InitiatorUnmentioned()
    {
        if (m_handler)
            mongoc_log_set_handler(m_handler, m_data);
    }

private:
    static std::mutex& mutex()
    {
        static std::mutex only;
        return only;
    }

    static void passOn(mongoc_log_level_t level, const char* domain, const char* message, void* data)
    {
        const auto& self = *static_cast<const InitiatorUnmentioned*>(data);
        if (std::strcmp(message, "Using custom stream initiator.") != 0)
            self.m_handler(level, domain, message, self.m_data);
    }

    std::lock_guard<std::mutex> m_lock; ///< two that exchange the handler at once might leave the wrong one
    mongoc_log_func_t m_handler = nullptr;
    void* m_data = nullptr;
};

// There is no public way to switch these checks off for a connection of one's own.
bool waivesRevocationChecks(const mongoc_uri_t& uri)
{
    return mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSDISABLECERTIFICATEREVOCATIONCHECK, false) ||
           mongoc_uri_get_option_as_bool(&uri, MONGOC_URI_TLSDISABLEOCSPENDPOINTCHECK, false);
}

} // namespace

mongoc_ssl_opt_t tlsOptionsOf(const mongoc_uri_t& uri) noexcept
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

ClientHandle newCheckedClient(mongoc_uri_t& uri, bson_error_t& error)
{
    if (waivesRevocationChecks(uri))
        return ClientHandle(mongoc_client_new_from_uri_with_error(&uri, &error));
    mongoc_uri_set_compressors(&uri, nullptr);
    ClientHandle client(mongoc_client_new_from_uri_with_error(&uri, &error));
    if (client)
    {
        const InitiatorUnmentioned unmentioned;
        mongoc_client_set_stream_initiator(client.get(), openConnection, nullptr);
    }
    return client;
}
