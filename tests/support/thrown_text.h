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

/// The Error that a call throws. Anything else that it throws, or nothing, fails the test.
template <typename Error, typename Call>
Error thrownError(Call call)
{
    try
    {
        call();
    }
    catch (const Error& error)
    {
        return error;
    }
    throw std::logic_error("nothing was thrown");
}

} // namespace test_support
