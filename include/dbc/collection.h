// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Operations on one collection.
///
/// The default of an option of type Value is an empty object. It means that the option is not set.

#include "database_client.h"
#include "database_client_export.h"
#include "dbc/build.h"
#include "dbc/bulk.h"
#include "dbc/cursor.h"
#include "dbc/document_ref.h"
#include "dbc/options.h"
#include "dbc/value.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

/// Options of insertOne().
struct InsertOneOptions
{
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of insertMany().
struct InsertManyOptions
{
    bool ordered = true;   ///< Stop at the first error. If false, insert all documents, in any order.
    bool returnIds = true; ///< Collect the ids. Set it to false if they would not fit in memory.
    Value comment{};       ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the writes.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of updateOne() and updateMany().
struct UpdateOptions
{
    bool upsert = false;                        ///< Insert a document if there is no match.
    std::vector<Value> arrayFilters{};          ///< Filters for "$[name]" in the update.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter and the update.
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of replaceOne().
struct ReplaceOptions
{
    bool upsert = false;                        ///< Insert the document if there is no match.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of removeOne() and removeMany().
struct RemoveOptions
{
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
};

/// Options of find().
struct FindOptions
{
    Sort sort{};                                    ///< Order of the documents.
    Value projection{};                             ///< Fields to return, or to leave out.
    std::int64_t limit = 0;                         ///< Maximum number of documents; 0 means no limit.
    std::int64_t skip = 0;                          ///< Number of matches to skip.
    std::int32_t batchSize = 0;                     ///< Documents in one reply; 0 means the server's default.
    std::chrono::milliseconds timeLimit{0};         ///< Server-side limit per command ("maxTimeMS"); 0: no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value let{};                                    ///< Variables for the filter.
    Value comment{};                                ///< Comment for the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
    bool allowDiskUse = false;                      ///< A large sort may use temporary files.
};

/// Options of aggregate().
struct AggregateOptions
{
    std::int32_t batchSize = 0;                     ///< Documents in one reply; 0 means the server's default.
    std::chrono::milliseconds timeLimit{0};         ///< Server-side limit per command ("maxTimeMS"); 0: no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value let{};                                    ///< Variables for the stages.
    Value comment{};                                ///< Comment for the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
    bool allowDiskUse = false;                      ///< Stages may use temporary files.
    std::optional<WriteConcern> writeConcern{};     ///< For a pipeline that writes ("$out", "$merge").
    bool bypassValidation = false;                  ///< For a pipeline that writes: do not apply validation rules.
};

/// Options of findOne().
struct FindOneOptions
{
    Sort sort{};                                    ///< Defines which match is the first.
    Value projection{};                             ///< Fields to return, or to leave out.
    std::int64_t skip = 0;                          ///< Number of matches to skip.
    std::chrono::milliseconds timeLimit{0};         ///< Server-side time limit ("maxTimeMS"); 0: no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value let{};                                    ///< Variables for the filter.
    Value comment{};                                ///< Comment for the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
};

/// Which document findOneAndUpdate() and findOneAndReplace() return.
enum class Return
{
    Before, ///< Before the change. Empty if an upsert inserted the document.
    After   ///< After the change.
};

/// Options of findOneAndUpdate().
struct FindOneAndUpdateOptions
{
    Return which = Return::Before;              ///< Which document is returned.
    bool upsert = false;                        ///< Insert a document if there is no match.
    Sort sort{};                                ///< Defines which match is the first.
    Value projection{};                         ///< Fields to return, or to leave out.
    std::vector<Value> arrayFilters{};          ///< Filters for "$[name]" in the update.
    std::chrono::milliseconds timeLimit{0};     ///< Server-side time limit ("maxTimeMS"); 0: no limit.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter and the update.
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of findOneAndReplace().
struct FindOneAndReplaceOptions
{
    Return which = Return::Before;              ///< Which document is returned.
    bool upsert = false;                        ///< Insert the document if there is no match.
    Sort sort{};                                ///< Defines which match is the first.
    Value projection{};                         ///< Fields to return, or to leave out.
    std::chrono::milliseconds timeLimit{0};     ///< Server-side time limit ("maxTimeMS"); 0: no limit.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of findOneAndRemove().
struct FindOneAndRemoveOptions
{
    Sort sort{};                                ///< Defines which match is the first.
    Value projection{};                         ///< Fields to return, or to leave out.
    std::chrono::milliseconds timeLimit{0};     ///< Server-side time limit ("maxTimeMS"); 0: no limit.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< Comment for the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
};

/// Options of count().
struct CountOptions
{
    std::int64_t limit = 0;                         ///< Stop counting at this number; 0 means no limit.
    std::int64_t skip = 0;                          ///< Number of matches to skip.
    std::chrono::milliseconds timeLimit{0};         ///< Server-side time limit ("maxTimeMS"); 0: no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value comment{};                                ///< Comment for the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
};

/// Options of distinct().
struct DistinctOptions
{
    std::chrono::milliseconds timeLimit{0};         ///< Server-side time limit ("maxTimeMS"); 0: no limit.
    Value collation{};                              ///< Rules for comparing strings.
    Value comment{};                                ///< Comment for the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
};

/// How an index orders a field.
enum class IndexType
{
    Ascending,  ///< Smallest first.
    Descending, ///< Greatest first.
    Text,       ///< For "$text".
    Hashed,     ///< For sharding.
    Sphere2d    ///< For points and shapes on the earth: "2dsphere".
};

/// One field of an index.
struct IndexKey
{
    std::string field;                     ///< The dotted path of the field.
    IndexType type = IndexType::Ascending; ///< Order of the field in the index.
};

/// Options of createIndex().
struct IndexOptions
{
    std::string name{};                                ///< Made of the keys if empty, such as "state_1_date_-1".
    bool unique = false;                               ///< Reject a second document with the same values.
    bool sparse = false;                               ///< Leave out documents without the fields.
    Value partialFilter{};                             ///< Index only the documents that match.
    std::optional<std::chrono::seconds> expireAfter{}; ///< Remove a document this long after the time in the field.
    Value collation{};                                 ///< Rules for comparing strings.
};

/// An index of a collection.
struct IndexInfo
{
    std::string name{};  ///< Name of the index.
    Value keys{};        ///< Fields with direction or type, in order.
    bool unique = false; ///< True if two documents cannot have the same values.
    bool sparse = false; ///< True if documents without the fields are left out.
    Value definition{};  ///< The whole index description of the server.
};

/// What insertOne() did.
struct InsertOneResult
{
    Value id{};               ///< The "_id" of the document, or the new one.
    bool acknowledged = true; ///< False for an unacknowledged write.
};

/// What insertMany() did.
struct InsertManyResult
{
    std::int64_t inserted = 0; ///< Inserted documents; 0 for unacknowledged writes.
    std::vector<Value> ids{};  ///< Ids of all documents, in their order. Empty if returnIds is false.
    bool acknowledged = true;  ///< False for unacknowledged writes.
};

/// What updateOne(), updateMany() or replaceOne() did. All counts are 0 for unacknowledged writes.
struct UpdateResult
{
    std::int64_t matched = 0;          ///< Documents that matched the filter.
    std::int64_t modified = 0;         ///< Documents that changed.
    std::optional<Value> upsertedId{}; ///< The "_id" of the inserted document, if there is one.
    bool acknowledged = true;          ///< False for an unacknowledged write.
};

/// What removeOne() or removeMany() did.
struct RemoveResult
{
    std::int64_t removed = 0; ///< Removed documents; 0 for unacknowledged writes.
    bool acknowledged = true; ///< False for an unacknowledged write.
};

} // namespace v1

/// One collection of a client. Creating a Collection sends nothing. It can be created before connect(), and stays
/// usable after a reconnect. It does not own the DataBaseClient and must not outlive it: every operation then throws.
/// Not thread-safe: use it only in the thread of the client. Only assign to a moved-from object or destroy it.
///
/// Every operation checks in this order and throws:
/// - std::logic_error       "The client of this object no longer exists"
/// - std::invalid_argument  "Connection is not established. Run connect before"
/// - std::invalid_argument  "Database name is empty", "Collection name is empty"; "... contains a zero byte" for these
///                          and for every other name
/// - std::invalid_argument  "Bad condition" for a filter, "Bad options" for an option and "Bad properties" for any
///                          other document that cannot be sent; nothing was sent
/// - ServerError            an error of the server or the driver; the client stays connected and usable
/// @since 1.0
class DATABASE_CLIENT_API Collection
{
public:
    /// The collection @p name of @p database. The names are not checked here.
    Collection(DataBaseClient& client, std::string database, std::string name);
    /// Moves the state.
    Collection(Collection&& other) noexcept;
    /// Moves the state.
    Collection& operator=(Collection&& other) noexcept;
    ~Collection();

    /// Name of the database.
    const std::string& database() const noexcept;
    /// Name of the collection.
    const std::string& name() const noexcept;

    /// Inserts a document. If it has no "_id", adds a new object id as the first field.
    /// @throws ServerError "Insert failed..."
    InsertOneResult insertOne(const DocumentRef& document, const InsertOneOptions& options = {});

    /// Inserts all documents of a range or a generator. A document is anything that converts to a DocumentRef. A
    /// generator is a function object without parameters that returns the next document as a std::optional, or an empty
    /// one at the end.
    ///
    ///     orders.insertMany(std::vector<ObjectProperties>{...});
    ///     orders.insertMany([&]() -> std::optional<dbc::Value> { return nextRecord(); });
    ///
    /// The documents are sent in batches of about 4 MiB, and of at most 100,000 documents. Memory use does not grow
    /// with their number, except for the ids.
    ///
    /// Passes on exceptions of the range or the generator. Documents of batches that were sent before an exception stay
    /// inserted.
    /// @throws BulkError             "Insert failed..."
    /// @throws std::invalid_argument "Bad properties" at the first document that cannot be sent
    template <typename Documents>
    InsertManyResult insertMany(Documents&& documents, const InsertManyOptions& options = {})
    {
        return insertAll(
            [&documents](const Add& add) {
                if constexpr (std::is_invocable_v<Documents&>)
                {
                    while (const auto document = documents())
                        add(*document);
                }
                else
                {
                    for (const auto& document : documents)
                        add(document);
                }
            },
            options);
    }
    /// Overload for documents in braces: insertMany({{{"a", 1}}, {{"a", 2}}}).
    InsertManyResult insertMany(std::initializer_list<DocumentRef> documents, const InsertManyOptions& options = {});

    /// Updates the first match. @p update has operators, or is an array of pipeline stages.
    /// @throws ServerError "Update failed..."
    UpdateResult updateOne(const DocumentRef& filter, const DocumentRef& update, const UpdateOptions& options = {});
    /// Updates every match. @p update has operators, or is an array of pipeline stages.
    /// @throws ServerError "Update failed..."
    UpdateResult updateMany(const DocumentRef& filter, const DocumentRef& update, const UpdateOptions& options = {});
    /// Replaces the first match by @p document. The "_id" of the match stays.
    /// @throws ServerError "Replace failed..."
    UpdateResult replaceOne(const DocumentRef& filter, const DocumentRef& document, const ReplaceOptions& options = {});
    /// Removes the first match.
    /// @throws ServerError "Remove failed..."
    RemoveResult removeOne(const DocumentRef& filter, const RemoveOptions& options = {});
    /// Removes every match.
    /// @throws ServerError "Remove failed..."
    RemoveResult removeMany(const DocumentRef& filter, const RemoveOptions& options = {});

    /// Runs a list of write operations. They are split into several commands if the server's limits require it. Sends
    /// nothing if the list is empty.
    /// @throws BulkError "Bulk write failed..."
    BulkResult bulkWrite(const Bulk& bulk, const BulkOptions& options = {});

    /// Sends a query and returns a cursor over the matches.
    ///
    ///     for (const dbc::Value& order : orders.find({{"state", "open"}}, {.sort = {{"date"}}, .limit = 20}))
    ///
    /// @throws ServerError "Find failed..."
    Cursor find(const DocumentRef& filter, const FindOptions& options = {});
    /// Sends a pipeline and returns a cursor over the results.
    /// @param pipeline  an array of stages, or {"pipeline": [...]} as returned by dbc::pipeline()
    /// @throws std::invalid_argument "Bad pipeline" if it cannot be sent
    /// @throws ServerError           "Aggregation failed..."
    Cursor aggregate(const DocumentRef& pipeline, const AggregateOptions& options = {});

    /// Returns the first match, or an empty optional.
    /// @throws ServerError "Find failed..."
    std::optional<Value> findOne(const DocumentRef& filter, const FindOneOptions& options = {});
    /// Updates the first match atomically. Returns the document before or after the change, or an empty optional if
    /// there is no match.
    /// @throws ServerError "Find and update failed..."
    std::optional<Value> findOneAndUpdate(const DocumentRef& filter, const DocumentRef& update,
                                          const FindOneAndUpdateOptions& options = {});
    /// Replaces the first match atomically. Returns the document before or after the change, or an empty optional if
    /// there is no match.
    /// @throws ServerError "Find and replace failed..."
    std::optional<Value> findOneAndReplace(const DocumentRef& filter, const DocumentRef& document,
                                           const FindOneAndReplaceOptions& options = {});
    /// Removes the first match atomically. Returns the removed document, or an empty optional if there is no match.
    /// @throws ServerError "Find and remove failed..."
    std::optional<Value> findOneAndRemove(const DocumentRef& filter, const FindOneAndRemoveOptions& options = {});

    /// Returns the number of matches. The server reads the documents or an index, so the time grows with their number.
    /// @throws ServerError "Count failed..."
    std::int64_t count(const DocumentRef& filter, const CountOptions& options = {});
    /// Returns the number of documents from the metadata of the collection, in constant time. It may be wrong after a
    /// crash of the server and on a sharded cluster.
    /// @throws ServerError "Count failed..."
    std::int64_t estimatedCount();
    /// Returns the distinct values of a field in the documents that match. For an array, returns its distinct elements.
    /// @param field  the dotted path of the field
    /// @throws std::invalid_argument "Field name is empty"
    /// @throws ServerError           "Distinct failed..."
    std::vector<Value> distinct(const std::string& field, const DocumentRef& filter = {},
                                const DistinctOptions& options = {});

    /// Creates an index and returns its name. Does nothing if an index with the same definition exists.
    ///
    ///     orders.createIndex({{"state"}, {"date", dbc::IndexType::Descending}}, {.unique = true});
    ///
    /// @throws std::invalid_argument "Index keys are empty"
    /// @throws ServerError           "Creating the index failed..."
    std::string createIndex(const std::vector<IndexKey>& keys, const IndexOptions& options = {});
    /// Returns the indexes. Empty if the collection does not exist.
    /// @throws ServerError "Listing indexes failed..."
    std::vector<IndexInfo> indexes();
    /// Removes an index.
    /// @throws std::invalid_argument "Index name is empty"
    /// @throws ServerError           "Dropping the index failed..."; kind NotFound if there is no such index
    void dropIndex(const std::string& name);

    /// Removes the collection with its documents and indexes. Does nothing if it does not exist.
    /// @throws ServerError "Dropping the collection failed..."
    void drop();
    /// Renames the collection within its database. This object then has the new name.
    /// @param dropTarget  remove an existing collection with the new name
    /// @throws std::invalid_argument "New collection name is empty"
    /// @throws ServerError           "Renaming the collection failed..."
    void rename(const std::string& newName, bool dropTarget = false);

private:
    using Add = std::function<void(const DocumentRef&)>;
    InsertManyResult insertAll(const std::function<void(const Add&)>& produce, const InsertManyOptions& options);

    struct DATABASE_CLIENT_LOCAL State;
    std::unique_ptr<State> d;
};

} // namespace dbc
