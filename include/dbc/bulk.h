// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Bulk writes: the list of operations, the options and the result.

#include "database_client_export.h"
#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/options.h"
#include "dbc/value.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbc {

class BulkAccess;

inline namespace v1 {

/// The "_id" of a document and the position of its operation in the bulk write.
struct IndexedId
{
    std::size_t index = 0; ///< Position of the operation, counted from 0.
    Value id{};            ///< The document's "_id".
};

/// What a bulk write did. All counts are 0 for unacknowledged writes.
struct BulkResult
{
    std::int64_t inserted = 0;            ///< Inserted documents, upserts not included.
    std::int64_t matched = 0;             ///< Documents that matched the filters of updates and replacements.
    std::int64_t modified = 0;            ///< Documents that changed.
    std::int64_t removed = 0;             ///< Removed documents.
    std::vector<IndexedId> insertedIds{}; ///< Ids of the inserts, in the order of the operations.
    std::vector<IndexedId> upsertedIds{}; ///< Ids of the upserts that inserted, in the order of the operations.
    bool acknowledged = true;             ///< False for unacknowledged writes.
};

/// An operation of a bulk write that the server rejected.
struct WriteError
{
    std::size_t index = 0;             ///< Position of the operation, counted from 0.
    int code = 0;                      ///< The server's error code.
    ErrorKind kind = ErrorKind::Other; ///< Kind of the error.
    std::string text{};                ///< The server's error message.
};

/// Options of an update in a bulk write.
struct BulkUpdateOptions
{
    bool upsert = false;               ///< Insert a document if there is no match.
    std::vector<Value> arrayFilters{}; ///< Filters for "$[name]" in the update.
    Value hint{};                      ///< Name or keys of the index to use.
    Value collation{};                 ///< Rules for comparing strings.
};

/// Options of a replacement in a bulk write.
struct BulkReplaceOptions
{
    bool upsert = false; ///< Insert the document if there is no match.
    Value hint{};        ///< Name or keys of the index to use.
    Value collation{};   ///< Rules for comparing strings.
};

/// Options of a removal in a bulk write.
struct BulkRemoveOptions
{
    Value hint{};      ///< Name or keys of the index to use.
    Value collation{}; ///< Rules for comparing strings.
};

/// Options of a bulk write.
struct BulkOptions
{
    bool ordered = true; ///< Stop at the first error. If false, run all operations, in any order.
    Value let{};         ///< Variables for the filters and updates.
    Value comment{};     ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the writes.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

} // namespace v1

/// A list of write operations for Collection::bulkWrite(). Each function that adds an operation converts its documents
/// at once and returns *this. The documents may change or be destroyed afterwards.
///
/// These functions throw std::invalid_argument "Bad properties" for a document, "Bad condition" for a filter and "Bad
/// options" for an option that cannot be sent. The list is unchanged then.
///
/// Not thread-safe. Only assign to a moved-from object or destroy it.
/// @since 1.0
class DATABASE_CLIENT_API Bulk
{
public:
    /// Creates an empty list.
    Bulk();
    /// Moves the list.
    Bulk(Bulk&& other) noexcept;
    /// Moves the list.
    Bulk& operator=(Bulk&& other) noexcept;
    ~Bulk();

    /// Inserts @p document. If it has no "_id", adds a new object id as the first field.
    Bulk& insertOne(const DocumentRef& document);
    /// Updates the first match. @p update has operators, or is an array of pipeline stages.
    Bulk& updateOne(const DocumentRef& filter, const DocumentRef& update, const BulkUpdateOptions& options = {});
    /// Updates every match. @p update has operators, or is an array of pipeline stages.
    Bulk& updateMany(const DocumentRef& filter, const DocumentRef& update, const BulkUpdateOptions& options = {});
    /// Replaces the first match by @p document. The "_id" of the match stays.
    Bulk& replaceOne(const DocumentRef& filter, const DocumentRef& document, const BulkReplaceOptions& options = {});
    /// Removes the first match.
    Bulk& removeOne(const DocumentRef& filter, const BulkRemoveOptions& options = {});
    /// Removes every match.
    Bulk& removeMany(const DocumentRef& filter, const BulkRemoveOptions& options = {});

    /// Number of operations.
    std::size_t size() const noexcept;

    /// Private to the library.
    struct DATABASE_CLIENT_LOCAL State;

private:
    friend class BulkAccess;
    std::unique_ptr<State> d;
};

/// Thrown if a bulk write or insertMany() fails, completely or in part.
/// @since 1.0
class DATABASE_CLIENT_API BulkError : public ServerError
{
public:
    /// @param message  what was attempted, such as "Bulk write failed"
    BulkError(const std::string& message, ErrorDetails details, BulkResult result, std::vector<WriteError> errors);
    /// Shares the details of @p other.
    BulkError(const BulkError& other) noexcept;
    /// Shares the details of @p other.
    BulkError& operator=(const BulkError& other) noexcept;
    ~BulkError() override;

    /// The operations that succeeded. If the connection broke, the server may have done more than it reported.
    const BulkResult& result() const noexcept;
    /// Every rejected operation. Empty if the error is not about single operations, such as a broken connection.
    const std::vector<WriteError>& errors() const noexcept;

private:
    struct DATABASE_CLIENT_LOCAL State;
    std::shared_ptr<const State> m_state;
};

} // namespace dbc
