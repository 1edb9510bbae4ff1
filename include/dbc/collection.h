#pragma once

/// @file
/// The operations on one collection. An option of type Value is not set while it is an empty object, its default.

#include "database_client.h"
#include "dbc/build.h"
#include "dbc/bulk.h"
#include "dbc/cursor.h"
#include "dbc/document_ref.h"
#include "dbc/options.h"

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
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of insertMany().
struct InsertManyOptions
{
    bool ordered = true;                        ///< In order, up to the first error. Otherwise all, in any order.
    bool returnIds = true;                      ///< Collect the ids. Set it to false if they would not fit in memory.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the writes.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of updateOne() and updateMany().
struct UpdateOptions
{
    bool upsert = false;                        ///< Insert a document if none matches.
    std::vector<Value> arrayFilters{};          ///< Conditions for "$[name]" in the update.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter and the update.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of replaceOne().
struct ReplaceOptions
{
    bool upsert = false;                        ///< Insert the document if none matches.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of removeOne() and removeMany().
struct RemoveOptions
{
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
};

/// Options of find().
struct FindOptions
{
    Sort sort{};                                    ///< The order of the documents.
    Value projection{};                             ///< Fields to return, or to leave out.
    std::int64_t limit = 0;                         ///< Greatest number of documents; 0 means no limit.
    std::int64_t skip = 0;                          ///< Number of matches to skip.
    std::int32_t batchSize = 0;                     ///< Documents in one reply; 0 leaves it to the server.
    std::chrono::milliseconds timeLimit{0};         ///< For the server's work on each command; 0 means no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value let{};                                    ///< Variables for the filter.
    Value comment{};                                ///< For the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
    bool allowDiskUse = false;                      ///< Whether a large sort may use temporary files.
};

/// Options of aggregate().
struct AggregateOptions
{
    std::int32_t batchSize = 0;                     ///< Documents in one reply; 0 leaves it to the server.
    std::chrono::milliseconds timeLimit{0};         ///< For the server's work on each command; 0 means no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value let{};                                    ///< Variables for the stages.
    Value comment{};                                ///< For the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
    bool allowDiskUse = false;                      ///< Whether stages may use temporary files.
    std::optional<WriteConcern> writeConcern{};     ///< For a pipeline that writes ("$out", "$merge").
    bool bypassValidation = false;                  ///< For a pipeline that writes: do not apply validation rules.
};

/// Options of findOne().
struct FindOneOptions
{
    Sort sort{};                                    ///< Which match is the first.
    Value projection{};                             ///< Fields to return, or to leave out.
    std::int64_t skip = 0;                          ///< Number of matches to skip.
    std::chrono::milliseconds timeLimit{0};         ///< For the server's work; 0 means no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value let{};                                    ///< Variables for the filter.
    Value comment{};                                ///< For the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
};

/// Which document findOneAndUpdate() and findOneAndReplace() return.
enum class Return
{
    Before, ///< As it was. None if an upsert inserted it.
    After   ///< As it is now.
};

/// Options of findOneAndUpdate().
struct FindOneAndUpdateOptions
{
    Return which = Return::Before;              ///< Which document is returned.
    bool upsert = false;                        ///< Insert a document if none matches.
    Sort sort{};                                ///< Which match is the first.
    Value projection{};                         ///< Fields to return, or to leave out.
    std::vector<Value> arrayFilters{};          ///< Conditions for "$[name]" in the update.
    std::chrono::milliseconds timeLimit{0};     ///< For the server's work; 0 means no limit.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter and the update.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of findOneAndReplace().
struct FindOneAndReplaceOptions
{
    Return which = Return::Before;              ///< Which document is returned.
    bool upsert = false;                        ///< Insert the document if none matches.
    Sort sort{};                                ///< Which match is the first.
    Value projection{};                         ///< Fields to return, or to leave out.
    std::chrono::milliseconds timeLimit{0};     ///< For the server's work; 0 means no limit.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
    bool bypassValidation = false;              ///< Do not apply the collection's validation rules.
};

/// Options of findOneAndRemove().
struct FindOneAndRemoveOptions
{
    Sort sort{};                                ///< Which match is the first.
    Value projection{};                         ///< Fields to return, or to leave out.
    std::chrono::milliseconds timeLimit{0};     ///< For the server's work; 0 means no limit.
    Value hint{};                               ///< Name or keys of the index to use.
    Value collation{};                          ///< Rules for comparing strings.
    Value let{};                                ///< Variables for the filter.
    Value comment{};                            ///< For the server's log.
    std::optional<WriteConcern> writeConcern{}; ///< When the server acknowledges the write.
};

/// Options of count().
struct CountOptions
{
    std::int64_t limit = 0;                         ///< Count no further than this; 0 means no limit.
    std::int64_t skip = 0;                          ///< Number of matches to skip.
    std::chrono::milliseconds timeLimit{0};         ///< For the server's work; 0 means no limit.
    Value hint{};                                   ///< Name or keys of the index to use.
    Value collation{};                              ///< Rules for comparing strings.
    Value comment{};                                ///< For the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
};

/// Options of distinct().
struct DistinctOptions
{
    std::chrono::milliseconds timeLimit{0};         ///< For the server's work; 0 means no limit.
    Value collation{};                              ///< Rules for comparing strings.
    Value comment{};                                ///< For the server's log.
    std::optional<ReadPreference> readPreference{}; ///< If not set: as in the connection string.
};

/// How an index orders a field.
enum class IndexType
{
    Ascending,  ///< Smallest first.
    Descending, ///< Greatest first.
    Text,       ///< For "$text".
    Hashed,     ///< For sharding.
    Sphere2d    ///< For places on the earth: "2dsphere".
};

/// One field of an index.
struct IndexKey
{
    std::string field;                     ///< The dotted path of the field.
    IndexType type = IndexType::Ascending; ///< How it is ordered.
};

/// Options of createIndex().
struct IndexOptions
{
    std::string name{};                                ///< If empty: made of the keys, such as "state_1_date_-1".
    bool unique = false;                               ///< No two documents with the same values.
    bool sparse = false;                               ///< Leave out documents without the fields.
    Value partialFilter{};                             ///< Index the documents that match only.
    std::optional<std::chrono::seconds> expireAfter{}; ///< Remove documents this long after the time in the field.
    Value collation{};                                 ///< Rules for comparing strings.
};

/// An index of a collection.
struct IndexInfo
{
    std::string name{};  ///< Its name.
    Value keys{};        ///< Field and direction or type, in order.
    bool unique = false; ///< No two documents with the same values.
    bool sparse = false; ///< Leaves out documents without the fields.
    Value definition{};  ///< All that the server reports.
};

/// What insertOne() did.
struct InsertOneResult
{
    Value id{};               ///< The document's "_id": its own or the new one.
    bool acknowledged = true; ///< Whether the server acknowledged the write.
};

/// What insertMany() did.
struct InsertManyResult
{
    std::int64_t inserted = 0; ///< Inserted documents; 0 without acknowledgement.
    std::vector<Value> ids{};  ///< Of all documents, in their order.
    bool acknowledged = true;  ///< Whether the server acknowledged the writes.
};

/// What updateOne(), updateMany() or replaceOne() did. Without acknowledgement all counts are 0.
struct UpdateResult
{
    std::int64_t matched = 0;          ///< Documents that the filter matched.
    std::int64_t modified = 0;         ///< Documents that changed.
    std::optional<Value> upsertedId{}; ///< The "_id" of the inserted document, if there is one.
    bool acknowledged = true;          ///< Whether the server acknowledged the write.
};

/// What removeOne() or removeMany() did.
struct RemoveResult
{
    std::int64_t removed = 0; ///< Removed documents; 0 without acknowledgement.
    bool acknowledged = true; ///< Whether the server acknowledged the write.
};

} // namespace v1

/// One collection of a connected client. Cheap to make: nothing is sent. Must not outlive the DataBaseClient, but may
/// be made before it connects and used across reconnects. Not thread-safe, like the client. Moved
/// from, it can only be assigned to or destroyed.
///
/// Every operation throws, in this order of checks:
/// - std::logic_error       "The client of this object no longer exists"
/// - std::invalid_argument  "Connection is not established. Run connect before"
/// - std::invalid_argument  "Database name is empty", "Collection name is empty"
/// - std::invalid_argument  a document that cannot be sent: "Bad condition" for a filter, "Bad properties" for any
/// other.
///                          Nothing was sent
/// - ServerError            a failure that the server or the driver reports. The client stays connected and usable
class DATABASE_CLIENT_API Collection
{
public:
    /// The collection @p name of @p database. Neither is checked here.
    Collection(DataBaseClient& client, std::string database, std::string name);
    /// Takes over the state of @p other, which can only be destroyed or assigned to afterwards.
    Collection(Collection&& other) noexcept;
    /// As the constructor; the own state is released first.
    Collection& operator=(Collection&& other) noexcept;
    ~Collection();

    /// Name of the database.
    const std::string& database() const noexcept;
    /// Name of the collection.
    const std::string& name() const noexcept;

    /// Inserts a document. Its "_id" is kept; without one, a new object id becomes its first field.
    /// @throws ServerError "Insert failed..."
    InsertOneResult insertOne(const DocumentRef& document, const InsertOneOptions& options = {});

    /// Inserts every document of a range, or of a generator: a function object without parameters that returns a
    /// std::optional of a document, empty at the end. Documents are anything that a DocumentRef takes. They are sent in
    /// batches of about 4 MiB, so that memory stays flat whatever their number; only the ids are collected.
    ///
    ///     orders.insertMany(std::vector<ObjectProperties>{...});
    ///     orders.insertMany([&]() -> std::optional<dbc::Value> { return nextRecord(); });
    ///
    /// What the range or the generator throws passes on; batches that were sent stay inserted.
    /// @throws BulkError "Insert failed..."; std::invalid_argument as for every operation, at the first such document
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
    /// The same for documents in braces: insertMany({{{"a", 1}}, {{"a", 2}}}).
    InsertManyResult insertMany(std::initializer_list<DocumentRef> documents, const InsertManyOptions& options = {});

    /// Changes the first document that matches. @p update holds operators, or is an array of pipeline stages.
    /// @throws ServerError "Update failed..."
    UpdateResult updateOne(const DocumentRef& filter, const DocumentRef& update, const UpdateOptions& options = {});
    /// Changes every document that matches. @p update holds operators, or is an array of pipeline stages.
    /// @throws ServerError "Update failed..."
    UpdateResult updateMany(const DocumentRef& filter, const DocumentRef& update, const UpdateOptions& options = {});
    /// Replaces the first document that matches; the "_id" stays.
    /// @throws ServerError "Replace failed..."
    UpdateResult replaceOne(const DocumentRef& filter, const DocumentRef& document, const ReplaceOptions& options = {});
    /// Removes the first document that matches.
    /// @throws ServerError "Remove failed..."
    RemoveResult removeOne(const DocumentRef& filter, const RemoveOptions& options = {});
    /// Removes every document that matches.
    /// @throws ServerError "Remove failed..."
    RemoveResult removeMany(const DocumentRef& filter, const RemoveOptions& options = {});

    /// Carries out a list of operations, split into as many commands as the server's limits ask for. Without operations
    /// nothing is sent.
    /// @throws BulkError "Bulk write failed..."
    BulkResult bulkWrite(const Bulk& bulk, const BulkOptions& options = {});

    /// Sends a query and returns its matches, to be received one by one.
    ///
    ///     for (const dbc::Value& order : orders.find({{"state", "open"}}, {.sort = {{"date"}, {"number"}}, .limit =
    ///     20}))
    ///
    /// @throws ServerError "Find failed..."
    Cursor find(const DocumentRef& filter, const FindOptions& options = {});
    /// Sends a pipeline and returns its results, to be received one by one.
    /// @param pipeline  an array of stages, or {"pipeline": [...]} as of dbc::pipeline()
    /// @throws std::invalid_argument "Bad pipeline" if it cannot be sent
    /// @throws ServerError           "Aggregation failed..."
    Cursor aggregate(const DocumentRef& pipeline, const AggregateOptions& options = {});

    /// The first document that matches; empty if no document matches.
    /// @throws ServerError "Find failed..."
    std::optional<Value> findOne(const DocumentRef& filter, const FindOneOptions& options = {});
    /// Changes the first document that matches and returns it, in one step; empty if none matches.
    /// @throws ServerError "Find and update failed..."
    std::optional<Value> findOneAndUpdate(const DocumentRef& filter, const DocumentRef& update,
                                          const FindOneAndUpdateOptions& options = {});
    /// Replaces the first document that matches and returns it, in one step; empty if none matches.
    /// @throws ServerError "Find and replace failed..."
    std::optional<Value> findOneAndReplace(const DocumentRef& filter, const DocumentRef& document,
                                           const FindOneAndReplaceOptions& options = {});
    /// Removes the first document that matches and returns it, in one step; empty if none matches.
    /// @throws ServerError "Find and remove failed..."
    std::optional<Value> findOneAndRemove(const DocumentRef& filter, const FindOneAndRemoveOptions& options = {});

    /// Number of documents that match, counted by the server one by one or in an index.
    /// @throws ServerError "Count failed..."
    std::int64_t count(const DocumentRef& filter, const CountOptions& options = {});
    /// Number of documents in the collection as the server has noted it. Fast. May be wrong after a crash and on a
    /// sharded cluster.
    /// @throws ServerError "Count failed..."
    std::int64_t estimatedCount();
    /// The different values of a field in the documents that match. Elements of arrays count one by one.
    /// @param field  the dotted path of the field
    /// @throws std::invalid_argument "Field name is empty"
    /// @throws ServerError           "Distinct failed..."
    std::vector<Value> distinct(const std::string& field, const DocumentRef& filter = {},
                                const DistinctOptions& options = {});

    /// Creates an index and returns its name. An index that exists with the same definition stays as it is.
    ///
    ///     orders.createIndex({{"state"}, {"date", dbc::IndexType::Descending}}, {.unique = true});
    ///
    /// @throws std::invalid_argument "Index keys are empty"
    /// @throws ServerError           "Creating the index failed..."
    std::string createIndex(const std::vector<IndexKey>& keys, const IndexOptions& options = {});
    /// The indexes; none if the collection does not exist.
    /// @throws ServerError "Listing indexes failed..."
    std::vector<IndexInfo> indexes();
    /// Removes an index. @throws std::invalid_argument "Index name is empty"
    /// @throws ServerError "Dropping the index failed..."; kind NotFound if there is no such index
    void dropIndex(const std::string& name);

    /// Removes the collection with its documents and indexes. Does nothing if the collection does not exist.
    /// @throws ServerError "Dropping the collection failed..."
    void drop();
    /// Gives the collection a new name within its database; this object then has it too.
    /// @param dropTarget  remove a collection that has the name already
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
