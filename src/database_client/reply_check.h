#pragma once

#include "conversion/bson_handles.h"
#include "database_client/passing_document.h"
#include "database_client/reply_contents.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

/// A message of the wire protocol that goes by in pieces of any size. Only its beginning is kept.
class PassingMessage
{
public:
    static constexpr std::size_t headerSize = 16;

    /// Takes in what belongs to this message of the next @p count bytes. @return how many that were, at least 1 unless
    /// @p count is 0
    std::size_t take(const std::uint8_t* bytes, std::size_t count) noexcept;
    void startAnew() noexcept { m_passed = 0; }

    std::size_t passed() const noexcept { return m_passed; }
    bool hasLength() const noexcept { return m_passed >= sizeof(std::uint32_t); }
    bool isWhole() const noexcept { return hasLength() && m_passed >= length(); }
    /// As the header tells it. Not to be asked before hasLength().
    std::uint32_t length() const noexcept { return numberAt(0); }
    /// 0, which is none, until the header went by.
    std::uint32_t opCode() const noexcept { return m_passed < headerSize ? 0 : numberAt(12); }
    /// A little-endian number of the kept beginning.
    std::uint32_t numberAt(std::size_t offset) const noexcept { return littleEndian(m_beginning.data() + offset); }
    std::uint8_t byteAt(std::size_t offset) const noexcept { return m_beginning[offset]; }
    /// Whether this text and its end stand there.
    bool beginsAt(std::size_t offset, const char* text) const noexcept;

private:
    std::array<std::uint8_t, 40> m_beginning{}; ///< as far as the document of a reply, and the name of a command
    std::size_t m_passed = 0;
};

/// Finds out whether the replies of a server are ones that the driver can read.
///
/// The driver takes for granted that a reply is of the kind that was asked for, and holds a well-formed document and
/// nothing more: over one that is not it reads on behind its memory, or ends the process.
class ReplyCheck
{
public:
    explicit ReplyCheck(bool usesScram) noexcept { m_context.usesScram = usesScram; }

    /// The client sent these bytes.
    void sent(const std::uint8_t* bytes, std::size_t count) noexcept;
    /// The server sent these bytes. @return false when the driver must not see the end of what they belong to; nothing
    /// more may be asked then
    bool received(const std::uint8_t* bytes, std::size_t count) noexcept;

private:
    bool isReadable(const std::uint8_t* bytes, std::size_t count) noexcept;
    std::size_t documentOffset() const noexcept;
    bool announcesDocument() const noexcept;
    const std::uint8_t* wholeDocument(const std::uint8_t* bytes, std::size_t count) noexcept;

    PassingMessage m_request;
    PassingMessage m_reply;
    PassingDocument m_document;
    std::unique_ptr<std::uint8_t, DestroyWith<bson_free>> m_kept; ///< a document that does not come in one piece
    std::uint32_t m_asked = 0;                                    ///< the opcode of the last whole request
    ReplyContext m_context;
};
