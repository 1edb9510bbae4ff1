#pragma once

/// @file
/// Several writes in one go: the list of operations, its options and its result.

#include "dbc/document_ref.h"
#include "dbc/errors.h"
#include "dbc/options.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace dbc {

class BulkAccess;

inline namespace v1 {

/// The "_id" of a document and the position of its operation in the bulk write.
struct IndexedId
{
    std::size_t index = 0; ///< Counted from 0.
    Value id{};            ///< The document's "_id".
};

/// What a bulk write did. Without acknowledgement all counts are 0.
struct BulkResult
{
    std::int64_t inserted = 0;            ///< Inserted documents, upserts not included.
    std::int64_t matched = 0;             ///< Documents that the filters of updates and replacements matched.
    std::int64_t modified = 0;            ///< Documents that changed.
    std::int64_t removed = 0;             ///< Removed documents.
    std::vector<IndexedId> insertedIds{}; ///< Of the inserts, in the order of the operations.
    std::vector<IndexedId> upsertedIds{}; ///< Of the upserts that inserted, in the order of the operations.
    bool acknowledged = true;             ///< Whether the server acknowledged the writes.
};

/// One operation of a bulk write that the server refused.
struct WriteError
{
    std::size_t index = 0;             ///< Position of the operation, counted from 0.
    int code = 0;                      ///< The server's code.
    ErrorKind kind = ErrorKind::Other; ///< What the refusal was about.
    std::string text{};                ///< The server's text.
};

/// Options of an update in a bulk write.
struct BulkUpdateOptions
{
    bool upsert = false;               ///< Insert a document if none matches.
    std::vector<Value> arrayFilters{}; ///< Conditions for "$[name]" in the update.
    Value hint{};                      ///< Name or keys of the index to use.
    Value collation{};                 ///< Rules for comparing strings.
};

/// Options of a replacement in a bulk write.
struct BulkReplaceOptions
{
    bool upsert = false; ///< Insert the document if none matches.
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
    bool ordered = true;                        ///< In order, up to the first error. Otherwise all, in any order.
    Value let{};                                ///< Variables for the filters and updates.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the writes.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

} // namespace v1

/// A list of writes for Collection::bulkWrite. Documents are converted when they are added, so they may change or end
/// afterwards. Not thread-safe. Moved from, it can only be assigned to or destroyed.
///
/// All add functions throw std::invalid_argument "Bad properties" for a document, "Bad condition" for a filter that
/// cannot be sent; the list is then unchanged. They return *this.
class DATABASE_CLIENT_API Bulk
{
public:
    /// No operations.
    Bulk();
    /// Takes over the state of @p other, which can only be destroyed or assigned to afterwards.
    Bulk(Bulk&& other) noexcept;
    /// As the constructor; the own state is released first.
    Bulk& operator=(Bulk&& other) noexcept;
    ~Bulk();

    /// Inserts @p document. Its "_id" is kept; without one, a new object id becomes its first field.
    Bulk& insertOne(const DocumentRef& document);
    /// Changes the first match. @p update holds operators, or is an array of pipeline stages.
    Bulk& updateOne(const DocumentRef& filter, const DocumentRef& update, const BulkUpdateOptions& options = {});
    /// Changes every match. @p update holds operators, or is an array of pipeline stages.
    Bulk& updateMany(const DocumentRef& filter, const DocumentRef& update, const BulkUpdateOptions& options = {});
    /// Replaces the first match by @p document, which keeps the "_id" of the match.
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

/// A bulk write or insertMany() that failed, completely or in part.
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

    /// What was done all the same, as far as the server reported it before the connection broke.
    const BulkResult& result() const noexcept;
    /// Every refused operation. Empty if the failure concerns none in particular, such as a broken connection.
    const std::vector<WriteError>& errors() const noexcept;

private:
    struct DATABASE_CLIENT_LOCAL State;
    std::shared_ptr<const State> m_state;
};

} // namespace dbc
