#include "raw_collection.h"

#include "database_client/cursors.h"
#include "dbc/errors.h"
#include "failure.h"
#include "interrupt.h"

#include <cstdint>
#include <optional>
#include <stdexcept>

void throwDriverError(const std::string& message, const bson_error_t& error)
{
    std::string text = message;
    if (error.message[0] != '\0')
        text.append(": ").append(error.message);
    if (error.code != 0)
        text.append("(code: ").append(std::to_string(static_cast<int>(error.code))).append(")");
    throw std::runtime_error(text);
}

RawCollection::RawCollection(const std::string& uri, const std::string& fullName)
{
    DataBaseClient().isConnected(); // the first client of the process starts the driver
    const UriHandle parsed = parsedConnectionString(uri);
    bson_error_t error{};
    m_client.reset(mongoc_client_new_from_uri_with_error(parsed.get(), &error));
    if (!m_client)
        throw std::runtime_error("Connection failed");
    std::string collection;
    parseOldCollectionName(fullName, m_database, collection);
    if (m_database.empty() || collection.empty() || fullName.find('.') == std::string::npos)
        throw Failure(UsageError, "name a collection as DATABASE.COLLECTION");
    m_collection.reset(mongoc_client_get_collection(m_client.get(), m_database.c_str(), collection.c_str()));
}

std::uint64_t RawCollection::visitAll(const CursorHandle& cursor, const char* message, const Visit& visit)
{
    const InterruptWatch watch;
    std::uint64_t count = 0;
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor.get(), &document))
    {
        throwIfInterrupted();
        visit({document});
        ++count;
    }
    bson_error_t error{};
    if (mongoc_cursor_error(cursor.get(), &error))
        throwDriverError(message, error);
    return count;
}

std::uint64_t RawCollection::find(const bson_t& query, const FindOptions& options, const Visit& visit)
{
    OwnedBson driverOptions;
    if (options.sort)
        BSON_APPEND_DOCUMENT(driverOptions.get(), "sort", options.sort);
    if (options.projection)
        BSON_APPEND_DOCUMENT(driverOptions.get(), "projection", options.projection);
    if (options.limit > 0)
        BSON_APPEND_INT64(driverOptions.get(), "limit", options.limit);
    if (options.skip > 0)
        BSON_APPEND_INT64(driverOptions.get(), "skip", options.skip);
    const CursorHandle cursor(
        mongoc_collection_find_with_opts(m_collection.get(), &query, driverOptions.get(), nullptr));
    return visitAll(cursor, "Find error.", visit);
}

std::uint64_t RawCollection::aggregate(const bson_t& pipeline, const Visit& visit)
{
    bson_error_t error{};
    const CursorHandle cursor = openAggregation(m_client.get(), m_collection, &pipeline, nullptr, nullptr, error);
    if (!cursor)
        throwDriverError("Aggregation error.", error);
    return visitAll(cursor, "Aggregation error.", visit);
}

std::uint64_t RawCollection::count(const bson_t& query)
{
    bson_error_t error{};
    const std::int64_t count =
        mongoc_collection_count_documents(m_collection.get(), &query, nullptr, nullptr, nullptr, &error);
    if (count < 0)
        throwDriverError("Count error.", error);
    return static_cast<std::uint64_t>(count);
}

namespace {

// True when every write error of the reply is a key that is there already.
bool hasOnlyDuplicates(const bson_t* reply)
{
    bson_iter_t iter;
    bson_iter_t errors;
    if (!bson_iter_init_find(&iter, reply, "writeErrors") || !bson_iter_recurse(&iter, &errors))
        return false;
    bool any = false;
    while (bson_iter_next(&errors))
    {
        bson_iter_t code;
        if (!bson_iter_recurse(&errors, &code) || !bson_iter_find(&code, "code") || bson_iter_as_int64(&code) != 11000)
            return false;
        any = true;
    }
    return any;
}

std::uint64_t countIn(const OwnedBson& reply, const char* key)
{
    bson_iter_t iter;
    return bson_iter_init_find(&iter, reply.get(), key) ? static_cast<std::uint64_t>(bson_iter_as_int64(&iter)) : 0;
}

bool isAcknowledged(const CollectionHandle& collection)
{
    return mongoc_write_concern_is_acknowledged(mongoc_collection_get_write_concern(collection.get()));
}

bool hasOperators(const bson_t& update)
{
    bson_iter_t iter;
    return bson_iter_init(&iter, &update) && bson_iter_next(&iter) && bson_iter_key(&iter)[0] == '$';
}

} // namespace

RawCollection::WriteResult RawCollection::insert(const std::vector<BsonPointer>& documents, bool skipDuplicates)
{
    OwnedBson options;
    BSON_APPEND_BOOL(options.get(), "ordered", !skipDuplicates);
    const BulkHandle bulk(mongoc_collection_create_bulk_operation_with_opts(m_collection.get(), options.get()));
    bson_error_t error{};
    for (const BsonPointer& document : documents)
    {
        if (!mongoc_bulk_operation_insert_with_opts(bulk.get(), document.get(), nullptr, &error))
            throwDriverError("Error occurred while insert operation", error);
    }
    OwnedBson reply;
    if (mongoc_bulk_operation_execute(bulk.get(), reply.get(), &error) == 0 &&
        !(skipDuplicates && hasOnlyDuplicates(reply.get())))
        throwDriverError("Error occurred while insert operation", error);
    WriteResult result;
    result.isAcknowledged = isAcknowledged(m_collection);
    result.inserted = countIn(reply, "nInserted");
    return result;
}

RawCollection::WriteResult RawCollection::update(const bson_t& query, const bson_t& update, UpdateMode mode)
{
    OwnedBson options;
    if (mode == UpdateMode::FirstOrInsert)
        BSON_APPEND_BOOL(options.get(), "upsert", true);
    const auto call = mode == UpdateMode::All ? &mongoc_collection_update_many
                      : hasOperators(update)  ? &mongoc_collection_update_one
                                              : &mongoc_collection_replace_one;
    OwnedBson reply;
    bson_error_t error{};
    if (!call(m_collection.get(), &query, &update, options.get(), reply.get(), &error))
        throwDriverError("Updating failed", error);
    WriteResult result;
    result.isAcknowledged = isAcknowledged(m_collection);
    result.inserted = countIn(reply, "upsertedCount");
    result.matched = countIn(reply, "matchedCount");
    result.modified = countIn(reply, "modifiedCount");
    return result;
}

RawCollection::WriteResult RawCollection::remove(const bson_t& query)
{
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_collection_delete_many(m_collection.get(), &query, nullptr, reply.get(), &error))
        throwDriverError("Error occurred while remove operation", error);
    WriteResult result;
    result.isAcknowledged = isAcknowledged(m_collection);
    result.removed = countIn(reply, "deletedCount");
    return result;
}

void RawCollection::command(const bson_t& command, OwnedBson& reply)
{
    bson_error_t error{};
    if (!mongoc_client_command_simple(m_client.get(), m_database.c_str(), &command, nullptr, reply.get(), &error))
        throwDriverError("Command error.", error);
}
