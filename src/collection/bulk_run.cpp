// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/bulk_run.h"

#include "collection/bson_reader.h"
#include "collection/bson_value.h"
#include "collection/bulk_state.h"
#include "collection/driver_error.h"
#include "dbc/bulk.h"
#include "dbc/errors.h"
#include "driver/mongoc_handles.h"

#include <cstring>
#include <vector>

namespace dbc {
namespace {

std::size_t indexIn(const bson_t* document, std::size_t offset)
{
    return offset + static_cast<std::size_t>(numberField(document, "index"));
}

} // namespace

BulkRun::BulkRun(const CollectionHandle& collection, const bson_t* options, bool bypassValidation)
    : m_bulk(mongoc_collection_create_bulk_operation_with_opts(collection.get(), options))
{
    if (bypassValidation)
        mongoc_bulk_operation_set_bypass_document_validation(m_bulk.get(), true);
}

bool BulkRun::add(Bulk::State::Type type, const bson_t* filter, const bson_t* document, const bson_t* options)
{
    using Type = Bulk::State::Type;
    mongoc_bulk_operation_t* const bulk = m_bulk.get();
    switch (type)
    {
    case Type::InsertOne:
        return mongoc_bulk_operation_insert_with_opts(bulk, document, nullptr, &m_error);
    case Type::UpdateOne:
        return mongoc_bulk_operation_update_one_with_opts(bulk, filter, document, options, &m_error);
    case Type::UpdateMany:
        return mongoc_bulk_operation_update_many_with_opts(bulk, filter, document, options, &m_error);
    case Type::ReplaceOne:
        return mongoc_bulk_operation_replace_one_with_opts(bulk, filter, document, options, &m_error);
    case Type::RemoveOne:
        return mongoc_bulk_operation_remove_one_with_opts(bulk, filter, options, &m_error);
    case Type::RemoveMany:
        return mongoc_bulk_operation_remove_many_with_opts(bulk, filter, options, &m_error);
    }
    return false;
}

bool BulkRun::add(const Bulk::State& bulk, const Bulk::State::Operation& operation)
{
    const StoredBson filter(bulk, operation.filter);
    const StoredBson document(bulk, operation.document);
    const StoredBson options(bulk, operation.options);
    return add(operation.type, &filter.bson, &document.bson, &options.bson);
}

bool BulkRun::execute() { return mongoc_bulk_operation_execute(m_bulk.get(), m_reply.get(), &m_error) != 0; }

bool BulkRun::isAcknowledged() const
{
    return mongoc_write_concern_is_acknowledged(mongoc_bulk_operation_get_write_concern(m_bulk.get()));
}

void BulkRun::report(std::size_t offset, BulkResult& result, std::vector<WriteError>& errors) const
{
    const bson_t* const reply = m_reply.get();
    result.inserted += numberField(reply, "nInserted");
    result.matched += numberField(reply, "nMatched");
    result.modified += numberField(reply, "nModified");
    result.removed += numberField(reply, "nRemoved");
    result.acknowledged = isAcknowledged();
    forEachDocument(reply, "upserted", [&](const bson_t* upserted) {
        bson_iter_t id;
        if (findField(upserted, "_id", &id))
            result.upsertedIds.push_back({indexIn(upserted, offset), valueAt(id)});
    });
    forEachDocument(reply, "writeErrors", [&](const bson_t* error) {
        const auto code = static_cast<int>(numberField(error, "code"));
        errors.push_back({indexIn(error, offset), code, kindOfServerCode(code), textField(error, "errmsg")});
    });
}

ErrorDetails BulkRun::error() const
{
    ErrorDetails details = errorDetails(m_error, m_reply.get());
    // A bulk write uses this domain only for a document that is larger than the server's limit.
    if (m_error.domain == MONGOC_ERROR_BSON)
        details.kind = ErrorKind::TooLarge;
    return details;
}

} // namespace dbc
