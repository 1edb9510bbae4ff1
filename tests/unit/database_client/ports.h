#pragma once

#include "wire_socket.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

#include <cstdint>
#include <vector>

/// Refuses: the port is taken, but nobody listens.
class RefusingPort
{
public:
    RefusingPort() { m_socket = test_support::reservePort(number); }

    std::uint16_t number = 0;

private:
    test_support::FileDescriptor m_socket;
};

class ListeningPort
{
public:
    ListeningPort() : m_reservation(test_support::reservePort(number)), m_listener(test_support::listenOn(number)) {}

    /// Whether somebody is connected. The other end stays open.
    bool accepts()
    {
        pollfd waiting{m_listener.get(), POLLIN, 0};
        return poll(&waiting, 1, 5000) == 1 &&
               static_cast<bool>(m_accepted.emplace_back(accept(m_listener.get(), nullptr, nullptr)));
    }

    std::uint16_t number = 0;

private:
    test_support::FileDescriptor m_reservation;
    test_support::FileDescriptor m_listener;
    std::vector<test_support::FileDescriptor> m_accepted;
};

/// Says nothing: what it would take is taken, and the system drops what comes on top.
class SilentPort
{
public:
    SilentPort()
    {
        sockaddr_in place = {};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof place;
        auto* const address = reinterpret_cast<sockaddr*>(&place);
        m_listener = test_support::FileDescriptor(socket(AF_INET, SOCK_STREAM, 0));
        EXPECT_EQ(bind(m_listener.get(), address, size), 0);
        EXPECT_EQ(listen(m_listener.get(), 0), 0);
        EXPECT_EQ(getsockname(m_listener.get(), address, &size), 0);
        number = ntohs(place.sin_port);
        for (int i = 0; i < 4; ++i)
        {
            test_support::FileDescriptor& filler =
                m_fillers.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
            static_cast<void>(::connect(filler.get(), address, size));
        }
    }

    std::uint16_t number = 0;

private:
    test_support::FileDescriptor m_listener;
    std::vector<test_support::FileDescriptor> m_fillers;
};
