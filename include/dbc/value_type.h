// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// The types of BSON, and the values that ObjectProperties drops or changes.
/// @since 1.0

#include <optional>
#include <string>

namespace dbc {
inline namespace v1 {

/// Type of a value. The numbers are those of the BSON specification; "$type" takes them too.
enum class Type : unsigned char
{
    Double = 0x01,            ///< IEEE 754 binary64.
    String = 0x02,            ///< UTF-8 string; may contain zero bytes.
    Object = 0x03,            ///< Fields in order; keys may occur twice.
    Array = 0x04,             ///< Elements in order.
    Binary = 0x05,            ///< Bytes with a subtype.
    Undefined = 0x06,         ///< Deprecated in BSON.
    ObjectId = 0x07,          ///< 12 bytes.
    Bool = 0x08,              ///< True or false.
    Time = 0x09,              ///< Milliseconds since 1970-01-01 UTC.
    Null = 0x0A,              ///< Null.
    RegularExpression = 0x0B, ///< Pattern and options.
    DbPointer = 0x0C,         ///< Deprecated in BSON: a collection and an object id.
    Code = 0x0D,              ///< JavaScript.
    Symbol = 0x0E,            ///< Deprecated in BSON.
    CodeWithScope = 0x0F,     ///< Deprecated in BSON: JavaScript with its variables.
    Int32 = 0x10,             ///< Signed 32-bit integer.
    Timestamp = 0x11,         ///< Seconds and a counter; the server uses it internally.
    Int64 = 0x12,             ///< Signed 64-bit integer.
    Decimal128 = 0x13,        ///< IEEE 754 decimal128.
    MaxKey = 0x7F,            ///< Compares greater than every other value.
    MinKey = 0xFF             ///< Compares less than every other value.
};

/// Returns the name of a type as in "$type": "double", "string", "object" and so on.
inline const char* nameOf(Type type)
{
    switch (type)
    {
    case Type::Double:
        return "double";
    case Type::String:
        return "string";
    case Type::Object:
        return "object";
    case Type::Array:
        return "array";
    case Type::Binary:
        return "binData";
    case Type::Undefined:
        return "undefined";
    case Type::ObjectId:
        return "objectId";
    case Type::Bool:
        return "bool";
    case Type::Time:
        return "date";
    case Type::Null:
        return "null";
    case Type::RegularExpression:
        return "regex";
    case Type::DbPointer:
        return "dbPointer";
    case Type::Code:
        return "javascript";
    case Type::Symbol:
        return "symbol";
    case Type::CodeWithScope:
        return "javascriptWithScope";
    case Type::Int32:
        return "int";
    case Type::Timestamp:
        return "timestamp";
    case Type::Int64:
        return "long";
    case Type::Decimal128:
        return "decimal";
    case Type::MaxKey:
        return "maxKey";
    case Type::MinKey:
        return "minKey";
    }
    return "";
}

/// How a field changes if BsonToProperties reads it and PropertiesToBson writes it.
enum class Loss
{
    Undefined,     ///< Dropped by BsonToProperties.
    Null,          ///< Dropped.
    DbPointer,     ///< Dropped.
    Code,          ///< Dropped.
    CodeWithScope, ///< Dropped.
    Timestamp,     ///< Dropped.
    Decimal128,    ///< Dropped.
    MinKey,        ///< Dropped.
    MaxKey,        ///< Dropped.
    Symbol,        ///< Becomes a string.
    BinarySubtype, ///< Becomes subtype 0.
    EmptyBinary,   ///< Dropped by PropertiesToBson.
    TextWithZero,  ///< String cut at its first zero byte.
    EmptyKey,      ///< Read as the root of the document: fields read before it are lost.
    KeyWithSlash,  ///< Read as a path.
    DuplicateKey,  ///< Only the last value is kept.
    LongArray,     ///< More than ten elements: they are written in the order 0, 1, 10, 2 ...
    Corrupt        ///< The bytes from here on are not valid BSON and are not read.
};

/// Returns a short description of a loss.
inline const char* nameOf(Loss loss)
{
    switch (loss)
    {
    case Loss::Undefined:
        return "undefined is dropped";
    case Loss::Null:
        return "null is dropped";
    case Loss::DbPointer:
        return "DBPointer is dropped";
    case Loss::Code:
        return "code is dropped";
    case Loss::CodeWithScope:
        return "code with scope is dropped";
    case Loss::Timestamp:
        return "timestamp is dropped";
    case Loss::Decimal128:
        return "decimal128 is dropped";
    case Loss::MinKey:
        return "min key is dropped";
    case Loss::MaxKey:
        return "max key is dropped";
    case Loss::Symbol:
        return "symbol becomes a string";
    case Loss::BinarySubtype:
        return "binary loses its subtype";
    case Loss::EmptyBinary:
        return "binary without bytes is dropped";
    case Loss::TextWithZero:
        return "string is cut at its zero byte";
    case Loss::EmptyKey:
        return "empty key is read as the whole document";
    case Loss::KeyWithSlash:
        return "key with \"/\" is read as a path";
    case Loss::DuplicateKey:
        return "duplicate key";
    case Loss::LongArray:
        return "array of more than ten elements changes its order";
    case Loss::Corrupt:
        return "bytes are not valid BSON";
    }
    return "";
}

/// A field and how it changes.
struct LossAt
{
    /// Keys from the root, separated by ".".
    std::string path;
    /// How the field changes.
    Loss loss = Loss::Corrupt;
};

/// Returns the loss that affects every value of this type; empty for the types of ObjectProperties.
inline std::optional<Loss> lossOf(Type type)
{
    switch (type)
    {
    case Type::Undefined:
        return Loss::Undefined;
    case Type::Null:
        return Loss::Null;
    case Type::DbPointer:
        return Loss::DbPointer;
    case Type::Code:
        return Loss::Code;
    case Type::Symbol:
        return Loss::Symbol;
    case Type::CodeWithScope:
        return Loss::CodeWithScope;
    case Type::Timestamp:
        return Loss::Timestamp;
    case Type::Decimal128:
        return Loss::Decimal128;
    case Type::MinKey:
        return Loss::MinKey;
    case Type::MaxKey:
        return Loss::MaxKey;
    case Type::Double:
    case Type::String:
    case Type::Object:
    case Type::Array:
    case Type::Binary:
    case Type::ObjectId:
    case Type::Bool:
    case Type::Time:
    case Type::RegularExpression:
    case Type::Int32:
    case Type::Int64:
        break;
    }
    return std::nullopt;
}

} // namespace v1
} // namespace dbc
