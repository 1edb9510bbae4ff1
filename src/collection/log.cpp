// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/log.h"

#include <mongoc/mongoc.h>

#include <utility>

namespace dbc {

namespace {

// Never destroyed: the driver may log while the static objects of the program are being destroyed.
LogHandler& currentHandler()
{
    static auto* const handler = new LogHandler;
    return *handler;
}

LogLevel levelOf(mongoc_log_level_t level)
{
    switch (level)
    {
    case MONGOC_LOG_LEVEL_ERROR:
        return LogLevel::Error;
    case MONGOC_LOG_LEVEL_CRITICAL:
        return LogLevel::Critical;
    case MONGOC_LOG_LEVEL_WARNING:
        return LogLevel::Warning;
    case MONGOC_LOG_LEVEL_MESSAGE:
        return LogLevel::Message;
    case MONGOC_LOG_LEVEL_INFO:
        return LogLevel::Info;
    case MONGOC_LOG_LEVEL_DEBUG:
        return LogLevel::Debug;
    case MONGOC_LOG_LEVEL_TRACE:
        return LogLevel::Trace;
    }
    return LogLevel::Message;
}

void passOn(mongoc_log_level_t level, const char* domain, const char* message, void* /*data*/) noexcept
{
    try
    {
        currentHandler()(levelOf(level), domain, message);
    }
    catch (...) // NOLINT(bugprone-empty-catch): documented, C code cannot pass an exception on
    {}
}

} // namespace

const char* nameOf(LogLevel level) noexcept
{
    switch (level)
    {
    case LogLevel::Error:
        return "error";
    case LogLevel::Critical:
        return "critical";
    case LogLevel::Warning:
        return "warning";
    case LogLevel::Message:
        return "message";
    case LogLevel::Info:
        return "info";
    case LogLevel::Debug:
        return "debug";
    case LogLevel::Trace:
        return "trace";
    }
    return "";
}

void setLogHandler(LogHandler handler)
{
    // The driver must not call the handler while it is being replaced.
    mongoc_log_set_handler(nullptr, nullptr);
    currentHandler() = std::move(handler);
    if (currentHandler())
        mongoc_log_set_handler(passOn, nullptr);
}

void useDefaultLog()
{
    mongoc_log_set_handler(mongoc_log_default_handler, nullptr);
    currentHandler() = nullptr;
}

} // namespace dbc
