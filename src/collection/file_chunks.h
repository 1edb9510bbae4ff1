// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/file_store.h"

#include <bson/bson.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace dbc {

/// Converts a GridFS file document.
/// @throws ServerError with @p message if a field is missing or has another type
FileInfo fileInfoFrom(const bson_t* record, const char* message);

/// Reads the content of a stored file from any position, piece by piece.
class FileChunks
{
public:
    /// Bytes of the cursor's current document.
    struct Piece
    {
        const char* data = nullptr;
        std::size_t size = 0;
    };

    FileChunks(Collection chunks, FileInfo info) : m_chunks(std::move(chunks)), m_info(std::move(info)) {}

    const FileInfo& info() const noexcept { return m_info; }
    std::uint64_t position() const noexcept { return m_position; }

    /// Sets the position of the next piece. Beyond the end of the file, the next piece is empty.
    void seek(std::uint64_t position);
    /// Returns the bytes of the current chunk from the position on, up to the position @p end. The piece is empty at
    /// @p end and at the end of the file. It is valid until the next call.
    /// @throws ServerError "Download failed...", also if a chunk is missing or has a wrong length
    Piece read(std::uint64_t end);

private:
    Cursor openAt(std::uint64_t chunk, std::uint64_t end);

    Collection m_chunks;
    FileInfo m_info;
    std::uint64_t m_position = 0;
    std::optional<Cursor> m_cursor; // its next document is the chunk of m_position
    std::uint64_t m_cursorEnd = 0;
};

} // namespace dbc
