// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/errors.h"

namespace dbc {

/// Returns the result of call(). If it throws a ServerError, throws one with the same details and @p message.
template <typename Call>
decltype(auto) relabelled(const char* message, Call call)
{
    try
    {
        return call();
    }
    catch (const ServerError& error)
    {
        throw ServerError(message, error.details());
    }
}

} // namespace dbc
