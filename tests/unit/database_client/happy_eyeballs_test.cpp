#include "database_client/happy_eyeballs.h"

#include "ports.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>

#include <cstdint>
#include <iterator>
#include <list>

namespace {

// Addresses of 127.0.0.1, linked as the name service links them.
class Addresses
{
public:
    void add(std::uint16_t port)
    {
        Entry& entry = m_entries.emplace_back();
        entry.place.sin_family = AF_INET;
        entry.place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        entry.place.sin_port = htons(port);
        entry.info.ai_family = AF_INET;
        entry.info.ai_socktype = SOCK_STREAM;
        entry.info.ai_addr = reinterpret_cast<sockaddr*>(&entry.place);
        entry.info.ai_addrlen = sizeof entry.place;
        if (m_entries.size() > 1)
            std::prev(m_entries.end(), 2)->info.ai_next = &entry.info;
    }

    SocketHandle connect(std::int64_t milliseconds) const
    {
        return connectToFirst(&m_entries.front().info, bson_get_monotonic_time() + 1000 * milliseconds);
    }

private:
    struct Entry
    {
        sockaddr_in place = {};
        addrinfo info = {};
    };
    std::list<Entry> m_entries;
};

constexpr std::int64_t forEver = 3600 * 1000; // in milliseconds, as far as a test goes

void expectConnected(const Addresses& addresses, ListeningPort& port)
{
    const SocketHandle socket = addresses.connect(forEver);
    EXPECT_NE(socket, nullptr);
    EXPECT_TRUE(port.accepts());
}

TEST(HappyEyeballs, DoNotWaitForASingleAddress)
{
    const RefusingPort refusing;
    Addresses addresses;
    addresses.add(refusing.number);
    EXPECT_NE(addresses.connect(0), nullptr);
}

TEST(HappyEyeballs, TakeTheFirstAddressThatAnswers)
{
    ListeningPort first;
    const RefusingPort second;
    Addresses addresses;
    addresses.add(first.number);
    addresses.add(second.number);
    expectConnected(addresses, first);
}

TEST(HappyEyeballs, GoOnAfterAddressesThatRefuse)
{
    const RefusingPort refusing;
    ListeningPort listening;
    Addresses addresses;
    for (int i = 0; i < 20; ++i) // more than there are attempts at a time
        addresses.add(refusing.number);
    addresses.add(listening.number);
    expectConnected(addresses, listening);
}

TEST(HappyEyeballs, GoOnBesideAnAddressThatDoesNotAnswer)
{
    const SilentPort silent;
    ListeningPort listening;
    Addresses addresses;
    addresses.add(silent.number);
    addresses.add(listening.number);
    expectConnected(addresses, listening);
}

TEST(HappyEyeballs, EndWhenEveryAddressRefused)
{
    const RefusingPort refusing;
    Addresses addresses;
    addresses.add(refusing.number);
    addresses.add(refusing.number);
    EXPECT_EQ(addresses.connect(forEver), nullptr);
}

TEST(HappyEyeballs, EndInTimeWhenNoAddressAnswers)
{
    const SilentPort silent;
    Addresses addresses;
    for (int i = 0; i < 20; ++i)
        addresses.add(silent.number);
    const std::int64_t end = bson_get_monotonic_time() + 1000 * 300;
    EXPECT_EQ(addresses.connect(300), nullptr);
    EXPECT_GE(bson_get_monotonic_time(), end);
}

} // namespace
