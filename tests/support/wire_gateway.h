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

/// A named list of documents that travelled beside the body of a command (a section of kind 1).
struct DocumentSequence
{
    std::string identifier;
    std::vector<Bytes> documents;
};

/// One command exactly as the client sent it.
struct RecordedCommand
{
    std::size_t order = 0; ///< its place among all commands the gateway has received, from 0; clear() does not reset it
    std::size_t connection = 0; ///< the connection it came on, counted from 0
    std::string name;           ///< key of the first element: "insert", "isMaster", ...
    std::string database;       ///< `$db`, or the part before the dot of a handshake's namespace
    std::string target;         ///< the collection (also of a getMore) or other text the command names; may be empty
    bool isHandshake = false;   ///< what opens a connection: isMaster, hello, saslStart, saslContinue
    Bytes body;
    std::vector<DocumentSequence> sequences;

    /// The body with every sequence appended as an array: the form in which the driver's documentation writes commands.
    Bytes folded() const;

    /// folded() as relaxed extended JSON, without what the driver adds on its own account: lsid, txnNumber and the
    /// top-level keys that begin with "$".
    std::string json() const;

    /// One value of folded() by its dotted path, as json() would show it ("documents.0.name"); empty if there is none.
    std::string json(const std::string& path) const;
};

/// What is to go wrong, and with which command. A value: built from one of the kinds, narrowed by the rest.
/// @code
/// gateway.inject(Fault::answer(R"({"ok": 0, "errmsg": "no", "code": 17})").onCommand("insert").number(2));
/// gateway.inject(Fault::cutReply(20));
/// @endcode
/// Left alone a fault concerns the next command of any name that is not a handshake, once.
class Fault
{
public:
    /// The command is not forwarded; the client gets this document (extended JSON) for a reply.
    static Fault answer(const std::string& json);
    static Fault answer(Bytes document);
    /// The command takes effect on the server, and the client gets this document for a reply.
    static Fault replaceReply(const std::string& json);
    static Fault replaceReply(Bytes document);
    /// The connection ends; the server never sees the command.
    static Fault dropBeforeForwarding();
    /// The connection ends when the server has carried the command out, before a byte of the reply.
    static Fault dropAfterForwarding();
    /// The connection ends after the first @p bytes of the reply, whose header tells the true length.
    static Fault cutReply(std::size_t bytes);
    /// The reply loses its last bytes, header included: a whole message of @p bytes around half a document. At
    /// least 16.
    static Fault shortenReply(std::size_t bytes);
    /// The reply keeps its header, but @p bytes take the place of what follows it; the length in the header is set
    /// right.
    static Fault malformedReply(Bytes bytes);
    /// These bytes, whatever they are, and nothing else.
    static Fault rawReply(Bytes bytes);
    /// The client gets what @p change makes of the whole reply, header included. Called in a thread of the gateway's.
    static Fault changeReply(std::function<void(Bytes&)> change);
    /// The reply comes that much later. The time is a real one: prefer holdReply().
    static Fault delayReply(std::chrono::milliseconds time);
    /// The reply is kept until releaseReplies() or until the client gives up.
    static Fault holdReply();

    /// Only commands of this name; handshakes too when it is theirs.
    Fault onCommand(std::string name) &&;
    /// Only commands that name this collection.
    Fault onTarget(std::string target) &&;
    /// The n-th that matches, counted from 1 and from the moment of injection.
    Fault number(std::size_t n) &&;
    /// Not once, but with every further one that matches as well.
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
        DelayReply,
        HoldReply,
    };
    explicit Fault(Kind kind) : m_kind(kind) {}
    bool concerns(const RecordedCommand& command) const;

    Kind m_kind;
    Bytes m_bytes;
    std::function<void(Bytes&)> m_change;
    std::size_t m_count = 0;
    std::chrono::milliseconds m_time{0};
    std::string m_name;
    std::string m_target;
    std::size_t m_number = 1;
    bool m_andLater = false;
};

/// Stands between the driver and a server: records every command, forwards it, and makes things go wrong on request.
///
/// Listens on a free port of 127.0.0.1 from construction to destruction, with a thread for itself and one for each
/// connection. Every operation may be called from any thread. A command is on record before the server sees it, so a
/// client that has its reply finds the command in commands(). Neither TLS nor compression passes through.
class WireGateway
{
public:
    enum class Rewrite
    {
        Nothing,       ///< MongoDB: the bytes go on as they came
        ForFerretDbV2, ///< roles and customData of user commands emptied; replies that nobody waits for left out
        ForFerretDbV1, ///< the same, and arrays renumbered and undefined left out
    };
    static constexpr std::chrono::seconds longestWait{20};

    /// @param serverUri  mongodb://[user:password@]host[:port]/..., one host.
    /// @throws std::invalid_argument  a URI of another form, or one that asks for TLS.
    /// @throws std::system_error      no socket to be had.
    WireGateway(const std::string& serverUri, Rewrite rewrite);
    /// Ends every connection, whatever it is waiting for.
    ~WireGateway();
    WireGateway(const WireGateway&) = delete;
    WireGateway& operator=(const WireGateway&) = delete;

    /// The server's URI with the gateway's address in it: user, password, database and options stay, except those that
    /// cannot work here (replicaSet, compressors).
    std::string uri() const;
    std::uint16_t port() const;
    /// Where later connections go: the server was started again on another port. The gateway's own uri() follows.
    void setServer(const std::string& serverUri);

    // What was recorded.
    /// Every command but handshakes, in the order of arrival.
    std::vector<RecordedCommand> commands() const;
    /// The commands of one name; this also reaches handshakes.
    std::vector<RecordedCommand> commands(const std::string& name) const;
    /// The names of commands(), for a glance at the sequence.
    std::vector<std::string> names() const;
    /// Forgets what was recorded.
    void clear();
    /// Whether commands are kept at all; they are, unless told otherwise.
    void record(bool on);

    // What goes wrong.
    void inject(Fault fault);
    /// Takes back every fault, lets held replies go, resumes and accepts connections again.
    void clearFaults();
    /// How many injected faults have not happened yet; one with andLater() counts until it has happened once.
    std::size_t pendingFaults() const;
    void releaseReplies();
    /// New connections are refused by the system, open ones stay.
    void refuseConnections();
    void acceptConnections();
    /// Ends every open connection now.
    void closeConnections();
    /// Connections are made and commands taken, but nothing is forwarded or answered until resume().
    void pause();
    void resume();

    // Connections.
    std::size_t acceptedConnections() const; ///< since construction
    std::size_t openConnections() const;

    // Waiting, on a condition and not on the clock. All answer false if that took longer than @p patience.
    bool waitForCommands(const std::string& name, std::size_t count,
                         std::chrono::milliseconds patience = longestWait) const;
    bool waitForOpenConnections(std::size_t count, std::chrono::milliseconds patience = longestWait) const;
    bool waitForFaults(std::chrono::milliseconds patience = longestWait) const; ///< until none is pending
    bool waitForHeldReplies(std::size_t count, std::chrono::milliseconds patience = longestWait) const;

private:
    class Implementation;
    std::unique_ptr<Implementation> d;
};

} // namespace test_support
