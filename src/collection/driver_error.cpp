// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/driver_error.h"

#include "collection/bson_reader.h"
#include "dbc/errors.h"

#include <mongoc/mongoc.h>

#include <algorithm>
#include <iterator>

namespace dbc {
namespace {

// Servers and the driver use the same small numbers as error codes. For some domains, only the reply shows that the
// error is from the server.
bool isFromServer(const bson_error_t& error, const bson_t* reply)
{
    switch (error.domain)
    {
    case MONGOC_ERROR_SERVER:
    case MONGOC_ERROR_WRITE_CONCERN:
    case MONGOC_ERROR_QUERY:
        return true;
    case MONGOC_ERROR_COMMAND:
    case MONGOC_ERROR_COLLECTION:
    case 0: // without a code, the error is only in the reply
        return reply && (bson_has_field(reply, "errmsg") || bson_has_field(reply, "writeErrors.0") ||
                         bson_has_field(reply, "writeConcernErrors.0"));
    default:
        return false;
    }
}

ErrorKind kindOfDriverError(const bson_error_t& error)
{
    switch (error.domain)
    {
    case MONGOC_ERROR_STREAM:
    case MONGOC_ERROR_SERVER_SELECTION:
        return ErrorKind::Network;
    case MONGOC_ERROR_SASL:
    case MONGOC_ERROR_SCRAM:
        return ErrorKind::Authentication;
    case MONGOC_ERROR_CLIENT:
        return error.code == MONGOC_ERROR_CLIENT_AUTHENTICATE ? ErrorKind::Authentication : ErrorKind::Other;
    case MONGOC_ERROR_BSON:
    case MONGOC_ERROR_COMMAND:
    case MONGOC_ERROR_NAMESPACE:
        return ErrorKind::BadArgument;
    default:
        return ErrorKind::Other;
    }
}

// The codes that MongoDB specifies for retryable reads and retryable writes, and the code of a write conflict.
bool isPassing(int code)
{
    static constexpr int passing[] = {6, 7, 89, 91, 112, 134, 189, 262, 9001, 10107, 11600, 11602, 13435, 13436};
    return std::find(std::begin(passing), std::end(passing), code) != std::end(passing);
}

} // namespace

ErrorKind kindOfServerCode(int code)
{
    switch (code)
    {
    case 11000: // duplicate key, in three generations of servers
    case 11001:
    case 12582:
        return ErrorKind::DuplicateKey;
    case 11: // user
    case 26: // namespace
    case 27: // index
    case 31: // role
    case 43: // cursor
        return ErrorKind::NotFound;
    case 18:
        return ErrorKind::Authentication;
    case 13:
        return ErrorKind::NotAuthorized;
    case 24:  // lock timeout
    case 50:  // maxTimeMS expired
    case 64:  // write concern timeout
    case 89:  // network timeout between servers
    case 202: // network timeout between servers
    case 262: // time limit exceeded
        return ErrorKind::Timeout;
    case 6: // between servers: unreachable, unknown host, socket error
    case 7:
    case 9001:
        return ErrorKind::Network;
    case 10334:
    case 17280: // index key
    case 17419: // document after an update
    case 17420:
        return ErrorKind::TooLarge;
    default:
        return ErrorKind::Other;
    }
}

ErrorDetails errorDetails(const bson_error_t& error, const bson_t* reply)
{
    ErrorDetails details;
    details.text = error.message;
    details.code = static_cast<int>(error.code);
    if (reply)
    {
        details.codeName = textField(reply, "codeName");
        details.labels = textListField(reply, "errorLabels");
        if (details.text.empty())
            details.text = textField(reply, "writeErrors.0.errmsg");
    }
    const bool fromServer = isFromServer(error, reply);
    details.kind = fromServer ? kindOfServerCode(details.code) : kindOfDriverError(error);
    const auto hasLabel = [&details](const char* label) {
        return std::find(details.labels.begin(), details.labels.end(), label) != details.labels.end();
    };
    // libmongoc 1.30 also labels a failed login as retryable, because it happens before the write. A retry would fail.
    details.mayRetry = details.kind != ErrorKind::Authentication &&
                       (hasLabel("RetryableWriteError") || hasLabel("TransientTransactionError") ||
                        (fromServer ? isPassing(details.code) : details.kind == ErrorKind::Network));
    return details;
}

void throwServerError(const char* message, const bson_error_t& error, const bson_t* reply)
{
    throw ServerError(message, errorDetails(error, reply));
}

} // namespace dbc
