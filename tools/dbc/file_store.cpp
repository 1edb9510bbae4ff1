#include "file_store.h"

#include "dbc/files.h"
#include "failure.h"
#include "interrupt.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <vector>

namespace {

// The driver writes "<store>.chunks" into 128 bytes and ends the process if the name is longer.
constexpr std::size_t longestStore = 119;

// "DATABASE.STORE.files", from two names that must stay two.
std::string filesCollection(const std::string& database, const std::string& store)
{
    if (database.empty() || database.find('.') != std::string::npos)
        throw Failure(UsageError, "the name of a database is not empty and holds no dot");
    if (store.empty() || store.size() > longestStore)
        throw Failure(UsageError, "the name of a store has 1 to 119 bytes");
    return database + "." + store + ".files";
}

std::uint64_t lengthOf(std::FILE* source)
{
    struct stat status = {};
    return ::fstat(::fileno(source), &status) == 0 && S_ISREG(status.st_mode)
               ? static_cast<std::uint64_t>(status.st_size)
               : 0;
}

[[noreturn]] void throwFileError(const GridFsFileHandle& file)
{
    bson_error_t error{};
    mongoc_gridfs_file_error(file.get(), &error);
    throwDriverError("Error occurred while save gridFS file operation", error);
}

void copy(std::FILE* source, const GridFsFileHandle& file, Progress& progress)
{
    std::vector<char> piece(static_cast<std::size_t>(mongoc_gridfs_file_get_chunk_size(file.get())));
    std::uint64_t bytes = 0;
    for (;;)
    {
        const std::size_t count = std::fread(piece.data(), 1, piece.size(), source);
        throwIfInterrupted();
        if (std::ferror(source) != 0)
            throw Failure(UsageError, std::string("cannot read the local file: ") + std::strerror(errno));
        if (count == 0)
            return;
        mongoc_iovec_t vector{piece.data(), count};
        if (mongoc_gridfs_file_writev(file.get(), &vector, 1, 0) != static_cast<ssize_t>(count))
            throwFileError(file);
        progress.show(bytes += count);
    }
}

bool isAcknowledged(mongoc_collection_t* collection)
{
    return mongoc_write_concern_is_acknowledged(mongoc_collection_get_write_concern(collection));
}

// All chunks are there: "files rm --partial" of somebody else may have removed some, and the driver has then saved a
// new record for the rest.
void checkChunks(const GridFsHandle& gridFs, const GridFsFileHandle& file)
{
    OwnedBson query;
    BSON_APPEND_VALUE(query.get(), "files_id", mongoc_gridfs_file_get_id(file.get()));
    bson_error_t error{};
    const std::int64_t count = mongoc_collection_count_documents(mongoc_gridfs_get_chunks(gridFs.get()), query.get(),
                                                                 nullptr, nullptr, nullptr, &error);
    if (count < 0)
        throwDriverError("Count error.", error);
    const std::int64_t size = mongoc_gridfs_file_get_chunk_size(file.get());
    if (count != (mongoc_gridfs_file_get_length(file.get()) + size - 1) / size)
        throw Failure(ServerRefused, "the file was removed while it was being stored");
}

void rename(const GridFsHandle& gridFs, const GridFsFileHandle& file, const std::string& name)
{
    mongoc_collection_t* const files = mongoc_gridfs_get_files(gridFs.get());
    OwnedBson query;
    BSON_APPEND_VALUE(query.get(), "_id", mongoc_gridfs_file_get_id(file.get()));
    OwnedBson update;
    bson_t fields;
    BSON_APPEND_DOCUMENT_BEGIN(update.get(), "$set", &fields);
    BSON_APPEND_UTF8(&fields, "filename", name.c_str());
    bson_append_document_end(update.get(), &fields);
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_collection_update_one(files, query.get(), update.get(), nullptr, reply.get(), &error))
        throwDriverError("Updating failed", error);
    bson_iter_t iter;
    if (isAcknowledged(files) &&
        !(bson_iter_init_find(&iter, reply.get(), "matchedCount") && bson_iter_as_int64(&iter) == 1))
        throw Failure(ServerRefused, "the file was removed while it was being stored");
}

// The caller is on the way out with the error that matters.
void removePart(const GridFsFileHandle& file, const std::string& partialName)
{
    bson_error_t error{};
    if (!mongoc_gridfs_file_remove(file.get(), &error))
        std::cerr << "dbc: what was stored so far cannot be removed now: " << error.message << "\n"
                  << "dbc: it may be left as " << partialName << "; files rm --partial removes it\n";
}

} // namespace

FileStore::FileStore(const std::string& uri, const std::string& database, const std::string& store)
    : m_database(database), m_store(store), m_files(uri, filesCollection(database, store))
{}

std::uint64_t FileStore::lengthOf(const std::string& name)
{
    OwnedBson query;
    BSON_APPEND_UTF8(query.get(), "filename", name.c_str());
    RawCollection::FindOptions options;
    options.limit = 1;
    std::uint64_t length = 0;
    m_files.find(*query.get(), options, [&length](const RawCollection::Document& document) {
        bson_iter_t iter;
        if (bson_iter_init_find(&iter, document.bson, "length"))
            length = static_cast<std::uint64_t>(bson_iter_as_int64(&iter));
    });
    return length;
}

GridFsHandle FileStore::open() const
{
    bson_error_t error{};
    GridFsHandle gridFs(mongoc_client_get_gridfs(m_files.client(), m_database.c_str(), m_store.c_str(), &error));
    if (!gridFs)
        throwDriverError("Error occurred while mongoc_client_get_gridfs operation", error);
    return gridFs;
}

void FileStore::upload(std::FILE* source, const std::string& name, bool quiet)
{
    const InterruptWatch watch;
    const GridFsHandle gridFs = open();
    std::string partialName = dbc::partialFileName(name, DataBaseClient().createId()); // the options are not const
    mongoc_gridfs_file_opt_t options{};
    options.filename = partialName.data();
    const GridFsFileHandle file(mongoc_gridfs_create_file(gridFs.get(), &options));
    try
    {
        {
            Progress progress(name, ::lengthOf(source), quiet, Progress::Unit::Bytes);
            copy(source, file, progress);
        }
        if (!mongoc_gridfs_file_save(file.get()))
            throwFileError(file);
        checkChunks(gridFs, file);
        throwIfInterrupted();
        rename(gridFs, file, name);
    }
    catch (...)
    {
        removePart(file, partialName);
        throw;
    }
}

RawCollection::WriteResult FileStore::remove(const std::function<bool(const std::string& name)>& isAccepted)
{
    OwnedBson fields;
    BSON_APPEND_INT32(fields.get(), "filename", 1);
    RawCollection::FindOptions options;
    options.projection = fields.get();
    OwnedBson all;
    std::vector<BsonPointer> accepted;
    m_files.find(*all.get(), options, [&](const RawCollection::Document& document) {
        bson_iter_t iter;
        if (bson_iter_init_find(&iter, document.bson, "filename") && BSON_ITER_HOLDS_UTF8(&iter) &&
            isAccepted(bson_iter_utf8(&iter, nullptr)))
            accepted.emplace_back(bson_copy(document.bson));
    });

    const CollectionHandle chunks(
        mongoc_client_get_collection(m_files.client(), m_database.c_str(), (m_store + ".chunks").c_str()));
    RawCollection::WriteResult result;
    for (const BsonPointer& record : accepted)
    {
        // By id and name: an upload that has got its final name in the meantime is not removed any more.
        const auto removal = m_files.remove(*record.get());
        result.isAcknowledged = removal.isAcknowledged;
        result.removed += removal.removed;
        if (removal.isAcknowledged && removal.removed == 0)
            continue;
        bson_iter_t iter;
        if (!bson_iter_init_find(&iter, record.get(), "_id"))
            continue; // a query without it would match every chunk
        OwnedBson query;
        BSON_APPEND_VALUE(query.get(), "files_id", bson_iter_value(&iter));
        bson_error_t error{};
        if (!mongoc_collection_delete_many(chunks.get(), query.get(), nullptr, nullptr, &error))
            throwDriverError("Error occurred while remove gridFS file operation", error);
    }
    return result;
}
