#pragma once

/// @file
/// Errors of a server: as an exception that carries code, kind and labels, and read from the fixed text of the
/// exceptions of DataBaseClient.

#include "database_client_export.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace dbc {

/// What a caller can do about a failure depends on its kind.
enum class ErrorKind
{
    NotConnected,   ///< connect() was not called, or its connection string was not one.
    BadArgument,    ///< An empty name, an enumerator out of range, a document that does not convert. Nothing was sent.
    DuplicateKey,   ///< A unique index refused the document.
    NotFound,       ///< No such user, file or namespace.
    Authentication, ///< Wrong credentials.
    NotAuthorized,  ///< The user may not do this.
    Timeout,        ///< The server took too long, or none was found in time.
    Network,        ///< The connection broke, or no server could be reached.
    TooLarge,       ///< The document is over the server's limit.
    Other           ///< Anything else that the driver or the server refused.
};

/// Text of a kind, for messages.
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

/// What a ServerError is made of.
struct ErrorDetails
{
    /// The text of the server or the driver; may be empty.
    std::string text;
    /// The code of the server or the driver; 0 if the error has no code.
    int code = 0;
    /// The server's name of the code, such as "DuplicateKey"; empty if the server sent none, or if the driver does not
    /// pass it on, as for writes.
    std::string codeName;
    /// What the failure was about.
    ErrorKind kind = ErrorKind::Other;
    /// The server's error labels, such as "RetryableWriteError".
    std::vector<std::string> labels;
    /// See ServerError::mayRetry().
    bool mayRetry = false;
};

} // namespace v1

/// An operation that the server or the driver refused, or that found no server. Thrown by Collection, Cursor, Database
/// and FileStore. The text has the form of DataBaseClient's exceptions: "<message>: <text>(code: <code>)", without
/// ": <text>" if the text is empty, and without the code if that is 0.
///
/// The kind follows from the place where the driver noticed the error and from the code, never from the text. Copies
/// share their details. Thread-safe for concurrent reading.
class DATABASE_CLIENT_API ServerError : public std::runtime_error
{
public:
    /// @param message  what was attempted, such as "Insert failed"
    ServerError(const std::string& message, ErrorDetails details);
    /// Shares the details of @p other.
    ServerError(const ServerError& other) noexcept;
    /// Shares the details of @p other.
    ServerError& operator=(const ServerError& other) noexcept;
    ~ServerError() override;

    /// The code of the server or the driver; 0 if the error has no code.
    int code() const noexcept;
    /// The server's name of the code; empty if the server sent none, or if the driver does not pass it on, as for
    /// writes.
    const std::string& codeName() const noexcept;
    /// What the failure was about.
    ErrorKind kind() const noexcept;
    /// The server's error labels.
    const std::vector<std::string>& labels() const noexcept;
    /// Whether labels() contains @p label.
    bool hasLabel(const std::string& label) const noexcept;
    /// Whether the cause is a passing one: a broken connection, a server that stops or hands over its role, a conflict
    /// with another write, or a label of the server that says so. The failed operation may have taken effect all the
    /// same: repeat an insert only with an "_id" of your own, and an update only if it can be applied twice.
    bool mayRetry() const noexcept;
    /// All of it, for an exception of the caller that contains this one.
    const ErrorDetails& details() const noexcept;

private:
    std::shared_ptr<const ErrorDetails> m_details; // the only member: size and layout never change
};

/// A transfer of a file that the program ended: FileStore throws it when a progress function returns false. A Download
/// makes DataBaseClient::readFile() throw it, also after Download::cancel().
class Cancelled : public std::runtime_error
{
public:
    Cancelled() : std::runtime_error("Cancelled") {}
};

/// What an exception says, taken apart.
struct ErrorInfo
{
    /// What the failure was about.
    ErrorKind kind = ErrorKind::Other;
    /// The code of the driver or the server; nothing where the text carries none.
    std::optional<int> code;
    /// The text without the code.
    std::string text;
};

namespace detail {

/// The number between "(code: " and a ")" that ends the text.
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

/// Numbers are the server's own unless noted; the driver reports its failures under small and five-digit numbers.
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
        // The driver uses the server's "authentication failed" number for a document that is too large.
        return contains(text, "too large") ? ErrorKind::TooLarge : ErrorKind::Authentication;
    case 10334:
        return ErrorKind::TooLarge;
    case 13:
        return ErrorKind::NotAuthorized;
    case 26: // no such namespace
        return ErrorKind::NotFound;
    case 50: // time limit of the operation
        return ErrorKind::Timeout;
    case 11:
        // Driver: the login failed. Server: no such user.
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

/// Reads the kind and the code from an exception that an operation threw: of a ServerError exactly as the error carries
/// them, of any other from its text.
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
            info.text.erase(info.text.rfind("(code: "));
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
