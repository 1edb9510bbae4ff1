#pragma once

#include "database_client/mongoc_handles.h"

#include <netdb.h>
#include <sys/un.h>

#include <memory>

/// Where a host of a connection string may be found: its addresses on the network, or its socket in the file system.
class HostAddresses
{
public:
    explicit HostAddresses(const mongoc_host_list_t& host) noexcept;
    HostAddresses(const HostAddresses&) = delete;
    HostAddresses& operator=(const HostAddresses&) = delete;

    /// Linked by ai_next, in the order in which to try them; null when there is none.
    const addrinfo* first() const noexcept { return m_first; }
    /// Why there is none.
    const char* problem() const noexcept { return ::gai_strerror(m_status); }

private:
    struct Free
    {
        void operator()(addrinfo* addresses) const noexcept { ::freeaddrinfo(addresses); }
    };

    const addrinfo* m_first = nullptr;
    int m_status = 0;
    std::unique_ptr<addrinfo, Free> m_found;
    addrinfo m_local = {}; ///< the address of a socket in the file system
    sockaddr_un m_localPlace = {};
};

/// A socket of the driver's for the kind of this address, not connected; null when there is none to be had.
inline SocketHandle socketFor(const addrinfo& address) noexcept
{
    return SocketHandle(mongoc_socket_new(address.ai_family, address.ai_socktype, address.ai_protocol));
}
