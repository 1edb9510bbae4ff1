#pragma once

#include "driver/mongoc_handles.h"

/// Opens a cursor over the documents that match a query.
/// @param query   a condition, or {"$query": condition, "$orderby": ..., ...}. A "$query" must be a document
/// @param fields  the projection; empty for whole documents
/// @param limit   0 is no limit; a negative limit asks for a single batch
/// @return a cursor, or null with @p error set. The cursor may hold an error as well
CursorHandle openFind(const CollectionHandle& collection, const OwnedBson& query, const OwnedBson& fields, int limit,
                      int skip, bson_error_t& error);

/// Opens a cursor over the results of an aggregation.
/// @param pipeline        {"pipeline": [stages]}, or the stages with their numbers as keys
/// @param options         as mongoc_collection_aggregate takes them; null for none
/// @param readPreference  null for that of the connection string
/// @return a cursor, or null with @p error set. The cursor may hold an error as well
CursorHandle openAggregation(mongoc_client_t* client, const CollectionHandle& collection, const bson_t* pipeline,
                             const bson_t* options, const mongoc_read_prefs_t* readPreference, bson_error_t& error);
