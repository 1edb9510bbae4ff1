// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "bson_rewrite.h"

#include "bson_handles.h"
#include "little_endian.h"

#include <bson/bson.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

namespace test_support {
namespace {

constexpr std::size_t lengthSize = 4;
constexpr std::size_t smallestDocument = 5;

// A negative length becomes one that no document has.
std::size_t readLength(const std::uint8_t* from)
{
    return static_cast<std::uint32_t>(readInt32(from));
}

/// Returns the size of the value of an element in bytes. Empty if it is larger than @p available.
std::optional<std::size_t> valueSize(bson_type_t type, const std::uint8_t* value, std::size_t available)
{
    const auto lengthPlus = [&](std::size_t extra) -> std::optional<std::size_t> {
        if (available < lengthSize)
            return std::nullopt;
        return readLength(value) + extra;
    };
    const auto cString = [&](std::size_t from) -> std::optional<std::size_t> {
        const void* end = from < available ? std::memchr(value + from, 0, available - from) : nullptr;
        if (!end)
            return std::nullopt;
        return static_cast<std::size_t>(static_cast<const std::uint8_t*>(end) - value) + 1;
    };
    switch (type)
    {
    case BSON_TYPE_UNDEFINED:
    case BSON_TYPE_NULL:
    case BSON_TYPE_MINKEY:
    case BSON_TYPE_MAXKEY:
        return 0;
    case BSON_TYPE_BOOL:
        return 1;
    case BSON_TYPE_INT32:
        return 4;
    case BSON_TYPE_DOUBLE:
    case BSON_TYPE_DATE_TIME:
    case BSON_TYPE_TIMESTAMP:
    case BSON_TYPE_INT64:
        return 8;
    case BSON_TYPE_OID:
        return 12;
    case BSON_TYPE_DECIMAL128:
        return 16;
    case BSON_TYPE_UTF8:
    case BSON_TYPE_CODE:
    case BSON_TYPE_SYMBOL:
        return lengthPlus(4);
    case BSON_TYPE_DBPOINTER:
        return lengthPlus(4 + 12);
    case BSON_TYPE_BINARY:
        return lengthPlus(4 + 1);
    case BSON_TYPE_DOCUMENT:
    case BSON_TYPE_ARRAY:
    case BSON_TYPE_CODEWSCOPE:
        return lengthPlus(0);
    case BSON_TYPE_REGEX: {
        const auto pattern = cString(0);
        return pattern ? cString(*pattern) : std::nullopt;
    }
    case BSON_TYPE_EOD:
        break;
    }
    return std::nullopt;
}

/// Reads a document once, with a stack of its open levels. Copies unchanged bytes in pieces that are as long as
/// possible.
class Rewriter
{
public:
    Rewriter(const std::uint8_t* document, std::size_t length, BsonRewrite rewrite)
        : m_document(document), m_length(length), m_rewrite(rewrite)
    {}

    std::optional<Bytes> run()
    {
        if (m_length < smallestDocument || !enter(0, m_length, false))
            return std::nullopt;
        while (!m_open.empty())
        {
            if (!step())
                return std::nullopt;
        }
        if (!m_changed || m_at != m_length)
            return std::nullopt;
        copyUpTo(m_length);
        for (const Patch& patch : m_lengths)
            putInt32(m_output.data() + patch.at, static_cast<std::int32_t>(patch.length));
        return std::move(m_output);
    }

private:
    struct Level
    {
        std::size_t end;         // offset in the input, one past the final zero byte
        std::size_t start;       // outputPosition() of the level
        std::size_t nextElement; // number of the next element of an array
        bool isArray;
    };
    struct Patch
    {
        std::size_t at;
        std::size_t length;
    };

    /// Offset in the output to which the next input byte will be copied.
    std::size_t outputPosition() const { return m_output.size() + (m_at - m_copied); }

    void copyUpTo(std::size_t end)
    {
        m_output.insert(m_output.end(), m_document + m_copied, m_document + end);
        m_copied = end;
    }

    bool enter(std::size_t at, std::size_t limit, bool isArray)
    {
        if (limit - at < smallestDocument)
            return false;
        const std::size_t length = readLength(m_document + at);
        if (length < smallestDocument || length > limit - at || m_document[at + length - 1] != 0)
            return false;
        m_at = at;
        m_open.push_back({at + length, outputPosition(), 0, isArray});
        m_at += lengthSize;
        return true;
    }

    bool step()
    {
        Level& level = m_open.back();
        const std::size_t last = level.end - 1;
        if (m_at >= last)
            return leave(level);
        const auto type = static_cast<bson_type_t>(m_document[m_at]);
        const std::uint8_t* key = m_document + m_at + 1;
        const void* keyEnd = std::memchr(key, 0, last - m_at - 1);
        if (!keyEnd)
            return false;
        const std::size_t keyLength = static_cast<std::size_t>(static_cast<const std::uint8_t*>(keyEnd) - key);
        const std::size_t valueAt = m_at + 1 + keyLength + 1;
        const auto size = valueSize(type, m_document + valueAt, last - valueAt);
        if (!size || *size > last - valueAt)
            return false;
        return element(level, type, {reinterpret_cast<const char*>(key), keyLength}, valueAt, *size);
    }

    bool element(Level& level, bson_type_t type, std::string_view key, std::size_t valueAt, std::size_t size)
    {
        const bool changesArrays = m_rewrite != BsonRewrite::UserData;
        if (changesArrays && type == BSON_TYPE_UNDEFINED)
        {
            copyUpTo(m_at);
            m_at = m_copied = valueAt;
            m_changed = true;
            return true;
        }
        if (changesArrays && level.isArray)
            renumber(key, level.nextElement++, valueAt);
        const bool nests = type == BSON_TYPE_DOCUMENT || type == BSON_TYPE_ARRAY;
        if (nests && emptied(key) && size > smallestDocument)
        {
            static constexpr std::uint8_t emptyDocument[smallestDocument] = {5, 0, 0, 0, 0};
            copyUpTo(valueAt);
            m_output.insert(m_output.end(), std::begin(emptyDocument), std::end(emptyDocument));
            m_at = m_copied = valueAt + size;
            m_changed = true;
            return true;
        }
        if (nests)
            return enter(valueAt, valueAt + size, type == BSON_TYPE_ARRAY);
        m_at = valueAt + size;
        return true;
    }

    bool emptied(std::string_view key) const
    {
        return m_rewrite != BsonRewrite::Arrays && m_open.size() == 1 && (key == "roles" || key == "customData");
    }

    void renumber(std::string_view key, std::size_t number, std::size_t valueAt)
    {
        char buffer[16];
        const char* wanted = nullptr;
        const std::size_t length =
            bson_uint32_to_string(static_cast<std::uint32_t>(number), &wanted, buffer, sizeof buffer);
        if (key == std::string_view(wanted, length))
            return;
        copyUpTo(m_at + 1);
        m_output.insert(m_output.end(), wanted, wanted + length + 1);
        m_copied = valueAt;
        m_at = valueAt; // for outputPosition(); the value is copied later
        m_changed = true;
    }

    bool leave(const Level& level)
    {
        if (m_at != level.end - 1)
            return false;
        m_at = level.end;
        const std::size_t length = outputPosition() - level.start;
        if (length > std::numeric_limits<std::int32_t>::max())
            return false;
        m_lengths.push_back({level.start, length});
        m_open.pop_back();
        return true;
    }

    const std::uint8_t* m_document;
    std::size_t m_length;
    BsonRewrite m_rewrite;
    std::size_t m_at = 0;     // offset of the next input byte to read
    std::size_t m_copied = 0; // number of input bytes that were copied or replaced
    bool m_changed = false;
    Bytes m_output;
    std::vector<Level> m_open;
    std::vector<Patch> m_lengths;
};

} // namespace

Bytes bsonFromJson(const std::string& json)
{
    bson_error_t error{};
    const BsonPointer document(bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json.data()),
                                                  static_cast<ssize_t>(json.size()), &error));
    if (!document)
        throw std::invalid_argument(std::string("not a document: ") + error.message);
    const std::uint8_t* data = bson_get_data(document.get());
    return {data, data + document.get()->len};
}

std::optional<Bytes> rewriteBson(const std::uint8_t* document, std::size_t length, BsonRewrite rewrite)
{
    return Rewriter(document, length, rewrite).run();
}

} // namespace test_support
