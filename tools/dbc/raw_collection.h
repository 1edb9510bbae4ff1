#pragma once

#include "connection.h"
#include "database_client/mongoc_handles.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A collection read and filled as BSON: what a person looks at, or moves, must be exactly what the server holds, and
/// the document model cannot hold everything.
class RawCollection
{
public:
    struct FindOptions
    {
        const bson_t* sort = nullptr;
        const bson_t* projection = nullptr;
        std::int64_t limit = 0;
        std::int64_t skip = 0;
    };

    /// @param fullName "database.collection"; with an empty collection only command() can be used
    RawCollection(const std::string& uri, const std::string& fullName);

    /// What a cursor stands on, until it moves. A class of its own: the attributes of a bson_t cannot be part of a
    /// template's arguments.
    struct Document
    {
        const bson_t* bson;
    };
    using Visit = std::function<void(const Document&)>;
    /// Calls visit with each document, as the cursor delivers it, until Ctrl-C is pressed.
    /// @return how many there were
    std::uint64_t find(const bson_t& query, const FindOptions& options, const Visit& visit);
    std::uint64_t aggregate(const bson_t& pipeline, const Visit& visit);
    /// Documents that match the query, counted by the server.
    std::uint64_t count(const bson_t& query);
    /// What a write did, as the server's reply says.
    struct WriteResult
    {
        bool isAcknowledged = true; ///< false with w=0: the server sends no counts
        std::uint64_t inserted = 0;
        std::uint64_t matched = 0;
        std::uint64_t modified = 0; ///< at most matched: an update may leave a document as it is
        std::uint64_t removed = 0;
    };
    /// Inserts documents; those without an "_id" get one. A duplicate key is skipped with @p skipDuplicates, and an
    /// error without it.
    WriteResult insert(const std::vector<BsonPointer>& documents, bool skipDuplicates);
    enum class UpdateMode
    {
        First,
        FirstOrInsert,
        All
    };
    /// @param update  operators, or without any the document that replaces the first match
    WriteResult update(const bson_t& query, const bson_t& update, UpdateMode mode);
    /// Removes every match.
    WriteResult remove(const bson_t& query);
    /// Runs a command of the database and gives its reply.
    void command(const bson_t& command, OwnedBson& reply);

    /// The connection, for what the driver does with it; belongs to this object.
    mongoc_client_t* client() const noexcept { return m_client.get(); }

private:
    std::uint64_t visitAll(const CursorHandle& cursor, const char* message, const Visit& visit);

    ClientHandle m_client;
    std::string m_database;
    CollectionHandle m_collection;
};

/// Throws std::runtime_error in the form that the library gives its errors, so that both are told apart by one
/// function.
[[noreturn]] void throwDriverError(const std::string& message, const bson_error_t& error);
