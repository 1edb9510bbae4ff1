// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client/cursors.h"

#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace {

// Makes a view of a nested document or array. An output parameter, because a bson_t has pointers into itself.
void view(const bson_iter_t& nested, bson_t& nestedView)
{
    std::uint32_t size = 0;
    const std::uint8_t* data = nullptr;
    if (BSON_ITER_HOLDS_ARRAY(&nested))
        bson_iter_array(&nested, &size, &data);
    else
        bson_iter_document(&nested, &size, &data);
    bson_init_static(&nestedView, data, size);
}

// Returns the option of the find command for a query modifier such as "$orderby".
const char* optionOf(const char* modifier)
{
    if (std::strcmp(modifier, "$orderby") == 0)
        return "sort";
    if (std::strcmp(modifier, "$showDiskLoc") == 0)
        return "showRecordId";
    return modifier + 1;
}

// Splits {"$query": ..., modifiers} into filter and options. A document without "$query" is used as the filter. Returns
// false and sets the error if "$query" is mixed with a key that is not a modifier.
bool split(const bson_t* query, bson_t& condition, bson_t* options, bson_error_t& error)
{
    bson_init_static(&condition, bson_get_data(query), query->len);
    bson_iter_t iter;
    if (!bson_has_field(query, "$query") || !bson_iter_init(&iter, query))
        return true;
    while (bson_iter_next(&iter))
    {
        const char* const key = bson_iter_key(&iter);
        if (key[0] != '$')
        {
            bson_set_error(&error, MONGOC_ERROR_CURSOR, MONGOC_ERROR_CURSOR_INVALID_CURSOR,
                           "Cannot mix $query with non-dollar field '%s'", key);
            return false;
        }
        if (std::strcmp(key, "$query") == 0)
            view(iter, condition);
        else
            bson_append_iter(options, optionOf(key), -1, &iter);
    }
    return true;
}

// Replaces the "skip" of the query if it is an int64. The driver does the same with the limit.
void setSkip(bson_t* options, std::uint32_t skip)
{
    bson_iter_t present;
    if (skip == 0)
        return;
    if (!bson_iter_init_find(&present, options, "skip"))
        BSON_APPEND_INT64(options, "skip", skip);
    else if (BSON_ITER_HOLDS_INT64(&present))
        bson_iter_overwrite_int64(&present, skip);
}

} // namespace

CursorHandle openFind(const CollectionHandle& collection, const OwnedBson& query, const OwnedBson& fields, int limit,
                      int skip, bson_error_t& error)
{
    bson_t condition;
    OwnedBson options;
    if (!split(query.get(), condition, options.get(), error))
        return nullptr;
    if (!bson_empty(fields.get()))
        BSON_APPEND_DOCUMENT(options.get(), "projection", fields.get());
    setSkip(options.get(), static_cast<std::uint32_t>(skip));
    CursorHandle cursor(mongoc_collection_find_with_opts(collection.get(), &condition, options.get(), nullptr));
    // Set here and not in the options: the driver converts a negative limit to two options.
    if (limit != 0)
        mongoc_cursor_set_limit(cursor.get(), limit);
    return cursor;
}

namespace {

bool endsInWriteStage(const bson_t& stages)
{
    bson_iter_t stage;
    bool writes = false;
    for (bson_iter_init(&stage, &stages); bson_iter_next(&stage);)
    {
        writes = false;
        if (!BSON_ITER_HOLDS_DOCUMENT(&stage))
            continue;
        bson_t operators;
        view(stage, operators);
        writes = bson_has_field(&operators, "$out") || bson_has_field(&operators, "$merge");
    }
    return writes;
}

SessionHandle startSession(mongoc_client_t* client)
{
    const SessionOptionsHandle options(mongoc_session_opts_new());
    mongoc_session_opts_set_causal_consistency(options.get(),
                                               false); // as in the sessions that the driver starts itself
    return SessionHandle(mongoc_client_start_session(client, options.get(), nullptr)); // null: not supported
}

// The batch size belongs in "cursor", and the write concern in the options of the driver's call. All other options are
// fields of the command.
void appendOptions(const bson_t* options, bson_t* command, bson_t* cursor, bson_t* callOptions)
{
    bson_iter_t iter;
    if (!options || !bson_iter_init(&iter, options))
        return;
    while (bson_iter_next(&iter))
    {
        const char* const key = bson_iter_key(&iter);
        bson_t* const target = std::strcmp(key, "batchSize") == 0      ? cursor
                               : std::strcmp(key, "writeConcern") == 0 ? callOptions
                                                                       : command;
        bson_append_iter(target, key, -1, &iter);
    }
}

// Runs the aggregation as a command and creates a cursor from the reply, for the same server and session.
CursorHandle openAggregationByCommand(mongoc_client_t* client, const CollectionHandle& collection,
                                      const bson_t* pipeline, const bson_t* aggregationOptions,
                                      const mongoc_read_prefs_t* readPreference, OwnedBson& reply, bson_error_t& error)
{
    bson_iter_t list;
    const bool isNamed = bson_iter_init_find(&list, pipeline, "pipeline") && BSON_ITER_HOLDS_ARRAY(&list);
    bson_t stages;
    if (isNamed)
        view(list, stages);
    else
        bson_init_static(&stages, bson_get_data(pipeline), pipeline->len);

    OwnedBson command;
    OwnedBson cursorOptions;
    OwnedBson options;
    BSON_APPEND_UTF8(command.get(), "aggregate", mongoc_collection_get_name(collection.get()));
    BSON_APPEND_ARRAY(command.get(), "pipeline", &stages);
    appendOptions(aggregationOptions, command.get(), cursorOptions.get(), options.get());
    BSON_APPEND_DOCUMENT(command.get(), "cursor", cursorOptions.get());

    SessionHandle session;
    bool done = false;
    if (endsInWriteStage(stages))
    {
        // Sent to the primary with the write concern. The reply has no results.
        done = mongoc_collection_read_write_command_with_opts(collection.get(), command.get(), readPreference,
                                                              options.get(), reply.get(), &error);
    }
    else
    {
        const ServerHandle server(mongoc_client_select_server(
            client, false, readPreference ? readPreference : mongoc_collection_get_read_prefs(collection.get()),
            &error));
        if (!server)
            return nullptr;
        BSON_APPEND_INT32(options.get(), "serverId",
                          static_cast<std::int32_t>(mongoc_server_description_id(server.get())));
        session = startSession(client);
        if (session && !mongoc_client_session_append(session.get(), options.get(), &error))
            return nullptr;
        done = mongoc_collection_read_command_with_opts(collection.get(), command.get(), readPreference, options.get(),
                                                        reply.get(), &error);
    }
    if (!done)
        return nullptr;
    bson_iter_t batchSize;
    if (bson_iter_init_find(&batchSize, cursorOptions.get(), "batchSize"))
        bson_append_iter(options.get(), nullptr, -1, &batchSize);
    CursorHandle cursor(mongoc_cursor_new_from_command_reply_with_opts(client, reply.get(), options.get()),
                        DestroyCursor{std::move(session)});
    bson_init(reply.get()); // the cursor owns its content now
    return cursor;
}

// libmongoc 1.30.4 of Debian 13 checks "database.collection" as a database name. It rejects every aggregation and sends
// nothing. The server rejects a name that is really invalid.
bool isRefusedName(const bson_error_t& error)
{
    return error.domain == MONGOC_ERROR_NAMESPACE && error.code == MONGOC_ERROR_NAMESPACE_INVALID;
}

} // namespace

CursorHandle openAggregation(mongoc_client_t* client, const CollectionHandle& collection, const bson_t* pipeline,
                             const bson_t* options, const mongoc_read_prefs_t* readPreference, OwnedBson& reply,
                             bson_error_t& error)
{
    CursorHandle cursor(
        mongoc_collection_aggregate(collection.get(), MONGOC_QUERY_NONE, pipeline, options, readPreference));
    if (!mongoc_cursor_error(cursor.get(), &error))
        return cursor;
    if (!isRefusedName(error))
        return nullptr;
    return openAggregationByCommand(client, collection, pipeline, options, readPreference, reply, error);
}
