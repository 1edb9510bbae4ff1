// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations that return documents: find, read, aggregate.

#include "bson_to_properties.h"
#include "database_client/cursors.h"
#include "database_client/database_client_d.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"
#include "object_properties.h"

#include <cstring>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

// The driver aborts for a "$query" that is not a document.
bool isQueryForm(const bson_t* query)
{
    bson_iter_t iter;
    bool isForm = bson_iter_init(&iter, query);
    while (isForm && bson_iter_next(&iter))
        isForm = std::strcmp(bson_iter_key(&iter), "$query") != 0 || BSON_ITER_HOLDS_DOCUMENT(&iter);
    return isForm;
}

void appendResult(const bson_t* bson, std::list<ObjectProperties*>& results)
{
    auto document = std::make_unique<ObjectProperties>();
    if (!BsonToProperties::convert(bson, document.get()))
        throw std::invalid_argument("Bad results");
    if (document->isEmpty())
        return;
    results.push_back(document.get());
    static_cast<void>(document.release()); // only now: push_back may throw, and the handle then still owns the document
}

// Appends the documents of the cursor. After an error, sets @p error and returns false.
bool appendResults(const CursorHandle& cursor, std::list<ObjectProperties*>& results, bson_error_t& error)
{
    const bson_t* bson = nullptr;
    while (mongoc_cursor_more(cursor.get()) && mongoc_cursor_next(cursor.get(), &bson))
        appendResult(bson, results);
    return !mongoc_cursor_error(cursor.get(), &error);
}

} // namespace

void DataBaseClientPrivate::find(const std::string& database, const std::string& collection,
                                 const ObjectProperties& query, const ObjectProperties& projection,
                                 std::list<ObjectProperties*>& results, int limit, int skip)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(collection, "Collection name");

    OwnedBson condition;
    toBson(query, condition, "Bad condition");
    if (!isQueryForm(condition.get()))
        throw std::invalid_argument("Bad condition");
    OwnedBson fields;
    if (!projection.isEmpty())
        toBson(projection, fields, "Bad propjection");

    const CollectionHandle source = openCollection(database, collection);
    bson_error_t error{};
    const CursorHandle cursor = openFind(source, condition, fields, limit, skip, error);
    if (!cursor || !appendResults(cursor, results, error))
        throwDriverError("Find error.", error);
}

void DataBaseClientPrivate::read(const std::string& database, const std::string& collection,
                                 const ObjectProperties& query, std::list<ObjectProperties*>& results)
{
    find(database, collection, query, ObjectProperties(), results, 0, 0);
}

void DataBaseClientPrivate::aggregate(const std::string& database, const std::string& collection,
                                      const ObjectProperties& pipeline, std::list<ObjectProperties*>& results)
{
    check_connection();
    check_argument(database, "Database name");
    check_argument(collection, "Collection name");

    OwnedBson stages;
    toBson(pipeline, stages, "Bad pipeline");

    const CollectionHandle source = openCollection(database, collection);
    OwnedBson reply;
    bson_error_t error{};
    const CursorHandle cursor = openAggregation(m_client.get(), source, stages.get(), nullptr, nullptr, reply, error);
    if (!cursor || !appendResults(cursor, results, error))
        throwDriverError("Aggregation error.", error);
}
