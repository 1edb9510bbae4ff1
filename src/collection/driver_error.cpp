#include "collection/driver_error.h"

#include "collection/bson_reader.h"

#include <mongoc/mongoc.h>

#include <algorithm>
#include <cstring>

namespace dbc {
namespace {

// A code that only a server sends stands in the reply. Without it the error is the driver's own: both use the same
// small numbers.
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
    case 0: // the driver reports an error without a code in the reply alone
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

// Codes after which the drivers' specifications of retryable reads and writes try again, and a write conflict.
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
    case 24:  // a lock
    case 50:  // time limit of the operation
    case 64:  // acknowledgement of a write
    case 89:  // between servers
    case 202: // between servers
    case 262: // time limit
        return ErrorKind::Timeout;
    case 6: // between servers: unreachable, unknown host, socket
    case 7:
    case 9001:
        return ErrorKind::Network;
    case 10334:
    case 17280: // key of an index
    case 17419: // the result of an update
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
    details.mayRetry = hasLabel("RetryableWriteError") || hasLabel("TransientTransactionError") ||
                       (fromServer ? isPassing(details.code) : details.kind == ErrorKind::Network);
    return details;
}

void throwServerError(const char* message, const bson_error_t& error, const bson_t* reply)
{
    throw ServerError(message, errorDetails(error, reply));
}

} // namespace dbc
