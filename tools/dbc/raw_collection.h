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
    /// Inserts documents; those without an "_id" get one. A key that is there already is counted and passed over when
    /// @p skipDuplicates, else an error.
    /// @return how many were inserted
    std::uint64_t insert(const std::vector<BsonPointer>& documents, bool skipDuplicates);
    /// Runs a command of the database and gives its reply.
    void command(const bson_t& command, OwnedBson& reply);

private:
    std::uint64_t visitAll(const CursorHandle& cursor, const char* message, const Visit& visit);

    ClientHandle m_client;
    std::string m_database;
    CollectionHandle m_collection;
};

/// Throws std::runtime_error in the form that the library gives its errors, so that both are told apart by one
/// function.
[[noreturn]] void throwDriverError(const std::string& message, const bson_error_t& error);
