// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "counted_driver.h"

#include <mongoc/mongoc.h>

#include <cstdint>

namespace {

long live = 0;
std::size_t untilFailure = 0;      // 0: no call fails
std::size_t untilBrokenResult = 0; // 0: no result is broken
bool idsDescend = false;

bool failsNow()
{
    return untilFailure > 0 && --untilFailure == 0;
}

bool fill(bson_error_t* error)
{
    bson_set_error(error, MONGOC_ERROR_COMMAND, 7, "injected");
    return false;
}

template <typename Object>
Object* counted(Object* object)
{
    live += object ? 1 : 0;
    return object;
}

} // namespace

namespace counted_driver {

long liveObjects()
{
    return live;
}

FailingCall::FailingCall(std::size_t number)
{
    untilFailure = number;
}

FailingCall::~FailingCall()
{
    untilFailure = 0;
}

bool FailingCall::happened() const
{
    return untilFailure == 0;
}

BrokenResult::BrokenResult(std::size_t number)
{
    untilBrokenResult = number;
}

BrokenResult::~BrokenResult()
{
    untilBrokenResult = 0;
}

DescendingIds::DescendingIds()
{
    idsDescend = true;
}

DescendingIds::~DescendingIds()
{
    idsDescend = false;
}

} // namespace counted_driver

// Defines a function that never fails, and counts the object that it returns.
#define COUNTED(result, name, parameters, arguments) \
    extern "C" result* __real_##name parameters;     \
    extern "C" result* __wrap_##name parameters      \
    {                                                \
        return counted(__real_##name arguments);     \
    }

// The same for a function that can fail: runs onFailure, which sets the error, and returns null.
#define COUNTED_OR_FAILING(result, name, parameters, arguments, onFailure) \
    extern "C" result* __real_##name parameters;                           \
    extern "C" result* __wrap_##name parameters                            \
    {                                                                      \
        if (failsNow())                                                    \
        {                                                                  \
            onFailure;                                                     \
            return nullptr;                                                \
        }                                                                  \
        return counted(__real_##name arguments);                           \
    }

#define DESTROYED(type, name)                   \
    extern "C" void __real_##name(type object); \
    extern "C" void __wrap_##name(type object)  \
    {                                           \
        live -= object ? 1 : 0;                 \
        __real_##name(object);                  \
    }

#define FAILING(result, name, parameters, arguments, failure)    \
    extern "C" result __real_##name parameters;                  \
    extern "C" result __wrap_##name parameters                   \
    {                                                            \
        return failsNow() ? (failure) : __real_##name arguments; \
    }

// Defines a function that returns whether there is an error. It "fails" by returning true with an error.
#define ASKED(name, type)                                                \
    extern "C" bool __real_##name(type object, bson_error_t* error);     \
    extern "C" bool __wrap_##name(type object, bson_error_t* error)      \
    {                                                                    \
        return failsNow() ? !fill(error) : __real_##name(object, error); \
    }

COUNTED_OR_FAILING(mongoc_uri_t, mongoc_uri_new_with_error, (const char* text, bson_error_t* error), (text, error),
                   fill(error))
DESTROYED(mongoc_uri_t*, mongoc_uri_destroy)

COUNTED(mongoc_client_t, mongoc_client_new_from_uri, (const mongoc_uri_t* uri), (uri))
COUNTED_OR_FAILING(mongoc_client_t, mongoc_client_new_from_uri_with_error,
                   (const mongoc_uri_t* uri, bson_error_t* error), (uri, error), fill(error))
DESTROYED(mongoc_client_t*, mongoc_client_destroy)

COUNTED(mongoc_database_t, mongoc_client_get_database, (mongoc_client_t * client, const char* name), (client, name))
DESTROYED(mongoc_database_t*, mongoc_database_destroy)

COUNTED(mongoc_collection_t, mongoc_client_get_collection,
        (mongoc_client_t * client, const char* database, const char* name), (client, database, name))
DESTROYED(mongoc_collection_t*, mongoc_collection_destroy)

COUNTED(mongoc_cursor_t, mongoc_collection_find_with_opts,
        (mongoc_collection_t * collection, const bson_t* filter, const bson_t* options,
         const mongoc_read_prefs_t* prefs),
        (collection, filter, options, prefs))
COUNTED(mongoc_cursor_t, mongoc_collection_aggregate,
        (mongoc_collection_t * collection, mongoc_query_flags_t flags, const bson_t* pipeline, const bson_t* options,
         const mongoc_read_prefs_t* prefs),
        (collection, flags, pipeline, options, prefs))
COUNTED(mongoc_cursor_t, mongoc_cursor_new_from_command_reply_with_opts,
        (mongoc_client_t * client, bson_t* reply, const bson_t* options), (client, reply, options))
ASKED(mongoc_cursor_error, mongoc_cursor_t*)
DESTROYED(mongoc_cursor_t*, mongoc_cursor_destroy)

extern "C" bool __real_mongoc_cursor_next(mongoc_cursor_t* cursor, const bson_t** result);
extern "C" bool __wrap_mongoc_cursor_next(mongoc_cursor_t* cursor, const bson_t** result)
{
    static const bson_t withoutBytes = {};
    const bool given = __real_mongoc_cursor_next(cursor, result);
    if (given && untilBrokenResult > 0 && --untilBrokenResult == 0)
        *result = &withoutBytes;
    return given;
}

// Exported, because the linker requires it: the driver's library calls this function too.
extern "C" [[gnu::visibility("default")]] bool __wrap_bson_concat(bson_t* target, const bson_t* source);
FAILING(bool, bson_concat, (bson_t * target, const bson_t* source), (target, source), false)

FAILING(bool, mongoc_collection_insert,
        (mongoc_collection_t * collection, mongoc_insert_flags_t flags, const bson_t* document,
         const mongoc_write_concern_t* concern, bson_error_t* error),
        (collection, flags, document, concern, error), fill(error))
FAILING(bool, mongoc_collection_update,
        (mongoc_collection_t * collection, mongoc_update_flags_t flags, const bson_t* selector, const bson_t* update,
         const mongoc_write_concern_t* concern, bson_error_t* error),
        (collection, flags, selector, update, concern, error), fill(error))
FAILING(bool, mongoc_collection_remove,
        (mongoc_collection_t * collection, mongoc_remove_flags_t flags, const bson_t* selector,
         const mongoc_write_concern_t* concern, bson_error_t* error),
        (collection, flags, selector, concern, error), fill(error))

// Functions that an aggregation calls with Debian 13's driver. A failed command has an empty reply.
COUNTED_OR_FAILING(mongoc_server_description_t, mongoc_client_select_server,
                   (mongoc_client_t * client, bool forWrites, const mongoc_read_prefs_t* prefs, bson_error_t* error),
                   (client, forWrites, prefs, error), fill(error))
DESTROYED(mongoc_server_description_t*, mongoc_server_description_destroy)
COUNTED(mongoc_client_session_t, mongoc_client_start_session,
        (mongoc_client_t * client, const mongoc_session_opt_t* options, bson_error_t* error), (client, options, error))
FAILING(bool, mongoc_client_session_append,
        (const mongoc_client_session_t* session, bson_t* options, bson_error_t* error), (session, options, error),
        fill(error))
DESTROYED(mongoc_client_session_t*, mongoc_client_session_destroy)
FAILING(bool, mongoc_collection_read_command_with_opts,
        (mongoc_collection_t * collection, const bson_t* command, const mongoc_read_prefs_t* prefs,
         const bson_t* options, bson_t* reply, bson_error_t* error),
        (collection, command, prefs, options, reply, error), (bson_init(reply), fill(error)))

FAILING(bool, mongoc_database_command_simple,
        (mongoc_database_t * database, const bson_t* command, const mongoc_read_prefs_t* prefs, bson_t* reply,
         bson_error_t* error),
        (database, command, prefs, reply, error), fill(error))
FAILING(bool, mongoc_database_add_user,
        (mongoc_database_t * database, const char* user, const char* password, const bson_t* roles,
         const bson_t* customData, bson_error_t* error),
        (database, user, password, roles, customData, error), fill(error))
FAILING(bool, mongoc_database_remove_user, (mongoc_database_t * database, const char* user, bson_error_t* error),
        (database, user, error), fill(error))

COUNTED_OR_FAILING(mongoc_gridfs_t, mongoc_client_get_gridfs,
                   (mongoc_client_t * client, const char* database, const char* prefix, bson_error_t* error),
                   (client, database, prefix, error), fill(error))
DESTROYED(mongoc_gridfs_t*, mongoc_gridfs_destroy)
COUNTED_OR_FAILING(mongoc_gridfs_file_t, mongoc_gridfs_find_one_by_filename,
                   (mongoc_gridfs_t * store, const char* name, bson_error_t* error), (store, name, error), fill(error))
COUNTED_OR_FAILING(mongoc_gridfs_file_t, mongoc_gridfs_create_file_from_stream,
                   (mongoc_gridfs_t * store, mongoc_stream_t* stream, mongoc_gridfs_file_opt_t* options),
                   (store, stream, options), )
FAILING(bool, mongoc_gridfs_file_save, (mongoc_gridfs_file_t * file), (file), false)
FAILING(bool, mongoc_gridfs_file_remove, (mongoc_gridfs_file_t * file, bson_error_t* error), (file, error), fill(error))
FAILING(int32_t, mongoc_gridfs_file_get_chunk_size, (mongoc_gridfs_file_t * file), (file), 0)
FAILING(int, mongoc_gridfs_file_seek, (mongoc_gridfs_file_t * file, int64_t delta, int whence), (file, delta, whence),
        -1)
DESTROYED(mongoc_gridfs_file_t*, mongoc_gridfs_file_destroy)
COUNTED(mongoc_gridfs_file_list_t, mongoc_gridfs_find_with_opts,
        (mongoc_gridfs_t * store, const bson_t* filter, const bson_t* options), (store, filter, options))
COUNTED_OR_FAILING(mongoc_gridfs_file_t, mongoc_gridfs_file_list_next, (mongoc_gridfs_file_list_t * list), (list), )
ASKED(mongoc_gridfs_file_list_error, mongoc_gridfs_file_list_t*)
DESTROYED(mongoc_gridfs_file_list_t*, mongoc_gridfs_file_list_destroy)

COUNTED_OR_FAILING(mongoc_stream_t, mongoc_stream_gridfs_new, (mongoc_gridfs_file_t * file), (file), )
COUNTED_OR_FAILING(mongoc_stream_t, mongoc_stream_file_new_for_path, (const char* path, int flags, int mode),
                   (path, flags, mode), )
FAILING(ssize_t, mongoc_stream_readv,
        (mongoc_stream_t * stream, mongoc_iovec_t* vectors, size_t count, size_t minimum, int32_t timeout),
        (stream, vectors, count, minimum, timeout), -1)
DESTROYED(mongoc_stream_t*, mongoc_stream_destroy)

// The complement of each byte reverses the order. Visible, because the driver calls the function too.
extern "C" void __real_bson_oid_init(bson_oid_t* id, bson_context_t* context);
extern "C" [[gnu::visibility("default")]] void __wrap_bson_oid_init(bson_oid_t* id, bson_context_t* context)
{
    __real_bson_oid_init(id, context);
    if (!idsDescend)
        return;
    for (std::uint8_t& byte : id->bytes)
        byte = static_cast<std::uint8_t>(~byte);
}
