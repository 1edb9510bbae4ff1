#include "database_client/checked_stream.h"

#include "messages.h"
#include "wire_socket.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>

namespace {

using test_support::FileDescriptor;
using test_support::listenOn;
using test_support::reservePort;

// A checked stream over a connection of this process with itself.
class CheckedStream : public testing::Test
{
protected:
    CheckedStream()
    {
        std::uint16_t port = 0;
        const FileDescriptor reservation = reservePort(port);
        const FileDescriptor listener = listenOn(port);
        sockaddr_storage place = {};
        socklen_t size = sizeof place;
        EXPECT_EQ(getsockname(listener.get(), reinterpret_cast<sockaddr*>(&place), &size), 0);
        SocketHandle socket(mongoc_socket_new(AF_INET, SOCK_STREAM, 0));
        EXPECT_EQ(mongoc_socket_connect(socket.get(), reinterpret_cast<sockaddr*>(&place), size, -1), 0);
        m_server = FileDescriptor(accept(listener.get(), nullptr, nullptr));
        m_stream = checkedStream(StreamHandle(mongoc_stream_socket_new(socket.release())), true);
    }

    mongoc_stream_t* stream() { return m_stream.get(); }
    StreamHandle release() { return std::move(m_stream); }

    void ask()
    {
        Bytes request = opMsgOf(R"({"ping": 1})");
        // Several vectors, as the driver writes.
        mongoc_iovec_t vectors[] = {
            {request.data(), 4}, {request.data() + 4, 0}, {request.data() + 4, request.size() - 4}};
        ASSERT_EQ(mongoc_stream_writev(stream(), vectors, 3, 1000), static_cast<ssize_t>(request.size()));
        Bytes arrived(request.size());
        ASSERT_TRUE(test_support::receiveAll(m_server.get(), arrived.data(), arrived.size()));
        EXPECT_EQ(arrived, request);
    }

    void answer(const Bytes& bytes) { ASSERT_TRUE(test_support::sendAll(m_server.get(), bytes.data(), bytes.size())); }

    // In the steps in which the driver reads: the length, then what is left.
    bool reads(const Bytes& expected)
    {
        Bytes got(expected.size());
        return mongoc_stream_read(stream(), got.data(), 4, 4, 1000) == 4 &&
               mongoc_stream_read(stream(), got.data() + 4, got.size() - 4, got.size() - 4, 1000) ==
                   static_cast<ssize_t>(got.size() - 4) &&
               got == expected;
    }

    void endServer() { m_server.reset(); }

private:
    FileDescriptor m_server;
    StreamHandle m_stream;
};

TEST_F(CheckedStream, PassesOnWhatIsSentAndSaid)
{
    const Bytes reply = opMsgOf(R"({"ok": 1.0})");
    for (int round = 0; round < 3; ++round)
    {
        ask();
        answer(reply);
        EXPECT_TRUE(reads(reply));
    }
}

TEST_F(CheckedStream, PassesOnWhatIsReadIntoSeveralVectors)
{
    const Bytes reply = opMsgOf(R"({"ok": 1.0})");
    Bytes got(reply.size());
    mongoc_iovec_t vectors[] = {{got.data(), 7}, {got.data() + 7, got.size() - 7}};
    ask();
    answer(reply);
    EXPECT_EQ(mongoc_stream_readv(stream(), vectors, 2, got.size(), 1000), static_cast<ssize_t>(reply.size()));
    EXPECT_EQ(got, reply);
}

TEST_F(CheckedStream, PassesOnAReplyThatTakesManyReads)
{
    const Bytes reply = opMsgOf(R"({"text": ")" + std::string(3000000, 'a') + R"(", "ok": 1.0})");
    ask();
    std::thread server([&] { answer(reply); });
    EXPECT_TRUE(reads(reply));
    server.join();
}

TEST_F(CheckedStream, FailsLikeABrokenConnectionOnAReplyThatTheDriverCannotRead)
{
    Bytes reply = opMsgOf(R"({"ok": 1.0})");
    reply[12] = 1;
    ask();
    answer(reply);
    errno = 0;
    EXPECT_FALSE(reads(reply));
    EXPECT_EQ(errno, EBADMSG);
    EXPECT_FALSE(mongoc_stream_should_retry(stream()));
    EXPECT_FALSE(mongoc_stream_timed_out(stream()));
}

TEST_F(CheckedStream, GivesNothingAfterItFailed)
{
    Bytes reply = opMsgOf(R"({"ok": 1.0})");
    reply[12] = 1;
    ask();
    answer(reply);
    EXPECT_FALSE(reads(reply));
    ask();
    answer(opMsgOf(R"({"ok": 1.0})"));
    std::uint8_t byte = 0;
    EXPECT_EQ(mongoc_stream_read(stream(), &byte, 1, 1, 1000), -1);
}

TEST_F(CheckedStream, TellsWhatTheConnectionTells)
{
    std::uint8_t byte = 0;
    EXPECT_EQ(mongoc_stream_read(stream(), &byte, 1, 1, 0), -1);
    EXPECT_TRUE(mongoc_stream_should_retry(stream()));
    EXPECT_EQ(mongoc_stream_read(stream(), &byte, 1, 1, 20), -1);
    EXPECT_TRUE(mongoc_stream_timed_out(stream()));
    EXPECT_EQ(mongoc_stream_flush(stream()), 0);
    int on = 1;
    EXPECT_EQ(mongoc_stream_setsockopt(stream(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on), 0);
    EXPECT_FALSE(mongoc_stream_check_closed(stream()));
    endServer();
    EXPECT_TRUE(mongoc_stream_check_closed(stream()));
}

TEST_F(CheckedStream, IsWaitedForAsTheConnectionIs)
{
    mongoc_stream_poll_t poll{stream(), POLLOUT, 0};
    EXPECT_EQ(mongoc_stream_poll(&poll, 1, 1000), 1);
    EXPECT_EQ(poll.revents, POLLOUT);
    EXPECT_NE(mongoc_stream_get_base_stream(stream()), stream());
}

TEST_F(CheckedStream, ClosesTheConnection)
{
    EXPECT_EQ(mongoc_stream_close(stream()), 0);
}

TEST_F(CheckedStream, IsGoneWhenTheDriverCallsItFailed)
{
    mongoc_stream_failed(release().release());
}

} // namespace
