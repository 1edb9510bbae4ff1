// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace test_support {

// 32-bit numbers as BSON and the wire protocol have them, the lowest byte first.

inline std::int32_t readInt32(const std::uint8_t* from)
{
    std::uint32_t little = 0;
    std::memcpy(&little, from, sizeof(little));
    return static_cast<std::int32_t>(BSON_UINT32_FROM_LE(little));
}

inline void putInt32(std::uint8_t* to, std::int32_t value)
{
    const std::uint32_t little = BSON_UINT32_TO_LE(static_cast<std::uint32_t>(value));
    std::memcpy(to, &little, sizeof(little));
}

inline void appendInt32(std::vector<std::uint8_t>& bytes, std::int32_t value)
{
    bytes.resize(bytes.size() + sizeof(value));
    putInt32(bytes.data() + bytes.size() - sizeof(value), value);
}

} // namespace test_support
