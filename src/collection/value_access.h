// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/value.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace dbc {
inline namespace v1 {

/// The header of a block of memory. The fields or values of a Value follow it.
struct Value::Block
{
    std::uint32_t size = 0;
    std::uint32_t capacity;
    /// First the number of searches for a key, up to searchesBeforeIndex. Then the address of the key index, and a bit
    /// for keys that a caller may change; any reading thread may set them. While blocks are freed, the address of the
    /// next block to free.
    std::uintptr_t searches = 0;

    explicit Block(std::uint32_t room) noexcept : capacity(room) {}

    Field* fields() noexcept { return reinterpret_cast<Field*>(this + 1); }
    Value* values() noexcept { return reinterpret_cast<Value*>(this + 1); }
};

/// Access to the memory layout of values, for the files of this folder.
class ValueAccess
{
public:
    using Block = Value::Block;

    static constexpr std::size_t textCapacity = Value::textCapacity;

    /// Creates a block without items. @throws std::bad_alloc
    static Block* newBlock(std::size_t capacity, std::size_t itemSize)
    {
        return new (::operator new(sizeof(Block) + capacity * itemSize)) Block(static_cast<std::uint32_t>(capacity));
    }

    static bool ownsMemory(const Value& value) noexcept { return value.ownsMemory(); }
    static Block* block(const Value& value) noexcept
    {
        return value.ownsMemory() ? static_cast<Block*>(value.load<void*>(Value::payloadOffset)) : nullptr;
    }
    /// Sets type and items. @p value must not own memory. A null block means that there are no items.
    static void setBlock(Value& value, Type type, Block* block) noexcept
    {
        value.setType(type);
        value.m_bytes[1] = block ? Value::owned : 0;
        value.store(Value::payloadOffset, static_cast<void*>(block));
    }

    static std::string_view text(const Value& value) noexcept { return value.text(); }
    static void setText(Value& value, Type type, const char* text, std::size_t size)
    {
        value.setText(type, text, size);
    }
    static void setBinary(Value& value, const unsigned char* bytes, std::size_t size, unsigned char subtype)
    {
        value.setBinary(bytes, size, subtype);
    }
    /// Returns the bytes as BSON has them: with subtype 2, they begin with their length.
    static std::string_view bytes(const Value& value) noexcept
    {
        return value.ownsMemory() ? std::string_view(value.load<const char*>(Value::payloadOffset),
                                                     value.load<std::uint32_t>(Value::sizeOffset))
                                  : std::string_view();
    }
    static unsigned char subtype(const Value& value) noexcept { return value.m_bytes[2]; }
    static void setPair(Value& value, Type type, Value first, Value second)
    {
        value.setPair(type, std::move(first), std::move(second));
    }
    static const Value& pairItem(const Value& value, std::size_t index) noexcept { return value.pairItem(index); }

    template <typename Number>
    static Number number(const Value& value) noexcept
    {
        return value.load<Number>(Value::payloadOffset);
    }
    template <typename Number>
    static void setNumber(Value& value, Type type, Number number) noexcept
    {
        value.setType(type);
        value.store(Value::payloadOffset, number);
    }
    static void setType(Value& value, Type type) noexcept { value.setType(type); }

    static constexpr std::size_t objectIdSize = 12;
    static const unsigned char* objectId(const Value& value) noexcept { return value.m_bytes + Value::sizeOffset; }
    static void setObjectId(Value& value, const void* bytes) noexcept
    {
        value.setType(Type::ObjectId);
        std::memcpy(value.m_bytes + Value::sizeOffset, bytes, objectIdSize);
    }
    static void setDecimal(Value& value, const Decimal128& decimal) { value.setDecimal(decimal); }

    /// Returns a string that is stored in place as two words: type, length and characters. Unused bytes are zero.
    static std::pair<std::uint64_t, std::uint64_t> words(const Value& value) noexcept
    {
        return {value.load<std::uint64_t>(0), value.load<std::uint64_t>(sizeof(std::uint64_t))};
    }
    static void setWords(Value& value, std::uint64_t first, std::uint64_t second) noexcept
    {
        value.store(0, first);
        value.store(sizeof(first), second);
    }

    static Value& key(Field& field) noexcept { return field.m_key; }
    static const Value& key(const Field& field) noexcept { return field.m_key; }
    static Value& value(Field& field) noexcept { return field.m_value; }
    static const Value& value(const Field& field) noexcept { return field.m_value; }
    static Field makeField(Value&& key, Value&& value) noexcept
    {
        return {Field::Made(), std::move(key), std::move(value)};
    }
    static Value makeValue(Type type) noexcept { return Value(type); }
    static Value checkedKey(std::string_view key) { return Field::checkedKey(key); }

    static bool isContainer(const Value& value) noexcept { return value.isObject() || value.isArray(); }
    /// True for the types that own a block of two values.
    static bool isPair(const Value& value) noexcept
    {
        return value.type() == Type::RegularExpression || value.type() == Type::CodeWithScope ||
               value.type() == Type::DbPointer;
    }
};

} // namespace v1
} // namespace dbc
