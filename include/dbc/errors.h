// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Errors of a server: an exception with code, kind and labels, and a function that reads the kind and the code from
/// the texts of the exceptions of DataBaseClient.

#include "database_client_export.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace dbc {

/// Groups the errors by what a caller can do about them.
enum class ErrorKind
{
    NotConnected,   ///< connect() was not called, or the connection string is invalid.
    BadArgument,    ///< An empty name, an enumerator out of range, or a document that cannot be sent. Nothing was sent.
    DuplicateKey,   ///< A unique index rejected the document.
    NotFound,       ///< The user, file or namespace does not exist.
    Authentication, ///< Wrong credentials.
    NotAuthorized,  ///< The user does not have the required role.
    Timeout,        ///< The server took too long, or server selection timed out.
    Network,        ///< The connection broke, or no server could be reached.
    TooLarge,       ///< The document is larger than the server's limit.
    Other           ///< Any other error of the driver or the server.
};

/// Returns the name of a kind, for messages.
inline const char* nameOf(ErrorKind kind)
{
    switch (kind)
    {
    case ErrorKind::NotConnected:
        return "not connected";
    case ErrorKind::BadArgument:
        return "bad argument";
    case ErrorKind::DuplicateKey:
        return "duplicate key";
    case ErrorKind::NotFound:
        return "not found";
    case ErrorKind::Authentication:
        return "authentication";
    case ErrorKind::NotAuthorized:
        return "not authorized";
    case ErrorKind::Timeout:
        return "timeout";
    case ErrorKind::Network:
        return "network";
    case ErrorKind::TooLarge:
        return "too large";
    case ErrorKind::Other:
        return "other";
    }
    return "";
}

inline namespace v1 {

/// The data of a ServerError.
struct ErrorDetails
{
    /// Error message of the server or the driver; may be empty.
    std::string text;
    /// Code of the server or the driver; 0 if the error has no code.
    int code = 0;
    /// The server's name of the code, such as "DuplicateKey". Empty if the server sent no name. Always empty for
    /// writes, because the driver does not pass it on.
    std::string codeName;
    /// Kind of the error.
    ErrorKind kind = ErrorKind::Other;
    /// The server's error labels, such as "RetryableWriteError".
    std::vector<std::string> labels;
    /// See ServerError::mayRetry().
    bool mayRetry = false;
};

} // namespace v1

/// An error of the server or the driver. Collection, Cursor, Database and FileStore throw it. what() has the form of
/// DataBaseClient's exceptions: "<message>: <text>(code: <code>)". The part ": <text>" is left out if the text is
/// empty, and "(code: <code>)" if the code is 0.
///
/// The kind depends on the driver's error domain and the code, never on the text. Copies share their details.
/// Thread-safe for concurrent reads.
/// @since 1.0
class DATABASE_CLIENT_API ServerError : public std::runtime_error
{
public:
    /// @param message  the operation that failed, such as "Insert failed"
    ServerError(const std::string& message, ErrorDetails details);
    /// Shares the details of @p other.
    ServerError(const ServerError& other) noexcept;
    /// Shares the details of @p other.
    ServerError& operator=(const ServerError& other) noexcept;
    ~ServerError() override;

    /// Code of the server or the driver; 0 if the error has no code.
    int code() const noexcept;
    /// The server's name of the code; empty if the server sent no name, and for writes.
    const std::string& codeName() const noexcept;
    /// Kind of the error.
    ErrorKind kind() const noexcept;
    /// The server's error labels.
    const std::vector<std::string>& labels() const noexcept;
    /// True if labels() contains @p label.
    bool hasLabel(const std::string& label) const noexcept;
    /// True if the cause is temporary: a broken connection, a server that stops or steps down, a write conflict, or an
    /// error with the label "RetryableWriteError" or "TransientTransactionError". False for a failed login.
    ///
    /// The operation may have taken effect although it failed. Retry an insert only if you have set its "_id" yourself.
    /// Retry an update only if it can be applied twice.
    bool mayRetry() const noexcept;
    /// All details, for example for an exception that you throw instead.
    const ErrorDetails& details() const noexcept;

private:
    std::shared_ptr<const ErrorDetails> m_details; // the only member: size and layout never change
};

/// The program cancelled the transfer of a file. FileStore throws it if a progress function returns false. With a
/// Download, DataBaseClient::readFile() throws it.
/// @since 1.0
class Cancelled : public std::runtime_error
{
public:
    Cancelled() : std::runtime_error("Cancelled") {}
};

/// Kind and code of an exception.
struct ErrorInfo
{
    /// Kind of the error.
    ErrorKind kind = ErrorKind::Other;
    /// Code of the driver or the server; empty if the error has no code.
    std::optional<int> code;
    /// The text without the code.
    std::string text;
};

namespace detail {

/// Returns the number between "(code: ", which begins at @p begin, and ")" at the end of the text.
inline std::optional<int> codeOf(const std::string& text, std::size_t begin)
{
    static const std::string opening = "(code: ";
    if (begin == std::string::npos || text.empty() || text.back() != ')')
        return std::nullopt;
    const std::string digits = text.substr(begin + opening.size(), text.size() - 1 - begin - opening.size());
    try
    {
        std::size_t used = 0;
        const int code = std::stoi(digits, &used);
        return used == digits.size() ? std::optional<int>(code) : std::nullopt;
    }
    catch (const std::logic_error&)
    {
        return std::nullopt;
    }
}

inline bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

/// The cases are error codes of the server unless noted. Codes of the driver can have the same numbers, so some cases
/// also depend on the text.
inline ErrorKind kindOf(const std::string& text, std::optional<int> code)
{
    const bool isTimeout = contains(text, "imeout") || contains(text, "timed out");
    switch (code.value_or(0))
    {
    case 11000:
    case 11001:
    case 12582:
        return ErrorKind::DuplicateKey;
    case 18:
        // The driver reports a document that is too large with the server's number for "authentication failed".
        return contains(text, "too large") ? ErrorKind::TooLarge : ErrorKind::Authentication;
    case 10334:
        return ErrorKind::TooLarge;
    case 13:
        return ErrorKind::NotAuthorized;
    case 26: // namespace not found
        return ErrorKind::NotFound;
    case 50: // maxTimeMS expired
        return ErrorKind::Timeout;
    case 11:
        // Driver: authentication failed. Server: user not found.
        return contains(text, "uthentication") ? ErrorKind::Authentication : ErrorKind::NotFound;
    case 13053: // driver: no suitable server
        return isTimeout ? ErrorKind::Timeout : ErrorKind::Network;
    case 4: // driver: socket
        return isTimeout ? ErrorKind::Timeout : ErrorKind::Network;
    default:
        break;
    }
    if (contains(text, "mongoc_gridfs_find_one_by_filename") && !code)
        return ErrorKind::NotFound;
    if (contains(text, "uthentication failed"))
        return ErrorKind::Authentication;
    if (isTimeout)
        return ErrorKind::Timeout;
    if (contains(text, "ocket") || contains(text, "onnection refused") || contains(text, "No servers yet eligible"))
        return ErrorKind::Network;
    return ErrorKind::Other;
}

} // namespace detail

/// Returns the kind and the code of an exception. They are exact for a ServerError, and read from the text for all
/// other exceptions.
inline ErrorInfo describe(const std::exception& error)
{
    ErrorInfo info;
    info.text = error.what();
    if (const auto* serverError = dynamic_cast<const ServerError*>(&error))
    {
        info.kind = serverError->kind();
        if (serverError->code() != 0)
        {
            info.code = serverError->code();
            info.text.erase(std::min(info.text.rfind("(code: "), info.text.size())); // what() may end at a zero byte
        }
        return info;
    }
    if (dynamic_cast<const std::invalid_argument*>(&error))
    {
        info.kind = detail::contains(info.text, "Connection is not established") ? ErrorKind::NotConnected
                                                                                 : ErrorKind::BadArgument;
        return info;
    }
    if (info.text == "Connection failed")
    {
        info.kind = ErrorKind::NotConnected;
        return info;
    }
    const std::size_t begin = info.text.rfind("(code: ");
    info.code = detail::codeOf(info.text, begin);
    if (info.code)
        info.text.erase(begin);
    info.kind = detail::kindOf(info.text, info.code);
    return info;
}

} // namespace dbc
