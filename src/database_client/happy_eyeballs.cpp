#include "database_client/happy_eyeballs.h"

#include "database_client/host_addresses.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::int64_t millisecond = 1000;
constexpr std::int64_t headStart = 250 * millisecond;

// Sockets that reach for the addresses of one host at the same time.
class Attempts
{
public:
    bool isFull() const { return m_count == m_sockets.size(); }
    bool isEmpty() const { return m_count == 0; }

    void add(SocketHandle socket)
    {
        if (socket)
            m_sockets[m_count++] = std::move(socket);
    }

    // The first that is connected; null when none is after @p time. Those that fail are forgotten.
    SocketHandle wait(std::int64_t time)
    {
        std::array<mongoc_socket_poll_t, mostAttempts> polls{};
        for (std::size_t i = 0; i < m_count; ++i)
            polls[i] = {m_sockets[i].get(), POLLOUT, 0};
        mongoc_socket_poll(polls.data(), m_count, static_cast<std::int32_t>(time / millisecond + 1));
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_count; ++i)
        {
            const bool failed = (polls[i].revents & (POLLERR | POLLHUP)) != 0;
            if (!failed && (polls[i].revents & POLLOUT) != 0)
                return std::move(m_sockets[i]);
            if (!failed)
                std::swap(m_sockets[kept++], m_sockets[i]);
        }
        m_count = kept;
        return nullptr;
    }

private:
    static constexpr std::size_t mostAttempts = 8;

    std::array<SocketHandle, mostAttempts> m_sockets;
    std::size_t m_count = 0;
};

// Begins to connect. What becomes of it the socket tells when it is waited for, an immediate refusal included.
SocketHandle reachFor(const addrinfo& address)
{
    SocketHandle socket = socketFor(address);
    if (socket)
        mongoc_socket_connect(socket.get(), address.ai_addr, address.ai_addrlen, 0);
    return socket;
}

} // namespace

SocketHandle connectToFirst(const addrinfo* addresses, std::int64_t end) noexcept
{
    if (!addresses->ai_next)
        return reachFor(*addresses);
    Attempts attempts;
    SocketHandle connected;
    while (!connected && (addresses || !attempts.isEmpty()))
    {
        if (addresses && !attempts.isFull())
        {
            attempts.add(reachFor(*addresses));
            addresses = addresses->ai_next;
        }
        const std::int64_t left = end - bson_get_monotonic_time();
        if (left <= 0)
            break;
        connected = attempts.wait(addresses && !attempts.isFull() ? std::min(left, headStart) : left);
    }
    return connected;
}
