#include "database_client/host_addresses.h"

#include <algorithm>
#include <charconv>
#include <cstring>

HostAddresses::HostAddresses(const mongoc_host_list_t& host) noexcept
{
    if (host.family == AF_UNIX)
    {
        m_localPlace.sun_family = AF_UNIX;
        const std::size_t longest = sizeof m_localPlace.sun_path - 1;
        std::copy_n(host.host, std::min(std::strlen(host.host), longest), m_localPlace.sun_path);
        m_local.ai_family = AF_UNIX;
        m_local.ai_socktype = SOCK_STREAM;
        m_local.ai_addr = reinterpret_cast<sockaddr*>(&m_localPlace);
        m_local.ai_addrlen = sizeof m_localPlace;
        m_first = &m_local;
        return;
    }
    addrinfo wanted = {};
    wanted.ai_family = host.family;
    wanted.ai_socktype = SOCK_STREAM;
    char port[sizeof "65535"] = {};
    std::to_chars(port, port + sizeof port - 1, host.port);
    addrinfo* found = nullptr;
    m_status = ::getaddrinfo(host.host, port, &wanted, &found);
    if (m_status == 0)
        m_found.reset(found);
    m_first = m_found.get();
}
