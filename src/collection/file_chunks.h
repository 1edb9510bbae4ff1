#pragma once

#include "database_client/client_access.h"
#include "dbc/collection.h"
#include "dbc/file_store.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace dbc {

/// What a driver's document says about a stored file.
/// @throws ServerError @p message, when a field is missing or of another type
FileInfo fileInfoFrom(const bson_t* record, const char* message);

/// The content of a stored file, piece by piece from any position on.
class FileChunks
{
public:
    /// Bytes that belong to the cursor.
    struct Piece
    {
        const char* data = nullptr;
        std::size_t size = 0;
    };

    FileChunks(Collection chunks, FileInfo info) : m_chunks(std::move(chunks)), m_info(std::move(info)) {}

    const FileInfo& info() const noexcept { return m_info; }
    std::uint64_t position() const noexcept { return m_position; }

    /// The next piece starts at @p position. Beyond the end of the file, the next piece is empty.
    void seek(std::uint64_t position);
    /// What is left of the next chunk, up to @p end; without bytes at @p end and at the end of the file. Valid until
    /// the next call. @throws ServerError "Download failed...", also for a chunk that is missing or has a wrong length
    Piece read(std::uint64_t end);

private:
    Cursor openAt(std::uint64_t chunk, std::uint64_t end);

    Collection m_chunks;
    FileInfo m_info;
    std::uint64_t m_position = 0;
    std::optional<Cursor> m_cursor; // the next chunk is the one at m_position
    std::uint64_t m_cursorEnd = 0;
};

} // namespace dbc
