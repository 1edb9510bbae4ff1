// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations on a collection as a whole: indexes, drop, rename.

#include "collection/bson_reader.h"
#include "collection/bson_value.h"
#include "collection/collection_state.h"
#include "collection/cursor_state.h"
#include "collection/driver_error.h"
#include "collection/names.h"
#include "collection/options_bson.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace dbc {
namespace {

constexpr int namespaceNotFound = 26;

std::string textOf(IndexType type)
{
    switch (type)
    {
    case IndexType::Ascending:
        return "1";
    case IndexType::Descending:
        return "-1";
    case IndexType::Text:
        return "text";
    case IndexType::Hashed:
        return "hashed";
    case IndexType::Sphere2d:
        return "2dsphere";
    }
    return "";
}

void appendKeys(bson_t* bson, const std::vector<IndexKey>& keys)
{
    OwnedBson fields;
    for (const IndexKey& key : keys)
    {
        checkNoZeroByte(key.field, "Field name");
        if (key.type == IndexType::Ascending || key.type == IndexType::Descending)
            BSON_APPEND_INT32(fields.get(), key.field.c_str(), key.type == IndexType::Ascending ? 1 : -1);
        else
            BSON_APPEND_UTF8(fields.get(), key.field.c_str(), textOf(key.type).c_str());
    }
    BSON_APPEND_DOCUMENT(bson, "key", fields.get());
}

// Makes the default name as all drivers do: fields and directions, separated by "_".
std::string nameOf(const std::vector<IndexKey>& keys)
{
    std::string name;
    for (const IndexKey& key : keys)
        name.append(name.empty() ? "" : "_").append(key.field).append("_").append(textOf(key.type));
    return name;
}

bool flagField(const bson_t* bson, const char* key)
{
    bson_iter_t iter;
    return findField(bson, key, &iter) && bson_iter_as_bool(&iter);
}

} // namespace

std::string Collection::createIndex(const std::vector<IndexKey>& keys, const IndexOptions& options)
{
    const CollectionHandle target = d->open();
    if (keys.empty())
        throw std::invalid_argument("Index keys are empty");
    checkNoZeroByte(options.name, "Index name");

    const std::string name = options.name.empty() ? nameOf(keys) : options.name;
    DriverOptions index;
    appendKeys(index.bson(), keys);
    BSON_APPEND_UTF8(index.bson(), "name", name.c_str());
    index.addFlag("unique", options.unique)
        .addFlag("sparse", options.sparse)
        .add("partialFilterExpression", options.partialFilter)
        .add("collation", options.collation);
    if (options.expireAfter)
        BSON_APPEND_INT64(index.bson(), "expireAfterSeconds", options.expireAfter->count());

    OwnedBson indexes;
    BSON_APPEND_DOCUMENT(indexes.get(), "0", index.get());
    OwnedBson command;
    BSON_APPEND_UTF8(command.get(), "createIndexes", d->name.c_str());
    BSON_APPEND_ARRAY(command.get(), "indexes", indexes.get());
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_collection_write_command_with_opts(target.get(), command.get(), nullptr, reply.get(), &error))
        throwServerError("Creating the index failed", error, reply.get());
    return name;
}

std::vector<IndexInfo> Collection::indexes()
{
    const CollectionHandle source = d->open();
    Cursor cursor = CursorAccess::open(d->client.connected(),
                                       CursorHandle(mongoc_collection_find_indexes_with_opts(source.get(), nullptr)),
                                       "Listing indexes failed");
    std::vector<IndexInfo> indexes;
    while (cursor.next())
    {
        const BsonView view = cursor.bson();
        bson_t bson;
        bson_iter_t keys;
        IndexInfo index;
        if (!bson_init_static(&bson, view.data, view.size))
            continue;
        index.name = textField(&bson, "name");
        if (findField(&bson, "key", &keys))
            index.keys = valueAt(keys);
        index.unique = flagField(&bson, "unique");
        index.sparse = flagField(&bson, "sparse");
        index.definition = cursor.value();
        indexes.push_back(std::move(index));
    }
    return indexes;
}

void Collection::dropIndex(const std::string& name)
{
    const CollectionHandle target = d->open();
    checkName(name, "Index name");
    bson_error_t error{};
    if (!mongoc_collection_drop_index_with_opts(target.get(), name.c_str(), nullptr, &error))
        throwServerError("Dropping the index failed", error);
}

void Collection::drop()
{
    const CollectionHandle target = d->open();
    bson_error_t error{};
    if (mongoc_collection_drop_with_opts(target.get(), nullptr, &error))
        return;
    const ErrorDetails details = errorDetails(error, nullptr);
    if (details.code != namespaceNotFound || details.kind != ErrorKind::NotFound) // newer servers do not report it
        throw ServerError("Dropping the collection failed", details);
}

void Collection::rename(const std::string& newName, bool dropTarget)
{
    const CollectionHandle target = d->open();
    checkName(newName, "New collection name");
    bson_error_t error{};
    if (!mongoc_collection_rename_with_opts(target.get(), d->database.c_str(), newName.c_str(), dropTarget, nullptr,
                                            &error))
        throwServerError("Renaming the collection failed", error);
    d->name = newName;
}

} // namespace dbc
