#pragma once

/// @file
/// Names what a BSON document holds that the document model drops or bends. Needs libbson.

#include "bson_to_properties.h"

#include <cstdint>
#include <cstring>
#include <list>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace companion {

/// What happens to a field on its way through BsonToProperties and back through PropertiesToBson.
enum class Loss
{
    Undefined,     ///< Dropped on reading.
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
    EmptyBinary,   ///< Dropped on writing.
    TextWithZero,  ///< Cut at its first zero byte.
    EmptyKey,      ///< Taken as the root of the document: what was read before is lost.
    KeyWithSlash,  ///< Taken as a path.
    DuplicateKey,  ///< The last value stays.
    LongArray,     ///< More than ten elements: come out as 0, 1, 10, 2 ...
    Corrupt        ///< The bytes from here on are not BSON and are not read.
};

/// What befalls the field, in a few words.
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
        return "text is cut at its zero byte";
    case Loss::EmptyKey:
        return "empty key stands for the whole document";
    case Loss::KeyWithSlash:
        return "key with \"/\" is taken as a path";
    case Loss::DuplicateKey:
        return "key stands twice";
    case Loss::LongArray:
        return "array of more than ten elements changes its order";
    case Loss::Corrupt:
        return "bytes are not BSON";
    }
    return "";
}

/// One field and what happens to it. The path is that of the field, its keys joined by ".".
struct LossAt
{
    /// Keys from the root, joined by ".".
    std::string path;
    /// What happens to the field.
    Loss loss = Loss::Corrupt;
};

namespace detail {

inline bool isCut(const char* text, std::uint32_t length)
{
    return std::memchr(text, '\0', length) != nullptr;
}

/// Calls report(loss) for what happens to the value of the element.
template <typename Report>
void reportValue(const bson_iter_t& iter, const Report& report)
{
    std::uint32_t length = 0;
    const char* text = nullptr;
    const std::uint8_t* bytes = nullptr;
    bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
    switch (bson_iter_type(&iter))
    {
    case BSON_TYPE_UTF8:
        text = bson_iter_utf8(&iter, &length);
        if (isCut(text, length))
            report(Loss::TextWithZero);
        break;
    case BSON_TYPE_SYMBOL:
        text = bson_iter_symbol(&iter, &length);
        report(Loss::Symbol);
        if (isCut(text, length > 0 ? length - 1 : 0))
            report(Loss::TextWithZero);
        break;
    case BSON_TYPE_BINARY:
        bson_iter_binary(&iter, &subtype, &length, &bytes);
        if (subtype != BSON_SUBTYPE_BINARY)
            report(Loss::BinarySubtype);
        if (length == 0)
            report(Loss::EmptyBinary);
        break;
    case BSON_TYPE_UNDEFINED:
        report(Loss::Undefined);
        break;
    case BSON_TYPE_NULL:
        report(Loss::Null);
        break;
    case BSON_TYPE_DBPOINTER:
        report(Loss::DbPointer);
        break;
    case BSON_TYPE_CODE:
        report(Loss::Code);
        break;
    case BSON_TYPE_CODEWSCOPE:
        report(Loss::CodeWithScope);
        break;
    case BSON_TYPE_TIMESTAMP:
        report(Loss::Timestamp);
        break;
    case BSON_TYPE_DECIMAL128:
        report(Loss::Decimal128);
        break;
    case BSON_TYPE_MINKEY:
        report(Loss::MinKey);
        break;
    case BSON_TYPE_MAXKEY:
        report(Loss::MaxKey);
        break;
    case BSON_TYPE_EOD:
    case BSON_TYPE_DOUBLE:
    case BSON_TYPE_DOCUMENT:
    case BSON_TYPE_ARRAY:
    case BSON_TYPE_OID:
    case BSON_TYPE_BOOL:
    case BSON_TYPE_DATE_TIME:
    case BSON_TYPE_REGEX:
    case BSON_TYPE_INT32:
    case BSON_TYPE_INT64:
        break;
    }
}

struct LossLevel
{
    bson_iter_t iter;
    bool isArray = false;
    std::size_t elements = 0;
    std::string key; // of the element that the iterator stands on
    std::unordered_set<std::string> keys;
};

/// Joined only where something is reported: kept for every level it would grow with the square of the depth.
inline std::string pathOf(const std::list<LossLevel>& open)
{
    std::string path;
    for (const LossLevel& level : open)
        path.append(path.empty() ? "" : ".").append(level.key);
    return path;
}

} // namespace detail

/// Every field of the document that does not come back as it was, in the order of the document; nothing when the
/// document makes the round trip unharmed but for the order of its fields, which the model keeps sorted.
/// Depth is limited by memory only. Takes time in proportion to the size of the document.
inline std::vector<LossAt> findLosses(const bson_t& bson)
{
    std::vector<LossAt> losses;
    std::list<detail::LossLevel> open(1);
    if (!bson_iter_init(&open.back().iter, &bson))
        return {{std::string(), Loss::Corrupt}};
    const auto report = [&](Loss loss) { losses.push_back({detail::pathOf(open), loss}); };
    while (!open.empty())
    {
        detail::LossLevel& level = open.back();
        if (!bson_iter_next(&level.iter))
        {
            // The driver's iterator says only by this offset that it stopped at something it cannot read.
            const bool corrupt = level.iter.err_off != 0;
            const bool isLongArray = level.isArray && level.elements > 10;
            open.pop_back();
            if (corrupt)
                report(Loss::Corrupt);
            if (isLongArray)
                report(Loss::LongArray);
            continue;
        }
        ++level.elements;
        level.key.assign(bson_iter_key(&level.iter), bson_iter_key_len(&level.iter));
        if (level.key.empty())
            report(Loss::EmptyKey);
        if (level.key.find('/') != std::string::npos)
            report(Loss::KeyWithSlash);
        if (!level.keys.insert(level.key).second)
            report(Loss::DuplicateKey);
        detail::reportValue(level.iter, report);
        if (!BSON_ITER_HOLDS_DOCUMENT(&level.iter) && !BSON_ITER_HOLDS_ARRAY(&level.iter))
            continue;
        detail::LossLevel nested;
        nested.isArray = BSON_ITER_HOLDS_ARRAY(&level.iter);
        if (bson_iter_recurse(&level.iter, &nested.iter))
            open.push_back(std::move(nested));
        else
            report(Loss::Corrupt);
    }
    return losses;
}

} // namespace companion
