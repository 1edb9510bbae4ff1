// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// A BSON value of any type, with conversions to and from BSON, JSON and ObjectProperties.

#include "database_client_export.h"
#include "dbc/value_type.h"
#include "dbc/values.h"
#include "object_properties.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iosfwd>
#include <limits>
#include <map>
#include <optional>
#include <ratio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

class Field;
class Value;

/// Bytes with their subtype.
struct Binary
{
    Bytes bytes;               ///< The bytes. For subtype 2, without the repeated length.
    unsigned char subtype = 0; ///< 0 generic, 4 UUID, 5 MD5, 6 encrypted, 128 and above user-defined, ...
};

/// IEEE 754 decimal128 number as its bits.
struct Decimal128
{
    std::uint64_t high = 0x3040000000000000U; ///< Sign, exponent and the upper digits.
    std::uint64_t low = 0;                    ///< The lower digits.

    /// Converts a decimal number such as "-1.50E+3", "NaN" or "Infinity".
    /// @throws std::invalid_argument  not a number, more than 34 digits, or an exponent out of range
    DATABASE_CLIENT_API static Decimal128 parse(const std::string& text);
    /// Returns the number as a string. parse() converts it to the same bits.
    DATABASE_CLIENT_API std::string text() const;
};

/// A timestamp for the server's own use, such as in the oplog. Use dbc::Time for the times of a program.
struct Timestamp
{
    std::uint32_t seconds = 0;   ///< Seconds since 1970-01-01 UTC.
    std::uint32_t increment = 0; ///< Counter within the second.
};

/// JavaScript code.
struct Code
{
    std::string text; ///< The code.
};

/// A symbol, deprecated in BSON.
struct Symbol
{
    std::string text; ///< The symbol.
};

/// A DBPointer: a reference to a document, deprecated in BSON.
struct DbPointer
{
    std::string collection; ///< Database and collection, separated by ".".
    ObjectId id;            ///< The "_id" of the document.
};

struct CodeWithScope;

/// Output format of Value::toJson().
enum class JsonFormat
{
    Relaxed,   ///< Extended JSON that is easy to read: plain numbers, times as ISO 8601 where possible.
    Canonical, ///< Extended JSON that keeps all types: an Int64 is {"$numberLong": "1"}.
    Legacy     ///< The format of PropertiesToJson: {"$date": 0}, {"$oid": "..."}.
};

/// The exception for invalid BSON or JSON.
/// @since 1.0
class DATABASE_CLIENT_API FormatError : public std::invalid_argument
{
public:
    /// @param reason  start of what(); the position is appended
    FormatError(const std::string& reason, std::size_t position);
    ~FormatError() override;
    /// A copy.
    FormatError(const FormatError&) = default;
    /// A copy.
    FormatError& operator=(const FormatError&) = default;

    /// Number of bytes before the first invalid one.
    std::size_t position() const noexcept { return m_position; }

private:
    std::size_t m_position;
};

/// The exception for a value with fields that ObjectProperties cannot hold.
/// @since 1.0
class DATABASE_CLIENT_API LossError : public std::invalid_argument
{
public:
    /// what() has the path of every field.
    explicit LossError(std::vector<LossAt> losses);
    ~LossError() override;
    /// A copy.
    LossError(const LossError&) = default;
    /// A copy.
    LossError& operator=(const LossError&) = default;

    /// Every field that cannot be kept, in the order of the document.
    const std::vector<LossAt>& losses() const noexcept { return m_losses; }

private:
    std::vector<LossAt> m_losses;
};

/// A view of the fields of an object or the elements of an array. Valid until the value is changed or destroyed.
/// @since 1.0
template <typename T>
class Range
{
public:
    /// Creates an empty range.
    Range() = default;
    /// A range of @p count items, starting at @p first.
    Range(T* first, std::size_t count) noexcept : m_first(first), m_count(count) {}

    T* begin() const noexcept { return m_first; }                     ///< The first item.
    T* end() const noexcept { return m_first + m_count; }             ///< Past the last item.
    std::size_t size() const noexcept { return m_count; }             ///< Number of items.
    bool empty() const noexcept { return m_count == 0; }              ///< True if there are no items.
    T& operator[](std::size_t index) const { return m_first[index]; } ///< The item at @p index. Not checked.

private:
    T* m_first = nullptr;
    std::size_t m_count = 0;
};

} // namespace v1

namespace detail {

template <typename T>
using Plain = std::remove_cv_t<std::remove_reference_t<T>>;

/// True for the types of a string. A parameter that is constrained with it never accepts braces, because a template
/// parameter cannot be deduced from braces. Otherwise {"a", 1} would be a string made of the first character of "a".
template <typename T>
constexpr bool isText = isOneOf<std::decay_t<T>, const char*, char*, std::string, std::string_view>;

/// True for the types that convert to a value. They are listed one by one, because any pointer converts to bool.
template <typename T>
struct IsBuildable
    : std::bool_constant<isText<T> || isArithmetic<T> ||
                         isOneOf<T, bool, std::nullptr_t, Time, ObjectId, Bytes, Binary, RegularExpression, Decimal128,
                                 Timestamp, Code, CodeWithScope, DbPointer, Symbol>>
{};
template <typename Duration>
struct IsBuildable<std::chrono::time_point<std::chrono::system_clock, Duration>> : std::true_type
{};
template <typename T>
struct IsBuildable<std::optional<T>> : std::bool_constant<std::is_same_v<T, Value> || IsBuildable<T>::value>
{};
template <typename T>
struct IsBuildable<std::vector<T>>
    : std::bool_constant<isOneOf<T, Value, Field, unsigned char> || IsBuildable<T>::value>
{};
template <typename T>
struct IsBuildable<std::map<std::string, T>> : std::bool_constant<std::is_same_v<T, Value> || IsBuildable<T>::value>
{};
template <typename T>
struct IsBuildable<std::unordered_map<std::string, T>>
    : std::bool_constant<std::is_same_v<T, Value> || IsBuildable<T>::value>
{};

template <typename>
inline constexpr bool isTimePoint = false;
template <typename Duration>
inline constexpr bool isTimePoint<std::chrono::time_point<std::chrono::system_clock, Duration>> = true;
template <typename>
inline constexpr bool isOptional = false;
template <typename T>
inline constexpr bool isOptional<std::optional<T>> = true;
template <typename>
inline constexpr bool isVector = false;
template <typename T>
inline constexpr bool isVector<std::vector<T>> = true;

/// Converts a time to another time point of the system clock. Empty if that type cannot hold it.
template <typename TimePoint>
std::optional<TimePoint> exactTime(long milliseconds)
{
    using Duration = typename TimePoint::duration;
    const std::chrono::milliseconds exact(milliseconds);
    if constexpr (!std::is_same_v<Duration, std::chrono::milliseconds>)
    {
        using Wide = std::chrono::duration<long double, std::milli>;
        const bool isInside = Wide(exact) >= Wide(Duration::min()) && Wide(exact) <= Wide(Duration::max());
        if (!isInside || std::chrono::duration_cast<Duration>(exact) != exact)
            return std::nullopt;
    }
    return TimePoint(std::chrono::duration_cast<Duration>(exact));
}

/// Converts from anything in braces, including braces. This conversion is the worst match, so an overload with this
/// parameter is chosen only if no other overload matches.
struct Anything
{
    Anything(std::initializer_list<Anything>) {}
    template <typename T>
    Anything(const T&)
    {}
};

/// The same as Anything, but does not convert from T. So T{t} is a copy with every compiler.
template <typename T>
struct AnythingBut
{
    AnythingBut(std::initializer_list<Anything>) {}
    template <typename Other, typename = std::enable_if_t<!std::is_same_v<Other, T>>>
    AnythingBut(const Other&)
    {}
};

template <typename>
constexpr bool areFields = false;

template <typename T>
constexpr void refuseBraces()
{
    static_assert(areFields<T>, "braces build objects: write {{key, value}, ...}; for a list write dbc::array({...})");
}

} // namespace detail

inline namespace v1 {

/// A BSON value of any type. An object keeps the order of its fields, and may have equal keys.
///
///     Value order = {{"buyer", {{"name", "Ada"}}}, {"tags", array({"first", 1})}, {"paid", nullptr}};
///     for (const auto& [key, value] : order.fields())
///         std::cout << key << ": " << value << '\n';
///     int count = order.getOr("buyer/orders", 0);
///
/// Braces build objects, and {} is the empty object. Use dbc::array({...}) for an array. Other braces do not compile.
///
/// A value owns everything that it contains, and a copy copies everything. A moved-from value is the empty object. A
/// value has 16 bytes; strings of up to 14 bytes need no other memory. The depth is limited by memory only, except in
/// JSON. Thread-safe for concurrent reads, also through functions that are not const, such as fields(); different
/// values can be used in different threads.
/// @since 1.0
class Value
{
public:
    /// @name From a value
    /// @{

    /// Creates the empty object, like {}.
    Value() noexcept : Value(Type::Object) {}
    /// Converts a C++ value:
    /// - const char*, std::string, std::string_view: a string
    /// - bool
    /// - any number type of ValueTraits: an Int32 if all its values fit, otherwise an Int64; a Double for float and
    ///   double
    /// - nullptr: null
    /// - any time_point of the system clock: a time, rounded down to milliseconds
    /// - ObjectId, Bytes, Binary, RegularExpression, Decimal128, Timestamp, Code, CodeWithScope, DbPointer, Symbol
    /// - std::optional: its value, or null if it is empty
    /// - std::vector: an array, but an object for std::vector<Field> and a binary for Bytes
    /// - std::map and std::unordered_map with std::string keys: an object
    /// @throws std::out_of_range      an unsigned number that is too large for an Int64; a time that is out of range
    /// @throws std::invalid_argument  an ObjectId that is not 24 hexadecimal digits; a null const char*; a regular
    ///                                expression or a key with a zero byte
    /// @throws std::length_error      a string or binary of 2^31 - 1 bytes or more
    /// @throws std::logic_error       a CodeWithScope whose scope is not an object
    template <typename T,
              typename = std::enable_if_t<detail::IsBuildable<detail::Plain<T>>::value || detail::isText<T>>>
    Value(T&& value);
    /// Creates an object with these fields.
    Value(std::initializer_list<Field> fields);
    /// Rejects all other braces at compile time.
    template <int = 0, typename T = Value>
    Value(std::initializer_list<detail::AnythingBut<Value>>)
    {
        detail::refuseBraces<T>();
    }
    /// Rejects several values in braces at compile time.
    template <typename First, typename Second, typename... Others>
    Value(const First&, const Second&, const Others&...)
    {
        detail::refuseBraces<First>();
    }

    /// Copies the whole value.
    Value(const Value& other);
    /// Leaves the empty object in @p other.
    Value(Value&& other) noexcept { take(other); }
    /// Copies the whole value.
    Value& operator=(const Value& other);
    /// Leaves the empty object in @p other.
    Value& operator=(Value&& other) noexcept
    {
        Value taken(std::move(other));
        swap(taken);
        return *this;
    }
    /// Frees the value, whatever its depth, without allocating.
    ~Value()
    {
        if (ownsMemory())
            release();
    }

    /// Returns an object with these fields, in their order.
    DATABASE_CLIENT_API static Value object(std::vector<Field> fields);
    /// Returns an array of these elements.
    DATABASE_CLIENT_API static Value array(std::vector<Value> elements);
    static Value array() noexcept { return Value(Type::Array); }         ///< Returns the empty array.
    static Value undefined() noexcept { return Value(Type::Undefined); } ///< BSON undefined.
    static Value minKey() noexcept { return Value(Type::MinKey); }       ///< BSON min key.
    static Value maxKey() noexcept { return Value(Type::MaxKey); }       ///< BSON max key.

    /// Swaps two values.
    void swap(Value& other) noexcept
    {
        unsigned char bytes[sizeof(m_bytes)];
        std::memcpy(bytes, m_bytes, sizeof(bytes));
        std::memcpy(m_bytes, other.m_bytes, sizeof(bytes));
        std::memcpy(other.m_bytes, bytes, sizeof(bytes));
    }
    /// @}

    /// @name Type
    /// @{
    Type type() const noexcept { return static_cast<Type>(m_bytes[0]); } ///< The type.
    bool isObject() const noexcept { return type() == Type::Object; }    ///< True for an object.
    bool isArray() const noexcept { return type() == Type::Array; }      ///< True for an array.
    bool isNull() const noexcept { return type() == Type::Null; }        ///< True for null.
    bool isString() const noexcept { return type() == Type::String; }    ///< True for a string.
    bool isBool() const noexcept { return type() == Type::Bool; }        ///< True for a bool.
    /// True for an Int32, Int64, Double or Decimal128.
    bool isNumber() const noexcept
    {
        return type() == Type::Int32 || type() == Type::Int64 || type() == Type::Double || type() == Type::Decimal128;
    }
    /// @}

    /// @name Reading
    /// @{

    /// Returns the value as a T, or an empty optional if it has another type. Numbers are converted if the result is
    /// exact. T is a type that converts to a value, except const char*, std::optional and std::vector<Field>. A
    /// std::string_view is a view into this value. For a std::vector, every element must be convertible; for a
    /// std::map, every field, and the last of equal keys is used.
    template <typename T>
    std::optional<T> get() const;
    /// Returns the value that findPath() finds, as get() does.
    template <typename T>
    std::optional<T> get(std::string_view path) const
    {
        const Value* const value = findPath(path);
        return value ? value->get<T>() : std::nullopt;
    }
    /// Returns the value that findPath() finds, or @p fallback if get() returns an empty optional. The type of the
    /// fallback is the type that is read.
    template <typename T>
    T getOr(std::string_view path, T fallback) const
    {
        auto value = get<T>(path);
        return value ? *std::move(value) : std::move(fallback);
    }
    /// Overload for string literals: reads a std::string.
    std::string getOr(std::string_view path, const char* fallback) const { return getOr<std::string>(path, fallback); }

    /// Returns the first field with this key. The key is used as it is. Null if there is no such field or this is not
    /// an object. Takes time proportional to the number of fields. In an object with many fields, repeated calls take
    /// about constant time, until a field is added or removed or the non-const fields() is called.
    DATABASE_CLIENT_API const Value* find(std::string_view key) const noexcept;
    Value* find(std::string_view key) noexcept
    {
        return const_cast<Value*>(std::as_const(*this).find(key));
    } ///< As above.
    /// Returns the value at a path of keys and element numbers separated by "/", such as "items/0/sku". Empty keys are
    /// ignored. Null if there is no such value.
    DATABASE_CLIENT_API const Value* findPath(std::string_view path) const noexcept;
    /// As above.
    Value* findPath(std::string_view path) noexcept { return const_cast<Value*>(std::as_const(*this).findPath(path)); }
    /// True if there is a field with this key.
    bool contains(std::string_view key) const noexcept { return find(key) != nullptr; }
    /// Does not compile, because the number 0 would be a null pointer to a path. Use at(0) for the first element.
    template <typename T>
    std::optional<T> get(std::nullptr_t path) const = delete;
    /// As above.
    template <typename T>
    T getOr(std::nullptr_t path, T fallback) const = delete;
    const Value* find(std::nullptr_t key) const = delete;      ///< As above.
    const Value* findPath(std::nullptr_t path) const = delete; ///< As above.
    bool contains(std::nullptr_t key) const = delete;          ///< As above.
    /// Returns the first field with this key. @throws std::out_of_range if there is no such field
    DATABASE_CLIENT_API const Value& at(std::string_view key) const;
    /// Returns the element or the value of the field at @p index.
    /// @throws std::out_of_range if there is no such element or field
    DATABASE_CLIENT_API const Value& at(std::size_t index) const;
    Value& at(std::string_view key) { return const_cast<Value&>(std::as_const(*this).at(key)); } ///< As above.
    Value& at(std::size_t index) { return const_cast<Value&>(std::as_const(*this).at(index)); }  ///< As above.

    /// Returns the number of fields or elements; 0 for any other type.
    DATABASE_CLIENT_API std::size_t size() const noexcept;
    /// True if there are no fields and no elements.
    bool empty() const noexcept { return size() == 0; }
    /// Returns the fields of an object: `for (const auto& [key, value] : order.fields())`. Empty for any other type.
    Range<const Field> fields() const& noexcept;
    /// The same, but the values can be changed.
    Range<Field> fields() & noexcept;
    /// Returns the elements of an array. Empty for any other type.
    Range<const Value> elements() const& noexcept;
    /// The same, but the elements can be changed.
    Range<Value> elements() & noexcept;
    /// Does not compile: a range-based for loop over a temporary value would read freed memory. Give the value a name
    /// first.
    Range<const Field> fields() const&& = delete;
    Range<const Value> elements() const&& = delete; ///< As above.
    /// @}

    /// @name Changing
    /// Each function throws std::logic_error if the value has another type. Pointers and ranges into this value become
    /// invalid.
    /// @{

    /// Sets the first field with this key, or appends a field. Returns a reference to the stored value. Searches for
    /// the key first: use append() to build objects with many fields.
    /// @throws std::invalid_argument  a key with a zero byte
    DATABASE_CLIENT_API Value& set(std::string_view key, Value value);
    /// Appends a field, also if the key exists. Returns a reference to the stored value. Takes constant time on
    /// average.
    /// @throws std::invalid_argument  a key with a zero byte
    DATABASE_CLIENT_API Value& append(std::string_view key, Value value);
    /// Appends an element to an array. Returns a reference to the stored value. Takes constant time on average.
    DATABASE_CLIENT_API Value& push(Value value);
    /// Removes every field with this key and returns their number. Takes time proportional to the number of fields.
    DATABASE_CLIENT_API std::size_t remove(std::string_view key);
    /// Does not compile, because the number 0 would be a null pointer to a key. Use removeAt(0) for the first element.
    std::size_t remove(std::nullptr_t key) = delete;
    /// Removes the field or element at @p index. Takes time proportional to the number of items after it.
    /// @throws std::out_of_range if there is no such element or field
    DATABASE_CLIENT_API void removeAt(std::size_t index);
    /// Removes all fields or elements.
    DATABASE_CLIENT_API void clear();
    /// Reserves memory for this number of fields or elements.
    DATABASE_CLIENT_API void reserve(std::size_t count);
    /// @}

    /// @name Conversion
    /// @{

    /// Returns the object of a BSON document. Does not check that strings are valid UTF-8. Does not keep the keys of
    /// arrays.
    /// @throws FormatError  not exactly one BSON document of @p size bytes
    DATABASE_CLIENT_API static Value fromBson(const std::uint8_t* bytes, std::size_t size);
    /// Returns the BSON document of an object or array. Throws as appendBson().
    DATABASE_CLIENT_API std::vector<std::uint8_t> toBson() const;
    /// Appends the BSON document of an object or array to @p target.
    /// @throws std::logic_error   neither an object nor an array
    /// @throws std::length_error  a document of 2^31 bytes or more
    DATABASE_CLIENT_API void appendBson(std::vector<std::uint8_t>& target) const;

    /// Returns the value of a JSON text: plain JSON, or canonical, relaxed or legacy Extended JSON. Accepts up to 96
    /// nested levels.
    /// @throws FormatError  not exactly one JSON value; what() has the position and the reason
    DATABASE_CLIENT_API static Value fromJson(std::string_view json);
    /// Returns the value as JSON. Accepts up to 90 nested levels, so fromJson() accepts the result.
    /// @throws std::invalid_argument  more levels, or a string that is not valid UTF-8
    /// @throws std::length_error      a value of 2^31 bytes or more as BSON
    DATABASE_CLIENT_API std::string toJson(JsonFormat format = JsonFormat::Relaxed) const;

    /// Returns the object of a document. The fields are in key order, the elements in the order of their numbers.
    /// @throws std::invalid_argument  a key with a zero byte or an Id that is not 24 hexadecimal digits
    DATABASE_CLIENT_API static Value fromProperties(const ObjectProperties& document);
    /// Returns a document with the fields of this object. A "/" in a key does not make it a path.
    /// @throws LossError         a field that ObjectProperties cannot hold
    /// @throws std::logic_error  not an object
    DATABASE_CLIENT_API ObjectProperties toProperties() const;
    /// The same, but does not throw LossError: fields that cannot be kept are appended to @p losses, and dropped or
    /// changed as nameOf(Loss) describes.
    DATABASE_CLIENT_API ObjectProperties toProperties(std::vector<LossAt>& losses) const;
    /// Writes this value to the child of @p parent with this key. Replaces all existing children with this key; in an
    /// array, adds an element. If an object has equal keys, the last field is kept. Undefined becomes a node of type
    /// Undefined.
    /// @throws LossError  a value that a node cannot hold; the rest is written, as by toProperties(losses)
    DATABASE_CLIENT_API void writeTo(Property& parent, const std::string& key) const;
    /// @}

    /// Compares in the sort order of the server. Returns a number less than, equal to or greater than 0. Values are
    /// ordered by type first (all numbers are one type, and so are strings and symbols), then by value. Objects are
    /// compared field by field, in their order.
    DATABASE_CLIENT_API int compare(const Value& other) const;

private:
    friend class Field;
    friend class ValueAccess;

    // Layout: byte 0 is the type; byte 1 the length of a string in place, or `owned`; byte 2 a subtype. Then the value.
    static constexpr std::size_t sizeOffset = 4;    // std::uint32_t: bytes of a long string or binary
    static constexpr std::size_t payloadOffset = 8; // number or pointer
    static constexpr std::size_t textOffset = 2;    // string in place
    static constexpr std::size_t textCapacity = 14;
    static constexpr unsigned char owned = 0xFF; // the payload points to memory of this value

    struct Block; // header, followed by fields or elements

    explicit Value(Type type) noexcept { m_bytes[0] = static_cast<unsigned char>(type); }

    template <typename Number>
    Number load(std::size_t offset) const noexcept
    {
        Number number;
        std::memcpy(&number, m_bytes + offset, sizeof(number));
        return number;
    }
    template <typename Number>
    void store(std::size_t offset, Number number) noexcept
    {
        std::memcpy(m_bytes + offset, &number, sizeof(number));
    }
    void setType(Type type) noexcept { m_bytes[0] = static_cast<unsigned char>(type); }
    bool ownsMemory() const noexcept { return m_bytes[1] == owned; }
    void take(Value& other) noexcept
    {
        std::memcpy(m_bytes, other.m_bytes, sizeof(m_bytes));
        std::memset(other.m_bytes, 0, sizeof(m_bytes));
        other.setType(Type::Object);
    }

    // The string of a String, Symbol or Code.
    std::string_view text() const noexcept
    {
        if (ownsMemory())
            return {load<const char*>(payloadOffset), load<std::uint32_t>(sizeOffset)};
        return {reinterpret_cast<const char*>(m_bytes) + textOffset, m_bytes[1]};
    }
    // Makes this value a view of @p text, for comparisons. The caller must set m_bytes[1] to 0 before the destructor
    // runs.
    void borrow(std::string_view text) noexcept
    {
        store(payloadOffset, text.data());
        store(sizeOffset, static_cast<std::uint32_t>(text.size()));
        m_bytes[1] = owned;
    }
    // The setters expect a value that owns no memory.
    DATABASE_CLIENT_API void setText(Type type, const char* text, std::size_t size);
    DATABASE_CLIENT_API void setObjectId(const std::string& hex);
    DATABASE_CLIENT_API void setBinary(const unsigned char* bytes, std::size_t size, unsigned char subtype);
    DATABASE_CLIENT_API void setPair(Type type, Value first, Value second);
    DATABASE_CLIENT_API void setDecimal(const Decimal128& value);
    DATABASE_CLIENT_API void setFields(const Field* fields, std::size_t count);
    DATABASE_CLIENT_API std::string objectIdText() const;
    DATABASE_CLIENT_API Binary binary() const;
    DATABASE_CLIENT_API const Value& pairItem(std::size_t index) const noexcept;
    DATABASE_CLIENT_API void* items() const noexcept;
    DATABASE_CLIENT_API void* openItems() noexcept; // for callers that may change keys
    DATABASE_CLIENT_API void release() noexcept;
    DATABASE_CLIENT_API void copy(const Value& other);
    [[noreturn]] DATABASE_CLIENT_API static void throwNullPointer();

    template <typename T>
    void build(T&& value);

    alignas(8) unsigned char m_bytes[16] = {};
};

/// JavaScript code with its variables, deprecated in BSON.
struct CodeWithScope
{
    std::string text; ///< The code.
    Value scope;      ///< An object with the variables.
};

/// A field of an object: key and value. Every key is used as it is, also with "/" or empty.
/// @since 1.0
class Field
{
public:
    /// @param key  const char*, std::string or std::string_view
    /// @throws std::invalid_argument  a key with a zero byte, a null const char*
    template <typename Key, typename = std::enable_if_t<detail::isText<Key>>>
    Field(Key&& key, Value value) : m_key(keyOf(std::forward<Key>(key))), m_value(std::move(value))
    {}

    /// Returns the key. The view is valid until the field is changed or destroyed.
    std::string_view key() const noexcept { return m_key.text(); }
    Value& value() noexcept { return m_value; }             ///< The value.
    const Value& value() const noexcept { return m_value; } ///< The value.

    /// Supports `const auto& [key, value]`.
    template <std::size_t Index>
    decltype(auto) get() const noexcept
    {
        if constexpr (Index == 0)
            return key();
        else
            return value();
    }
    /// Supports `auto& [key, value]`.
    template <std::size_t Index>
    decltype(auto) get() noexcept
    {
        if constexpr (Index == 0)
            return key();
        else
            return value();
    }

private:
    friend class Value;
    friend class ValueAccess;
    struct Made
    {};

    Field(Made /*unused*/, Value&& key, Value&& value) noexcept : m_key(std::move(key)), m_value(std::move(value)) {}
    DATABASE_CLIENT_API static Value checkedKey(std::string_view key);
    template <typename Key>
    static Value keyOf(Key&& key)
    {
        if constexpr (std::is_pointer_v<detail::Plain<Key>>)
        {
            if (static_cast<const char*>(key) == nullptr)
                Value::throwNullPointer();
        }
        return checkedKey(key);
    }

    Value m_key;
    Value m_value;
};

} // namespace v1
} // namespace dbc

/// Two elements: key and value.
template <>
struct std::tuple_size<dbc::Field> : std::integral_constant<std::size_t, 2>
{};
/// The key.
template <>
struct std::tuple_element<0, dbc::Field>
{
    using type = std::string_view; ///< Type of the key.
};
/// The value.
template <>
struct std::tuple_element<1, dbc::Field>
{
    using type = dbc::Value; ///< Type of the value.
};

namespace dbc {
inline namespace v1 {

/// True if Value::compare() returns 0; 1 equals 1.0.
inline bool operator==(const Value& left, const Value& right)
{
    return left.compare(right) == 0;
}
/// True if Value::compare() does not return 0.
inline bool operator!=(const Value& left, const Value& right)
{
    return left.compare(right) != 0;
}
/// True if Value::compare() returns less than 0.
inline bool operator<(const Value& left, const Value& right)
{
    return left.compare(right) < 0;
}
/// True if Value::compare() returns more than 0.
inline bool operator>(const Value& left, const Value& right)
{
    return left.compare(right) > 0;
}
/// True if Value::compare() returns 0 or less.
inline bool operator<=(const Value& left, const Value& right)
{
    return left.compare(right) <= 0;
}
/// True if Value::compare() returns 0 or more.
inline bool operator>=(const Value& left, const Value& right)
{
    return left.compare(right) >= 0;
}

/// Does not compile: as values, an object id and a string are never equal. Compare the id with an ObjectId.
template <typename Text, typename = std::enable_if_t<detail::isText<Text>>>
bool operator==(const ObjectId& left, const Text& right) = delete;
template <typename Text, typename = std::enable_if_t<detail::isText<Text>>>
bool operator==(const Text& left, const ObjectId& right) = delete; ///< As above.
template <typename Text, typename = std::enable_if_t<detail::isText<Text>>>
bool operator!=(const ObjectId& left, const Text& right) = delete; ///< As above.
template <typename Text, typename = std::enable_if_t<detail::isText<Text>>>
bool operator!=(const Text& left, const ObjectId& right) = delete; ///< As above.

/// Writes the value as relaxed JSON. If JSON is not possible, writes its type in angle brackets.
DATABASE_CLIENT_API std::ostream& operator<<(std::ostream& stream, const Value& value);

/// Returns every field that toProperties() cannot keep, in the order of the document.
DATABASE_CLIENT_API std::vector<LossAt> findLosses(const Value& value);

inline Value::Value(std::initializer_list<Field> fields) : Value(Type::Object)
{
    setFields(fields.begin(), fields.size());
}

inline Value::Value(const Value& other)
{
    if (other.ownsMemory())
        copy(other);
    else
        std::memcpy(m_bytes, other.m_bytes, sizeof(m_bytes));
}

inline Value& Value::operator=(const Value& other)
{
    Value copied(other);
    swap(copied);
    return *this;
}

template <typename T, typename>
Value::Value(T&& value) : Value(Type::Null)
{
    build(std::forward<T>(value));
}

template <typename T>
void Value::build(T&& value)
{
    using Source = detail::Plain<T>;
    if constexpr (detail::isText<T>)
    {
        if constexpr (std::is_pointer_v<Source>)
        {
            if (static_cast<const char*>(value) == nullptr)
                throwNullPointer();
        }
        const std::string_view view(value);
        setText(Type::String, view.data(), view.size());
    }
    else if constexpr (std::is_same_v<Source, bool>)
    {
        setType(Type::Bool);
        m_bytes[payloadOffset] = value ? 1 : 0;
    }
    else if constexpr (std::is_same_v<Source, std::nullptr_t>)
        setType(Type::Null);
    else if constexpr (std::is_floating_point_v<Source>)
    {
        store(payloadOffset, static_cast<double>(value));
        setType(Type::Double);
    }
    else if constexpr (detail::isArithmetic<Source>)
    {
        if constexpr (std::numeric_limits<Source>::digits <= std::numeric_limits<int>::digits)
        {
            store(payloadOffset, static_cast<std::int32_t>(value));
            setType(Type::Int32);
        }
        else
        {
            store(payloadOffset, static_cast<std::int64_t>(detail::int64From(value)));
            setType(Type::Int64);
        }
    }
    else if constexpr (detail::isTimePoint<Source>)
    {
        store(payloadOffset, static_cast<std::int64_t>(millisecondsOf(toTime(value))));
        setType(Type::Time);
    }
    else if constexpr (std::is_same_v<Source, ObjectId>)
        setObjectId(value.text);
    else if constexpr (std::is_same_v<Source, Bytes>)
        setBinary(value.data(), value.size(), 0);
    else if constexpr (std::is_same_v<Source, Binary>)
        setBinary(value.bytes.data(), value.bytes.size(), value.subtype);
    else if constexpr (std::is_same_v<Source, RegularExpression>)
        setPair(Type::RegularExpression, Field::checkedKey(value.pattern), Field::checkedKey(value.options));
    else if constexpr (std::is_same_v<Source, Decimal128>)
        setDecimal(value);
    else if constexpr (std::is_same_v<Source, Timestamp>)
    {
        store(payloadOffset, value.increment);
        store(payloadOffset + sizeof(value.increment), value.seconds);
        setType(Type::Timestamp);
    }
    else if constexpr (std::is_same_v<Source, Code>)
        setText(Type::Code, value.text.data(), value.text.size());
    else if constexpr (std::is_same_v<Source, Symbol>)
        setText(Type::Symbol, value.text.data(), value.text.size());
    else if constexpr (std::is_same_v<Source, CodeWithScope>)
        setPair(Type::CodeWithScope, Value(value.text), value.scope);
    else if constexpr (std::is_same_v<Source, DbPointer>)
        setPair(Type::DbPointer, Value(value.collection), Value(value.id));
    else if constexpr (detail::isOptional<Source>)
    {
        if (value)
            *this = Value(*std::forward<T>(value));
    }
    else if constexpr (detail::isVector<Source>)
    {
        if constexpr (std::is_same_v<typename Source::value_type, Field>)
            *this = object(std::forward<T>(value));
        else
        {
            Value result(Type::Array);
            result.reserve(value.size());
            for (auto&& element : value)
                result.push(Value(static_cast<const typename Source::value_type&>(element)));
            swap(result);
        }
    }
    else
    {
        Value result;
        result.reserve(value.size());
        for (const auto& [key, element] : value)
            result.append(key, Value(element));
        swap(result);
    }
}

inline Range<const Field> Value::fields() const& noexcept
{
    return isObject() ? Range<const Field>(static_cast<const Field*>(items()), size()) : Range<const Field>();
}

inline Range<Field> Value::fields() & noexcept
{
    return isObject() ? Range<Field>(static_cast<Field*>(openItems()), size()) : Range<Field>();
}

inline Range<const Value> Value::elements() const& noexcept
{
    return isArray() ? Range<const Value>(static_cast<const Value*>(items()), size()) : Range<const Value>();
}

inline Range<Value> Value::elements() & noexcept
{
    return isArray() ? Range<Value>(static_cast<Value*>(items()), size()) : Range<Value>();
}

template <typename T>
std::optional<T> Value::get() const
{
    if constexpr (std::is_same_v<T, Value>)
        return *this;
    else if constexpr (std::is_same_v<T, bool>)
        return isBool() ? std::optional<bool>(m_bytes[payloadOffset] != 0) : std::nullopt;
    else if constexpr (detail::isArithmetic<T>)
    {
        if (type() == Type::Int32)
            return exactNumber<T>(load<int>(payloadOffset));
        if (type() == Type::Int64)
            return exactNumber<T>(load<long>(payloadOffset));
        if (type() == Type::Double)
            return exactNumber<T>(load<double>(payloadOffset));
        return std::nullopt;
    }
    else if constexpr (detail::isOneOf<T, std::string, std::string_view>)
        return isString() ? std::optional<T>(text()) : std::nullopt;
    else if constexpr (std::is_same_v<T, std::nullptr_t>)
        return isNull() ? std::optional<T>(nullptr) : std::nullopt;
    else if constexpr (detail::isTimePoint<T>)
    {
        if (type() != Type::Time)
            return std::nullopt;
        return detail::exactTime<T>(load<long>(payloadOffset));
    }
    else if constexpr (std::is_same_v<T, ObjectId>)
        return type() == Type::ObjectId ? std::optional<T>(ObjectId{objectIdText()}) : std::nullopt;
    else if constexpr (std::is_same_v<T, Bytes>)
        return type() == Type::Binary ? std::optional<T>(binary().bytes) : std::nullopt;
    else if constexpr (std::is_same_v<T, Binary>)
        return type() == Type::Binary ? std::optional<T>(binary()) : std::nullopt;
    else if constexpr (std::is_same_v<T, RegularExpression>)
    {
        if (type() != Type::RegularExpression)
            return std::nullopt;
        return RegularExpression{std::string(pairItem(0).text()), std::string(pairItem(1).text())};
    }
    else if constexpr (std::is_same_v<T, Decimal128>)
    {
        if (type() != Type::Decimal128)
            return std::nullopt;
        T result;
        std::memcpy(&result, load<const void*>(payloadOffset), sizeof(result));
        return result;
    }
    else if constexpr (std::is_same_v<T, Timestamp>)
    {
        if (type() != Type::Timestamp)
            return std::nullopt;
        return Timestamp{load<std::uint32_t>(payloadOffset + sizeof(std::uint32_t)),
                         load<std::uint32_t>(payloadOffset)};
    }
    else if constexpr (std::is_same_v<T, Code>)
        return type() == Type::Code ? std::optional<T>(Code{std::string(text())}) : std::nullopt;
    else if constexpr (std::is_same_v<T, Symbol>)
        return type() == Type::Symbol ? std::optional<T>(Symbol{std::string(text())}) : std::nullopt;
    else if constexpr (std::is_same_v<T, CodeWithScope>)
    {
        if (type() != Type::CodeWithScope)
            return std::nullopt;
        return CodeWithScope{std::string(pairItem(0).text()), pairItem(1)};
    }
    else if constexpr (std::is_same_v<T, DbPointer>)
    {
        if (type() != Type::DbPointer)
            return std::nullopt;
        return DbPointer{std::string(pairItem(0).text()), ObjectId{pairItem(1).objectIdText()}};
    }
    else if constexpr (detail::isVector<T>)
    {
        if (!isArray())
            return std::nullopt;
        T result;
        result.reserve(size());
        for (const Value& element : elements())
        {
            auto read = element.get<typename T::value_type>();
            if (!read)
                return std::nullopt;
            result.push_back(*std::move(read));
        }
        return result;
    }
    else
    {
        static_assert(detail::IsBuildable<T>::value && !detail::isOptional<T>, "no value is read as this type");
        if (!isObject())
            return std::nullopt;
        T result;
        for (const auto& [key, value] : fields())
        {
            auto read = value.template get<typename T::mapped_type>();
            if (!read)
                return std::nullopt;
            result.insert_or_assign(std::string(key), *std::move(read));
        }
        return result;
    }
}

} // namespace v1
} // namespace dbc
