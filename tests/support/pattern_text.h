// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace test_support {

/// Bytes that tell their place: a piece in the wrong order, or of another place, shows. The same every time.
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
