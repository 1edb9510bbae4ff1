// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_rewrite.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace test_support {

/// A document sequence of a command: a section of kind 1, next to the body.
struct DocumentSequence
{
    std::string identifier;
    std::vector<Bytes> documents;
};

/// One command as the client sent it.
struct RecordedCommand
{
    std::size_t order = 0; ///< Number of commands that the gateway received before this one. clear() does not reset it.
    std::size_t connection = 0; ///< Number of the connection, counted from 0.
    std::string name;           ///< Key of the first element: "insert", "isMaster" ...
    std::string database;       ///< `$db`, or the part of a handshake's namespace before the dot.
    std::string target;         ///< Collection, also of a getMore, or other string value of the command; may be empty.
    bool isHandshake = false;   ///< True for isMaster, hello, saslStart and saslContinue.
    Bytes body;
    std::vector<DocumentSequence> sequences;

    /// Returns the body with every sequence appended as an array. Documentation shows commands in this form.
    Bytes folded() const;

    /// Returns folded() as relaxed Extended JSON, without the fields that the driver adds: lsid, txnNumber and
    /// top-level keys that begin with "$".
    std::string json() const;

    /// Returns one value of folded() at a dotted path such as "documents.0.name", in the form of json(). Empty if it
    /// does not exist.
    std::string json(const std::string& path) const;
};

/// A fault to inject. A static function creates it. The member functions select the commands that it affects.
/// @code
/// gateway.inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 17})").onCommand("insert").number(2));
/// gateway.inject(Fault::cutReply(20));
/// @endcode
/// By default, a fault affects the next command that is not a handshake, and happens once.
class Fault
{
public:
    /// Does not forward the command. The client receives this document (Extended JSON) as the reply.
    static Fault answer(const std::string& json);
    static Fault answer(Bytes document);
    /// The server runs the command, but the client receives this document as the reply.
    static Fault replaceReply(const std::string& json);
    static Fault replaceReply(Bytes document);
    /// Closes the connection. The server does not receive the command.
    static Fault dropBeforeForwarding();
    /// Closes the connection after the server has run the command, before the first byte of the reply.
    static Fault dropAfterForwarding();
    /// Closes the connection after the first @p bytes of the reply. The header has the length of the whole reply.
    static Fault cutReply(std::size_t bytes);
    /// Cuts the reply to @p bytes, at least 16, and sets the length in the header to it. The message then ends inside
    /// its document.
    static Fault shortenReply(std::size_t bytes);
    /// Replaces the whole reply by these bytes.
    static Fault rawReply(Bytes bytes);
    /// Calls @p change with the whole reply, header included. The call is in a thread of the gateway.
    static Fault changeReply(std::function<void(Bytes&)> change);
    /// Holds the reply until releaseReplies() is called or the client closes the connection.
    static Fault holdReply();

    /// Affects only commands with this name, also if they are handshakes.
    Fault onCommand(std::string name) &&;
    /// Affects only commands on this collection.
    Fault onTarget(std::string target) &&;
    /// Affects the n-th matching command, counted from 1 since the injection.
    Fault number(std::size_t n) &&;
    /// Affects every later matching command as well.
    Fault andLater() &&;

private:
    friend class WireGateway;
    enum class Kind
    {
        Answer,
        ReplaceReply,
        DropBeforeForwarding,
        DropAfterForwarding,
        CutReply,
        ChangeReply,
        HoldReply,
    };
    explicit Fault(Kind kind) : m_kind(kind) {}
    bool concerns(const RecordedCommand& command) const;

    Kind m_kind;
    Bytes m_bytes;
    std::function<void(Bytes&)> m_change;
    std::size_t m_count = 0;
    std::string m_name;
    std::string m_target;
    std::size_t m_number = 1;
    bool m_andLater = false;
};

/// A proxy between the driver and a server. It records every command, forwards it, and injects faults.
///
/// Listens on a free port of 127.0.0.1 from construction to destruction. It has one thread that accepts connections and
/// one thread for each connection. Thread-safe. A command is recorded before it is forwarded, so commands() contains it
/// when the client has the reply. Does not support TLS and compression.
class WireGateway
{
public:
    enum class Rewrite
    {
        Nothing,       ///< For MongoDB: forwards all bytes unchanged.
        ForFerretDbV2, ///< Empties roles and customData of user commands, and drops replies to unacknowledged writes.
        ForFerretDbV1, ///< The same. Also renumbers arrays and removes undefined values.
    };
    static constexpr std::chrono::seconds longestWait{20};

    /// @param serverUri  mongodb://[user:password@]host[:port]/... with one host
    /// @throws std::invalid_argument  a connection string of another form, or with TLS
    /// @throws std::system_error      no socket can be created
    WireGateway(const std::string& serverUri, Rewrite rewrite);
    /// Closes every connection, also those that wait for a reply.
    ~WireGateway();
    WireGateway(const WireGateway&) = delete;
    WireGateway& operator=(const WireGateway&) = delete;

    /// Returns the connection string of the server with the address of the gateway. User, password, database and
    /// options stay, except replicaSet and compressors, which do not work with the gateway.
    std::string uri() const;
    std::uint16_t port() const;

    // Recorded commands.
    /// Returns every command except handshakes, in the order of arrival.
    std::vector<RecordedCommand> commands() const;
    /// Returns the commands with this name, also if they are handshakes.
    std::vector<RecordedCommand> commands(const std::string& name) const;
    /// Returns the names of commands().
    std::vector<std::string> names() const;
    /// Deletes the recorded commands.
    void clear();
    /// Turns recording on or off. It is on by default.
    void record(bool on);

    // Faults.
    void inject(Fault fault);
    /// Removes every fault, releases held replies, resumes, and accepts connections again.
    void clearFaults();
    /// Number of injected faults that have not happened yet. A fault with andLater() counts until it has happened once.
    std::size_t pendingFaults() const;
    void releaseReplies();
    /// Stops listening, so the system refuses new connections. Open connections stay.
    void refuseConnections();
    void acceptConnections();
    /// Closes every open connection.
    void closeConnections();
    /// Accepts connections and receives commands, but does not forward or reply until resume() is called.
    void pause();
    void resume();

    // Connections.
    std::size_t acceptedConnections() const; ///< Since construction.
    std::size_t openConnections() const;

    // These functions wait for a condition. They return false if it takes longer than @p patience.
    bool waitForCommands(const std::string& name, std::size_t count,
                         std::chrono::milliseconds patience = longestWait) const;
    bool waitForOpenConnections(std::size_t count, std::chrono::milliseconds patience = longestWait) const;
    bool waitForHeldReplies(std::size_t count, std::chrono::milliseconds patience = longestWait) const;

private:
    class Implementation;
    std::unique_ptr<Implementation> d;
};

} // namespace test_support
