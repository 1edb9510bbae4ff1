// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

/// Cuts an input into values; zeroes and empty texts when it has ended.
class ByteSource
{
public:
    ByteSource(const std::uint8_t* data, std::size_t size) : m_next(data), m_left(size) {}

    bool empty() const { return m_left == 0; }

    std::uint8_t byte()
    {
        if (empty())
            return 0;
        --m_left;
        return *m_next++;
    }

    template <typename Number>
    Number number()
    {
        Number value = 0;
        const std::size_t size = std::min(sizeof(Number), m_left);
        std::memcpy(&value, m_next, size);
        take(size);
        return value;
    }

    /// A text of as many bytes as the next byte says.
    std::string text()
    {
        const std::size_t size = std::min<std::size_t>(byte(), m_left);
        std::string result(m_next, m_next + size);
        take(size);
        return result;
    }

    std::string rest()
    {
        std::string result(m_next, m_next + m_left);
        take(m_left);
        return result;
    }

private:
    void take(std::size_t size)
    {
        m_next += size;
        m_left -= size;
    }

    const std::uint8_t* m_next;
    std::size_t m_left;
};
