// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_bytes.h"
#include "bson_rewrite.h"

#include <cstdint>
#include <string>

// Messages of the wire protocol, as a server or a client would make them.

using test_support::Bytes;

inline constexpr std::int32_t opReply = 1;
inline constexpr std::int32_t opQuery = 2004;
inline constexpr std::int32_t opCompressed = 2012;
inline constexpr std::int32_t opMsg = 2013;

inline Bytes message(std::int32_t opCode, const Bytes& body)
{
    Bytes bytes(16);
    bytes.insert(bytes.end(), body.begin(), body.end());
    test_support::putInt32(bytes, 0, static_cast<std::int32_t>(bytes.size()));
    test_support::putInt32(bytes, 12, opCode);
    return bytes;
}

inline Bytes joined(Bytes first, const Bytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline Bytes opMsgOf(const std::string& json)
{
    return message(opMsg, joined(Bytes(5), test_support::bsonFromJson(json)));
}
