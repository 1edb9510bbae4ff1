// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_handles.h"

#include <mongoc/mongoc.h>

#include <memory>

/// Handles for the objects of libmongoc. Only this file calls their destroy functions.

// Closes the stream first, because the driver's destroy function does not close descriptor 0.
inline void closeAndDestroyStream(mongoc_stream_t* stream) noexcept
{
    mongoc_stream_close(stream);
    mongoc_stream_destroy(stream);
}

using UriHandle = std::unique_ptr<mongoc_uri_t, DestroyWith<mongoc_uri_destroy>>;
using ClientHandle = std::unique_ptr<mongoc_client_t, DestroyWith<mongoc_client_destroy>>;
using DatabaseHandle = std::unique_ptr<mongoc_database_t, DestroyWith<mongoc_database_destroy>>;
using CollectionHandle = std::unique_ptr<mongoc_collection_t, DestroyWith<mongoc_collection_destroy>>;
using BulkHandle = std::unique_ptr<mongoc_bulk_operation_t, DestroyWith<mongoc_bulk_operation_destroy>>;
using SessionOptionsHandle = std::unique_ptr<mongoc_session_opt_t, DestroyWith<mongoc_session_opts_destroy>>;
using SessionHandle = std::unique_ptr<mongoc_client_session_t, DestroyWith<mongoc_client_session_destroy>>;
using ServerHandle = std::unique_ptr<mongoc_server_description_t, DestroyWith<mongoc_server_description_destroy>>;

// Owns the session of a cursor, because the session must end after the cursor.
struct DestroyCursor
{
    SessionHandle session;
    void operator()(mongoc_cursor_t* cursor) const noexcept { mongoc_cursor_destroy(cursor); }
};
using CursorHandle = std::unique_ptr<mongoc_cursor_t, DestroyCursor>;

using ReadPreferenceHandle = std::unique_ptr<mongoc_read_prefs_t, DestroyWith<mongoc_read_prefs_destroy>>;
using FindAndModifyHandle =
    std::unique_ptr<mongoc_find_and_modify_opts_t, DestroyWith<mongoc_find_and_modify_opts_destroy>>;
using GridFsHandle = std::unique_ptr<mongoc_gridfs_t, DestroyWith<mongoc_gridfs_destroy>>;
using GridFsFileHandle = std::unique_ptr<mongoc_gridfs_file_t, DestroyWith<mongoc_gridfs_file_destroy>>;
using GridFsFileListHandle = std::unique_ptr<mongoc_gridfs_file_list_t, DestroyWith<mongoc_gridfs_file_list_destroy>>;
using GridFsStreamHandle = std::unique_ptr<mongoc_stream_t, DestroyWith<mongoc_stream_destroy>>;
using FileStreamHandle = std::unique_ptr<mongoc_stream_t, DestroyWith<closeAndDestroyStream>>;
