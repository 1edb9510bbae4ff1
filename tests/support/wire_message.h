// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "wire_gateway.h"

#include <cstdint>
#include <optional>

namespace test_support {

/// A message of the wire protocol with its header, as it travels.
class WireMessage
{
public:
    static constexpr std::size_t headerSize = 16;
    /// Well above what the protocol allows (48,000,000): a length beyond it is no message.
    static constexpr std::size_t largestSize = std::size_t{256} << 20U;

    explicit WireMessage(Bytes bytes) : m_bytes(std::move(bytes)) {}

    const Bytes& bytes() const { return m_bytes; }
    bool isCompressed() const;
    /// Whether this is the answer to that request.
    bool answers(const WireMessage& request) const;
    /// Whether the sender waits for an answer; an unacknowledged write does not.
    bool expectsReply() const;
    /// Whether the same sender goes on with another message by itself.
    bool hasMoreToCome() const;

    /// The command inside, its order and connection not set; nothing when the message is none or is not well formed.
    std::optional<RecordedCommand> command() const;
    /// The message as that server takes it, or nothing when it can go on as it is.
    std::optional<Bytes> rewritten(WireGateway::Rewrite rewrite) const;
    /// A reply to this message, of the kind that it asks for.
    Bytes replyWith(const Bytes& document) const;

private:
    std::int32_t opCode() const;
    std::uint32_t flagBits() const;

    Bytes m_bytes;
};

/// The whole length that the first bytes of a message announce; 0 when it is no message.
std::size_t announcedLength(const std::uint8_t* header);
/// Sets the length in the header of a message to its size.
void setAnnouncedLength(Bytes& message);

} // namespace test_support
