// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Connections to all types of addresses, and the log of the driver while connecting.

#include "connected_client.h"

#include "captured_output.h"
#include "connection_options.h"
#include "dbc/connection_string.h"
#include "wire_socket.h"

#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

namespace test_support {
namespace {

const char* const patience = "serverSelectionTimeoutMS=5000&connectTimeoutMS=5000";

// Listens on a Unix domain socket and relays its connections to a TCP port, one after another.
class LocalSocket
{
public:
    explicit LocalSocket(std::uint16_t port) : m_port(std::to_string(port))
    {
        std::string directory = "/tmp/database_client.XXXXXX";
        if (!mkdtemp(directory.data()))
            throw std::runtime_error("no directory for a socket");
        m_directory = directory;
        sockaddr_un place = {};
        place.sun_family = AF_UNIX;
        path().copy(place.sun_path, sizeof place.sun_path - 1);
        m_listener = FileDescriptor(socket(AF_UNIX, SOCK_STREAM, 0));
        if (bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
            listen(m_listener.get(), 8) != 0)
            throw std::runtime_error("no socket in the file system");
        m_thread = std::thread([this] { acceptUntilTheEnd(); });
    }
    ~LocalSocket()
    {
        m_end.wake();
        m_thread.join();
        unlink(path().c_str());
        rmdir(m_directory.c_str());
    }
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;

    std::string path() const { return m_directory + "/server.sock"; }

private:
    void acceptUntilTheEnd() const
    {
        std::array<pollfd, 2> waiting{{{m_listener.get(), POLLIN, 0}, {m_end.descriptor(), POLLIN, 0}}};
        while (poll(waiting.data(), waiting.size(), -1) > 0 && waiting[1].revents == 0)
            relay(FileDescriptor(accept(m_listener.get(), nullptr, nullptr)), connectTo("127.0.0.1", m_port));
    }

    void relay(FileDescriptor client, FileDescriptor server) const
    {
        std::array<pollfd, 3> waiting{
            {{client.get(), POLLIN, 0}, {server.get(), POLLIN, 0}, {m_end.descriptor(), POLLIN, 0}}};
        while (poll(waiting.data(), waiting.size(), -1) > 0 && waiting[2].revents == 0)
        {
            const bool fromClient = waiting[0].revents != 0;
            std::array<std::uint8_t, 4096> bytes{};
            const ssize_t count = recv(fromClient ? client.get() : server.get(), bytes.data(), bytes.size(), 0);
            if (count <= 0 ||
                !sendAll(fromClient ? server.get() : client.get(), bytes.data(), static_cast<std::size_t>(count)))
                return;
        }
    }

    std::string m_port;
    std::string m_directory;
    FileDescriptor m_listener;
    Wakeup m_end;
    std::thread m_thread;
};

std::string replaced(std::string text, const std::string& part, const std::string& by)
{
    return text.replace(text.find(part), part.size(), by);
}

class Connections : public ConnectedClient
{
protected:
    // Expects that a client with this connection string writes to the test server.
    void expectReached(const std::string& uri)
    {
        DataBaseClient client;
        client.connect(uri);
        std::string id;
        client.write(database(), "c", ObjectProperties(), id);
        EXPECT_EQ(scratch().count("c", R"({"_id": {"$oid": ")" + id + R"("}})"), 1U);
    }

    static std::string failureAt(const std::string& uri)
    {
        DataBaseClient client;
        client.connect(uri);
        dbc::Results results;
        return thrownText([&] { client.read("d", "c", ObjectProperties(), results); });
    }
};

TEST_F(Connections, SucceedToAHostName)
{
    expectReached(withOptions(replaced(gateway().uri(), "127.0.0.1", "localhost"), patience));
}

TEST_F(Connections, SucceedToAUnixSocket)
{
    const LocalSocket local(gateway().port());
    const std::string host = dbc::percentEncoded(local.path());
    expectReached(
        withOptions(replaced(gateway().uri(), "127.0.0.1:" + std::to_string(gateway().port()), host), patience));
}

TEST_F(Connections, ToAClosedPortFailWithTheAddressInTheError)
{
    std::uint16_t port = 0;
    const FileDescriptor reservation = reservePort(port);
    const std::string address = "127.0.0.1:" + std::to_string(port);
    const std::string text = failureAt("mongodb://" + address + "/");
    EXPECT_NE(text.find("connection refused calling hello on '" + address + "'"), std::string::npos) << text;
}

TEST_F(Connections, ToAnUnknownHostFailWithItsNameInTheError)
{
    const std::string text = failureAt("mongodb://nobody.invalid/");
    EXPECT_NE(text.find("Failed to resolve 'nobody.invalid'"), std::string::npos) << text;
}

TEST_F(Connections, ToAMissingSocketFailWithTheReason)
{
    const std::string text = failureAt("mongodb://%2Ftmp%2Fno-such-directory%2Fserver.sock/");
    EXPECT_NE(text.find("Failed to connect to UNIX domain socket: No such file or directory"), std::string::npos)
        << text;
}

TEST_F(Connections, PrintNothingOnStandardOutput)
{
    CapturedOutput output;
    expectReached(gateway().uri());
    EXPECT_EQ(output.text(), "");
}

TEST_F(Connections, KeepTheLogHandlerThatTheProgramHasSet)
{
    struct Log
    {
        static void take(mongoc_log_level_t /*level*/, const char* /*domain*/, const char* message, void* data)
        {
            static_cast<std::string*>(data)->append(message).append("\n");
        }
    };
    std::string log;
    mongoc_log_set_handler(Log::take, &log);
    DataBaseClient client;

    client.connect(gateway().uri());
    EXPECT_EQ(log, "");
    client.connect(withOptions(gateway().uri(), "unknown=1")); // the driver logs a warning about the option
    const UriHandle uri(mongoc_uri_new("mongodb://host/?missing=1"));

    mongoc_log_set_handler(mongoc_log_default_handler, nullptr);
    EXPECT_NE(log.find("unknown"), std::string::npos) << log;
    EXPECT_NE(log.find("missing"), std::string::npos) << log;
}

} // namespace
} // namespace test_support
