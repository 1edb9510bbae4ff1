// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace test_support {

/// Returns pseudo-random bytes, the same in every call. No piece of them repeats, so a test detects a piece at a wrong
/// position.
inline std::string patternText(std::size_t size)
{
    std::string text(size, '\0');
    std::uint32_t state = 2'463'534'242U;
    for (char& byte : text)
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<char>(state);
    }
    return text;
}

} // namespace test_support
