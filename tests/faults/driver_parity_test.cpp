// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Connections behave as with the plain driver. Each test does the same with a client of the library and with a client
// of the driver, and compares the results. The TIMEOUT of ctest ends operations that hang.

#include "certificates.h"
#include "connection_options.h"
#include "database_client.h"
#include "dbc/results.h"
#include "object_properties.h"
#include "pretended_set.h"
#include "test_server.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <netdb.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace test_support {
namespace {

class OurClient
{
public:
    explicit OurClient(const std::string& uri) { m_client.connect(uri); }

    // Returns the text of the exception; empty if the server replies.
    std::string find()
    {
        dbc::Results results;
        return thrownText([&] { m_client.read("parity", "c", ObjectProperties(), results); });
    }

private:
    DataBaseClient m_client;
};

class PlainClient
{
public:
    explicit PlainClient(const std::string& uri)
    {
        mongoc_init(); // libmongoc 1.30 and later do not call it themselves
        m_client.reset(mongoc_client_new(uri.c_str()));
        if (!m_client)
            throw std::runtime_error("the driver refuses " + uri);
    }

    // The same as OurClient::find(). Formats the driver's error as the library does.
    std::string find()
    {
        const CollectionHandle collection(mongoc_client_get_collection(m_client.get(), "parity", "c"));
        const bson_t everything = BSON_INITIALIZER;
        const CursorHandle cursor(mongoc_collection_find_with_opts(collection.get(), &everything, nullptr, nullptr));
        const bson_t* document = nullptr;
        while (mongoc_cursor_next(cursor.get(), &document))
        {}
        bson_error_t error{};
        if (!mongoc_cursor_error(cursor.get(), &error))
            return "";
        return std::string("runtime_error: Find error.: ") + error.message + "(code: " + std::to_string(error.code) +
               ")";
    }

private:
    ClientHandle m_client;
};

struct Outcomes
{
    std::string ours;
    std::string plain;
};

template <typename Client>
std::string firstFind(const std::string& uri)
{
    return Client(uri).find();
}

Outcomes firstFinds(const std::string& uri)
{
    return {firstFind<OurClient>(uri), firstFind<PlainClient>(uri)};
}

std::size_t greetingsOf(const WireGateway& gateway)
{
    return gateway.commands("isMaster").size() + gateway.commands("hello").size();
}

// Returns when a heartbeat interval is over: uses another client until its driver checks the servers again.
void passAHeartbeat()
{
    WireGateway gateway(TestServer::instance().directUri(), WireGateway::Rewrite::Nothing);
    PlainClient client(withOptions(gateway.uri(), "heartbeatFrequencyMS=500"));
    client.find();
    const std::size_t before = greetingsOf(gateway);
    while (greetingsOf(gateway) == before)
        client.find();
}

// The server stops while both clients are idle. Their next operation checks it first, because a heartbeat is due.
Outcomes findsAfterTheLossOfTheServer(const std::string& host)
{
    WireGateway gateway(TestServer::instance().directUri(), WireGateway::Rewrite::Nothing);
    std::string uri = withOptions(gateway.uri(), "heartbeatFrequencyMS=500");
    uri.replace(uri.find("127.0.0.1"), std::strlen("127.0.0.1"), host);
    OurClient ours(uri);
    PlainClient plain(uri);
    const Outcomes before{ours.find(), plain.find()};
    if (!before.ours.empty() || !before.plain.empty())
        throw std::runtime_error("no find before the loss: " + before.ours + before.plain);
    gateway.refuseConnections();
    gateway.closeConnections();
    passAHeartbeat();
    return {ours.find(), plain.find()};
}

enum class Seeds
{
    Primary,
    AllMembers
};

// Runs queries in a replica set of two members: the test server as the primary, and a member that refuses connections.
Outcomes findsInASetWithADeadMember(const std::string& deadHost, Seeds seeds = Seeds::Primary)
{
    WireGateway gateway(TestServer::instance().directUri(), WireGateway::Rewrite::Nothing);
    std::uint16_t deadPort = 0;
    const FileDescriptor reservation = reservePort(deadPort);
    const std::string primary = hostOf(gateway);
    const std::string dead = deadHost + ":" + std::to_string(deadPort);
    pretendSet(gateway, dead);
    std::string uri = withOptions(gateway.uri(), "replicaSet=set&heartbeatFrequencyMS=500");
    if (seeds == Seeds::AllMembers)
        uri.replace(uri.find(primary), primary.size(), primary + "," + dead);
    OurClient ours(uri);
    PlainClient plain(uri);
    Outcomes outcomes{ours.find(), plain.find()};
    passAHeartbeat();
    outcomes.ours += ours.find();
    outcomes.plain += plain.find();
    return outcomes;
}

constexpr const char* twoAddresses = "two-addresses.test";

std::size_t countAddresses(const char* host)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host, "1", &hints, &found) != 0)
        return 0;
    std::size_t count = 0;
    for (const addrinfo* address = found; address; address = address->ai_next)
        ++count;
    freeaddrinfo(found);
    return count;
}

// Mounts a hosts file, for this thread only, in which the name twoAddresses has the addresses ::1 and 127.0.0.1.
// Call it before the first use of TestServer: a process with several threads must not enter a user namespace.
// Returns the error if this machine does not permit it; otherwise an empty string.
std::string mountHosts()
{
    if (countAddresses(twoAddresses) == 2) // mounted by an earlier test of this process
        return "";
    const auto failed = [](const std::string& what) { return what + ": " + std::strerror(errno); };
    std::string path = "/tmp/database_client-hosts.XXXXXX";
    const FileDescriptor created(mkstemp(path.data()));
    if (!created)
        return failed(path);
    std::ostringstream hosts;
    hosts << std::ifstream("/etc/hosts").rdbuf() << "\n::1 " << twoAddresses << "\n127.0.0.1 " << twoAddresses << '\n';
    std::ofstream(path) << hosts.str();
    std::string refusal;
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        refusal = failed("no mount namespace: unshare");
    else if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
             mount(path.c_str(), "/etc/hosts", nullptr, MS_BIND, nullptr) != 0)
        refusal = failed("no hosts file of the test's own: mount");
    else if (const std::size_t count = countAddresses(twoAddresses); count != 2)
        refusal = std::string(twoAddresses) + " has " + std::to_string(count) + " addresses";
    unlink(path.c_str()); // the file exists until it is unmounted
    return refusal;
}

TEST(DriverParity, IdleClientReportsALostServer)
{
    const Outcomes outcomes = findsAfterTheLossOfTheServer("127.0.0.1");
    EXPECT_NE(outcomes.ours, "");
    EXPECT_EQ(outcomes.ours, outcomes.plain);
}

TEST(DriverParity, IdleClientOfANameWithTwoAddressesReportsALostServer)
{
    if (const std::string refusal = mountHosts(); !refusal.empty())
        GTEST_SKIP() << refusal;
    const Outcomes outcomes = findsAfterTheLossOfTheServer(twoAddresses);
    EXPECT_NE(outcomes.ours, "");
    EXPECT_EQ(outcomes.ours, outcomes.plain);
}

TEST(DriverParity, SetWithADeadMemberServes)
{
    const Outcomes outcomes = findsInASetWithADeadMember("127.0.0.1");
    EXPECT_EQ(outcomes.ours, "");
    EXPECT_EQ(outcomes.plain, "");
}

TEST(DriverParity, SetWithADeadMemberOfTwoAddressesServes)
{
    if (const std::string refusal = mountHosts(); !refusal.empty())
        GTEST_SKIP() << refusal;
    const Outcomes outcomes = findsInASetWithADeadMember(twoAddresses);
    EXPECT_EQ(outcomes.ours, "");
    EXPECT_EQ(outcomes.plain, "");
}

// libmongoc 1.23 hangs if a replica set lists a member that cannot be resolved and is not in the connection string.
TEST(DriverParity, SetWithAMemberThatCannotBeResolvedServes)
{
    if (!mongoc_check_version(1, 30, 0))
        GTEST_SKIP() << "libmongoc " << mongoc_get_version() << " hangs";
    const Outcomes outcomes = findsInASetWithADeadMember("no-such-host.invalid");
    EXPECT_EQ(outcomes.ours, "");
    EXPECT_EQ(outcomes.plain, "");
}

TEST(DriverParity, SetWithAMemberThatCannotBeResolvedServesIfTheConnectionStringNamesItToo)
{
    const Outcomes outcomes = findsInASetWithADeadMember("no-such-host.invalid", Seeds::AllMembers);
    EXPECT_EQ(outcomes.ours, "");
    EXPECT_EQ(outcomes.plain, "");
}

TEST(DriverParity, CompressionIsOfferedToTheServer)
{
    WireGateway& gateway = TestServer::instance().gateway();
    // Drops the connection at the handshake, because the gateway cannot read compressed messages.
    for (const char* const greeting : {"isMaster", "hello"})
        gateway.inject(Fault::dropBeforeForwarding().onCommand(greeting).andLater());
    const std::string uri = withOptions(gateway.uri(), "compressors=zlib");
    const auto offered = [&gateway, &uri](auto find) {
        gateway.clear();
        find(uri);
        std::vector<RecordedCommand> greetings = gateway.commands("isMaster");
        if (greetings.empty())
            greetings = gateway.commands("hello");
        return greetings.empty() ? "no greeting" : greetings.front().json("compression");
    };
    const std::string ours = offered(firstFind<OurClient>);
    const std::string plain = offered(firstFind<PlainClient>);
    gateway.clearFaults();
    EXPECT_EQ(ours, plain);
    if (plain.find("zlib") == std::string::npos)
        GTEST_SKIP() << "this driver was built without zlib";
    EXPECT_EQ(ours, R"([ "zlib" ])");
}

std::int64_t processorMicroseconds()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{1000000} * (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) + usage.ru_utime.tv_usec +
           usage.ru_stime.tv_usec;
}

TEST(DriverParity, SilentTlsPeerTakesNoProcessorTime)
{
    std::uint16_t port = 0;
    const FileDescriptor reservation = reservePort(port);
    const FileDescriptor listener = listenOn(port); // accepts connections, but never reads or sends
    const std::string uri = "mongodb://127.0.0.1:" + std::to_string(port) + "/?tls=true&connectTimeoutMS=";
    firstFind<PlainClient>(uri + "1"); // initializes TLS, which happens once in a process

    const std::int64_t begin = processorMicroseconds();
    const std::string plain = firstFind<PlainClient>(uri + "2000");
    const std::int64_t middle = processorMicroseconds();
    const std::string ours = firstFind<OurClient>(uri + "2000");
    const std::int64_t end = processorMicroseconds();

    EXPECT_NE(ours, "");
    EXPECT_EQ(ours, plain);
    EXPECT_LT(end - middle, middle - begin + 300000) << "a loop without a wait would take 2 s";
}

/// Runs `openssl s_server`: a TLS server that does not reply to commands.
class TlsPeer
{
public:
    explicit TlsPeer(std::vector<std::string> options) : m_reservation(reservePort(m_port))
    {
        int input[2] = {-1, -1};
        int output[2] = {-1, -1};
        if (pipe(input) != 0 || pipe(output) != 0)
            throw std::runtime_error("no pipe");
        const FileDescriptor itsInput(input[0]);
        m_input = FileDescriptor(input[1]);
        m_output = FileDescriptor(output[0]);
        const FileDescriptor itsOutput(output[1]);
        std::vector<std::string> words{"openssl", "s_server", "-accept", "127.0.0.1:" + std::to_string(m_port)};
        words.insert(words.end(), options.begin(), options.end());
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        m_process = fork();
        if (m_process == 0)
        {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(itsInput.get(), STDIN_FILENO);
            dup2(itsOutput.get(), STDOUT_FILENO);
            dup2(itsOutput.get(), STDERR_FILENO);
            close(m_input.get());
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        while (m_said.find("ACCEPT") == std::string::npos && readMore())
        {}
        if (m_said.find("ACCEPT") == std::string::npos)
            throw std::runtime_error("openssl s_server does not start: " + m_said);
    }
    ~TlsPeer() { end(); }
    TlsPeer(const TlsPeer&) = delete;
    TlsPeer& operator=(const TlsPeer&) = delete;

    std::string uri(const std::string& options) const
    {
        return "mongodb://127.0.0.1:" + std::to_string(m_port) + "/?connectTimeoutMS=1000&" + options;
    }

    /// Ends the server. @return true if it received a handshake command, so the client has accepted the certificate
    bool wasGreeted()
    {
        end();
        while (readMore())
        {}
        return m_said.find("isMaster") != std::string::npos || m_said.find("hello") != std::string::npos;
    }

private:
    bool readMore()
    {
        char bytes[4096];
        const ssize_t count = read(m_output.get(), bytes, sizeof bytes);
        if (count > 0)
            m_said.append(bytes, static_cast<std::size_t>(count));
        return count > 0;
    }

    void end()
    {
        if (m_process <= 0)
            return;
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        m_process = -1;
    }

    std::uint16_t m_port = 0;
    FileDescriptor m_reservation;
    FileDescriptor m_input;
    FileDescriptor m_output;
    std::string m_said;
    pid_t m_process = -1;
};

class TlsParity : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        certificates = std::make_unique<Certificates>();
        certificates->makeServer("here", "IP:127.0.0.1");
        certificates->makeServer("elsewhere", "DNS:elsewhere.example");
        // One certificate for each response, because the driver caches OCSP responses for the whole process.
        certificates->makeServer("good", "IP:127.0.0.1");
        certificates->makeStaple("good", false);
        certificates->makeServer("revoked", "IP:127.0.0.1");
        certificates->makeStaple("revoked", true);
        const std::string mustStaple = "tlsfeature=status_request";
        certificates->makeServer("stapled", "IP:127.0.0.1", mustStaple);
        certificates->makeStaple("stapled", false);
        certificates->makeServer("unstapled", "IP:127.0.0.1", mustStaple);
    }
    static void TearDownTestSuite() { certificates.reset(); }

    static std::vector<std::string> options(const std::string& name)
    {
        return {"-cert", certificates->certificate(name), "-key", certificates->key(name)};
    }
    static std::vector<std::string> stapled(const std::string& name)
    {
        std::vector<std::string> all = options(name);
        all.insert(all.end(), {"-status_file", certificates->staple(name)});
        return all;
    }

    static std::string trusting(const std::string& authority)
    {
        return "tls=true&tlsCAFile=" + certificates->certificate(authority);
    }

    static void expectRefused(std::vector<std::string> serverOptions, const std::string& uriOptions)
    {
        TlsPeer peer(std::move(serverOptions));
        const Outcomes outcomes = firstFinds(peer.uri(uriOptions));
        EXPECT_EQ(outcomes.ours, outcomes.plain);
        EXPECT_FALSE(peer.wasGreeted()) << outcomes.ours;
    }

    static void expectTaken(std::vector<std::string> serverOptions, const std::string& uriOptions)
    {
        TlsPeer peer(std::move(serverOptions));
        const Outcomes outcomes = firstFinds(peer.uri(uriOptions));
        EXPECT_EQ(outcomes.ours, outcomes.plain);
        EXPECT_TRUE(peer.wasGreeted()) << outcomes.ours;
    }

    static bool driverChecksOcsp()
    {
        TlsPeer peer(options("unstapled"));
        firstFind<PlainClient>(peer.uri(trusting("right")));
        return !peer.wasGreeted();
    }

    static std::unique_ptr<Certificates> certificates;
};

std::unique_ptr<Certificates> TlsParity::certificates;

TEST_F(TlsParity, SelfSignedCertificateIsRefusedWithTheSameText)
{
    expectRefused(options("wrong"), "tls=true");
    expectRefused(options("here"), "tls=true");
}

TEST_F(TlsParity, CertificateOfAnUnknownAuthorityIsRefusedWithTheSameText)
{
    expectRefused(options("here"), trusting("wrong"));
}

TEST_F(TlsParity, CertificateOfAnotherHostIsRefusedWithTheSameText)
{
    expectRefused(options("elsewhere"), trusting("right"));
    expectTaken(options("elsewhere"), trusting("right") + "&tlsAllowInvalidHostnames=true");
}

TEST_F(TlsParity, StapledResponseThatSaysRevokedIsRefused)
{
    if (!driverChecksOcsp())
        GTEST_SKIP() << "this driver was built without OCSP";
    expectRefused(stapled("revoked"), trusting("right"));
    expectTaken(stapled("good"), trusting("right"));
}

TEST_F(TlsParity, CertificateThatMustBeStapledIsRefusedWithoutAStaple)
{
    if (!driverChecksOcsp())
        GTEST_SKIP() << "this driver was built without OCSP";
    expectRefused(options("unstapled"), trusting("right"));
    expectTaken(stapled("stapled"), trusting("right"));
}

TEST_F(TlsParity, IdleClientReportsALostServerThoughTheAuthorityFileIsGone)
{
    if (!ServerProcess::available())
        GTEST_SKIP() << "the server given by MONGODB_URI cannot be started with TLS";
    ServerProcess server(
        {certificates->certificate("here"), certificates->key("here"), certificates->certificate("right")});
    const std::string authority = certificates->certificate("copy");
    std::filesystem::copy_file(certificates->certificate("right"), authority);
    const std::string uri = withOptions(server.uri(), "heartbeatFrequencyMS=500&tls=true&tlsCAFile=" + authority);
    OurClient ours(uri);
    PlainClient plain(uri);
    EXPECT_EQ(ours.find(), "");
    EXPECT_EQ(plain.find(), "");
    std::filesystem::remove(authority);
    server.stop();
    passAHeartbeat();

    const std::string text = ours.find();

    EXPECT_NE(text, "");
    EXPECT_EQ(text, plain.find());
}

} // namespace
} // namespace test_support
