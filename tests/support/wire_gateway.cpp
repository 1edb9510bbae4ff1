// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "wire_gateway.h"

#include "bson_handles.h"
#include "wire_message.h"
#include "wire_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <exception>
#include <list>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace test_support {
namespace {

constexpr std::string_view scheme = "mongodb://";

/// The parts of a connection string that the gateway needs.
struct ServerAddress
{
    std::string credentials; // "user:password@" or empty
    std::string host;
    std::string port = "27017";
    std::string suffix; // the "/" and everything after it
};

/// True for an option that must not be passed to the driver. With it, the driver would connect to other servers than
/// the gateway, or use compression. Throws for TLS.
bool staysOut(std::string_view option)
{
    std::string name(option.substr(0, option.find('=')));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if ((name == "tls" || name == "ssl") && option.substr(option.find('=') + 1) == "true")
        throw std::invalid_argument("TLS does not pass through the wire gateway");
    return name == "replicaset" || name == "compressors";
}

std::string keptOptions(std::string_view options)
{
    std::string kept;
    while (!options.empty())
    {
        const std::size_t length = std::min(options.find('&'), options.size());
        const std::string_view option = options.substr(0, length);
        if (!option.empty() && !staysOut(option))
        {
            kept += kept.empty() ? '?' : '&';
            kept += option;
        }
        options.remove_prefix(std::min(length + 1, options.size()));
    }
    return kept;
}

ServerAddress parseUri(const std::string& uri)
{
    std::string_view rest(uri);
    if (rest.substr(0, scheme.size()) != scheme)
        throw std::invalid_argument("the wire gateway needs a mongodb:// URI");
    rest.remove_prefix(scheme.size());
    const std::size_t authorityLength = std::min(rest.find_first_of("/?"), rest.size());
    std::string_view authority = rest.substr(0, authorityLength);
    rest.remove_prefix(authorityLength);

    ServerAddress address;
    const std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos)
    {
        address.credentials = authority.substr(0, at + 1);
        authority.remove_prefix(at + 1);
    }
    const bool bracketed = !authority.empty() && authority.front() == '[';
    const std::size_t hostEnd = bracketed ? authority.find(']') : authority.find(':');
    if (authority.empty() || authority.find_first_of(",%") != std::string_view::npos ||
        (bracketed && hostEnd == std::string_view::npos))
        throw std::invalid_argument("the wire gateway needs a URI with one host name or address");
    address.host = bracketed ? authority.substr(1, hostEnd - 1) : authority.substr(0, hostEnd);
    const std::size_t colon = authority.find(':', bracketed ? hostEnd : 0);
    if (colon != std::string_view::npos)
        address.port = authority.substr(colon + 1);
    const std::size_t question = rest.find('?');
    address.suffix = rest.substr(0, question);
    if (address.suffix.empty())
        address.suffix = "/";
    if (question != std::string_view::npos)
        address.suffix += keptOptions(rest.substr(question + 1));
    return address;
}

/// Starts a thread with all signals blocked, so that only threads of the test handle signals.
template <typename Function>
std::thread startQuietThread(Function function)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    struct Restore
    {
        const sigset_t& mask;
        ~Restore() { pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
    } const restore{before};
    return std::thread(std::move(function));
}

/// Reads one message. Empty if the connection ended or the bytes are not a message.
std::optional<WireMessage> receiveMessage(int socket)
{
    Bytes bytes(WireMessage::headerSize);
    if (!receiveAll(socket, bytes.data(), bytes.size()))
        return std::nullopt;
    const std::size_t length = announcedLength(bytes.data());
    if (length == 0)
        return std::nullopt;
    bytes.resize(length);
    if (!receiveAll(socket, bytes.data() + WireMessage::headerSize, length - WireMessage::headerSize))
        return std::nullopt;
    return WireMessage(std::move(bytes));
}

void complain(const char* what)
{
    std::fprintf(stderr, "wire gateway: %s\n", what);
}

} // namespace

Fault Fault::answer(const std::string& json)
{
    return answer(bsonFromJson(json));
}

Fault Fault::answer(Bytes document)
{
    Fault fault(Kind::Answer);
    fault.m_bytes = std::move(document);
    return fault;
}

Fault Fault::replaceReply(const std::string& json)
{
    return replaceReply(bsonFromJson(json));
}

Fault Fault::replaceReply(Bytes document)
{
    Fault fault(Kind::ReplaceReply);
    fault.m_bytes = std::move(document);
    return fault;
}

Fault Fault::dropBeforeForwarding()
{
    return Fault(Kind::DropBeforeForwarding);
}

Fault Fault::dropAfterForwarding()
{
    return Fault(Kind::DropAfterForwarding);
}

Fault Fault::cutReply(std::size_t bytes)
{
    Fault fault(Kind::CutReply);
    fault.m_count = bytes;
    return fault;
}

Fault Fault::changeReply(std::function<void(Bytes&)> change)
{
    Fault fault(Kind::ChangeReply);
    fault.m_change = std::move(change);
    return fault;
}

Fault Fault::shortenReply(std::size_t bytes)
{
    return changeReply([bytes](Bytes& reply) {
        reply.resize(std::min(std::max(bytes, WireMessage::headerSize), reply.size()));
        setAnnouncedLength(reply);
    });
}

Fault Fault::rawReply(Bytes bytes)
{
    return changeReply([bytes = std::move(bytes)](Bytes& reply) { reply = bytes; });
}

Fault Fault::holdReply()
{
    return Fault(Kind::HoldReply);
}

Fault Fault::onCommand(std::string name) &&
{
    m_name = std::move(name);
    return std::move(*this);
}

Fault Fault::onTarget(std::string target) &&
{
    m_target = std::move(target);
    return std::move(*this);
}

Fault Fault::number(std::size_t n) &&
{
    m_number = n;
    return std::move(*this);
}

Fault Fault::andLater() &&
{
    m_andLater = true;
    return std::move(*this);
}

bool Fault::concerns(const RecordedCommand& command) const
{
    const bool byName = m_name.empty() ? !command.isHandshake : m_name == command.name;
    return byName && (m_target.empty() || m_target == command.target);
}

/// The threads of the gateway, and the data that they share with the callers. A mutex protects the data.
class WireGateway::Implementation
{
public:
    Implementation(const std::string& serverUri, Rewrite rewrite)
        : m_rewrite(rewrite), m_server(parseUri(serverUri)), m_reservation(reservePort(m_port))
    {
        startAccepting();
    }

    ~Implementation()
    {
        stopAccepting();
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        shutdownAll();
        wakeAll();
    }

    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

private:
    friend class WireGateway;

    /// A connection of a client, and from the first forwarded message on, one to the server. Its thread may read the
    /// descriptors without the lock. Every change, and every use by another thread, needs the lock of the gateway.
    struct Connection
    {
        Connection() = default;
        ~Connection()
        {
            if (thread.joinable())
                thread.join();
        }
        Connection(const Connection&) = delete;
        Connection& operator=(const Connection&) = delete;

        void shutdown() const
        {
            for (const FileDescriptor* descriptor : {&client, &server})
            {
                if (*descriptor)
                    ::shutdown(descriptor->get(), SHUT_RDWR);
            }
        }

        std::size_t number = 0;
        FileDescriptor client;
        FileDescriptor server;
        Wakeup wakeup;
        bool finished = false; // the last change of its thread under the lock
        std::thread thread;
    };

    struct Injected
    {
        Fault fault;
        std::size_t seen;
        bool pending;
    };

    // --- under the lock ---

    void wakeAll()
    {
        for (const Connection& connection : m_connections)
            connection.wakeup.wake();
    }

    void shutdownAll()
    {
        for (const Connection& connection : m_connections)
            connection.shutdown();
    }

    std::size_t openConnections() const
    {
        const auto open = [](const Connection& connection) { return !connection.finished; };
        return static_cast<std::size_t>(std::count_if(m_connections.begin(), m_connections.end(), open));
    }

    std::size_t pendingFaults() const
    {
        const auto pending = [](const Injected& injected) { return injected.pending; };
        return static_cast<std::size_t>(std::count_if(m_faults.begin(), m_faults.end(), pending));
    }

    /// Returns the fault that happens to this command. Every matching fault counts the command. If several faults are
    /// due, the first one happens now and the others with the next matching commands.
    std::optional<Fault> faultFor(const RecordedCommand& command)
    {
        std::optional<Fault> chosen;
        for (auto it = m_faults.begin(); it != m_faults.end();)
        {
            const bool concerned = it->fault.concerns(command);
            const bool due = concerned && it->seen + 1 >= it->fault.m_number;
            if (concerned && !due)
                ++it->seen;
            if (!due || chosen)
            {
                ++it;
                continue;
            }
            chosen = it->fault;
            it->pending = false;
            it = chosen->m_andLater ? std::next(it) : m_faults.erase(it);
        }
        return chosen;
    }

    // --- without the lock, which they take ---

    template <typename Condition>
    bool waitFor(std::chrono::milliseconds patience, Condition condition) const
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, patience, condition);
    }

    template <typename Chooser>
    std::vector<RecordedCommand> commandsIf(Chooser chosen) const
    {
        std::vector<RecordedCommand> result;
        const std::lock_guard lock(m_mutex);
        std::copy_if(m_records.begin(), m_records.end(), std::back_inserter(result), chosen);
        return result;
    }

    void startAccepting()
    {
        const std::lock_guard lock(m_acceptorMutex);
        if (!m_acceptor.joinable())
        {
            m_listener = listenOn(m_port);
            m_acceptor = startQuietThread([this] { acceptLoop(); });
        }
    }

    void stopAccepting()
    {
        const std::lock_guard lock(m_acceptorMutex);
        if (m_acceptor.joinable())
        {
            ::shutdown(m_listener.get(), SHUT_RDWR);
            m_acceptor.join();
            m_listener.reset();
        }
    }

    // --- the accepting thread ---

    void acceptLoop()
    {
        for (;;)
        {
            FileDescriptor client(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (client)
                startServing(std::move(client));
            else if (errno == EINVAL)
                return; // the listener was shut down
        }
    }

    void startServing(FileDescriptor client)
    {
        const int yes = 1;
        ::setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        try
        {
            std::list<Connection> made(1);
            Connection& connection = made.front();
            connection.client = std::move(client);
            const std::lock_guard lock(m_mutex);
            m_connections.remove_if([](const Connection& old) { return old.finished; });
            connection.number = m_accepted;
            connection.thread = startQuietThread([this, &connection] { serve(connection); });
            m_connections.splice(m_connections.end(), made);
            ++m_accepted;
            m_changed.notify_all();
        }
        catch (const std::exception& problem)
        {
            complain(problem.what());
        }
    }

    // --- a connection's thread ---

    void serve(Connection& connection)
    {
        try
        {
            while (waitForMessage(connection))
            {
                const auto message = receiveMessage(connection.client.get());
                if (!message || !handle(connection, *message))
                    break;
            }
        }
        catch (const std::exception& problem)
        {
            complain(problem.what());
        }
        const std::lock_guard lock(m_mutex);
        connection.client.reset();
        connection.server.reset();
        connection.finished = true;
        m_changed.notify_all();
    }

    /// Waits until the client sends bytes. Returns false if the server closes its connection; the connection of the
    /// client is closed then, as without the gateway.
    bool waitForMessage(const Connection& connection) const
    {
        for (;;)
        {
            pollfd waiting[] = {{connection.client.get(), POLLIN, 0}, {connection.server.get(), POLLIN, 0}};
            if (::poll(waiting, 2, -1) < 0)
                continue;
            if (waiting[0].revents != 0)
                return true;
            if (waiting[1].revents != 0 && !receiveMessage(connection.server.get()))
                return false;
        }
    }

    bool handle(Connection& connection, const WireMessage& message)
    {
        auto command = message.command();
        if (!command)
        {
            complain(message.isCompressed() ? "a compressed message; the URI must not name compressors"
                                            : "a message that is not understood");
            return false;
        }
        command->connection = connection.number;
        std::optional<Fault> fault;
        {
            const std::lock_guard lock(m_mutex);
            command->order = m_received++;
            fault = faultFor(*command);
            if (m_recording)
                m_records.push_back(std::move(*command));
            m_changed.notify_all();
        }
        return waitUntil(connection, [this] { return !m_paused; }) &&
               (fault ? misbehave(connection, message, *fault) : forward(connection, message));
    }

    /// Waits until condition() returns true. Returns false if the client closes its connection or the gateway stops.
    template <typename Condition>
    bool waitUntil(const Connection& connection, Condition condition)
    {
        for (;;)
        {
            {
                const std::lock_guard lock(m_mutex);
                if (m_stopping)
                    return false;
                if (condition())
                    return true;
            }
            pollfd waiting[] = {{connection.wakeup.descriptor(), POLLIN, 0}, {connection.client.get(), POLLRDHUP, 0}};
            ::poll(waiting, 2, -1);
            if (waiting[1].revents != 0)
                return false;
            connection.wakeup.drain();
        }
    }

    void openServer(Connection& connection)
    {
        FileDescriptor server = connectTo(m_server.host, m_server.port);
        const std::lock_guard lock(m_mutex);
        connection.server = std::move(server);
        if (m_stopping)
            connection.shutdown();
    }

    bool sendToServer(Connection& connection, const WireMessage& message)
    {
        if (!connection.server)
        {
            try
            {
                openServer(connection);
            }
            catch (const std::runtime_error&)
            {
                return false; // closes the connection of the client, as a stopped server does
            }
        }
        const auto rewritten = message.rewritten(m_rewrite);
        const Bytes& bytes = rewritten ? *rewritten : message.bytes();
        return sendAll(connection.server.get(), bytes.data(), bytes.size());
    }

    /// FerretDB also replies to unacknowledged writes. The driver would use such a reply for its next command, so
    /// replies to other requests are dropped. Not for MongoDB, because its streamed replies refer to the reply before.
    std::optional<WireMessage> receiveReply(const Connection& connection, const WireMessage& request) const
    {
        auto reply = receiveMessage(connection.server.get());
        while (reply && m_rewrite != Rewrite::Nothing && !reply->answers(request))
            reply = receiveMessage(connection.server.get());
        return reply;
    }

    bool forward(Connection& connection, const WireMessage& message)
    {
        if (!sendToServer(connection, message))
            return false;
        if (!message.expectsReply())
            return true;
        for (;;)
        {
            const auto reply = receiveReply(connection, message);
            if (!reply || !waitUntil(connection, [this] { return !m_paused; }) ||
                !sendToClient(connection, reply->bytes()))
                return false;
            if (!reply->hasMoreToCome())
                return true;
        }
    }

    static bool sendToClient(const Connection& connection, const Bytes& bytes)
    {
        return sendAll(connection.client.get(), bytes.data(), bytes.size());
    }

    bool misbehave(Connection& connection, const WireMessage& message, const Fault& fault)
    {
        if (fault.m_kind == Fault::Kind::DropBeforeForwarding)
            return false;
        if (fault.m_kind == Fault::Kind::Answer)
            return !message.expectsReply() || sendToClient(connection, message.replyWith(fault.m_bytes));
        if (!sendToServer(connection, message))
            return false;
        if (!message.expectsReply())
            return fault.m_kind != Fault::Kind::DropAfterForwarding;
        const auto reply = receiveReply(connection, message);
        return reply && spoil(connection, message, reply->bytes(), fault);
    }

    /// Applies a fault to the reply, after the server has run the command.
    bool spoil(Connection& connection, const WireMessage& message, Bytes reply, const Fault& fault)
    {
        switch (fault.m_kind)
        {
        case Fault::Kind::Answer:
        case Fault::Kind::DropBeforeForwarding:
        case Fault::Kind::DropAfterForwarding:
            return false;
        case Fault::Kind::ReplaceReply:
            return sendToClient(connection, message.replyWith(fault.m_bytes));
        case Fault::Kind::CutReply:
            reply.resize(std::min(fault.m_count, reply.size()));
            sendToClient(connection, reply);
            return false;
        case Fault::Kind::ChangeReply:
            fault.m_change(reply);
            return sendToClient(connection, reply);
        case Fault::Kind::HoldReply:
            return hold(connection) && sendToClient(connection, reply);
        }
        return false;
    }

    bool hold(const Connection& connection)
    {
        std::size_t releases = 0;
        {
            const std::lock_guard lock(m_mutex);
            releases = m_releases;
            ++m_held;
            m_changed.notify_all();
        }
        const bool released = waitUntil(connection, [&] { return m_releases != releases; });
        const std::lock_guard lock(m_mutex);
        --m_held;
        m_changed.notify_all();
        return released;
    }

    const Rewrite m_rewrite;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    const ServerAddress m_server;
    std::deque<RecordedCommand> m_records;
    std::list<Injected> m_faults;
    std::size_t m_accepted = 0;
    std::size_t m_received = 0;
    std::size_t m_releases = 0;
    std::size_t m_held = 0;
    bool m_recording = true;
    bool m_paused = false;
    bool m_stopping = false;
    std::list<Connection> m_connections; // after the members above: its destructor waits for threads that use them

    std::mutex m_acceptorMutex; // for starting and stopping the accepting thread, which itself locks m_mutex
    std::uint16_t m_port = 0;
    FileDescriptor m_reservation;
    FileDescriptor m_listener;
    std::thread m_acceptor;
};

WireGateway::WireGateway(const std::string& serverUri, Rewrite rewrite)
    : d(std::make_unique<Implementation>(serverUri, rewrite))
{}

WireGateway::~WireGateway() = default;

std::string WireGateway::uri() const
{
    return std::string(scheme) + d->m_server.credentials + "127.0.0.1:" + std::to_string(port()) + d->m_server.suffix;
}

std::uint16_t WireGateway::port() const
{
    return d->m_port;
}

std::vector<RecordedCommand> WireGateway::commands() const
{
    return d->commandsIf([](const RecordedCommand& command) { return !command.isHandshake; });
}

std::vector<RecordedCommand> WireGateway::commands(const std::string& name) const
{
    return d->commandsIf([&](const RecordedCommand& command) { return command.name == name; });
}

std::vector<std::string> WireGateway::names() const
{
    std::vector<std::string> result;
    const std::lock_guard lock(d->m_mutex);
    for (const RecordedCommand& command : d->m_records)
    {
        if (!command.isHandshake)
            result.push_back(command.name);
    }
    return result;
}

void WireGateway::clear()
{
    const std::lock_guard lock(d->m_mutex);
    d->m_records.clear();
}

void WireGateway::record(bool on)
{
    const std::lock_guard lock(d->m_mutex);
    d->m_recording = on;
}

void WireGateway::inject(Fault fault)
{
    const std::lock_guard lock(d->m_mutex);
    d->m_faults.push_back({std::move(fault), 0, true});
}

void WireGateway::clearFaults()
{
    {
        const std::lock_guard lock(d->m_mutex);
        d->m_faults.clear();
        d->m_changed.notify_all();
    }
    releaseReplies();
    resume();
    acceptConnections();
}

std::size_t WireGateway::pendingFaults() const
{
    const std::lock_guard lock(d->m_mutex);
    return d->pendingFaults();
}

void WireGateway::releaseReplies()
{
    const std::lock_guard lock(d->m_mutex);
    ++d->m_releases;
    d->wakeAll();
}

void WireGateway::refuseConnections()
{
    d->stopAccepting();
}

void WireGateway::acceptConnections()
{
    d->startAccepting();
}

void WireGateway::closeConnections()
{
    std::unique_lock lock(d->m_mutex);
    const std::size_t later = d->m_accepted;
    d->shutdownAll();
    d->m_changed.wait(lock, [&] {
        return std::all_of(d->m_connections.begin(), d->m_connections.end(),
                           [&](const auto& connection) { return connection.finished || connection.number >= later; });
    });
}

void WireGateway::pause()
{
    const std::lock_guard lock(d->m_mutex);
    d->m_paused = true;
}

void WireGateway::resume()
{
    const std::lock_guard lock(d->m_mutex);
    d->m_paused = false;
    d->wakeAll();
}

std::size_t WireGateway::acceptedConnections() const
{
    const std::lock_guard lock(d->m_mutex);
    return d->m_accepted;
}

std::size_t WireGateway::openConnections() const
{
    const std::lock_guard lock(d->m_mutex);
    return d->openConnections();
}

bool WireGateway::waitForCommands(const std::string& name, std::size_t count, std::chrono::milliseconds patience) const
{
    return d->waitFor(patience, [&] {
        const auto named = [&](const RecordedCommand& command) { return command.name == name; };
        return static_cast<std::size_t>(std::count_if(d->m_records.begin(), d->m_records.end(), named)) >= count;
    });
}

bool WireGateway::waitForOpenConnections(std::size_t count, std::chrono::milliseconds patience) const
{
    return d->waitFor(patience, [&] { return d->openConnections() == count; });
}

bool WireGateway::waitForHeldReplies(std::size_t count, std::chrono::milliseconds patience) const
{
    return d->waitFor(patience, [&] { return d->m_held == count; });
}

} // namespace test_support
