#include "database_client/reply_check.h"

#include <algorithm>
#include <cstring>

namespace {

// https://www.mongodb.com/docs/manual/reference/mongodb-wire-protocol/
constexpr std::uint32_t opReply = 1;
constexpr std::uint32_t opQuery = 2004;
constexpr std::uint32_t opMsg = 2013;

// Of OP_REPLY: flags, the cursor's id and where its part starts stand between the header and this.
constexpr std::size_t documentCount = 32;
constexpr std::size_t replyDocument = 36;
// Of OP_MSG: the flags stand between the header and this.
constexpr std::size_t sectionKind = 20;
constexpr std::size_t sectionDocument = 21;
constexpr std::uint8_t bodySection = 0;
// The first key of that document: its length and the kind of its first value stand between.
constexpr std::size_t commandName = 26;

// Several times what servers allow, 48,000,000: the driver itself says so of what lies between.
constexpr std::uint32_t largestReply = std::uint32_t{1} << 28U;

} // namespace

std::size_t PassingMessage::take(const std::uint8_t* bytes, std::size_t count) noexcept
{
    // Until the length is known, no further than the length. One that is shorter than itself ends there.
    const std::size_t end = std::max<std::size_t>(sizeof(std::uint32_t), hasLength() ? length() : 0);
    const std::size_t taken = std::min(count, end - m_passed);
    if (m_passed < m_beginning.size())
        std::copy_n(bytes, std::min(taken, m_beginning.size() - m_passed), m_beginning.data() + m_passed);
    m_passed += taken;
    return taken;
}

bool PassingMessage::beginsAt(std::size_t offset, const char* text) const noexcept
{
    const std::size_t size = std::strlen(text) + 1;
    return m_passed >= offset + size && std::memcmp(m_beginning.data() + offset, text, size) == 0;
}

void ReplyCheck::sent(const std::uint8_t* bytes, std::size_t count) noexcept
{
    while (count > 0)
    {
        if (m_request.isWhole())
            m_request.startAnew();
        const std::size_t taken = m_request.take(bytes, count);
        bytes += taken;
        count -= taken;
        if (!m_request.isWhole())
            continue;
        m_asked = m_request.opCode();
        m_context.listsIndexes = m_asked == opMsg && m_request.beginsAt(commandName, "listIndexes");
    }
}

bool ReplyCheck::received(const std::uint8_t* bytes, std::size_t count) noexcept
{
    while (count > 0)
    {
        if (m_reply.isWhole())
            m_reply.startAnew();
        const std::size_t taken = m_reply.take(bytes, count);
        if (!isReadable(bytes, taken))
            return false;
        bytes += taken;
        count -= taken;
    }
    return true;
}

// Whether the reply is, as far as it went by; these are its last bytes.
bool ReplyCheck::isReadable(const std::uint8_t* bytes, std::size_t count) noexcept
{
    if (m_reply.hasLength() && m_reply.length() > largestReply)
        return false; // before the driver asks for so much memory
    const std::size_t offset = documentOffset();
    if (m_reply.passed() <= offset)
        return !m_reply.isWhole();
    const std::size_t before = m_reply.passed() - count;
    if (before <= offset)
    {
        if (!announcesDocument())
            return false;
        m_document.start(m_reply.length() - static_cast<std::uint32_t>(offset));
    }
    const std::size_t skipped = before < offset ? offset - before : 0;
    bytes += skipped;
    count -= skipped;
    if (!m_document.take(bytes, count))
        return false;
    const std::uint8_t* const document = wholeDocument(bytes, count);
    if (!m_reply.isWhole())
        return true;
    bson_t reply;
    return m_document.isWhole() && bson_init_static(&reply, document, m_reply.length() - offset) &&
           isHarmless(reply, m_context);
}

// The document that these bytes end, once they do. Replies to commands come in one piece; those to the first greetings
// come as the network brings them, and are kept until they are whole.
const std::uint8_t* ReplyCheck::wholeDocument(const std::uint8_t* bytes, std::size_t count) noexcept
{
    const std::size_t size = m_reply.length() - documentOffset();
    if (count == size)
        return bytes;
    const std::size_t before = m_reply.passed() - documentOffset() - count;
    if (before == 0)
        m_kept.reset(static_cast<std::uint8_t*>(bson_malloc(size)));
    std::copy_n(bytes, count, m_kept.get() + before);
    return m_kept.get();
}

// Unknown kinds have none, which is found out when they announce it.
std::size_t ReplyCheck::documentOffset() const noexcept
{
    switch (m_reply.opCode())
    {
    case opReply:
        return replyDocument;
    case opMsg:
        return sectionDocument;
    default:
        return PassingMessage::headerSize;
    }
}

bool ReplyCheck::announcesDocument() const noexcept
{
    switch (m_reply.opCode())
    {
    case opReply:
        return m_asked == opQuery && m_reply.numberAt(documentCount) == 1;
    case opMsg:
        return m_asked == opMsg && m_reply.byteAt(sectionKind) == bodySection;
    default:
        return false;
    }
}
