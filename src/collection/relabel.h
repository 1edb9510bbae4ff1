#pragma once

#include "dbc/errors.h"

namespace dbc {

/// The result of @p call. A ServerError that it throws becomes one with @p message instead of its own.
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
