// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "failure.h"

#include "dbc/errors.h"

#include <exception>

namespace {

// The server has lost the cursor. The kind of this error is NotFound, but the exit status must not mean "no result".
constexpr int cursorNotFound = 43;

} // namespace

ExitStatus statusOf(const std::exception& exception)
{
    const dbc::ErrorInfo error = dbc::describe(exception);
    switch (error.kind)
    {
    case dbc::ErrorKind::NotConnected:
    case dbc::ErrorKind::Network:
    case dbc::ErrorKind::Timeout:
    case dbc::ErrorKind::Authentication:
        return ConnectionError;
    case dbc::ErrorKind::BadArgument:
        return UsageError;
    case dbc::ErrorKind::NotFound:
        return error.code == cursorNotFound ? ServerRefused : NothingFound;
    case dbc::ErrorKind::DuplicateKey:
    case dbc::ErrorKind::NotAuthorized:
    case dbc::ErrorKind::TooLarge:
    case dbc::ErrorKind::Other:
        return ServerRefused;
    }
    return ServerRefused;
}
