// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/value.h"

#include "collection/value_access.h"
#include "dbc/value_type.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

namespace {

using Access = ValueAccess;
using Block = Access::Block;

// The length of a string in BSON is a signed 32-bit number that counts the final zero byte.
constexpr std::size_t maximumSize = 0x7FFFFFFE;
constexpr std::size_t maximumItems = 0x7FFFFFFF;

void checkSize(std::size_t size)
{
    if (size > maximumSize)
        throw std::length_error("Value: more than 2^31 - 2 bytes");
}

char* ownedCopy(const void* bytes, std::size_t size)
{
    auto* const copy = static_cast<char*>(::operator new(size));
    std::memcpy(copy, bytes, size);
    return copy;
}

int digitOf(char character) noexcept
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::size_t itemSizeOf(const Value& value) noexcept { return value.isObject() ? sizeof(Field) : sizeof(Value); }

/// A hash table of the keys of an object. Created when an object with many fields was searched several times.
struct KeyIndex
{
    std::size_t mask = 0;

    /// The slots: the index of a field plus one, or 0 if the slot is free. After a collision, the next slot is used.
    std::uint32_t* places() noexcept { return reinterpret_cast<std::uint32_t*>(this + 1); }
};

constexpr std::uint32_t fieldsBeforeIndex = 24;
constexpr std::uintptr_t searchesBeforeIndex = 16;
/// Set if a caller may change keys: the index, if there is one, is not used.
constexpr std::uintptr_t openBit = 1;

bool mayKeysChange(std::uintptr_t searches) noexcept
{
    return searches > searchesBeforeIndex && (searches & openBit) != 0;
}

/// Returns the index in Block::searches, or null.
KeyIndex* storedIndex(std::uintptr_t searches) noexcept
{
    return searches > (searchesBeforeIndex | openBit) ? reinterpret_cast<KeyIndex*>(searches & ~openBit) : nullptr;
}

std::size_t hashOf(const Value& key) noexcept
{
    if (Access::ownsMemory(key))
        return std::hash<std::string_view>()(Access::text(key));
    const auto [first, second] = Access::words(key);
    const std::uint64_t mixed = (first ^ (second * 0x9E3779B97F4A7C15U)) * 0xC2B2AE3D27D4EB4FU;
    return static_cast<std::size_t>(mixed ^ (mixed >> 32));
}

bool areSame(const Value& left, const Value& right) noexcept
{
    if (!Access::ownsMemory(left) && !Access::ownsMemory(right))
        return Access::words(left) == Access::words(right);
    return Access::text(left) == Access::text(right);
}

/// Returns the slot of the key, or the free slot for it.
std::uint32_t* placeOf(KeyIndex& index, Block& block, const Value& key) noexcept
{
    std::size_t place = hashOf(key) & index.mask;
    while (index.places()[place] != 0 && !areSame(Access::key(block.fields()[index.places()[place] - 1]), key))
        place = (place + 1) & index.mask;
    return index.places() + place;
}

/// Returns null if there is not enough memory. The fields are then searched one by one.
KeyIndex* makeIndex(Block& block) noexcept
{
    std::size_t places = 64;
    while (places < 2 * static_cast<std::size_t>(block.size))
        places *= 2;
    void* memory = nullptr;
    try
    {
        memory = ::operator new(sizeof(KeyIndex) + places * sizeof(std::uint32_t));
    }
    catch (const std::bad_alloc& /*error*/)
    {
        return nullptr;
    }
    auto* const index = new (memory) KeyIndex{places - 1};
    std::fill(index->places(), index->places() + places, 0);
    for (std::uint32_t number = 0; number < block.size; ++number)
    {
        std::uint32_t* const place = placeOf(*index, block, Access::key(block.fields()[number]));
        if (*place == 0) // find() returns the first field with a key
            *place = number + 1;
    }
    return index;
}

/// Returns the index, or null if it was not created yet. Thread-safe: if several threads create an index, the first one
/// is kept.
KeyIndex* indexOf(Block& block) noexcept
{
    std::uintptr_t searches = __atomic_load_n(&block.searches, __ATOMIC_ACQUIRE);
    if (searches > searchesBeforeIndex)
        return mayKeysChange(searches) ? nullptr : storedIndex(searches);
    if (searches < searchesBeforeIndex)
    {
        __atomic_compare_exchange_n(&block.searches, &searches, searches + 1, false, __ATOMIC_RELAXED,
                                    __ATOMIC_RELAXED);
        return nullptr;
    }
    KeyIndex* const index = makeIndex(block);
    if (!index || __atomic_compare_exchange_n(&block.searches, &searches, reinterpret_cast<std::uintptr_t>(index),
                                              false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
        return index;
    ::operator delete(index);
    return mayKeysChange(searches) ? nullptr : storedIndex(searches);
}

/// Call this before a caller may change keys. Several threads may call it at once, and others may be searching, so an
/// index stays until the fields change.
void letKeysChange(Block& block) noexcept
{
    std::uintptr_t searches = __atomic_load_n(&block.searches, __ATOMIC_ACQUIRE);
    while (!mayKeysChange(searches) &&
           !__atomic_compare_exchange_n(&block.searches, &searches, std::max(searches, searchesBeforeIndex) | openBit,
                                        false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
    {}
}

/// Call this before the fields of a block change, and before it is freed.
void dropIndex(Block& block) noexcept
{
    if (KeyIndex* const index = storedIndex(block.searches))
        ::operator delete(index);
    block.searches = 0;
}

/// Makes room for @p count items. They are moved as bytes, because a value has no pointers to itself.
void grow(Value& value, std::size_t count)
{
    if (count > maximumItems)
        throw std::length_error("Value: more than 2^31 - 1 items");
    Block* const old = Access::block(value);
    const std::size_t itemSize = itemSizeOf(value);
    Block* const block = Access::newBlock(count, itemSize);
    if (old)
    {
        block->size = old->size;
        std::memcpy(static_cast<void*>(block->values()), static_cast<const void*>(old->values()), old->size * itemSize);
        dropIndex(*old);
        ::operator delete(old);
    }
    Access::setBlock(value, value.type(), block);
}

/// Returns the block with room for one more item.
Block* blockForOneMore(Value& value)
{
    Block* const block = Access::block(value);
    if (block && block->size < block->capacity)
    {
        dropIndex(*block);
        return block;
    }
    const std::size_t capacity = block ? block->capacity : 0;
    grow(value, capacity < 4 ? 4 : capacity * 2);
    return Access::block(value);
}

void check(bool isRight, const char* what)
{
    if (!isRight)
        throw std::logic_error(what);
}

constexpr const char* noObject = "Value: not an object";
constexpr const char* noArray = "Value: not an array";
constexpr const char* noContainer = "Value: neither an object nor an array";

} // namespace

void Value::throwNullPointer() { throw std::invalid_argument("Value: null pointer to a string"); }

void Value::setText(Type type, const char* text, std::size_t size)
{
    checkSize(size);
    if (size <= textCapacity)
    {
        m_bytes[1] = static_cast<unsigned char>(size);
        if (size > 0)
            std::memcpy(m_bytes + textOffset, text, size);
    }
    else
    {
        store(payloadOffset, ownedCopy(text, size));
        store(sizeOffset, static_cast<std::uint32_t>(size));
        m_bytes[1] = owned;
    }
    setType(type);
}

void Value::setObjectId(const std::string& hex)
{
    unsigned char bytes[Access::objectIdSize];
    if (hex.size() != 2 * sizeof(bytes))
        throw std::invalid_argument("Value: an object id has 24 hexadecimal digits");
    for (std::size_t index = 0; index < sizeof(bytes); ++index)
    {
        const int high = digitOf(hex[2 * index]);
        const int low = digitOf(hex[2 * index + 1]);
        if (high < 0 || low < 0)
            throw std::invalid_argument("Value: an object id has 24 hexadecimal digits");
        bytes[index] = static_cast<unsigned char>(high * 16 + low);
    }
    Access::setObjectId(*this, bytes);
}

std::string Value::objectIdText() const
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * Access::objectIdSize);
    const unsigned char* const bytes = Access::objectId(*this);
    for (std::size_t index = 0; index < Access::objectIdSize; ++index)
        text.append(1, digits[bytes[index] >> 4]).append(1, digits[bytes[index] & 0xF]);
    return text;
}

void Value::setBinary(const unsigned char* bytes, std::size_t size, unsigned char subtype)
{
    // Subtype 2 repeats the length in front of the bytes.
    const std::size_t prefix = subtype == 2 ? sizeof(std::uint32_t) : 0;
    checkSize(size + prefix);
    if (size + prefix > 0)
    {
        auto* const copy = static_cast<unsigned char*>(::operator new(size + prefix));
        for (std::size_t index = 0; index < prefix; ++index)
            copy[index] = static_cast<unsigned char>(size >> (8 * index));
        if (size > 0)
            std::memcpy(copy + prefix, bytes, size);
        store(payloadOffset, copy);
        m_bytes[1] = owned;
    }
    store(sizeOffset, static_cast<std::uint32_t>(size + prefix));
    m_bytes[2] = subtype;
    setType(Type::Binary);
}

Binary Value::binary() const
{
    std::string_view bytes = Access::bytes(*this);
    if (m_bytes[2] == 2)
        bytes.remove_prefix(sizeof(std::uint32_t));
    return {Bytes(bytes.begin(), bytes.end()), m_bytes[2]};
}

void Value::setPair(Type type, Value first, Value second)
{
    if (type == Type::CodeWithScope)
        check(second.isObject(), "Value: the scope of code is an object");
    Block* const block = Access::newBlock(2, sizeof(Value));
    new (block->values()) Value(std::move(first));
    new (block->values() + 1) Value(std::move(second));
    block->size = 2;
    Access::setBlock(*this, type, block);
}

const Value& Value::pairItem(std::size_t index) const noexcept { return Access::block(*this)->values()[index]; }

void Value::setDecimal(const Decimal128& value)
{
    store(payloadOffset, ownedCopy(&value, sizeof(value)));
    store(sizeOffset, static_cast<std::uint32_t>(sizeof(value)));
    m_bytes[1] = owned;
    setType(Type::Decimal128);
}

void Value::setFields(const Field* fields, std::size_t count)
{
    if (count == 0)
        return;
    grow(*this, count);
    Block* const block = Access::block(*this);
    for (; block->size < count; ++block->size)
        new (block->fields() + block->size) Field(fields[block->size]);
}

Value Value::object(std::vector<Field> fields)
{
    Value result;
    if (fields.empty())
        return result;
    grow(result, fields.size());
    Block* const block = Access::block(result);
    for (Field& field : fields)
        new (block->fields() + block->size++) Field(std::move(field));
    return result;
}

Value Value::array(std::vector<Value> elements)
{
    Value result(Type::Array);
    if (elements.empty())
        return result;
    grow(result, elements.size());
    Block* const block = Access::block(result);
    for (Value& element : elements)
        new (block->values() + block->size++) Value(std::move(element));
    return result;
}

// Links the blocks that are still to be freed through their headers. That needs neither recursion nor memory.
void Value::release() noexcept
{
    Block* objects = nullptr;
    Block* lists = nullptr;
    const auto free = [&objects, &lists](Value& value) {
        if (!value.ownsMemory())
            return;
        if (!Access::isContainer(value) && !Access::isPair(value))
        {
            ::operator delete(value.load<void*>(payloadOffset));
            return;
        }
        Block* const block = Access::block(value);
        dropIndex(*block);
        Block*& list = value.isObject() ? objects : lists;
        block->searches = reinterpret_cast<std::uintptr_t>(list);
        list = block;
    };
    free(*this);
    while (objects || lists)
    {
        if (Block* const block = objects)
        {
            objects = reinterpret_cast<Block*>(block->searches);
            for (Field* field = block->fields(); field != block->fields() + block->size; ++field)
            {
                free(field->m_key);
                free(field->m_value);
            }
            ::operator delete(block);
        }
        if (Block* const block = lists)
        {
            lists = reinterpret_cast<Block*>(block->searches);
            for (Value* value = block->values(); value != block->values() + block->size; ++value)
                free(*value);
            ::operator delete(block);
        }
    }
}

// `result` is a valid value after every step, so an exception does not leak memory.
void Value::copy(const Value& other)
{
    std::vector<std::pair<const Value*, Value*>> open;
    const auto copyOne = [&open](const Value& source, Value& target) {
        if (!source.ownsMemory())
            std::memcpy(target.m_bytes, source.m_bytes, sizeof(target.m_bytes));
        else if (Access::isContainer(source) || Access::isPair(source))
            open.emplace_back(&source, &target);
        else
        {
            const auto size = source.load<std::uint32_t>(sizeOffset);
            char* const bytes = ownedCopy(source.load<const void*>(payloadOffset), size);
            std::memcpy(target.m_bytes, source.m_bytes, sizeof(target.m_bytes));
            target.store(payloadOffset, bytes);
        }
    };
    Value result;
    copyOne(other, result);
    while (!open.empty())
    {
        const auto [source, target] = open.back();
        open.pop_back();
        Block* const from = Access::block(*source);
        const bool isObject = source->isObject();
        Block* const to = Access::newBlock(from->size, isObject ? sizeof(Field) : sizeof(Value));
        Access::setBlock(*target, source->type(), to);
        while (to->size < from->size)
        {
            const std::size_t index = to->size;
            if (!isObject)
            {
                Value* const element = new (to->values() + index) Value();
                ++to->size;
                copyOne(from->values()[index], *element);
                continue;
            }
            Field* const field = new (to->fields() + index) Field(Field::Made(), Value(), Value());
            ++to->size;
            copyOne(from->fields()[index].m_key, field->m_key);
            copyOne(from->fields()[index].m_value, field->m_value);
        }
    }
    take(result);
}

std::size_t Value::size() const noexcept
{
    const Block* const block = Access::isContainer(*this) ? Access::block(*this) : nullptr;
    return block ? block->size : 0;
}

void* Value::openItems() noexcept
{
    if (Block* const block = Access::block(*this))
        letKeysChange(*block);
    return items();
}

void* Value::items() const noexcept
{
    Block* const block = Access::block(*this);
    return block ? block->values() : nullptr;
}

const Value* Value::find(std::string_view key) const noexcept
{
    if (!isObject() || !ownsMemory() || key.size() > maximumSize)
        return nullptr;
    Block* const block = Access::block(*this);
    // The key in the form in which fields store it, for a fast comparison. A long key is not copied.
    Value image(Type::String);
    const bool isShort = key.size() <= textCapacity;
    if (isShort)
    {
        image.m_bytes[1] = static_cast<unsigned char>(key.size());
        if (!key.empty())
            std::memcpy(image.m_bytes + textOffset, key.data(), key.size());
    }
    if (block->size >= fieldsBeforeIndex)
    {
        if (KeyIndex* const index = indexOf(*block))
        {
            if (!isShort)
                image.borrow(key);
            const std::uint32_t number = *placeOf(*index, *block, image);
            image.m_bytes[1] = 0;
            return number == 0 ? nullptr : &block->fields()[number - 1].m_value;
        }
    }
    const Field* const end = block->fields() + block->size;
    const auto [first, second] = Access::words(image);
    for (const Field* field = block->fields(); field != end; ++field)
    {
        const auto words = Access::words(field->m_key);
        if (isShort ? ((words.first ^ first) | (words.second ^ second)) == 0 : field->key() == key)
            return &field->m_value;
    }
    return nullptr;
}

const Value* Value::findPath(std::string_view path) const noexcept
{
    const Value* value = this;
    while (value)
    {
        const std::size_t begin = path.find_first_not_of('/');
        if (begin == std::string_view::npos)
            return value;
        path.remove_prefix(begin);
        const std::string_view key = path.substr(0, path.find('/'));
        path.remove_prefix(key.size());
        if (!value->isArray())
        {
            value = value->find(key);
            continue;
        }
        std::size_t index = 0;
        const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), index);
        const bool isIndex = error == std::errc() && end == key.data() + key.size() && index < value->size();
        value = isIndex ? &value->elements()[index] : nullptr;
    }
    return nullptr;
}

const Value& Value::at(std::string_view key) const
{
    if (const Value* const value = find(key))
        return *value;
    throw std::out_of_range("Value: no field \"" + std::string(key) + '"');
}

const Value& Value::at(std::size_t index) const
{
    if (index >= size())
        throw std::out_of_range("Value: no item " + std::to_string(index) + " of " + std::to_string(size()));
    return isObject() ? fields()[index].value() : elements()[index];
}

Value& Value::set(std::string_view key, Value value)
{
    check(isObject(), noObject);
    if (Value* const old = find(key))
    {
        *old = std::move(value);
        return *old;
    }
    return append(key, std::move(value));
}

Value& Value::append(std::string_view key, Value value)
{
    check(isObject(), noObject);
    Value checked = Field::checkedKey(key);
    Block* const block = blockForOneMore(*this);
    Field* const field = new (block->fields() + block->size) Field(Field::Made(), std::move(checked), std::move(value));
    ++block->size;
    return field->m_value;
}

Value& Value::push(Value value)
{
    check(isArray(), noArray);
    Block* const block = blockForOneMore(*this);
    Value* const element = new (block->values() + block->size) Value(std::move(value));
    ++block->size;
    return *element;
}

std::size_t Value::remove(std::string_view key)
{
    check(isObject(), noObject);
    Block* const block = Access::block(*this);
    if (!block)
        return 0;
    const std::string removed(key); // the key may be a view into a field that moves
    dropIndex(*block);
    Field* const begin = block->fields();
    Field* const end = begin + block->size;
    Field* const kept = std::remove_if(begin, end, [&removed](const Field& field) { return field.key() == removed; });
    for (Field* field = kept; field != end; ++field)
        field->~Field();
    block->size = static_cast<std::uint32_t>(kept - begin);
    return static_cast<std::size_t>(end - kept);
}

void Value::removeAt(std::size_t index)
{
    check(Access::isContainer(*this), noContainer);
    static_cast<void>(at(index));
    Block* const block = Access::block(*this);
    dropIndex(*block);
    if (isObject())
    {
        std::move(block->fields() + index + 1, block->fields() + block->size, block->fields() + index);
        block->fields()[--block->size].~Field();
    }
    else
    {
        std::move(block->values() + index + 1, block->values() + block->size, block->values() + index);
        block->values()[--block->size].~Value();
    }
}

void Value::clear()
{
    check(Access::isContainer(*this), noContainer);
    Value emptied(type());
    swap(emptied);
}

void Value::reserve(std::size_t count)
{
    check(Access::isContainer(*this), noContainer);
    const Block* const block = Access::block(*this);
    if (count > (block ? block->capacity : 0))
        grow(*this, count);
}

Value Field::checkedKey(std::string_view key)
{
    if (key.find('\0') != std::string_view::npos)
        throw std::invalid_argument("Value: a key or regular expression with a zero byte");
    return Value(key);
}

} // namespace v1
} // namespace dbc
