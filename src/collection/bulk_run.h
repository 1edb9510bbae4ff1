// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "collection/bulk_state.h"
#include "dbc/bulk.h"
#include "dbc/errors.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <bson/bson.h>

#include <cstddef>
#include <vector>

namespace dbc {

/// A bulk write of the driver. Add operations, then execute it once.
class BulkRun
{
public:
    /// @param options  options of mongoc_collection_create_bulk_operation_with_opts()
    BulkRun(const CollectionHandle& collection, const bson_t* options, bool bypassValidation);

    /// Adds an operation. An insert has neither filter nor options, a removal has no document. Returns false if the
    /// driver rejects it; error() then has the reason.
    bool add(Bulk::State::Type type, const bson_t* filter, const bson_t* document, const bson_t* options);
    bool add(const Bulk::State& bulk, const Bulk::State::Operation& operation);
    /// Returns false if the bulk write failed, completely or in part; error() then has the reason.
    bool execute();

    bool isAcknowledged() const;
    /// Adds the counts and ids to @p result, and the errors to @p errors. Adds @p offset to every index.
    void report(std::size_t offset, BulkResult& result, std::vector<WriteError>& errors) const;
    /// The driver's error for the bulk write as a whole.
    ErrorDetails error() const;

private:
    BulkHandle m_bulk;
    OwnedBson m_reply;
    bson_error_t m_error{};
};

} // namespace dbc
