#pragma once

#include "dbc/errors.h"

#include <bson/bson.h>

namespace dbc {

/// What is known about a failed call of the driver.
/// @param reply  the reply that the driver filled beside the error; may be null or empty
ErrorDetails errorDetails(const bson_error_t& error, const bson_t* reply);

/// The kind of a code that a server sent, for a single error of a bulk write too.
ErrorKind kindOfServerCode(int code);

/// @throws ServerError always
[[noreturn]] void throwServerError(const char* message, const bson_error_t& error, const bson_t* reply = nullptr);

} // namespace dbc
