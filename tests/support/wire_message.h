// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "wire_gateway.h"

#include <cstdint>
#include <optional>

namespace test_support {

/// A message of the wire protocol with its header, as it is sent.
class WireMessage
{
public:
    static constexpr std::size_t headerSize = 16;
    /// Messages with a greater length are invalid. The protocol allows 48,000,000 bytes.
    static constexpr std::size_t largestSize = std::size_t{256} << 20U;

    explicit WireMessage(Bytes bytes) : m_bytes(std::move(bytes)) {}

    const Bytes& bytes() const { return m_bytes; }
    bool isCompressed() const;
    /// True if this message is the reply to @p request.
    bool answers(const WireMessage& request) const;
    /// True if the sender waits for a reply. False for an unacknowledged write.
    bool expectsReply() const;
    /// True if the sender will send another message without waiting for a reply.
    bool hasMoreToCome() const;

    /// Returns the command in this message, without order and connection. Empty if the message is not a valid command.
    std::optional<RecordedCommand> command() const;
    /// Returns the message that the gateway must send instead; empty if the message needs no change.
    std::optional<Bytes> rewritten(WireGateway::Rewrite rewrite) const;
    /// Returns a reply to this message, with the opcode that the sender expects.
    Bytes replyWith(const Bytes& document) const;

private:
    std::int32_t opCode() const;
    std::uint32_t flagBits() const;

    Bytes m_bytes;
};

/// Returns the length of a message from its first bytes; 0 if it is not a valid message.
std::size_t announcedLength(const std::uint8_t* header);
/// Sets the length in the header of a message to its size.
void setAnnouncedLength(Bytes& message);

} // namespace test_support
