// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/value.h"

#include "collection/value_access.h"
#include "dbc/value_type.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

namespace {

using Access = ValueAccess;
using Block = Access::Block;

constexpr std::size_t smallestDocument = 5; // length and final zero byte
constexpr std::size_t largestDocument = 0x7FFFFFFF;

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
constexpr bool isLittleEndian = true;
#else
constexpr bool isLittleEndian = false;
#endif

template <typename Number>
Number littleEndian(Number number) noexcept
{
    if constexpr (!isLittleEndian)
    {
        unsigned char bytes[sizeof(number)];
        std::memcpy(bytes, &number, sizeof(number));
        std::reverse(std::begin(bytes), std::end(bytes));
        std::memcpy(&number, bytes, sizeof(number));
    }
    return number;
}

template <typename Number>
Number read(const std::uint8_t* bytes) noexcept
{
    Number number;
    std::memcpy(&number, bytes, sizeof(number));
    return littleEndian(number);
}

/// One stack for the items of all open objects and arrays. When a level ends, its items are moved into a block of the
/// exact size.
class ItemStack
{
public:
    ItemStack() = default;
    ItemStack(const ItemStack&) = delete;
    ItemStack& operator=(const ItemStack&) = delete;
    ~ItemStack()
    {
        for (std::size_t index = 0; index < m_size; ++index)
            m_items[index].~Field();
        if (m_items != inPlace())
            ::operator delete(m_items);
    }

    std::size_t size() const noexcept { return m_size; }
    Field& operator[](std::size_t index) noexcept { return m_items[index]; }

    /// Adds an item with an empty key and the empty object as its value.
    Field& push()
    {
        if (m_size == m_capacity)
            grow();
        return *new (m_items + m_size++) Field(Access::makeField(Value(), Value()));
    }

    /// Moves the items from the index @p first on into @p target, an object or array without items.
    void popInto(Value& target, std::size_t first)
    {
        const std::size_t count = m_size - first;
        if (count == 0)
            return;
        Block* const block = Access::newBlock(count, target.isObject() ? sizeof(Field) : sizeof(Value));
        // A value has no pointers to itself, so it can be moved as bytes. The keys of elements own no memory.
        if (target.isObject())
        {
            std::memcpy(static_cast<void*>(block->fields()), static_cast<const void*>(m_items + first),
                        count * sizeof(Field));
        }
        else
        {
            for (std::size_t index = 0; index < count; ++index)
            {
                std::memcpy(static_cast<void*>(block->values() + index),
                            static_cast<const void*>(&m_items[first + index].value()), sizeof(Value));
            }
        }
        block->size = static_cast<std::uint32_t>(count);
        m_size = first;
        Access::setBlock(target, target.type(), block);
    }

private:
    static constexpr std::size_t inPlaceCapacity = 64;

    Field* inPlace() noexcept { return reinterpret_cast<Field*>(m_inPlace); }

    void grow()
    {
        auto* const items = static_cast<Field*>(::operator new(2 * m_capacity * sizeof(Field)));
        std::memcpy(static_cast<void*>(items), static_cast<const void*>(m_items), m_size * sizeof(Field));
        if (m_items != inPlace())
            ::operator delete(m_items);
        m_items = items;
        m_capacity *= 2;
    }

    alignas(Field) unsigned char m_inPlace[inPlaceCapacity * sizeof(Field)];
    Field* m_items = inPlace();
    std::size_t m_size = 0;
    std::size_t m_capacity = inPlaceCapacity;
};

class BsonReader
{
public:
    BsonReader(const std::uint8_t* bytes, std::size_t size) noexcept
        : m_begin(bytes), m_next(bytes), m_last(bytes + size)
    {}

    Value read()
    {
        Value root;
        m_levels.push_back({nullptr, 0, false});
        m_levels.back().end = open();
        if (m_levels.back().end + 1 != m_last)
            fail("the document does not end with its bytes", m_begin);
        while (true)
        {
            Level& level = m_levels.back();
            if (m_next == level.end)
            {
                if (*m_next != 0)
                    fail("a document without a zero byte at its end", m_next);
                ++m_next;
                const std::size_t first = level.first;
                m_levels.pop_back();
                if (m_levels.empty())
                {
                    m_items.popInto(root, first);
                    return root;
                }
                Value& target = m_items[first - 1].value();
                const bool isScope = target.type() == Type::CodeWithScope;
                m_items.popInto(isScope ? Access::block(target)->values()[1] : target, first);
                continue;
            }
            readField(level);
        }
    }

private:
    struct Level
    {
        const std::uint8_t* end; // the final zero byte
        std::size_t first;       // the first item
        bool isArray;
    };

    [[noreturn]] void fail(const char* reason, const std::uint8_t* place) const
    {
        throw FormatError(std::string("BSON: ") + reason, static_cast<std::size_t>(place - m_begin));
    }

    /// Number of bytes before the end of the innermost document.
    std::size_t left() const noexcept { return static_cast<std::size_t>(m_levels.back().end - m_next); }

    const std::uint8_t* take(std::size_t size)
    {
        if (size > left())
            fail("a value that goes beyond its document", m_next);
        const std::uint8_t* const bytes = m_next;
        m_next += size;
        return bytes;
    }

    template <typename Number>
    Number number()
    {
        return dbc::read<Number>(take(sizeof(Number)));
    }

    /// Reads the length of a document and returns the address of its final zero byte.
    const std::uint8_t* open()
    {
        const std::uint8_t* const begin = m_next;
        const std::size_t available = m_levels.back().end ? left() : static_cast<std::size_t>(m_last - m_next);
        if (available < smallestDocument)
            fail("a document that is too short", begin);
        const auto size = dbc::read<std::int32_t>(begin);
        if (size < static_cast<std::int32_t>(smallestDocument) || static_cast<std::size_t>(size) > available)
            fail("a document with a wrong length", begin);
        m_next += sizeof(size);
        return begin + size - 1;
    }

    /// Reads a null-terminated string.
    std::string_view cString()
    {
        const auto* const end = static_cast<const std::uint8_t*>(std::memchr(m_next, 0, left()));
        if (!end)
            fail("a key without a zero byte at its end", m_next);
        const std::string_view text(reinterpret_cast<const char*>(m_next), static_cast<std::size_t>(end - m_next));
        m_next = end + 1;
        return text;
    }

    std::string_view string()
    {
        const std::uint8_t* const begin = m_next;
        const auto size = number<std::int32_t>();
        if (size < 1 || static_cast<std::size_t>(size) > left())
            fail("a string with a wrong length", begin);
        const std::uint8_t* const text = take(static_cast<std::size_t>(size));
        if (text[size - 1] != 0)
            fail("a string without a zero byte at its end", begin);
        return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size) - 1};
    }

    /// Stores a short string in the value itself. Reads 16 bytes at @p text, whatever the size.
    static void setShort(Value& value, Type type, const void* text, std::size_t size) noexcept
    {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        std::memcpy(&low, text, sizeof(low));
        std::memcpy(&high, static_cast<const char*>(text) + sizeof(low), sizeof(high));
        constexpr std::uint64_t all = ~std::uint64_t{0};
        low &= size >= 8 ? all : (std::uint64_t{1} << (8 * size)) - 1;
        high &= size <= 8 ? 0 : (std::uint64_t{1} << (8 * (size - 8))) - 1;
        Access::setWords(value, static_cast<unsigned char>(type) | size << 8 | low << 16, low >> 48 | high << 16);
    }

    static void setText(Value& value, Type type, std::string_view text, const std::uint8_t* last)
    {
        const auto* const begin = reinterpret_cast<const std::uint8_t*>(text.data());
        if (isLittleEndian && text.size() <= Access::textCapacity && last - begin >= 16)
            setShort(value, type, begin, text.size());
        else
            Access::setText(value, type, text.data(), text.size());
    }

    /// Returns the number of bytes of @p word before its first zero byte.
    static unsigned zeroByteOf(std::uint64_t word) noexcept
    {
        constexpr std::uint64_t ones = 0x0101010101010101U;
        const std::uint64_t zeros = (word - ones) & ~word & (ones << 7);
        return zeros ? static_cast<unsigned>(__builtin_ctzll(zeros)) / 8 : 8;
    }

    void readKey(Value& key)
    {
        if (isLittleEndian && left() >= 16)
        {
            std::uint64_t low = 0;
            std::uint64_t high = 0;
            std::memcpy(&low, m_next, sizeof(low));
            std::memcpy(&high, m_next + sizeof(low), sizeof(high));
            unsigned size = zeroByteOf(low);
            if (size == 8)
                size += zeroByteOf(high);
            if (size <= Access::textCapacity)
            {
                setShort(key, Type::String, m_next, size);
                m_next += size + 1;
                return;
            }
        }
        const std::string_view text = cString();
        Access::setText(key, Type::String, text.data(), text.size());
    }

    void skipKey()
    {
        const std::uint8_t* const end = std::find(m_next, m_levels.back().end, std::uint8_t{0});
        if (end == m_levels.back().end)
            fail("a key without a zero byte at its end", m_next);
        m_next = end + 1;
    }

    void readField(const Level& level)
    {
        const std::uint8_t* const begin = m_next;
        const auto type = static_cast<Type>(*m_next++);
        Field& field = m_items.push();
        if (level.isArray)
            skipKey();
        else
            readKey(Access::key(field));
        readValue(type, Access::value(field), begin);
    }

    void readValue(Type type, Value& value, const std::uint8_t* begin)
    {
        switch (type)
        {
        case Type::Double:
            Access::setNumber(value, type, number<double>());
            return;
        case Type::Int64:
        case Type::Time:
            Access::setNumber(value, type, number<std::int64_t>());
            return;
        case Type::Int32:
            Access::setNumber(value, type, number<std::int32_t>());
            return;
        case Type::Timestamp: {
            const auto increment = number<std::uint32_t>();
            value = Timestamp{number<std::uint32_t>(), increment};
            return;
        }
        case Type::Bool: {
            const std::uint8_t flag = *take(1);
            if (flag > 1)
                fail("a truth value that is neither 0 nor 1", begin);
            Access::setNumber(value, type, flag);
            return;
        }
        case Type::String:
        case Type::Code:
        case Type::Symbol: {
            const std::string_view text = string();
            setText(value, type, text, m_last);
            return;
        }
        case Type::Object:
        case Type::Array: {
            Access::setType(value, type);
            const std::uint8_t* const end = open();
            m_levels.push_back({end, m_items.size(), type == Type::Array});
            return;
        }
        case Type::ObjectId:
            Access::setObjectId(value, take(Access::objectIdSize));
            return;
        case Type::Null:
        case Type::Undefined:
        case Type::MinKey:
        case Type::MaxKey:
            Access::setType(value, type);
            return;
        case Type::Binary:
            readBinary(value, begin);
            return;
        case Type::Decimal128: {
            const auto low = number<std::uint64_t>();
            value = Decimal128{number<std::uint64_t>(), low};
            return;
        }
        case Type::RegularExpression: {
            const std::string_view pattern = cString();
            Access::setPair(value, type, Value(pattern), Value(cString()));
            return;
        }
        case Type::DbPointer: {
            const std::string_view collection = string();
            Value id;
            Access::setObjectId(id, take(Access::objectIdSize));
            Access::setPair(value, type, Value(collection), std::move(id));
            return;
        }
        case Type::CodeWithScope:
            readCodeWithScope(value, begin);
            return;
        }
        fail("an unknown type", begin);
    }

    void readBinary(Value& value, const std::uint8_t* begin)
    {
        const auto size = number<std::int32_t>();
        const std::uint8_t subtype = *take(1);
        if (size < 0)
            fail("a binary with a wrong length", begin);
        const std::uint8_t* bytes = take(static_cast<std::size_t>(size));
        auto length = static_cast<std::size_t>(size);
        if (subtype == 2)
        {
            if (length < sizeof(std::int32_t) || dbc::read<std::uint32_t>(bytes) != length - sizeof(std::int32_t))
                fail("a binary of subtype 2 with a wrong length", begin);
            bytes += sizeof(std::int32_t);
            length -= sizeof(std::int32_t);
        }
        Access::setBinary(value, bytes, length, subtype);
    }

    /// Opens a level for the fields of the scope. The value already contains the scope as an empty object.
    void readCodeWithScope(Value& value, const std::uint8_t* begin)
    {
        const auto size = number<std::int32_t>();
        const std::string_view code = string();
        const std::uint8_t* const scope = m_next;
        const std::uint8_t* const end = open();
        if (size != end + 1 - scope + static_cast<std::ptrdiff_t>(2 * sizeof(size) + code.size() + 1))
            fail("code with a scope and a wrong length", begin);
        Access::setPair(value, Type::CodeWithScope, Value(code), Value());
        m_levels.push_back({end, m_items.size(), false});
    }

    const std::uint8_t* m_begin;
    const std::uint8_t* m_next;
    const std::uint8_t* m_last;
    std::vector<Level> m_levels;
    ItemStack m_items;
};

/// The keys 0, 1, 2 ... as strings.
class IndexKey
{
public:
    std::string_view text() const noexcept { return {m_digits + m_first, sizeof(m_digits) - m_first}; }
    void increment() noexcept
    {
        std::size_t place = sizeof(m_digits) - 1;
        while (m_digits[place] == '9')
            m_digits[place--] = '0';
        m_digits[place] = static_cast<char>(m_digits[place] == 0 ? '1' : m_digits[place] + 1);
        m_first = std::min(m_first, place);
    }

private:
    char m_digits[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, '0'};
    std::size_t m_first = 11;
};

/// Returns the number of digits of the numbers from 0 to @p count - 1.
std::size_t digitsOfIndexes(std::size_t count) noexcept
{
    std::size_t digits = count;
    for (std::size_t least = 10; least < count; least *= 10)
        digits += count - least;
    return digits;
}

std::size_t textSize(const Value& value) noexcept { return sizeof(std::int32_t) + Access::text(value).size() + 1; }

/// Returns the size of the value without its nested documents.
std::size_t ownSize(const Value& value) noexcept
{
    switch (value.type())
    {
    case Type::Double:
    case Type::Time:
    case Type::Int64:
    case Type::Timestamp:
        return 8;
    case Type::Int32:
        return 4;
    case Type::Bool:
        return 1;
    case Type::String:
    case Type::Code:
    case Type::Symbol:
        return textSize(value);
    case Type::Object:
    case Type::Array:
        return smallestDocument;
    case Type::Binary:
        return sizeof(std::int32_t) + 1 + Access::bytes(value).size();
    case Type::ObjectId:
        return Access::objectIdSize;
    case Type::RegularExpression:
        return Access::text(Access::pairItem(value, 0)).size() + Access::text(Access::pairItem(value, 1)).size() + 2;
    case Type::DbPointer:
        return textSize(Access::pairItem(value, 0)) + Access::objectIdSize;
    case Type::CodeWithScope:
        return sizeof(std::int32_t) + textSize(Access::pairItem(value, 0)) + smallestDocument;
    case Type::Decimal128:
        return 16;
    case Type::Undefined:
    case Type::Null:
    case Type::MinKey:
    case Type::MaxKey:
        break;
    }
    return 0;
}

/// Returns the document of the value: the value itself, the scope of code, or null.
const Value* documentIn(const Value& value) noexcept
{
    if (Access::isContainer(value))
        return &value;
    return value.type() == Type::CodeWithScope ? &Access::pairItem(value, 1) : nullptr;
}

std::size_t sizeOf(const Value& root)
{
    std::size_t size = smallestDocument;
    std::vector<const Value*> open{&root};
    const auto add = [&size, &open](const Value& value) {
        size += ownSize(value) + 2; // type and final zero byte of the key
        const Value* const document = documentIn(value);
        if (document && !document->empty())
            open.push_back(document);
    };
    while (!open.empty())
    {
        const Value& document = *open.back();
        open.pop_back();
        for (const Field& field : document.fields())
        {
            size += field.key().size();
            add(field.value());
        }
        if (document.isArray())
            size += digitsOfIndexes(document.size());
        for (const Value& element : document.elements())
            add(element);
    }
    return size;
}

/// Appends BSON to a vector. Small items are collected in a buffer, because a vector first fills new bytes with zeros,
/// which takes as long as writing them. Large items are appended directly.
class BsonWriter
{
public:
    explicit BsonWriter(std::vector<std::uint8_t>& target) noexcept : m_target(target) {}

    void write(const Value& root)
    {
        open(root, notCode);
        while (!m_levels.empty())
        {
            if (m_next > m_buffer + bufferSize)
                flush();
            Level& level = m_levels.back();
            if (level.field != level.lastField)
            {
                const Field& field = *level.field++;
                writeField(Access::key(field), field.value());
            }
            else if (level.element != level.lastElement)
            {
                const Value& element = *level.element++;
                *m_next++ = static_cast<std::uint8_t>(element.type());
                const std::string_view key = level.key.text();
                std::memcpy(m_next, key.data(), key.size());
                m_next += key.size();
                *m_next++ = 0;
                level.key.increment();
                writeValue(element);
            }
            else
                close(level);
        }
        flush();
    }

private:
    static constexpr std::size_t notCode = static_cast<std::size_t>(-1);
    static constexpr std::size_t bufferSize = 1024;
    static constexpr std::size_t largeSize = 256;
    // Maximum size of an element, not counting strings and bytes that are not stored in place.
    static constexpr std::size_t slack = 96;

    struct Level
    {
        const Field* field;
        const Field* lastField;
        const Value* element;
        const Value* lastElement;
        std::size_t begin; // offsets
        std::size_t code;  // offset of the code to which this scope belongs
        IndexKey key;
    };

    std::size_t offset() const noexcept { return m_target.size() + static_cast<std::size_t>(m_next - m_buffer); }

    void flush()
    {
        m_target.insert(m_target.end(), m_buffer, m_next);
        m_next = m_buffer;
    }

    template <typename Number>
    void number(Number value) noexcept
    {
        put(m_next, value);
        m_next += sizeof(value);
    }
    template <typename Number>
    static void put(std::uint8_t* target, Number value) noexcept
    {
        value = littleEndian(value);
        std::memcpy(target, &value, sizeof(value));
    }

    /// Writes the length of the document or code that begins at the offset @p begin and ends at the current position.
    void putLength(std::size_t begin) noexcept
    {
        const auto length = static_cast<std::int32_t>(offset() - begin);
        put(begin < m_target.size() ? m_target.data() + begin : m_buffer + (begin - m_target.size()), length);
    }

    void bytes(const void* data, std::size_t size)
    {
        if (size >= largeSize)
        {
            flush();
            const auto* const begin = static_cast<const std::uint8_t*>(data);
            m_target.insert(m_target.end(), begin, begin + size);
            return;
        }
        if (m_next > m_buffer + bufferSize - size)
            flush();
        if (size > 0)
            std::memcpy(m_next, data, size);
        m_next += size;
    }

    void cString(const Value& value)
    {
        const std::string_view text = Access::text(value);
        if (Access::ownsMemory(value))
            bytes(text.data(), text.size());
        else
        {
            std::memcpy(m_next, text.data(), Access::textCapacity); // a fixed size is faster; the excess is overwritten
            m_next += text.size();
        }
        *m_next++ = 0;
    }

    void string(const Value& value)
    {
        number(static_cast<std::int32_t>(Access::text(value).size() + 1));
        cString(value);
    }

    void open(const Value& document, std::size_t code)
    {
        const auto fields = document.fields();
        const auto elements = document.elements();
        m_levels.push_back(
            {fields.begin(), fields.end(), elements.begin(), elements.end(), offset(), code, IndexKey()});
        m_next += sizeof(std::int32_t);
    }

    void close(const Level& level) noexcept
    {
        *m_next++ = 0;
        putLength(level.begin);
        if (level.code != notCode)
            putLength(level.code);
        m_levels.pop_back();
    }

    void writeField(const Value& key, const Value& value)
    {
        *m_next++ = static_cast<std::uint8_t>(value.type());
        cString(key);
        writeValue(value);
    }

    void writeValue(const Value& value)
    {
        switch (value.type())
        {
        case Type::Double:
            number(Access::number<double>(value));
            return;
        case Type::Time:
        case Type::Int64:
            number(Access::number<std::int64_t>(value));
            return;
        case Type::Int32:
            number(Access::number<std::int32_t>(value));
            return;
        case Type::Timestamp: {
            const auto timestamp = *value.get<Timestamp>();
            number(timestamp.increment);
            number(timestamp.seconds);
            return;
        }
        case Type::Bool:
            *m_next++ = Access::number<std::uint8_t>(value);
            return;
        case Type::String:
        case Type::Code:
        case Type::Symbol:
            string(value);
            return;
        case Type::Object:
        case Type::Array:
            open(value, notCode);
            return;
        case Type::Binary: {
            const std::string_view content = Access::bytes(value);
            number(static_cast<std::int32_t>(content.size()));
            *m_next++ = Access::subtype(value);
            bytes(content.data(), content.size());
            return;
        }
        case Type::ObjectId:
            bytes(Access::objectId(value), Access::objectIdSize);
            return;
        case Type::RegularExpression:
            cString(Access::pairItem(value, 0));
            cString(Access::pairItem(value, 1));
            return;
        case Type::DbPointer:
            string(Access::pairItem(value, 0));
            bytes(Access::objectId(Access::pairItem(value, 1)), Access::objectIdSize);
            return;
        case Type::CodeWithScope: {
            const std::size_t begin = offset();
            m_next += sizeof(std::int32_t);
            string(Access::pairItem(value, 0));
            open(Access::pairItem(value, 1), begin);
            return;
        }
        case Type::Decimal128: {
            const auto decimal = *value.get<Decimal128>();
            number(decimal.low);
            number(decimal.high);
            return;
        }
        case Type::Undefined:
        case Type::Null:
        case Type::MinKey:
        case Type::MaxKey:
            return;
        }
    }

    std::vector<std::uint8_t>& m_target;
    std::uint8_t m_buffer[bufferSize + slack];
    std::uint8_t* m_next = m_buffer;
    std::vector<Level> m_levels;
};

} // namespace

FormatError::FormatError(const std::string& reason, std::size_t position)
    : std::invalid_argument(reason + ", at byte " + std::to_string(position)), m_position(position)
{}

FormatError::~FormatError() = default;

Value Value::fromBson(const std::uint8_t* bytes, std::size_t size) { return BsonReader(bytes, size).read(); }

void Value::appendBson(std::vector<std::uint8_t>& target) const
{
    if (!Access::isContainer(*this))
        throw std::logic_error("Value: neither an object nor an array");
    const std::size_t size = sizeOf(*this);
    if (size > largestDocument)
        throw std::length_error("Value: more than 2^31 - 1 bytes of BSON");
    const std::size_t needed = target.size() + size;
    if (needed > target.capacity()) // linear time for many documents in one vector
        target.reserve(std::max(needed, 2 * target.capacity()));
    BsonWriter(target).write(*this);
}

std::vector<std::uint8_t> Value::toBson() const
{
    std::vector<std::uint8_t> bytes;
    appendBson(bytes);
    return bytes;
}

} // namespace v1
} // namespace dbc
