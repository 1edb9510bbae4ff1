#pragma once

/// @file
/// Files in a GridFS store.

#include "database_client.h"
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
    Value id{};                  ///< Its "_id".
    std::string name{};          ///< Its name; several files may have the same.
    std::uint64_t length = 0;    ///< In bytes.
    std::uint32_t chunkSize = 0; ///< Bytes in each of the documents that hold the content.
    Time uploaded{};             ///< When the upload ended.
    std::string contentType{};   ///< Such as "image/png"; empty if none was given.
    Value metadata{};            ///< An object with what the uploader added; without fields if that is nothing.
};

/// Called after each piece with the bytes so far; false cancels the operation, which then throws Cancelled.
using FileProgress = std::function<bool(std::uint64_t bytes)>;

/// Options of FileStore::upload().
struct UploadOptions
{
    std::optional<Value> id{};            ///< The "_id"; a new object id if not set.
    Value metadata{};                     ///< An object to be stored with the file.
    std::string contentType{};            ///< Such as "image/png"; stored in the field "contentType".
    std::uint32_t chunkSize = 255 * 1024; ///< Bytes in each document that holds content: 1 to 15 MiB.
    FileProgress progress{};              ///< Called after each chunk.
};

/// Options of FileStore::download().
struct DownloadOptions
{
    std::uint64_t offset = 0;              ///< The first byte to read; behind the end nothing is read.
    std::optional<std::uint64_t> length{}; ///< Number of bytes; to the end if not set.
    FileProgress progress{};               ///< Called after each chunk.
};

/// Options of FileStore::list().
struct ListOptions
{
    Sort sort{};            ///< Over the fields of the stored record: "filename", "length", "uploadDate", "metadata.x".
    std::int64_t limit = 0; ///< Greatest number of files; 0 means no limit.
    std::int64_t skip = 0;  ///< Number of matches to skip.
};

} // namespace v1

/// The content of a stored file as a stream to read and seek. Holds one chunk in memory. Made by FileStore::open().
/// What fails while reading sets badbit; with exceptions(std::ios::badbit) the stream passes on the ServerError. After
/// clear() the stream reads on from tellg(). Must not outlive the DataBaseClient, but may outlive the FileStore.
class DATABASE_CLIENT_API FileReader : public std::istream
{
public:
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    ~FileReader() override;

    /// The file that is read.
    const FileInfo& info() const noexcept;

private:
    friend class FileStore;
    class DATABASE_CLIENT_LOCAL Buffer;
    explicit FileReader(std::unique_ptr<Buffer> buffer);
    std::unique_ptr<Buffer> d;
};

/// One GridFS store: the files of one prefix in a database. Cheap to make: nothing is sent. Must not outlive the
/// DataBaseClient. Not thread-safe, like the client. Moved
/// from, it can only be assigned to or destroyed. Format: the GridFS specification.
///
/// An uploaded file is visible when it is whole: its record is written after all of its content. A failed upload
/// removes its content again. An upload whose content another program removes fails.
///
/// Every operation throws, in this order of checks:
/// - std::logic_error       "The client of this object no longer exists"
/// - std::invalid_argument  "Connection is not established. Run connect before"
/// - std::invalid_argument  "Database name is empty", "GridFS collection name is empty", "GridFS file name is empty"
/// - ServerError            a failure that the server or the driver reports. Kind NotFound: there is no such file
class DATABASE_CLIENT_API FileStore
{
public:
    /// The store with the prefix @p name in @p database. Neither is checked here.
    FileStore(DataBaseClient& client, std::string database, std::string name = "fs");
    /// Takes over the state of @p other, which can only be destroyed or assigned to afterwards.
    FileStore(FileStore&& other) noexcept;
    /// As the constructor; the own state is released first.
    FileStore& operator=(FileStore&& other) noexcept;
    ~FileStore();

    /// Stores what @p source holds from its read position on. Needs memory for some chunks, whatever the length. A file
    /// of the same name stays beside the new one.
    /// @throws std::runtime_error "The source of the file cannot be read"
    /// @throws Cancelled          progress() returned false
    /// @throws ServerError        "Upload failed..."
    FileInfo upload(const std::string& name, std::istream& source, const UploadOptions& options = {});
    /// Stores a local file. @throws std::system_error if it cannot be opened; otherwise as upload()
    FileInfo uploadFile(const std::string& name, const std::string& path, const UploadOptions& options = {});

    /// Writes the content of the newest file of this name to @p target.
    /// @throws std::runtime_error "The target of the download cannot be written"
    /// @throws Cancelled          progress() returned false
    /// @throws ServerError        "Download failed..."; what was read before is in the stream
    FileInfo download(const std::string& name, std::ostream& target, const DownloadOptions& options = {});
    /// The same for the file with this "_id".
    FileInfo downloadById(const Value& id, std::ostream& target, const DownloadOptions& options = {});
    /// The newest file of this name as a stream. @throws ServerError "Download failed..."
    std::unique_ptr<FileReader> open(const std::string& name);
    /// The file with this "_id" as a stream. @throws ServerError "Download failed..."
    std::unique_ptr<FileReader> openById(const Value& id);

    /// The newest file of this name; empty if no file has it. @throws ServerError "Listing files failed..."
    std::optional<FileInfo> find(const std::string& name);
    /// The files whose records match: list({{"metadata.owner", "ada"}}). @throws ServerError "Listing files failed..."
    std::vector<FileInfo> list(const DocumentRef& filter = {}, const ListOptions& options = {});

    /// Removes the file with this "_id"; returns false if it does not exist. @throws ServerError "Removing the file
    /// failed..."
    bool removeById(const Value& id);
    /// Removes every file of this name, upper and lower case being different, and returns their number.
    /// @throws ServerError "Removing the file failed..."; files removed before stay removed
    std::size_t remove(const std::string& name);
    /// Gives the file with this "_id" a new name; returns false if it does not exist. @throws ServerError "Renaming the
    /// file failed..."
    bool rename(const Value& id, const std::string& newName);

private:
    struct DATABASE_CLIENT_LOCAL State;
    std::unique_ptr<State> d;
};

} // namespace dbc
