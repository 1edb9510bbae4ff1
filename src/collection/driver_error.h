// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/errors.h"

#include <bson/bson.h>

namespace dbc {

/// Returns the details of a failed driver call.
/// @param reply  the reply of the failed call; may be null or empty
ErrorDetails errorDetails(const bson_error_t& error, const bson_t* reply);

/// Returns the kind of a server's error code, also for a single error of a bulk write.
ErrorKind kindOfServerCode(int code);

/// @throws ServerError always
[[noreturn]] void throwServerError(const char* message, const bson_error_t& error, const bson_t* reply = nullptr);

} // namespace dbc
