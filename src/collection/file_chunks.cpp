// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/file_chunks.h"

#include "collection/bson_reader.h"
#include "collection/bson_value.h"
#include "collection/relabel.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/file_store.h"
#include "dbc/value.h"
#include "dbc/values.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace dbc {
namespace {

constexpr const char* downloadFailed = "Download failed";
constexpr const char* malformedRecord = "the record of a stored file is malformed";
// Maximum size of one reply of a download.
constexpr std::uint64_t replyBytes = 4U << 20U;
constexpr std::int64_t largestChunk = 16 << 20;

[[noreturn]] void throwBroken(const char* message, std::string text)
{
    ErrorDetails details;
    details.text = std::move(text);
    throw ServerError(message, details);
}

} // namespace

FileInfo fileInfoFrom(const bson_t* record, const char* message)
{
    FileInfo info;
    const std::int64_t length = numberField(record, "length");
    const std::int64_t chunkSize = numberField(record, "chunkSize");
    bson_iter_t iter;
    if (!findField(record, "_id", &iter) || length < 0 || chunkSize <= 0 || chunkSize > largestChunk)
        throwBroken(message, malformedRecord);
    const auto valueOf = [message](const bson_iter_t& field) {
        try
        {
            return valueAt(field);
        }
        catch (const FormatError& /*error*/)
        {
            throwBroken(message, malformedRecord);
        }
    };
    info.id = valueOf(iter);
    info.name = textField(record, "filename");
    info.length = static_cast<std::uint64_t>(length);
    info.chunkSize = static_cast<std::uint32_t>(chunkSize);
    if (findField(record, "uploadDate", &iter) && BSON_ITER_HOLDS_DATE_TIME(&iter))
        info.uploaded = timeFromMilliseconds(bson_iter_date_time(&iter));
    info.contentType = textField(record, "contentType");
    if (findField(record, "metadata", &iter) && BSON_ITER_HOLDS_DOCUMENT(&iter))
        info.metadata = valueOf(iter);
    return info;
}

void FileChunks::seek(std::uint64_t position)
{
    if (position == m_position)
        return;
    m_position = position;
    m_cursor.reset();
}

Cursor FileChunks::openAt(std::uint64_t chunk, std::uint64_t end)
{
    FindOptions options;
    options.sort = {{"n"}};
    options.limit = static_cast<std::int64_t>((end - 1) / m_info.chunkSize - chunk + 1);
    options.batchSize = static_cast<std::int32_t>(std::max<std::uint64_t>(1, replyBytes / m_info.chunkSize));
    return m_chunks.find({{"files_id", m_info.id}, {"n", {{"$gte", static_cast<long>(chunk)}}}}, options);
}

FileChunks::Piece FileChunks::read(std::uint64_t end)
{
    end = std::min(end, m_info.length);
    if (m_position >= end)
        return {};
    const std::uint64_t chunk = m_position / m_info.chunkSize;
    const std::uint64_t begin = chunk * m_info.chunkSize;
    // m_cursor is set again only if this chunk can be read. After a failure, the next call sends a new query.
    std::optional<Cursor> cursor = std::exchange(m_cursor, std::nullopt);
    const bool isThere = relabelled(downloadFailed, [&] {
        if (!cursor || m_cursorEnd != end)
            cursor = openAt(chunk, end);
        return cursor->next();
    });

    bson_t bson;
    bson_iter_t iter;
    const BsonView view = isThere ? cursor->bson() : BsonView();
    if (!isThere || !bson_init_static(&bson, view.data, view.size) ||
        numberField(&bson, "n") != static_cast<std::int64_t>(chunk))
        throwBroken(downloadFailed, "chunk " + std::to_string(chunk) + " of the stored file is missing");
    std::uint32_t size = 0;
    const std::uint8_t* data = nullptr;
    bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
    if (findField(&bson, "data", &iter) && BSON_ITER_HOLDS_BINARY(&iter))
        bson_iter_binary(&iter, &subtype, &size, &data);
    if (size != std::min<std::uint64_t>(m_info.chunkSize, m_info.length - begin))
        throwBroken(downloadFailed, "chunk " + std::to_string(chunk) + " of the stored file has a wrong length");

    const std::uint64_t skipped = m_position - begin;
    const std::uint64_t left = std::min<std::uint64_t>(size, end - begin) - skipped;
    m_position += left;
    m_cursor = std::move(cursor);
    m_cursorEnd = end;
    return {reinterpret_cast<const char*>(data) + skipped, static_cast<std::size_t>(left)};
}

} // namespace dbc
