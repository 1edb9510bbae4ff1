// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// GridFS files.

#include "database_client/database_client_d.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <strings.h>
#include <sys/types.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <list>
#include <string>

namespace {

constexpr std::size_t pieceSize = 4096;
// The driver writes "<prefix>.chunks" into 128 bytes and aborts for a longer prefix.
constexpr std::size_t longestPrefix = 119;

using Piece = std::array<char, pieceSize>;

// Reads bytes of the current chunk, or of the next chunk if the current one is finished. Returns 0 at the end of the
// file, a negative number after a failure.
//
// Does not pass a minimum number of bytes to the driver. With a minimum, the driver would send the same request forever
// for a chunk that is too short.
ssize_t readOn(const GridFsFileHandle& file, const GridFsStreamHandle& stream, char* buffer, std::size_t size)
{
    const std::int64_t length = mongoc_gridfs_file_get_length(file.get());
    const auto position = static_cast<std::int64_t>(mongoc_gridfs_file_tell(file.get()));
    if (position >= length)
        return 0;
    const std::int64_t chunkSize = mongoc_gridfs_file_get_chunk_size(file.get());
    if (chunkSize <= 0)
        return -1; // the driver divides by the chunk size
    // At the start of a chunk, only a seek makes the driver release the previous chunk.
    if (position % chunkSize == 0 && mongoc_gridfs_file_seek(file.get(), position, SEEK_SET) != 0)
        return -1;
    mongoc_iovec_t vector{
        buffer, static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(size), length - position))};
    const ssize_t count = mongoc_stream_readv(stream.get(), &vector, 1, 0, 0);
    return count == 0 ? -1 : count; // 0 bytes before the end of the file: the chunk is too short
}

// Fills the piece, from several chunks if needed. Returns the number of bytes, which is below the size of the piece
// only at the end of the file, or a negative number after a failure.
ssize_t readPiece(const GridFsFileHandle& file, const GridFsStreamHandle& stream, Piece& piece)
{
    std::size_t filled = 0;
    while (filled < piece.size())
    {
        const ssize_t count = readOn(file, stream, piece.data() + filled, piece.size() - filled);
        if (count < 0)
            return count;
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(filled);
}

// Returns the stored files, sorted by name.
GridFsFileListHandle openFileList(const GridFsHandle& store)
{
    const OwnedBson all;
    OwnedBson options;
    bson_t order;
    BSON_APPEND_DOCUMENT_BEGIN(options.get(), "sort", &order);
    BSON_APPEND_INT32(&order, "filename", 1);
    bson_append_document_end(options.get(), &order);
    return GridFsFileListHandle(mongoc_gridfs_find_with_opts(store.get(), all.get(), options.get()));
}

bool isAtEnd(const bson_error_t& error)
{
    return error.domain == MONGOC_ERROR_CURSOR && error.code == MONGOC_ERROR_CURSOR_INVALID_CURSOR;
}

// Calls visit with each file. Returns false and sets the error if the list is incomplete.
template <typename Visit>
bool visitFiles(const GridFsHandle& store, bson_error_t& error, Visit visit)
{
    const GridFsFileListHandle list = openFileList(store);
    while (const GridFsFileHandle file{mongoc_gridfs_file_list_next(list.get())})
    {
        visit(file);
        if (mongoc_gridfs_file_list_error(list.get(), &error))
            return false;
    }
    // If the connection broke, the driver returns no file, and sets this error.
    if (mongoc_gridfs_file_list_error(list.get(), &error))
        return false;
    // The driver also returns no file for a file document that it cannot read. Only at the end of the list, another
    // call fails.
    const GridFsFileHandle next(mongoc_gridfs_file_list_next(list.get()));
    if (!next && mongoc_gridfs_file_list_error(list.get(), &error) && isAtEnd(error))
        return true;
    bson_set_error(&error, MONGOC_ERROR_GRIDFS, 0, "the record of a stored file is malformed");
    return false;
}

FileStreamHandle openInput(const std::string& path)
{
    FileStreamHandle stream(mongoc_stream_file_new_for_path(path.c_str(), 0, 0));
    // The driver destroys the stream after reading all of it, but not after an error. The handle owns it in both cases.
    if (stream)
        stream->failed = [](mongoc_stream_t*) {};
    return stream;
}

GridFsFileHandle createFile(const GridFsHandle& store, const FileStreamHandle& input, const std::string& fileName)
{
    std::string name = fileName; // not const in the driver's options
    mongoc_gridfs_file_opt_t options{};
    options.filename = name.data();
    return GridFsFileHandle(mongoc_gridfs_create_file_from_stream(store.get(), input.get(), &options));
}

} // namespace

GridFsHandle DataBaseClientPrivate::openGridFs(const std::string& database, const std::string& gridFsCollection) const
{
    const std::string message = "Error occurred while mongoc_client_get_gridfs operation";
    if (std::char_traits<char>::length(gridFsCollection.c_str()) > longestPrefix)
        throw_runtime_error(message, "the name of the store is longer than 119 bytes", 0);
    bson_error_t error{};
    GridFsHandle store(mongoc_client_get_gridfs(m_client.get(), database.c_str(), gridFsCollection.c_str(), &error));
    if (!store)
        throwDriverError(message, error);
    return store;
}

void DataBaseClientPrivate::readFile(const std::string& database, const std::string& gridFsCollection,
                                     const std::string& fileName, std::iostream* stream)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(gridFsCollection, "GridFS Collection name");
    check_argument(fileName, "GridFS file name");
    if (!stream)
        throw_runtime_error("Error: iostream is not initialized", "", 0);

    const GridFsHandle store = openGridFs(database, gridFsCollection);
    bson_error_t error{};
    // Declared before the stream, so that it is destroyed later: closing the stream saves the file.
    const GridFsFileHandle file(mongoc_gridfs_find_one_by_filename(store.get(), fileName.c_str(), &error));
    if (!file)
        throwDriverError("Error occurred while mongoc_gridfs_find_one_by_filename operation", error);
    const GridFsStreamHandle source(mongoc_stream_gridfs_new(file.get()));
    if (!source)
        throw_runtime_error("Error occurred while mongoc_stream_gridfs_new operation", "", 0);

    Piece piece;
    ssize_t count = 0;
    while ((count = readPiece(file, source, piece)) > 0)
        stream->write(piece.data(), count);
    if (count < 0)
        throw_runtime_error("Error occurred while read gridFS file operation", "", 0);
}

void DataBaseClientPrivate::writeFile(const std::string& database, const std::string& gridFsCollection,
                                      const std::string& fileName, const std::string& inputFilePath)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(gridFsCollection, "GridFS collection name"); // lower-case "collection": callers compare the text
    check_argument(fileName, "GridFS file name");
    check_argument(inputFilePath, "GridFS input file name");

    const GridFsHandle store = openGridFs(database, gridFsCollection);
    const FileStreamHandle input = openInput(inputFilePath);
    if (!input)
        throw_runtime_error("Error occurred while mongoc_stream_file_new_for_path operation", "", 0);
    const GridFsFileHandle file = createFile(store, input, fileName);
    if (!file)
        throw_runtime_error("Error occurred while mongoc_gridfs_create_file_from_stream operation", "", 0);
    if (mongoc_gridfs_file_save(file.get()))
        return;
    bson_error_t error{};
    mongoc_gridfs_file_error(file.get(), &error);
    throwDriverError("Error occurred while save gridFS file operation", error);
}

void DataBaseClientPrivate::listFiles(const std::string& database, const std::string& gridFsCollection,
                                      std::list<std::string>& names)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(gridFsCollection, "GridFS Collection name");

    const GridFsHandle store = openGridFs(database, gridFsCollection);
    bson_error_t error{};
    const bool complete = visitFiles(store, error, [&names](const GridFsFileHandle& file) {
        if (const char* const name = mongoc_gridfs_file_get_filename(file.get()))
            names.emplace_back(name);
    });
    if (!complete)
        throwDriverError("Error occurred while list gridFS files operation", error);
}

void DataBaseClientPrivate::removeFile(const std::string& database, const std::string& gridFsCollection,
                                       const std::string& fileName)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(gridFsCollection, "GridFS Collection name");
    check_argument(fileName, "GridFS file name");

    const GridFsHandle store = openGridFs(database, gridFsCollection);
    bson_error_t listError{};
    const bool complete = visitFiles(store, listError, [&fileName](const GridFsFileHandle& file) {
        const char* const name = mongoc_gridfs_file_get_filename(file.get());
        if (!name || strcasecmp(name, fileName.c_str()) != 0)
            return;
        bson_error_t error{};
        if (!mongoc_gridfs_file_remove(file.get(), &error))
            throwDriverError("Error occurred while remove gridFS file operation", error);
    });
    if (!complete)
        throwDriverError("Error occurred while list gridFS files operation", listError);
}
