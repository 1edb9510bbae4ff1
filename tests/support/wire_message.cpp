// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "wire_message.h"

#include "bson_handles.h"
#include "driver_texts.h"
#include "little_endian.h"

#include <bson/bson.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace test_support {
namespace {

constexpr std::int32_t opReply = 1;
constexpr std::int32_t opQuery = 2004;
constexpr std::int32_t opCompressed = 2012;
constexpr std::int32_t opMsg = 2013;

constexpr std::uint32_t checksumPresent = 1U << 0U;
constexpr std::uint32_t moreToCome = 1U << 1U;
constexpr std::size_t checksumSize = 4;

constexpr std::uint8_t bodySection = 0;
constexpr std::uint8_t sequenceSection = 1;

void append(Bytes& bytes, const std::uint8_t* from, std::size_t length)
{
    bytes.insert(bytes.end(), from, from + length);
}

/// Reads a part of a message from front to back. The functions return false if there are too few bytes.
class Reader
{
public:
    Reader(const std::uint8_t* data, std::size_t length) : m_data(data), m_length(length) {}

    bool empty() const { return m_length == 0; }
    const std::uint8_t* data() const { return m_data; }

    bool skip(std::size_t count)
    {
        if (count > m_length)
            return false;
        m_data += count;
        m_length -= count;
        return true;
    }
    bool byte(std::uint8_t& value)
    {
        if (m_length == 0)
            return false;
        value = *m_data;
        return skip(1);
    }
    bool text(std::string& value)
    {
        const void* end = m_length == 0 ? nullptr : std::memchr(m_data, 0, m_length);
        if (!end)
            return false;
        value.assign(reinterpret_cast<const char*>(m_data), static_cast<const char*>(end));
        return skip(value.size() + 1);
    }
    /// Reads a document or a sequence. Both begin with their length.
    bool sized(std::size_t least, Reader& value)
    {
        if (m_length < 4)
            return false;
        const std::int32_t size = readInt32(m_data);
        if (size < 0 || static_cast<std::size_t>(size) < least || static_cast<std::size_t>(size) > m_length)
            return false;
        value = Reader(m_data, static_cast<std::size_t>(size));
        return skip(static_cast<std::size_t>(size));
    }
    bool document(Reader& value) { return sized(5, value); }
    std::size_t length() const { return m_length; }

private:
    const std::uint8_t* m_data;
    std::size_t m_length;
};

/// Calls @p body with the document of each section of kind 0. For each sequence, calls @p begin with its name and
/// @p element with each of its documents. Returns false if a section is invalid.
template <typename Body, typename Begin, typename Element>
bool visitSections(Reader sections, Body body, Begin begin, Element element)
{
    while (!sections.empty())
    {
        std::uint8_t kind = 0;
        Reader part(nullptr, 0);
        sections.byte(kind);
        if (kind == bodySection)
        {
            if (!sections.document(part))
                return false;
            body(part);
            continue;
        }
        std::string identifier;
        if (kind != sequenceSection || !sections.sized(4, part) || !part.skip(4) || !part.text(identifier))
            return false;
        begin(identifier);
        while (!part.empty())
        {
            Reader document(nullptr, 0);
            if (!part.document(document))
                return false;
            element(document);
        }
    }
    return true;
}

/// Returns the sections of an OP_MSG: the bytes between the flags and the checksum.
std::optional<Reader> sectionsOf(const Bytes& message, std::uint32_t flags)
{
    const std::size_t before = WireMessage::headerSize + 4;
    const std::size_t after = (flags & checksumPresent) != 0 ? checksumSize : 0;
    if (message.size() < before + after)
        return std::nullopt;
    return Reader(message.data() + before, message.size() - before - after);
}

bool isHandshakeName(const std::string& name)
{
    return name == "isMaster" || name == "ismaster" || name == "hello" || name == "saslStart" || name == "saslContinue";
}

std::string textOf(const bson_iter_t& element)
{
    std::uint32_t length = 0;
    const char* text = bson_iter_utf8(&element, &length);
    return text ? std::string(text, length) : std::string();
}

/// Sets name, database and target of the command from the first level of its body.
bool describe(RecordedCommand& command)
{
    bson_t view;
    bson_iter_t element;
    if (!bson_init_static(&view, command.body.data(), command.body.size()) || !bson_iter_init(&element, &view) ||
        !bson_iter_next(&element))
        return false;
    command.name = bson_iter_key(&element);
    command.isHandshake = isHandshakeName(command.name);
    if (BSON_ITER_HOLDS_UTF8(&element))
        command.target = textOf(element);
    while (bson_iter_next(&element))
    {
        const std::string_view key(bson_iter_key(&element), bson_iter_key_len(&element));
        if (key == "$db" && BSON_ITER_HOLDS_UTF8(&element))
            command.database = textOf(element);
        // A getMore begins with the number of its cursor.
        if (key == "collection" && command.name == "getMore" && BSON_ITER_HOLDS_UTF8(&element))
            command.target = textOf(element);
    }
    return true;
}

std::optional<RecordedCommand> commandOfMessage(const Bytes& message, std::uint32_t flags)
{
    RecordedCommand command;
    const auto sections = sectionsOf(message, flags);
    const auto body = [&](const Reader& part) { command.body.assign(part.data(), part.data() + part.length()); };
    const auto begin = [&](const std::string& identifier) { command.sequences.push_back({identifier, {}}); };
    const auto element = [&](const Reader& part) {
        command.sequences.back().documents.emplace_back(part.data(), part.data() + part.length());
    };
    if (!sections || !visitSections(*sections, body, begin, element) || !describe(command))
        return std::nullopt;
    return command;
}

std::optional<RecordedCommand> commandOfQuery(const Bytes& message)
{
    RecordedCommand command;
    Reader rest(message.data(), message.size());
    std::string space;
    Reader document(nullptr, 0);
    if (!rest.skip(WireMessage::headerSize + 4) || !rest.text(space) || !rest.skip(4 + 4) || !rest.document(document))
        return std::nullopt;
    command.body.assign(document.data(), document.data() + document.length());
    if (!describe(command))
        return std::nullopt;
    command.database = space.substr(0, space.find('.'));
    return command;
}

void appendRewritten(Bytes& output, const Reader& document, BsonRewrite rewrite, bool& changed)
{
    if (const auto rewritten = rewriteBson(document.data(), document.length(), rewrite))
    {
        append(output, rewritten->data(), rewritten->size());
        changed = true;
        return;
    }
    append(output, document.data(), document.length());
}

/// Returns a document or an array of these elements.
Bytes enclose(const Bytes& elements)
{
    Bytes document;
    document.reserve(elements.size() + 5);
    appendInt32(document, static_cast<std::int32_t>(elements.size() + 5));
    append(document, elements.data(), elements.size());
    document.push_back(0);
    return document;
}

void appendElement(Bytes& elements, bson_type_t type, std::string_view key, const std::uint8_t* value,
                   std::size_t length)
{
    elements.push_back(static_cast<std::uint8_t>(type));
    elements.insert(elements.end(), key.begin(), key.end());
    elements.push_back(0);
    append(elements, value, length);
}

/// Returns the bytes of the value at the iterator. Copying these bytes does not change the keys of an array.
Reader valueOf(const bson_iter_t& element)
{
    const auto* key = reinterpret_cast<const std::uint8_t*>(bson_iter_key(&element));
    const std::uint8_t* value = key + bson_iter_key_len(&element) + 1;
    return {value, static_cast<std::size_t>(element.raw + element.next_off - value)};
}

std::string relaxedJson(const Bytes& document)
{
    bson_t view;
    if (!bson_init_static(&view, document.data(), document.size()))
        return {};
    const BsonText text(bson_as_relaxed_extended_json(&view, nullptr));
    return text ? inWordsOf123(text.get()) : std::string();
}

bool isDriversOwn(std::string_view key)
{
    return key == "lsid" || key == "txnNumber" || (!key.empty() && key.front() == '$');
}

} // namespace

std::size_t announcedLength(const std::uint8_t* header)
{
    const std::int32_t length = readInt32(header);
    const bool sane = length >= static_cast<std::int32_t>(WireMessage::headerSize) &&
                      static_cast<std::size_t>(length) <= WireMessage::largestSize;
    return sane ? static_cast<std::size_t>(length) : 0;
}

void setAnnouncedLength(Bytes& message)
{
    putInt32(message.data(), static_cast<std::int32_t>(message.size()));
}

std::int32_t WireMessage::opCode() const
{
    return readInt32(m_bytes.data() + 12);
}

std::uint32_t WireMessage::flagBits() const
{
    const bool hasFlags = opCode() == opMsg && m_bytes.size() >= headerSize + 4;
    return hasFlags ? static_cast<std::uint32_t>(readInt32(m_bytes.data() + headerSize)) : 0;
}

bool WireMessage::isCompressed() const
{
    return opCode() == opCompressed;
}

bool WireMessage::answers(const WireMessage& request) const
{
    constexpr std::size_t requestId = 4;
    constexpr std::size_t responseTo = 8;
    return readInt32(m_bytes.data() + responseTo) == readInt32(request.m_bytes.data() + requestId);
}

bool WireMessage::expectsReply() const
{
    return opCode() == opQuery || (opCode() == opMsg && !hasMoreToCome());
}

bool WireMessage::hasMoreToCome() const
{
    return (flagBits() & moreToCome) != 0;
}

std::optional<RecordedCommand> WireMessage::command() const
{
    switch (opCode())
    {
    case opMsg:
        return commandOfMessage(m_bytes, flagBits());
    case opQuery:
        return commandOfQuery(m_bytes);
    default:
        return std::nullopt;
    }
}

std::optional<Bytes> WireMessage::rewritten(WireGateway::Rewrite rewrite) const
{
    const auto sections =
        opCode() == opMsg && rewrite != WireGateway::Rewrite::Nothing ? sectionsOf(m_bytes, flagBits()) : std::nullopt;
    if (!sections)
        return std::nullopt;
    const auto parsed = command();
    const bool ofUsers = parsed && (parsed->name == "createUser" || parsed->name == "updateUser");
    const bool ofArrays = rewrite == WireGateway::Rewrite::ForFerretDbV1;
    if (!ofUsers && !ofArrays)
        return std::nullopt;
    BsonRewrite forBody = ofUsers ? BsonRewrite::UserData : BsonRewrite::Arrays;
    if (ofUsers && ofArrays)
        forBody = BsonRewrite::ArraysAndUserData;

    Bytes output(m_bytes.begin(), m_bytes.begin() + headerSize);
    output.reserve(m_bytes.size());
    // Leaves out the checksum, which is optional, because it would have to be computed again.
    appendInt32(output, static_cast<std::int32_t>(flagBits() & ~checksumPresent));
    bool changed = false;
    std::size_t sequenceAt = 0;
    const auto closeSequence = [&] {
        if (sequenceAt != 0)
            putInt32(output.data() + sequenceAt, static_cast<std::int32_t>(output.size() - sequenceAt));
        sequenceAt = 0;
    };
    const auto body = [&](const Reader& part) {
        closeSequence();
        output.push_back(bodySection);
        appendRewritten(output, part, forBody, changed);
    };
    const auto begin = [&](const std::string& identifier) {
        closeSequence();
        output.push_back(sequenceSection);
        sequenceAt = output.size();
        appendInt32(output, 0);
        output.insert(output.end(), identifier.begin(), identifier.end());
        output.push_back(0);
    };
    const auto element = [&](const Reader& part) { appendRewritten(output, part, forBody, changed); };
    if (!visitSections(*sections, body, begin, element) || !changed)
        return std::nullopt;
    closeSequence();
    setAnnouncedLength(output);
    return output;
}

Bytes WireMessage::replyWith(const Bytes& document) const
{
    constexpr std::int32_t awaitCapable = 8;
    Bytes reply;
    appendInt32(reply, 0);
    appendInt32(reply, 0);
    appendInt32(reply, readInt32(m_bytes.data() + 4));
    if (opCode() == opQuery)
    {
        appendInt32(reply, opReply);
        appendInt32(reply, awaitCapable);
        appendInt32(reply, 0); // cursor, low and high half
        appendInt32(reply, 0);
        appendInt32(reply, 0); // first document
        appendInt32(reply, 1); // documents
    }
    else
    {
        appendInt32(reply, opMsg);
        appendInt32(reply, 0);
        reply.push_back(bodySection);
    }
    append(reply, document.data(), document.size());
    setAnnouncedLength(reply);
    return reply;
}

Bytes RecordedCommand::folded() const
{
    if (sequences.empty() || body.size() < 5)
        return body;
    // The elements of the body, without its length and its final zero byte.
    Bytes elements(body.begin() + 4, body.end() - 1);
    for (const DocumentSequence& sequence : sequences)
    {
        Bytes array;
        std::size_t number = 0;
        for (const Bytes& document : sequence.documents)
            appendElement(array, BSON_TYPE_DOCUMENT, std::to_string(number++), document.data(), document.size());
        const Bytes value = enclose(array);
        appendElement(elements, BSON_TYPE_ARRAY, sequence.identifier, value.data(), value.size());
    }
    return enclose(elements);
}

std::string RecordedCommand::json() const
{
    const Bytes whole = folded();
    bson_t view;
    bson_iter_t element;
    if (!bson_init_static(&view, whole.data(), whole.size()) || !bson_iter_init(&element, &view))
        return {};
    Bytes kept;
    while (bson_iter_next(&element))
    {
        const std::string_view key(bson_iter_key(&element), bson_iter_key_len(&element));
        if (!isDriversOwn(key))
        {
            const Reader value = valueOf(element);
            appendElement(kept, bson_iter_type(&element), key, value.data(), value.length());
        }
    }
    return relaxedJson(enclose(kept));
}

std::string RecordedCommand::json(const std::string& path) const
{
    const Bytes whole = folded();
    bson_t view;
    bson_iter_t top;
    bson_iter_t found;
    if (!bson_init_static(&view, whole.data(), whole.size()) || !bson_iter_init(&top, &view) ||
        !bson_iter_find_descendant(&top, path.c_str(), &found))
        return {};
    Bytes element;
    const Reader value = valueOf(found);
    appendElement(element, bson_iter_type(&found), "v", value.data(), value.length());
    // { "v" : <value> }
    const std::string text = relaxedJson(enclose(element));
    constexpr std::size_t before = 8;
    constexpr std::size_t after = 2;
    return text.size() < before + after ? std::string() : text.substr(before, text.size() - before - after);
}

} // namespace test_support
