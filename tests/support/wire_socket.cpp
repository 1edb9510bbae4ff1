// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "wire_socket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace test_support {
namespace {

[[noreturn]] void throwSystemError(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Binds a socket with SO_REUSEADDR, so that the reserved socket and the listening socket can have the same port.
FileDescriptor boundTo(std::uint16_t port)
{
    FileDescriptor made(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int yes = 1;
    const sockaddr_in address = loopback(port);
    if (!made || ::setsockopt(made.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
        ::bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throwSystemError("cannot bind to 127.0.0.1");
    return made;
}

/// Repeats a call until all bytes are transferred. Returns false if it fails or the connection has ended.
template <typename Byte, typename Call>
bool transferAll(Byte* data, std::size_t length, Call call)
{
    while (length > 0)
    {
        const ssize_t count = call(data, length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        data += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    if (this != &other)
    {
        reset();
        m_descriptor = other.release();
    }
    return *this;
}

int FileDescriptor::release()
{
    return std::exchange(m_descriptor, -1);
}

void FileDescriptor::reset()
{
    if (m_descriptor >= 0)
        ::close(release());
}

FileDescriptor reservePort(std::uint16_t& port)
{
    FileDescriptor made = boundTo(0);
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (::getsockname(made.get(), reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throwSystemError("cannot tell the port");
    port = ntohs(address.sin_port);
    return made;
}

FileDescriptor listenOn(std::uint16_t port)
{
    FileDescriptor made = boundTo(port);
    if (::listen(made.get(), SOMAXCONN) != 0)
        throwSystemError("cannot listen on 127.0.0.1");
    return made;
}

FileDescriptor connectTo(const std::string& host, const std::string& port)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    const int failure = ::getaddrinfo(host.c_str(), port.c_str(), &hints, &list);
    if (failure != 0)
        throw std::runtime_error("cannot resolve " + host + ": " + ::gai_strerror(failure));
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);
    for (const addrinfo* entry = list; entry; entry = entry->ai_next)
    {
        FileDescriptor made(::socket(entry->ai_family, entry->ai_socktype | SOCK_CLOEXEC, entry->ai_protocol));
        if (made && ::connect(made.get(), entry->ai_addr, entry->ai_addrlen) == 0)
        {
            const int yes = 1;
            ::setsockopt(made.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
            return made;
        }
    }
    throw std::runtime_error("cannot connect to " + host + ":" + port);
}

bool receiveAll(int socket, std::uint8_t* data, std::size_t length)
{
    return transferAll(data, length, [=](std::uint8_t* to, std::size_t size) { return ::recv(socket, to, size, 0); });
}

bool sendAll(int socket, const std::uint8_t* data, std::size_t length)
{
    return transferAll(data, length, [=](const std::uint8_t* from, std::size_t size) {
        return ::send(socket, from, size, MSG_NOSIGNAL);
    });
}

Wakeup::Wakeup() : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_event)
        throwSystemError("cannot make an event descriptor");
}

void Wakeup::wake() const
{
    const std::uint64_t one = 1;
    // Ignores an error: it means that the counter is full, so the reader is awake already.
    [[maybe_unused]] const ssize_t written = ::write(m_event.get(), &one, sizeof one);
}

void Wakeup::drain() const
{
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = ::read(m_event.get(), &count, sizeof count);
}

} // namespace test_support
