// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <stdexcept>
#include <string>

namespace test_support {

/// Returns the exception of a call as "invalid_argument: <text>" or "runtime_error: <text>"; empty if it threw neither.
template <typename Call>
std::string thrownText(Call call)
{
    try
    {
        call();
    }
    catch (const std::invalid_argument& error)
    {
        return std::string("invalid_argument: ") + error.what();
    }
    catch (const std::runtime_error& error)
    {
        return std::string("runtime_error: ") + error.what();
    }
    return "";
}

} // namespace test_support
