// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "collection/file_chunks.h"
#include "dbc/file_store.h"

#include <ios>
#include <memory>
#include <streambuf>
#include <utility>

namespace dbc {

/// A stream buffer that uses the memory of the cursor, so the bytes are not copied.
class FileReader::Buffer : public std::streambuf
{
public:
    explicit Buffer(FileChunks content) : m_content(std::move(content)) {}

    static std::unique_ptr<FileReader> reader(FileChunks content)
    {
        return std::unique_ptr<FileReader>(new FileReader(std::make_unique<Buffer>(std::move(content))));
    }

    const FileInfo& info() const noexcept { return m_content.info(); }

protected:
    int_type underflow() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction, std::ios_base::openmode mode) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override;

private:
    FileChunks m_content;
};

} // namespace dbc
