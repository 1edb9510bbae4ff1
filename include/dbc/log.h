// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Redirects the log of the driver. The library has no log of its own.
/// @since 1.0

#include "database_client_export.h"

#include <functional>
#include <string>

namespace dbc {

/// Severity of a log message of the driver, the most severe first.
enum class LogLevel : int
{
    Error,    ///< MONGOC_LOG_LEVEL_ERROR
    Critical, ///< MONGOC_LOG_LEVEL_CRITICAL
    Warning,  ///< MONGOC_LOG_LEVEL_WARNING
    Message,  ///< MONGOC_LOG_LEVEL_MESSAGE
    Info,     ///< MONGOC_LOG_LEVEL_INFO
    Debug,    ///< MONGOC_LOG_LEVEL_DEBUG
    Trace     ///< MONGOC_LOG_LEVEL_TRACE
};

/// Returns the lower-case English name of a level, such as "warning".
DATABASE_CLIENT_API const char* nameOf(LogLevel level) noexcept;

/// A function that is called for each log message of the driver.
///
/// The driver calls it in the thread that logs, which may be a thread of the driver. It must be thread-safe, because
/// several threads may call it at once. Its exceptions are discarded: the driver is written in C and cannot pass them
/// on.
/// @param domain   part of the driver that logs, such as "client" or "cluster"
/// @param message  without a line break at its end
using LogHandler = std::function<void(LogLevel level, const std::string& domain, const std::string& message)>;

/// Sends the log of the driver to @p handler. An empty handler discards the log. By default the driver writes errors
/// and warnings to standard error, and everything else to standard output.
///
/// The setting applies to the whole process. Call this once at the start of the program, before other threads use the
/// driver. Clients may exist already. A later call of mongoc_log_set_handler() replaces @p handler, and this function
/// replaces a handler that was set with it.
///
///     dbc::setLogHandler([](dbc::LogLevel level, const std::string& domain, const std::string& message) {
///         syslog(LOG_INFO, "%s %s: %s", dbc::nameOf(level), domain.c_str(), message.c_str());
///     });
DATABASE_CLIENT_API void setLogHandler(LogHandler handler);

/// Sends the log of the driver to standard error and standard output again. Destroys the handler of setLogHandler().
/// Not thread-safe, as setLogHandler().
DATABASE_CLIENT_API void useDefaultLog();

} // namespace dbc
