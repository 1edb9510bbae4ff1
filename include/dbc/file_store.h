// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Files in GridFS.

#include "database_client.h"
#include "database_client_export.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/options.h"
#include "dbc/value.h"
#include "dbc/values.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace dbc {
inline namespace v1 {

/// A stored file.
struct FileInfo
{
    Value id{};                  ///< The "_id" of the file.
    std::string name{};          ///< Name; not unique.
    std::uint64_t length = 0;    ///< In bytes.
    std::uint32_t chunkSize = 0; ///< Size of a chunk in bytes.
    Time uploaded{};             ///< Time of the end of the upload.
    std::string contentType{};   ///< Such as "image/png"; may be empty.
    Value metadata{};            ///< UploadOptions::metadata; may be empty.
};

/// Called for each chunk with the number of bytes read so far. Return false to cancel: the operation then throws
/// Cancelled.
using FileProgress = std::function<bool(std::uint64_t bytes)>;

/// Options of FileStore::upload().
struct UploadOptions
{
    std::optional<Value> id{};            ///< The "_id"; a new object id if not set.
    Value metadata{};                     ///< Object to store with the file.
    std::string contentType{};            ///< Such as "image/png"; stored in the field "contentType".
    std::uint32_t chunkSize = 255 * 1024; ///< Size of a chunk: 1 byte to 15 MiB.
    FileProgress progress{};              ///< Called for each chunk, before it is sent.
};

/// Options of FileStore::download().
struct DownloadOptions
{
    std::uint64_t offset = 0;              ///< The first byte to read. Beyond the end, nothing is read.
    std::optional<std::uint64_t> length{}; ///< Maximum number of bytes; up to the end if not set.
    FileProgress progress{};               ///< Called for each chunk, after it is written.
};

/// Options of FileStore::list().
struct ListOptions
{
    Sort sort{}; ///< Order by fields of the file documents: "filename", "length", "uploadDate", "metadata.x".
    std::int64_t limit = 0; ///< Maximum number of files; 0 means no limit.
    std::int64_t skip = 0;  ///< Number of matches to skip.
};

} // namespace v1

/// The content of a stored file as a seekable input stream. FileStore::open() creates it. It keeps at
/// most 4 MiB or one chunk in memory, whichever is more. A seek beyond the end of the file fails.
///
/// An error while reading sets badbit. With exceptions(std::ios::badbit) the stream throws the ServerError. After
/// clear(), reading continues at tellg().
///
/// It may outlive the FileStore, but not the DataBaseClient. Not thread-safe: use it only in the thread of the client.
/// @since 1.0
class DATABASE_CLIENT_API FileReader : public std::istream
{
public:
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    ~FileReader() override;

    /// The stored file.
    const FileInfo& info() const noexcept;

private:
    friend class FileStore;
    class DATABASE_CLIENT_LOCAL Buffer;
    explicit FileReader(std::unique_ptr<Buffer> buffer);
    std::unique_ptr<Buffer> d;
};

/// One GridFS bucket: the files of one prefix in a database. Creating a FileStore sends nothing. It does not own the
/// DataBaseClient and must not outlive it: every operation then throws. Not thread-safe: use it only in the thread of
/// the client. Only assign to a moved-from object or destroy it. Format: the GridFS specification.
///
/// An uploaded file becomes visible when it is complete, because its file document is written last. A failed upload
/// removes its chunks. An upload fails if another program removes its chunks.
///
/// Every operation checks in this order and throws:
/// - std::logic_error       "The client of this object no longer exists"
/// - std::invalid_argument  "Connection is not established. Run connect before"
/// - std::invalid_argument  "Database name is empty", "GridFS collection name is empty", "GridFS file name is empty";
///                          the same with "contains a zero byte"; "Bad condition" for a filter that cannot be sent
/// - ServerError            an error of the server or the driver; kind NotFound if the file does not exist
/// @since 1.0
class DATABASE_CLIENT_API FileStore
{
public:
    /// The bucket with the prefix @p name in @p database. The names are not checked here.
    FileStore(DataBaseClient& client, std::string database, std::string name = "fs");
    /// Moves the state.
    FileStore(FileStore&& other) noexcept;
    /// Moves the state.
    FileStore& operator=(FileStore&& other) noexcept;
    ~FileStore();

    /// Stores the bytes of @p source from its read position on. Memory use does not depend on the length. A stored file
    /// with the same name is not replaced. The first upload to an empty bucket creates the indexes of GridFS.
    /// @throws std::invalid_argument "Chunk size is out of range"; "Bad properties" if the metadata cannot be sent
    /// @throws std::runtime_error    "The source of the file cannot be read", or could not be opened
    /// @throws Cancelled             progress() returned false
    /// @throws ServerError           "Upload failed..."
    FileInfo upload(const std::string& name, std::istream& source, const UploadOptions& options = {});
    /// Stores a local file. Throws the exceptions of upload(), and:
    /// @throws std::system_error if the file cannot be opened
    FileInfo uploadFile(const std::string& name, const std::string& path, const UploadOptions& options = {});

    /// Writes the content of the newest file with this name to @p target.
    /// @throws std::runtime_error "The target of the download cannot be written"
    /// @throws Cancelled          progress() returned false
    /// @throws ServerError        "Download failed..."; bytes read so far are in the stream
    FileInfo download(const std::string& name, std::ostream& target, const DownloadOptions& options = {});
    /// The same as download(), for the file with this "_id".
    FileInfo downloadById(const Value& id, std::ostream& target, const DownloadOptions& options = {});
    /// Opens the newest file with this name. @throws ServerError "Download failed..."
    std::unique_ptr<FileReader> open(const std::string& name);
    /// Opens the file with this "_id". @throws ServerError "Download failed..."
    std::unique_ptr<FileReader> openById(const Value& id);

    /// Returns the newest file with this name, or an empty optional. @throws ServerError "Listing files failed..."
    std::optional<FileInfo> find(const std::string& name);
    /// Returns the files whose file documents match: list({{"metadata.owner", "ada"}}).
    /// @throws ServerError "Listing files failed..."
    std::vector<FileInfo> list(const DocumentRef& filter = {}, const ListOptions& options = {});

    /// Removes the file with this "_id". Returns false if it does not exist.
    /// @throws ServerError "Removing the file failed..."
    bool removeById(const Value& id);
    /// Removes every file with this name and returns their number. The name is case-sensitive.
    /// @throws ServerError "Removing the file failed..."; files removed so far stay removed
    std::size_t remove(const std::string& name);
    /// Renames the file with this "_id". Returns false if it does not exist.
    /// @throws ServerError "Renaming the file failed..."
    bool rename(const Value& id, const std::string& newName);

private:
    struct DATABASE_CLIENT_LOCAL State;
    std::unique_ptr<State> d;
};

} // namespace dbc
