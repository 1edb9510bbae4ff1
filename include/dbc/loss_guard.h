// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Finds the fields of a BSON document that ObjectProperties drops or changes. Needs libbson.
/// @since 1.0

#include "bson_to_properties.h"
#include "dbc/value_type.h"

#include <cstdint>
#include <cstring>
#include <list>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace dbc {

namespace detail {

inline bool isCut(const char* text, std::uint32_t length)
{
    return std::memchr(text, '\0', length) != nullptr;
}

/// Calls report(loss) for each loss of the value at @p iter.
template <typename Report>
void reportValue(const bson_iter_t& iter, const Report& report)
{
    std::uint32_t length = 0;
    const char* text = nullptr;
    const std::uint8_t* bytes = nullptr;
    bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
    if (const auto loss = lossOf(static_cast<Type>(bson_iter_type(&iter))))
        report(*loss);
    if (BSON_ITER_HOLDS_UTF8(&iter))
    {
        text = bson_iter_utf8(&iter, &length);
        if (isCut(text, length))
            report(Loss::TextWithZero);
    }
    else if (BSON_ITER_HOLDS_SYMBOL(&iter))
    {
        text = bson_iter_symbol(&iter, &length);
        if (isCut(text, length))
            report(Loss::TextWithZero);
    }
    else if (BSON_ITER_HOLDS_BINARY(&iter))
    {
        bson_iter_binary(&iter, &subtype, &length, &bytes);
        if (subtype != BSON_SUBTYPE_BINARY)
            report(Loss::BinarySubtype);
        if (length == 0)
            report(Loss::EmptyBinary);
    }
}

struct LossLevel
{
    bson_iter_t iter;
    bool isArray = false;
    std::size_t elements = 0;
    std::string key; // of the current element
    std::unordered_set<std::string> keys;
};

/// Builds the path only when a loss is reported: storing the path of every level needs memory quadratic in the depth.
inline std::string pathOf(const std::list<LossLevel>& open)
{
    std::string path;
    for (const LossLevel& level : open)
        path.append(path.empty() ? "" : ".").append(level.key);
    return path;
}

} // namespace detail

/// Returns every field that ObjectProperties drops or changes, in the order of the document. Does not report that
/// ObjectProperties sorts the fields by key. The depth is limited by memory only. Takes time proportional to the size
/// of the document. Thread-safe for concurrent reads of @p bson.
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
            // After corrupt bytes, the iterator of libbson differs from an iterator at the end only by this offset.
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

} // namespace dbc
