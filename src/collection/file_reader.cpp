// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/file_reader.h"

#include "collection/file_chunks.h"
#include "dbc/file_store.h"

#include <cstdint>
#include <ios>
#include <istream>
#include <limits>
#include <memory>
#include <utility>

namespace dbc {

FileReader::Buffer::int_type FileReader::Buffer::underflow()
{
    setg(nullptr, nullptr, nullptr); // a failed read may have freed the last piece
    const FileChunks::Piece piece = m_content.read(std::numeric_limits<std::uint64_t>::max());
    if (piece.size == 0)
        return traits_type::eof();
    // Never written to: this buffer does not support putting back a different character.
    char* const begin = const_cast<char*>(piece.data);
    setg(begin, begin, begin + piece.size);
    return traits_type::to_int_type(*begin);
}

FileReader::Buffer::pos_type FileReader::Buffer::seekoff(off_type offset, std::ios_base::seekdir direction,
                                                         std::ios_base::openmode mode)
{
    const auto length = static_cast<off_type>(m_content.info().length);
    const auto current = static_cast<off_type>(m_content.position()) - (egptr() - gptr());
    const off_type base = direction == std::ios_base::beg ? 0 : direction == std::ios_base::cur ? current : length;
    if (offset < -base || offset > length - base)
        return pos_type{off_type{-1}};
    return seekpos(pos_type(base + offset), mode);
}

FileReader::Buffer::pos_type FileReader::Buffer::seekpos(pos_type position, std::ios_base::openmode mode)
{
    const off_type target = position;
    if (!(mode & std::ios_base::in) || target < 0 || target > static_cast<off_type>(m_content.info().length))
        return pos_type{off_type{-1}};
    const auto end = static_cast<off_type>(m_content.position());
    if (target <= end && end - target <= egptr() - eback())
    {
        setg(eback(), egptr() - (end - target), egptr());
        return position;
    }
    setg(nullptr, nullptr, nullptr);
    m_content.seek(static_cast<std::uint64_t>(target));
    return position;
}

FileReader::FileReader(std::unique_ptr<Buffer> buffer) : std::istream(buffer.get()), d(std::move(buffer)) {}

FileReader::~FileReader() = default;

const FileInfo& FileReader::info() const noexcept { return d->info(); }

} // namespace dbc
