// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace test_support {

/// The bytes of a BSON document. GoogleTest prints them as hexadecimal digits and characters.
class BsonBytes
{
public:
    explicit BsonBytes(const bson_t* bson) : m_bytes(bson_get_data(bson), bson_get_data(bson) + bson->len) {}

    explicit BsonBytes(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    const std::vector<std::uint8_t>& bytes() const noexcept { return m_bytes; }

    bool operator==(const BsonBytes& other) const { return m_bytes == other.m_bytes; }

    friend std::ostream& operator<<(std::ostream& stream, const BsonBytes& bson)
    {
        constexpr std::size_t most = 400;
        std::string characters;
        for (std::size_t index = 0; index < bson.m_bytes.size() && index < most; ++index)
        {
            char hex[4];
            std::snprintf(hex, sizeof(hex), "%02x ", bson.m_bytes[index]);
            stream << hex;
            const bool printable = bson.m_bytes[index] >= ' ' && bson.m_bytes[index] < 0x7f;
            characters += printable ? static_cast<char>(bson.m_bytes[index]) : '.';
        }
        return stream << characters << " (" << bson.m_bytes.size() << " bytes)";
    }

private:
    std::vector<std::uint8_t> m_bytes;
};

/// A BSON document in memory of exactly its length, so that a sanitizer reports every read beyond its end.
class BorrowedBson
{
public:
    explicit BorrowedBson(const std::vector<std::uint8_t>& bytes) : m_bytes(new std::uint8_t[bytes.size()])
    {
        std::memcpy(m_bytes.get(), bytes.data(), bytes.size());
        m_valid = bson_init_static(&m_bson, m_bytes.get(), bytes.size());
    }

    /// True if the length at the start and the last byte are those of a document.
    bool isValid() const noexcept { return m_valid; }
    const bson_t* get() const noexcept { return &m_bson; }

private:
    std::unique_ptr<std::uint8_t[]> m_bytes;
    bson_t m_bson = BSON_INITIALIZER;
    bool m_valid = false;
};

} // namespace test_support
