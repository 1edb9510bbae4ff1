// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace test_support {

/// What scripts/with-server put into that variable of the environment. @throws std::runtime_error  it is not set
inline std::string requiredVariable(const char* name)
{
    const char* const text = std::getenv(name);
    if (!text || *text == '\0')
        throw std::runtime_error(std::string(name) + " is not set: run this through scripts/with-server");
    return text;
}

/// The number in that variable of the environment, or the usual one when it is not set.
inline std::size_t environmentNumber(const char* name, std::size_t usual)
{
    const char* const text = std::getenv(name);
    return text ? std::stoul(text) : usual;
}

} // namespace test_support
