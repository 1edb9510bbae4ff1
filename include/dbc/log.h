#pragma once

/// @file
/// Where the driver's log goes. The library writes no log of its own.

#include "database_client_export.h"

#include <functional>
#include <string>

namespace dbc {

/// Severity of a log message of the driver, most severe first.
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

/// Lower-case English name of a level, for example "warning".
DATABASE_CLIENT_API const char* nameOf(LogLevel level) noexcept;

/// Receives one log message of the driver.
///
/// The driver calls it in the thread that logs, which may be a thread that the driver has started, and from several
/// threads at once. An exception that leaves the handler is discarded: the driver is written in C and cannot pass it
/// on.
/// @param domain   part of the driver that logs, for example "client" or "cluster"
/// @param message  without a line break at its end
using LogHandler = std::function<void(LogLevel level, const std::string& domain, const std::string& message)>;

/// Sends the log of the driver to @p handler, or nowhere if it is empty. Without a call of this function the driver
/// writes errors and warnings to standard error and everything else to standard output.
///
/// The setting belongs to the whole process: call it once, at the start of the program, before other threads use the
/// driver. It takes the place of a handler that was set with mongoc_log_set_handler(), and is replaced by one that is
/// set later. It works before and after the first client is made.
///
///     dbc::setLogHandler([](dbc::LogLevel level, const std::string& domain, const std::string& message) {
///         syslog(LOG_INFO, "%s %s: %s", dbc::nameOf(level), domain.c_str(), message.c_str());
///     });
DATABASE_CLIENT_API void setLogHandler(LogHandler handler);

/// Sends the log of the driver to standard error and standard output again, as it is without setLogHandler().
DATABASE_CLIENT_API void useDefaultLog();

} // namespace dbc
