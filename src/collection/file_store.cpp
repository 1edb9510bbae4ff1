// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/file_store.h"

#include "collection/bson_value.h"
#include "collection/file_chunks.h"
#include "collection/file_reader.h"
#include "collection/names.h"
#include "collection/options_bson.h"
#include "collection/outgoing.h"
#include "collection/relabel.h"
#include "database_client.h"
#include "database_client/client_access.h"
#include "dbc/collection.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/files.h"
#include "dbc/options.h"
#include "dbc/value.h"
#include "dbc/values.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <fstream>
#include <ios>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace dbc {
namespace {

constexpr const char* uploadFailed = "Upload failed";
constexpr const char* downloadFailed = "Download failed";
constexpr const char* listingFailed = "Listing files failed";
// A document may have 16 MiB, including the other fields of the chunk.
constexpr std::uint32_t largestChunk = 15U << 20U;

Value newId(bson_oid_t& id)
{
    bson_oid_init(&id, nullptr);
    return valueFrom(id);
}

bson_t viewOf(const BsonView& view)
{
    bson_t bson;
    bson_init_static(&bson, view.data, view.size);
    return bson;
}

[[noreturn]] void throwNotFound()
{
    ErrorDetails details;
    details.text = "there is no such file";
    details.kind = ErrorKind::NotFound;
    throw ServerError(downloadFailed, details);
}

} // namespace

struct FileStore::State
{
    // Makes the checks that every operation starts with.
    void check() const
    {
        static_cast<void>(client.connected());
        checkName(database, "Database name");
        checkName(name, "GridFS collection name");
    }

    Collection files() const { return Collection(client.client(), database, name + ".files"); }
    Collection chunks() const { return Collection(client.client(), database, name + ".chunks"); }

    // Replaces an unacknowledged write concern, because only an acknowledged write shows that a file is complete.
    std::optional<WriteConcern> writeConcern() const
    {
        if (mongoc_write_concern_is_acknowledged(mongoc_client_get_write_concern(client.connected().get())))
            return std::nullopt;
        WriteConcern acknowledged;
        acknowledged.nodes = 1;
        return acknowledged;
    }

    // Called before the first file of the bucket is stored, as the GridFS specification requires.
    void createIndexes()
    {
        if (hasIndexes)
            return;
        FindOptions one;
        one.limit = 1;
        one.projection = Value{{"_id", 1}};
        if (!files().find({}, one).next())
        {
            files().createIndex({{"filename"}, {"uploadDate"}});
            IndexOptions unique;
            unique.unique = true;
            chunks().createIndex({{"files_id"}, {"n"}}, unique);
        }
        hasIndexes = true;
    }

    std::vector<FileInfo> list(const DocumentRef& filter, const FindOptions& options, const char* message) const
    {
        return relabelled(message, [&] {
            std::vector<FileInfo> found;
            Cursor cursor = files().find(filter, options);
            while (cursor.next())
            {
                const bson_t record = viewOf(cursor.bson());
                found.push_back(fileInfoFrom(&record, message));
            }
            return found;
        });
    }

    std::optional<FileInfo> first(const DocumentRef& filter, const char* message) const
    {
        FindOptions newest;
        newest.sort = {{"uploadDate", Order::Descending}};
        newest.limit = 1;
        std::vector<FileInfo> found = list(filter, newest, message);
        return found.empty() ? std::nullopt : std::optional<FileInfo>(std::move(found.front()));
    }

    FileChunks content(const DocumentRef& filter) const
    {
        std::optional<FileInfo> info = first(filter, downloadFailed);
        if (!info)
            throwNotFound();
        return {chunks(), *std::move(info)};
    }

    FileInfo download(const DocumentRef& filter, std::ostream& target, const DownloadOptions& options) const
    {
        FileChunks source = content(filter);
        const std::uint64_t length = source.info().length;
        const std::uint64_t begin = std::min(options.offset, length);
        const std::uint64_t end = options.length && *options.length < length - begin ? begin + *options.length : length;
        source.seek(begin);
        for (FileChunks::Piece piece = source.read(end); piece.size > 0; piece = source.read(end))
        {
            if (!target.write(piece.data, static_cast<std::streamsize>(piece.size)))
                throw std::runtime_error("The target of the download cannot be written");
            if (options.progress && !options.progress(source.position() - begin))
                throw Cancelled();
        }
        return source.info();
    }

    bool removeById(const Value& id) const
    {
        return relabelled("Removing the file failed", [&] {
            RemoveOptions options;
            options.writeConcern = writeConcern();
            const bool isRemoved = files().removeOne({{"_id", id}}, options).removed > 0;
            chunks().removeMany({{"files_id", id}}, options);
            return isRemoved;
        });
    }

    ClientAccess client;
    std::string database;
    std::string name;
    bool hasIndexes = false;
};

namespace {

class Upload
{
public:
    Upload(Collection files, Collection chunks, std::optional<WriteConcern> writeConcern, const UploadOptions& options)
        : m_files(std::move(files)), m_chunks(std::move(chunks)), m_writeConcern(std::move(writeConcern)),
          m_options(options), m_buffer(options.chunkSize)
    {
        bson_oid_t id;
        m_info.id = options.id ? *options.id : newId(id);
        m_info.chunkSize = options.chunkSize;
        m_info.contentType = options.contentType;
        m_info.metadata = options.metadata;
    }

    FileInfo run(const std::string& name, std::istream& source)
    {
        m_info.name = name;
        try
        {
            InsertManyOptions options;
            options.returnIds = false;
            options.writeConcern = m_writeConcern;
            const InsertManyResult stored = m_chunks.insertMany([this, &source] { return nextChunk(source); }, options);
            if (stored.acknowledged) // otherwise the server may still be storing them
                checkChunks();
            writeRecord();
        }
        catch (...)
        {
            // If the reply was lost, the file document may exist. Remove it first: it must not stay without its chunks.
            if (!m_mayHaveRecord || removeRecord())
                removeChunks();
            throw;
        }
        return std::move(m_info);
    }

private:
    std::optional<BsonView> nextChunk(std::istream& source)
    {
        source.read(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
        detail::requireReadable(source);
        const auto count = static_cast<std::uint32_t>(source.gcount());
        if (count == 0)
            return std::nullopt;

        bson_oid_t id;
        // Usually the last id, but the clock may be set back, and the counter in the ids overflows.
        const Value chunk = newId(id);
        if (m_chunkCount == 0 || chunk < m_lowestChunk)
            m_lowestChunk = chunk;
        if (m_chunkCount == 0 || chunk > m_highestChunk)
            m_highestChunk = chunk;
        bson_reinit(m_chunk.get());
        BSON_APPEND_OID(m_chunk.get(), "_id", &id);
        appendValue(m_chunk.get(), "files_id", m_info.id);
        BSON_APPEND_INT32(m_chunk.get(), "n", m_chunkCount);
        BSON_APPEND_BINARY(m_chunk.get(), "data", BSON_SUBTYPE_BINARY,
                           reinterpret_cast<const std::uint8_t*>(m_buffer.data()), count);
        ++m_chunkCount;
        m_info.length += count;
        if (m_options.progress && !m_options.progress(m_info.length))
            throw Cancelled();
        return BsonView{bson_get_data(m_chunk.get()), m_chunk.get()->len};
    }

    // Another program may have removed chunks of this upload, because they have no file document yet.
    void checkChunks()
    {
        if (m_chunkCount == 0)
            return;
        CountOptions options;
        options.readPreference = ReadPreference::Primary;
        if (m_chunks.count(ownChunks(), options) == m_chunkCount)
            return;
        ErrorDetails details;
        details.text = "the content was removed while it was being stored";
        throw ServerError(uploadFailed, details);
    }

    // Matches only chunks of this upload, because a file with the id that the caller chose may already exist.
    Value ownChunks() const
    {
        return {{"files_id", m_info.id}, {"_id", {{"$gte", m_lowestChunk}, {"$lte", m_highestChunk}}}};
    }

    void writeRecord()
    {
        m_info.uploaded = toTime(std::chrono::system_clock::now());
        OwnedBson record;
        appendValue(record.get(), "_id", m_info.id);
        BSON_APPEND_INT64(record.get(), "length", static_cast<std::int64_t>(m_info.length));
        BSON_APPEND_INT32(record.get(), "chunkSize", static_cast<std::int32_t>(m_info.chunkSize));
        BSON_APPEND_DATE_TIME(record.get(), "uploadDate", millisecondsOf(m_info.uploaded));
        BSON_APPEND_UTF8(record.get(), "filename", m_info.name.c_str());
        if (!m_info.contentType.empty())
            BSON_APPEND_UTF8(record.get(), "contentType", m_info.contentType.c_str());
        if (isSet(m_info.metadata))
            appendValue(record.get(), "metadata", m_info.metadata);
        InsertOneOptions options;
        options.writeConcern = m_writeConcern;
        m_mayHaveRecord = true;
        try
        {
            m_files.insertOne(BsonView{bson_get_data(record.get()), record.get()->len}, options);
        }
        catch (const ServerError& error)
        {
            m_mayHaveRecord = error.kind() != ErrorKind::DuplicateKey;
            throw;
        }
    }

    bool removeRecord() noexcept
    {
        try
        {
            RemoveOptions options;
            options.writeConcern = m_writeConcern;
            m_files.removeOne({{"_id", m_info.id}, {"uploadDate", m_info.uploaded}}, options);
            return true;
        }
        catch (const std::exception&)
        {
            return false;
        }
    }

    // If the removal fails, the chunks stay without a file document.
    void removeChunks() noexcept
    {
        if (m_chunkCount == 0)
            return;
        try
        {
            RemoveOptions options;
            options.writeConcern = m_writeConcern;
            m_chunks.removeMany(ownChunks(), options);
        }
        catch (const std::exception&)
        {}
    }

    Collection m_files;
    Collection m_chunks;
    std::optional<WriteConcern> m_writeConcern;
    const UploadOptions& m_options;
    std::vector<char> m_buffer;
    OwnedBson m_chunk;
    FileInfo m_info;
    std::int32_t m_chunkCount = 0;
    bool m_mayHaveRecord = false;
    Value m_lowestChunk; // of the ids
    Value m_highestChunk;
};

} // namespace

FileStore::FileStore(DataBaseClient& client, std::string database, std::string name)
    : d(new State{ClientAccess(client), std::move(database), std::move(name)})
{}

FileStore::FileStore(FileStore&& other) noexcept = default;

FileStore& FileStore::operator=(FileStore&& other) noexcept = default;

FileStore::~FileStore() = default;

FileInfo FileStore::upload(const std::string& name, std::istream& source, const UploadOptions& options)
{
    d->check();
    checkName(name, "GridFS file name");
    if (options.chunkSize == 0 || options.chunkSize > largestChunk)
        throw std::invalid_argument("Chunk size is out of range");
    checkNoZeroByte(options.contentType, "Content type");
    detail::requireReadable(source); // otherwise a file that could not be opened would be stored as an empty one
    const OutgoingBson checked(options.metadata, "Bad properties"); // throws before anything is sent
    return relabelled(uploadFailed, [&] {
        d->createIndexes();
        return Upload(d->files(), d->chunks(), d->writeConcern(), options).run(name, source);
    });
}

FileInfo FileStore::uploadFile(const std::string& name, const std::string& path, const UploadOptions& options)
{
    d->check();
    checkName(name, "GridFS file name");
    std::ifstream source(path, std::ios::binary);
    if (!source)
        throw std::system_error(errno, std::generic_category(), path);
    return upload(name, source, options);
}

FileInfo FileStore::download(const std::string& name, std::ostream& target, const DownloadOptions& options)
{
    d->check();
    checkName(name, "GridFS file name");
    return d->download({{"filename", name}}, target, options);
}

FileInfo FileStore::downloadById(const Value& id, std::ostream& target, const DownloadOptions& options)
{
    d->check();
    return d->download({{"_id", id}}, target, options);
}

std::unique_ptr<FileReader> FileStore::open(const std::string& name)
{
    d->check();
    checkName(name, "GridFS file name");
    return FileReader::Buffer::reader(d->content({{"filename", name}}));
}

std::unique_ptr<FileReader> FileStore::openById(const Value& id)
{
    d->check();
    return FileReader::Buffer::reader(d->content({{"_id", id}}));
}

std::optional<FileInfo> FileStore::find(const std::string& name)
{
    d->check();
    checkName(name, "GridFS file name");
    return d->first({{"filename", name}}, listingFailed);
}

std::vector<FileInfo> FileStore::list(const DocumentRef& filter, const ListOptions& options)
{
    d->check();
    FindOptions findOptions;
    findOptions.sort = options.sort;
    findOptions.limit = options.limit;
    findOptions.skip = options.skip;
    return d->list(filter, findOptions, listingFailed);
}

bool FileStore::removeById(const Value& id)
{
    d->check();
    return d->removeById(id);
}

std::size_t FileStore::remove(const std::string& name)
{
    d->check();
    checkName(name, "GridFS file name");
    std::size_t count = 0;
    for (const FileInfo& file : d->list({{"filename", name}}, {}, "Removing the file failed"))
        count += d->removeById(file.id) ? 1 : 0;
    return count;
}

bool FileStore::rename(const Value& id, const std::string& newName)
{
    d->check();
    checkName(newName, "GridFS file name");
    return relabelled("Renaming the file failed", [&] {
        UpdateOptions options;
        options.writeConcern = d->writeConcern();
        return d->files().updateOne({{"_id", id}}, {{"$set", {{"filename", newName}}}}, options).matched > 0;
    });
}

} // namespace dbc
