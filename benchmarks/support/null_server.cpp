// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "support/null_server.h"

#include "driver/bson_handles.h"

#include <cstdint>
#include <string>

using test_support::Bytes;
using test_support::Fault;

namespace {

// The reply to a find or getMore; a cursor of 0 ends the query.
Bytes batchOf(const std::vector<std::uint8_t>& document, std::size_t count, const char* name, std::int64_t cursor)
{
    bson_t view;
    bson_init_static(&view, document.data(), document.size());
    OwnedBson array;
    for (std::size_t index = 0; index < count; ++index)
        bson_append_document(array.get(), std::to_string(index).c_str(), -1, &view);
    OwnedBson batch;
    BSON_APPEND_INT64(batch.get(), "id", cursor);
    BSON_APPEND_UTF8(batch.get(), "ns", "benchmark.records");
    BSON_APPEND_ARRAY(batch.get(), name, array.get());
    OwnedBson reply;
    BSON_APPEND_DOCUMENT(reply.get(), "cursor", batch.get());
    BSON_APPEND_DOUBLE(reply.get(), "ok", 1);
    const std::uint8_t* const bytes = bson_get_data(reply.get());
    return {bytes, bytes + reply.get()->len};
}

} // namespace

// The gateway itself replies to every command, so nothing is sent to its server port.
NullServer::NullServer() : m_gateway("mongodb://127.0.0.1:1/", test_support::WireGateway::Rewrite::Nothing)
{
    m_gateway.record(false);
    answerHandshakes();
}

void NullServer::answerHandshakes()
{
    m_gateway.clearFaults();
    const char* const hello = R"({"ismaster": true, "isWritablePrimary": true, "helloOk": true,
        "minWireVersion": 0, "maxWireVersion": 17, "maxBsonObjectSize": 16777216, "maxMessageSizeBytes": 48000000,
        "maxWriteBatchSize": 100000, "readOnly": false, "ok": 1})";
    for (const char* const name : {"isMaster", "ismaster", "hello"})
        m_gateway.inject(Fault::answer(hello).onCommand(name).andLater());
    for (const char* const name : {"ping", "killCursors", "endSessions"})
        m_gateway.inject(Fault::answer(R"({"ok": 1})").onCommand(name).andLater());
}

void NullServer::answerInserts(std::size_t documents)
{
    answerHandshakes();
    const std::string reply = R"({"n": )" + std::to_string(documents) + R"(, "ok": 1})";
    m_gateway.inject(Fault::answer(reply).onCommand("insert").andLater());
}

void NullServer::answerFind(const std::vector<std::uint8_t>& document, std::size_t batches, std::size_t perBatch)
{
    constexpr std::int64_t cursor = 1;
    answerHandshakes();
    m_gateway.inject(Fault::answer(batchOf(document, perBatch, "firstBatch", cursor)).onCommand("find"));
    m_gateway.inject(
        Fault::answer(batchOf(document, perBatch, "nextBatch", 0)).onCommand("getMore").number(batches - 1));
    m_gateway.inject(Fault::answer(batchOf(document, perBatch, "nextBatch", cursor)).onCommand("getMore").andLater());
}
