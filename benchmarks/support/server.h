// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

/// Ends the benchmark with an error if the work was not done, because the figure would be wrong.
inline void check(bool done, const char* what)
{
    if (!done)
        throw std::runtime_error(std::string("not done: ") + what);
}

/// Connection string of the server of scripts/with-server.
inline const char* serverUri()
{
    const char* const text = std::getenv("DATABASE_CLIENT_TEST_URI");
    check(text != nullptr, "run this through scripts/with-server");
    return text;
}
