// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

/// Opens a cursor over the documents that match a query.
/// @param query   a filter, or {"$query": filter, "$orderby": ..., ...}. A "$query" must be a document
/// @param fields  the projection; empty for all fields
/// @param limit   0 means no limit; a negative limit requests a single batch
/// @return a cursor, or null with @p error set. The cursor may have an error as well
CursorHandle openFind(const CollectionHandle& collection, const OwnedBson& query, const OwnedBson& fields, int limit,
                      int skip, bson_error_t& error);

/// Opens a cursor over the results of an aggregation.
/// @param pipeline        {"pipeline": [stages]}, or the stages with their numbers as keys
/// @param options         as for mongoc_collection_aggregate; may be null
/// @param readPreference  null for the read preference of the connection string
/// @param reply           set to the server's reply if it rejects the aggregation
/// @return a cursor, or null with @p error set. The cursor may have an error as well
CursorHandle openAggregation(mongoc_client_t* client, const CollectionHandle& collection, const bson_t* pipeline,
                             const bson_t* options, const mongoc_read_prefs_t* readPreference, OwnedBson& reply,
                             bson_error_t& error);
