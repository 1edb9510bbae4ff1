// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_handles.h"
#include "object_filter.h"
#include "properties_to_bson.h"

#include <bson/bson.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

// Queries as the bytes that are sent to the server. Expected queries are built byte by byte, because JSON does not show
// the keys of array elements.
namespace query {

using Bytes = std::string;

template <typename Number>
Bytes littleEndian(Number value)
{
    Bytes bytes(sizeof value, '\0');
    std::memcpy(&bytes[0], &value, sizeof value);
    return bytes;
}

inline Bytes element(char type, const std::string& key, const Bytes& value)
{
    return Bytes(1, type) + key + '\0' + value;
}

inline Bytes elements(const std::vector<Bytes>& parts)
{
    Bytes joined;
    for (const Bytes& part : parts)
        joined += part;
    return littleEndian(static_cast<std::int32_t>(joined.size() + 5)) + joined + '\0';
}

inline Bytes real(const std::string& key, double value)
{
    return element('\x01', key, littleEndian(value));
}

inline Bytes text(const std::string& key, const std::string& value)
{
    return element('\x02', key, littleEndian(static_cast<std::int32_t>(value.size() + 1)) + value + '\0');
}

inline Bytes group(const std::string& key, const std::vector<Bytes>& members)
{
    return element('\x03', key, elements(members));
}

inline Bytes list(const std::string& key, const std::vector<Bytes>& members)
{
    return element('\x04', key, elements(members));
}

inline Bytes id(const std::string& key, const std::string& hexadecimal)
{
    bson_oid_t oid;
    bson_oid_init_from_string(&oid, hexadecimal.c_str());
    return element('\x07', key, Bytes(reinterpret_cast<const char*>(oid.bytes), sizeof oid.bytes));
}

inline Bytes boolean(const std::string& key, bool value)
{
    return element('\x08', key, Bytes(1, value ? '\x01' : '\0'));
}

inline Bytes time(const std::string& key, std::int64_t milliseconds)
{
    return element('\x09', key, littleEndian(milliseconds));
}

inline Bytes int32(const std::string& key, std::int32_t value)
{
    return element('\x10', key, littleEndian(value));
}

inline Bytes int64(const std::string& key, std::int64_t value)
{
    return element('\x12', key, littleEndian(value));
}

/// A whole query. Printed as JSON followed by the bytes, because JSON does not show the keys of array elements.
struct Query
{
    Bytes bytes;

    friend bool operator==(const Query& left, const Query& right) { return left.bytes == right.bytes; }
    friend bool operator!=(const Query& left, const Query& right) { return !(left == right); }

    friend std::ostream& operator<<(std::ostream& out, const Query& query)
    {
        bson_t view;
        if (bson_init_static(&view, reinterpret_cast<const std::uint8_t*>(query.bytes.data()), query.bytes.size()))
        {
            const BsonText json(bson_as_relaxed_extended_json(&view, nullptr));
            out << (json ? json.get() : "no JSON");
        }
        out << "\n  bytes: ";
        for (const char byte : query.bytes)
            byte >= ' ' && byte <= '~' ? out << byte : out << '<' << static_cast<int>(byte) << '>';
        return out;
    }
};

inline Query expected(const std::vector<Bytes>& members)
{
    return {elements(members)};
}

inline Query of(const ObjectProperties& document)
{
    OwnedBson bson;
    if (!PropertiesToBson::convert(document, bson.get()))
        return {};
    return {Bytes(reinterpret_cast<const char*>(bson_get_data(bson.get())), bson.get()->len)};
}

inline Query of(const ObjectFilter& filter)
{
    return of(filter.toObjectProeprties());
}

} // namespace query
