#include "database_client/passing_document.h"

#include <bson/bson.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace {

constexpr std::uint32_t lengthSize = 4;
constexpr std::uint8_t idSize = sizeof(bson_oid_t);
constexpr std::uint32_t smallestText = 1;
constexpr std::uint32_t smallestDocument = lengthSize + 1;
constexpr std::uint32_t smallestScopedCode = lengthSize + lengthSize + smallestText + smallestDocument;

constexpr std::uint8_t notFixed = 0xFF;

// How long a value is whose kind tells it.
constexpr std::array<std::uint8_t, 256> fixedSizes = [] {
    std::array<std::uint8_t, 256> sizes{};
    for (std::uint8_t& size : sizes)
        size = notFixed;
    sizes[BSON_TYPE_UNDEFINED] = sizes[BSON_TYPE_NULL] = sizes[BSON_TYPE_MINKEY] = sizes[BSON_TYPE_MAXKEY] = 0;
    sizes[BSON_TYPE_BOOL] = 1;
    sizes[BSON_TYPE_INT32] = 4;
    sizes[BSON_TYPE_DOUBLE] = sizes[BSON_TYPE_DATE_TIME] = sizes[BSON_TYPE_TIMESTAMP] = sizes[BSON_TYPE_INT64] = 8;
    sizes[BSON_TYPE_OID] = idSize;
    sizes[BSON_TYPE_DECIMAL128] = 16;
    return sizes;
}();

// The size of a text, or of a value of a fixed size, that is whole and well formed in these bytes.
std::optional<std::size_t> wholeValue(std::uint8_t kind, const std::uint8_t* bytes, std::size_t count)
{
    std::size_t size = fixedSizes[kind];
    if (kind == BSON_TYPE_UTF8)
    {
        if (count <= lengthSize)
            return std::nullopt;
        size = std::size_t{lengthSize} + littleEndian(bytes);
        if (size == lengthSize || size > count || bytes[size - 1] != 0)
            return std::nullopt;
    }
    else if (size > count)
        return std::nullopt;
    return size;
}

} // namespace

void PassingDocument::start(std::uint32_t length) noexcept
{
    m_ends[0] = length;
    m_depth = 1;
    m_position = 0;
    m_length = 0;
    m_lengthBytes = 0;
    m_part = Part::DocumentLength;
}

bool PassingDocument::take(const std::uint8_t* bytes, std::size_t count) noexcept
{
    while (count > 0)
    {
        const std::size_t available = m_depth == 0 ? 0 : std::min<std::size_t>(count, m_ends[m_depth - 1] - m_position);
        const std::uint32_t before = m_position;
        if (available == 0 || !(takeWholeElement(bytes, available) || takePart(bytes, available)))
            return false;
        bytes += m_position - before;
        count -= m_position - before;
    }
    return true;
}

// Most elements come whole. They are passed in one step; whatever this does not know goes part by part.
bool PassingDocument::takeWholeElement(const std::uint8_t* bytes, std::size_t count) noexcept
{
    if (m_part != Part::Kind || (fixedSizes[*bytes] == notFixed && *bytes != BSON_TYPE_UTF8))
        return false;
    const auto* const keyEnd = static_cast<const std::uint8_t*>(std::memchr(bytes, 0, count));
    if (!keyEnd)
        return false;
    const auto valueBegin = static_cast<std::size_t>(keyEnd - bytes) + 1;
    const auto size = wholeValue(*bytes, bytes + valueBegin, count - valueBegin);
    if (!size)
        return false;
    m_position += static_cast<std::uint32_t>(valueBegin + *size);
    return true;
}

bool PassingDocument::takePart(const std::uint8_t* bytes, std::size_t count) noexcept
{
    switch (m_part)
    {
    case Part::Kind:
        return takeKind(*bytes);
    case Part::Key:
    case Part::Pattern:
    case Part::Options:
        takeName(bytes, count);
        return true;
    case Part::TextEnd:
        return takeTextEnd(*bytes);
    case Part::Content:
        takeContent(count);
        return true;
    default: // a length of something
        return takeLength(bytes, count);
    }
}

bool PassingDocument::takeKind(std::uint8_t kind) noexcept
{
    ++m_position;
    if (kind == BSON_TYPE_EOD)
        return m_position == m_ends[--m_depth];
    m_kind = kind;
    m_part = Part::Key;
    return kind <= BSON_TYPE_DECIMAL128 || kind == BSON_TYPE_MAXKEY || kind == BSON_TYPE_MINKEY;
}

// A text without a length: its end is looked for.
void PassingDocument::takeName(const std::uint8_t* bytes, std::size_t count) noexcept
{
    const void* const end = std::memchr(bytes, 0, count);
    if (end)
        count = static_cast<std::size_t>(static_cast<const std::uint8_t*>(end) - bytes) + 1;
    m_position += static_cast<std::uint32_t>(count);
    if (!end)
        return;
    if (m_part == Part::Key)
        beginValue();
    else
        m_part = m_part == Part::Pattern ? Part::Options : Part::Kind;
}

void PassingDocument::beginValue() noexcept
{
    switch (m_kind)
    {
    case BSON_TYPE_DOCUMENT:
    case BSON_TYPE_ARRAY:
        m_part = Part::DocumentLength;
        break;
    case BSON_TYPE_UTF8:
    case BSON_TYPE_CODE:
    case BSON_TYPE_SYMBOL:
    case BSON_TYPE_DBPOINTER:
        m_part = Part::TextLength;
        break;
    case BSON_TYPE_BINARY:
        m_part = Part::BinaryLength;
        break;
    case BSON_TYPE_CODEWSCOPE:
        m_part = Part::ScopedCodeLength;
        break;
    case BSON_TYPE_REGEX:
        m_part = Part::Pattern;
        break;
    default:
        expectContent(fixedSizes[m_kind]);
    }
}

bool PassingDocument::takeLength(const std::uint8_t* bytes, std::size_t count) noexcept
{
    for (; count > 0 && m_lengthBytes < lengthSize; --count, ++m_position)
        m_length |= std::uint32_t{*bytes++} << (8U * m_lengthBytes++);
    if (m_lengthBytes < lengthSize)
        return true;
    const std::uint32_t length = m_length;
    m_length = 0;
    m_lengthBytes = 0;
    return beginMeasured(length);
}

bool PassingDocument::beginMeasured(std::uint32_t length) noexcept
{
    switch (m_part)
    {
    case Part::TextLength:
        expectContent(std::uint64_t{length} - smallestText, Part::TextEnd);
        return length >= smallestText;
    case Part::BinaryLength:
        expectContent(std::uint64_t{length} + 1); // and its subtype
        return true;
    case Part::ScopedCodeLength:
        expectContent(std::uint64_t{length} - lengthSize);
        return length >= smallestScopedCode;
    default:
        return beginDocument(length);
    }
}

bool PassingDocument::beginDocument(std::uint32_t length) noexcept
{
    m_part = Part::Kind;
    if (length < smallestDocument)
        return false;
    const bool isOutermost = m_position == lengthSize;
    const std::uint64_t end = std::uint64_t{m_position} - lengthSize + length;
    if (isOutermost)
        return end == m_ends[0];
    if (end >= m_ends[m_depth - 1] || m_depth == deepest)
        return false;
    m_ends[m_depth++] = static_cast<std::uint32_t>(end);
    return true;
}

bool PassingDocument::takeTextEnd(std::uint8_t byte) noexcept
{
    ++m_position;
    m_part = Part::Kind;
    if (m_kind == BSON_TYPE_DBPOINTER)
        expectContent(idSize);
    return byte == 0;
}

void PassingDocument::takeContent(std::size_t count) noexcept
{
    const auto taken = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, m_contentLeft));
    m_position += taken;
    expectContent(m_contentLeft - taken, m_afterContent);
}

void PassingDocument::expectContent(std::uint64_t size, Part next) noexcept
{
    m_contentLeft = size;
    m_afterContent = next;
    m_part = size == 0 ? next : Part::Content;
}
