// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Bytes as documents that go to a server or come from one. A document is sent unchanged, with an "_id" in front if it
// has no "_id". The record of a stored file and a reply with an error are read, or rejected with the error that the
// caller expects.

#include "collection/driver_error.h"
#include "collection/file_chunks.h"
#include "collection/outgoing.h"
#include "require.h"

#include <mongoc/mongoc.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

constexpr const char* refusal = "refused";

template <typename Send>
void requireRefusedOrSent(Send send)
{
    try
    {
        send();
    }
    catch (const std::invalid_argument& error)
    {
        require(error.what() == std::string(refusal), "a document is refused with the text of its operation");
    }
}

void requireSending(const dbc::BsonView& view)
{
    requireRefusedOrSent([&] {
        const dbc::OutgoingBson sent(view, refusal);
        require(sent.get()->len == view.size && std::memcmp(bson_get_data(sent.get()), view.data, view.size) == 0,
                "the bytes are sent as they are");
    });
    requireRefusedOrSent([&] {
        dbc::OutgoingBson sent;
        sent.convertForInsert(view, refusal);
        bson_iter_t first;
        require(bson_has_field(sent.get(), "_id"), "an inserted document has an \"_id\"");
        require(bson_validate(sent.get(), BSON_VALIDATE_NONE, nullptr), "an inserted document is BSON");
        const std::size_t added = sent.get()->len - view.size;
        const std::size_t length = sizeof(std::uint32_t);
        require(added == 0 || (bson_iter_init(&first, sent.get()) && bson_iter_next(&first) &&
                               bson_iter_key(&first) == std::string("_id") && BSON_ITER_HOLDS_OID(&first)),
                "a new \"_id\" is the first field");
        require(std::memcmp(bson_get_data(sent.get()) + length + added, view.data + length, view.size - length) == 0,
                "the fields follow as they are");
    });
}

void requireReading(const dbc::BsonView& view)
{
    bson_t document;
    if (!bson_init_static(&document, view.data, view.size))
        return;
    try
    {
        const dbc::FileInfo info = dbc::fileInfoFrom(&document, "message");
        require(info.chunkSize > 0, "a stored file has chunks of some size");
    }
    catch (const dbc::ServerError& error)
    {
        require(error.what() == std::string("message: the record of a stored file is malformed"),
                "a malformed record is an error of the server");
    }
    bson_error_t error{};
    error.domain = MONGOC_ERROR_SERVER;
    error.code = 1;
    dbc::errorDetails(error, &document);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const dbc::BsonView view{data, size};
    requireSending(view);
    requireReading(view);
    return 0;
}
