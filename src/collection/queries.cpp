// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Operations of a collection that return documents.

#include "collection/bson_reader.h"
#include "collection/bson_value.h"
#include "collection/collection_state.h"
#include "collection/cursor_state.h"
#include "collection/driver_error.h"
#include "collection/names.h"
#include "collection/options_bson.h"
#include "collection/outgoing.h"
#include "database_client/cursors.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/document_ref.h"
#include "dbc/value.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace dbc {
namespace {

// Options is one of the FindOneAnd... structs.
template <typename Options>
std::optional<Value> findAndModify(const CollectionHandle& target, const char* message, const DocumentRef& filter,
                                   const DocumentRef& operand, const Options& options)
{
    constexpr bool removes = std::is_same_v<Options, FindOneAndRemoveOptions>;
    const OutgoingBson update(operand, "Bad properties",
                              std::is_same_v<Options, FindOneAndUpdateOptions> ? OutgoingBson::Shape::ObjectOrArray
                                                                               : OutgoingBson::Shape::Object);
    const OutgoingBson condition(filter, "Bad condition");

    const FindAndModifyHandle modification(mongoc_find_and_modify_opts_new());
    int flags = removes ? MONGOC_FIND_AND_MODIFY_REMOVE : MONGOC_FIND_AND_MODIFY_NONE;
    DriverOptions extra;
    extra.add("sort", options.sort)
        .add("fields", options.projection)
        .addNumber("maxTimeMS", options.timeLimit.count())
        .add("hint", options.hint)
        .add("collation", options.collation)
        .add("let", options.let)
        .add("comment", options.comment)
        .add(options.writeConcern);
    if constexpr (!removes)
    {
        flags |= options.upsert ? MONGOC_FIND_AND_MODIFY_UPSERT : 0;
        flags |= options.which == Return::After ? MONGOC_FIND_AND_MODIFY_RETURN_NEW : 0;
        mongoc_find_and_modify_opts_set_update(modification.get(), update.get());
        mongoc_find_and_modify_opts_set_bypass_document_validation(modification.get(), options.bypassValidation);
    }
    if constexpr (std::is_same_v<Options, FindOneAndUpdateOptions>)
        extra.add("arrayFilters", options.arrayFilters);
    mongoc_find_and_modify_opts_set_flags(modification.get(), static_cast<mongoc_find_and_modify_flags_t>(flags));
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_find_and_modify_opts_append(modification.get(), extra.get()) ||
        !mongoc_collection_find_and_modify_with_opts(target.get(), condition.get(), modification.get(), reply.get(),
                                                     &error))
        throwServerError(message, error, reply.get());
    bson_iter_t found;
    if (!findField(reply.get(), "value", &found) || !BSON_ITER_HOLDS_DOCUMENT(&found))
        return std::nullopt;
    return valueAt(found);
}

Cursor sendFind(const std::shared_ptr<mongoc_client_t>& client, const CollectionHandle& source,
                const DocumentRef& filter, const FindOptions& options, bool isSingle)
{
    const OutgoingBson condition(filter, "Bad condition");

    DriverOptions driverOptions;
    driverOptions.add("sort", options.sort)
        .add("projection", options.projection)
        .addNumber("limit", options.limit)
        .addNumber("skip", options.skip)
        .addNumber("batchSize", options.batchSize)
        .addNumber("maxTimeMS", options.timeLimit.count())
        .add("hint", options.hint)
        .add("collation", options.collation)
        .add("let", options.let)
        .add("comment", options.comment)
        .addFlag("allowDiskUse", options.allowDiskUse)
        .addFlag("singleBatch", isSingle);
    const ReadPreferenceHandle preference = readPreference(options.readPreference);
    return CursorAccess::open(client,
                              CursorHandle(mongoc_collection_find_with_opts(source.get(), condition.get(),
                                                                            driverOptions.get(), preference.get())),
                              "Find failed");
}

} // namespace

Cursor Collection::find(const DocumentRef& filter, const FindOptions& options)
{
    const CollectionHandle source = d->open();
    return sendFind(d->client.connected(), source, filter, options, false);
}

Cursor Collection::aggregate(const DocumentRef& pipeline, const AggregateOptions& options)
{
    const CollectionHandle source = d->open();
    const OutgoingBson stages(pipeline, "Bad pipeline", OutgoingBson::Shape::ObjectOrArray);

    DriverOptions driverOptions;
    driverOptions.addNumber("batchSize", options.batchSize)
        .addNumber("maxTimeMS", options.timeLimit.count())
        .add("hint", options.hint)
        .add("collation", options.collation)
        .add("let", options.let)
        .add("comment", options.comment)
        .addFlag("allowDiskUse", options.allowDiskUse)
        .addFlag("bypassDocumentValidation", options.bypassValidation)
        .add(options.writeConcern);
    const ReadPreferenceHandle preference = readPreference(options.readPreference);
    OwnedBson reply;
    bson_error_t error{};
    CursorHandle cursor = openAggregation(d->client.connected().get(), source, stages.get(), driverOptions.get(),
                                          preference.get(), reply, error);
    if (!cursor)
        throwServerError("Aggregation failed", error, reply.get());
    return CursorAccess::open(d->client.connected(), std::move(cursor), "Aggregation failed");
}

std::optional<Value> Collection::findOne(const DocumentRef& filter, const FindOneOptions& options)
{
    const CollectionHandle source = d->open();
    FindOptions findOptions;
    findOptions.sort = options.sort;
    findOptions.projection = options.projection;
    findOptions.limit = 1;
    findOptions.skip = options.skip;
    findOptions.timeLimit = options.timeLimit;
    findOptions.hint = options.hint;
    findOptions.collation = options.collation;
    findOptions.let = options.let;
    findOptions.comment = options.comment;
    findOptions.readPreference = options.readPreference;
    Cursor cursor = sendFind(d->client.connected(), source, filter, findOptions, true);
    if (!cursor.next())
        return std::nullopt;
    return cursor.value();
}

std::optional<Value> Collection::findOneAndUpdate(const DocumentRef& filter, const DocumentRef& update,
                                                  const FindOneAndUpdateOptions& options)
{
    return findAndModify(d->open(), "Find and update failed", filter, update, options);
}

std::optional<Value> Collection::findOneAndReplace(const DocumentRef& filter, const DocumentRef& document,
                                                   const FindOneAndReplaceOptions& options)
{
    return findAndModify(d->open(), "Find and replace failed", filter, document, options);
}

std::optional<Value> Collection::findOneAndRemove(const DocumentRef& filter, const FindOneAndRemoveOptions& options)
{
    return findAndModify(d->open(), "Find and remove failed", filter, {}, options);
}

std::int64_t Collection::count(const DocumentRef& filter, const CountOptions& options)
{
    const CollectionHandle source = d->open();
    const OutgoingBson condition(filter, "Bad condition");

    DriverOptions driverOptions;
    driverOptions.addNumber("limit", options.limit)
        .addNumber("skip", options.skip)
        .addNumber("maxTimeMS", options.timeLimit.count())
        .add("hint", options.hint)
        .add("collation", options.collation)
        .add("comment", options.comment);
    const ReadPreferenceHandle preference = readPreference(options.readPreference);
    OwnedBson reply;
    bson_error_t error{};
    const std::int64_t number = mongoc_collection_count_documents(source.get(), condition.get(), driverOptions.get(),
                                                                  preference.get(), reply.get(), &error);
    if (number < 0)
        throwServerError("Count failed", error, reply.get());
    return number;
}

std::int64_t Collection::estimatedCount()
{
    const CollectionHandle source = d->open();
    OwnedBson reply;
    bson_error_t error{};
    const std::int64_t number =
        mongoc_collection_estimated_document_count(source.get(), nullptr, nullptr, reply.get(), &error);
    if (number < 0)
        throwServerError("Count failed", error, reply.get());
    return number;
}

std::vector<Value> Collection::distinct(const std::string& field, const DocumentRef& filter,
                                        const DistinctOptions& options)
{
    const CollectionHandle source = d->open();
    checkName(field, "Field name");
    const OutgoingBson condition(filter, "Bad condition");

    DriverOptions command;
    BSON_APPEND_UTF8(command.bson(), "distinct", d->name.c_str());
    BSON_APPEND_UTF8(command.bson(), "key", field.c_str());
    BSON_APPEND_DOCUMENT(command.bson(), "query", condition.get());
    command.addNumber("maxTimeMS", options.timeLimit.count())
        .add("collation", options.collation)
        .add("comment", options.comment);
    const ReadPreferenceHandle preference = readPreference(options.readPreference);
    OwnedBson reply;
    bson_error_t error{};
    if (!mongoc_collection_read_command_with_opts(source.get(), command.get(), preference.get(), nullptr, reply.get(),
                                                  &error))
        throwServerError("Distinct failed", error, reply.get());

    std::vector<Value> values;
    bson_iter_t iter;
    bson_iter_t element;
    if (findField(reply.get(), "values", &iter) && BSON_ITER_HOLDS_ARRAY(&iter) && bson_iter_recurse(&iter, &element))
    {
        while (bson_iter_next(&element))
            values.push_back(valueAt(element));
    }
    return values;
}

} // namespace dbc
