// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>

namespace test_support {

/// Returns the number in an environment variable, or @p usual if the variable is not set.
inline std::size_t environmentNumber(const char* name, std::size_t usual)
{
    const char* const text = std::getenv(name);
    return text ? std::stoul(text) : usual;
}

} // namespace test_support
