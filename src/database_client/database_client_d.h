// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client.h"
#include "database_client/shared_client.h"
#include "driver/bson_handles.h"
#include "driver/mongoc_handles.h"

#include <list>
#include <string>

class ObjectProperties;

namespace dbc {
class ClientAccess;
}

/// Implements DataBaseClient, where the functions are documented. Overloads that call other virtual functions are in
/// DataBaseClient itself.
class DataBaseClientPrivate
{
public:
    DataBaseClientPrivate();
    DataBaseClientPrivate(const DataBaseClientPrivate&) = delete;
    DataBaseClientPrivate& operator=(const DataBaseClientPrivate&) = delete;
    ~DataBaseClientPrivate();

    static std::string uri(const std::string& host, const int& port, const std::string& user,
                           const std::string& password, const std::string& database);
    void connect(const std::string& uri);
    void disconnect() { m_client.reset(); }
    bool isConnected() const { return m_client != nullptr; }
    void getDatabaseName(std::string& name);
    std::string createId() const;

    // Documents: document_operations.cpp, document_queries.cpp.
    void write(const std::string& database, const std::string& collection, const ObjectProperties& document,
               std::string& id);
    void update(const std::string& database, const std::string& collection, const ObjectProperties& query,
                const ObjectProperties& document, const UpdateFlag& flag, const UpdateCommand& command);
    void remove(const std::string& database, const std::string& collection, const ObjectProperties& query);
    void read(const std::string& database, const std::string& collection, const ObjectProperties& query,
              std::list<ObjectProperties*>& results);
    void find(const std::string& database, const std::string& collection, const ObjectProperties& query,
              const ObjectProperties& projection, std::list<ObjectProperties*>& results, int limit, int skip);
    void aggregate(const std::string& database, const std::string& collection, const ObjectProperties& pipeline,
                   std::list<ObjectProperties*>& results);

    // Users: user_operations.cpp.
    void addUser(const std::string& database, std::string user, const std::string& password,
                 const ObjectProperties& roles, const ObjectProperties& customData);
    void updateUser(const std::string& database, std::string user, const ObjectProperties& roles,
                    const ObjectProperties& customData);
    void changeUserPassword(const std::string& database, std::string user, const std::string& password);
    void removeUser(const std::string& database, std::string user);

    // Files: file_operations.cpp.
    void readFile(const std::string& database, const std::string& gridFsCollection, const std::string& fileName,
                  std::iostream* stream);
    void writeFile(const std::string& database, const std::string& gridFsCollection, const std::string& fileName,
                   const std::string& inputFilePath);
    void listFiles(const std::string& database, const std::string& gridFsCollection, std::list<std::string>& names);
    void removeFile(const std::string& database, const std::string& gridFsCollection, const std::string& fileName);

    /// @throws std::invalid_argument "Connection is not established. Run connect before"
    void check_connection() const;
    /// @throws std::invalid_argument "<name> is empty"
    static void check_argument(const std::string& value, const std::string& name);
    /// Throws std::runtime_error "<message>: <detail>(code: <code>)". An empty detail and a code of 0 are left out.
    [[noreturn]] static void throw_runtime_error(const std::string& message, const std::string& detail, int code);
    /// Sets @p text to the update operator; empty for a replacement. Returns false for an unknown command.
    bool stringCommand(const UpdateCommand& command, std::string& text) const;
    /// Sets the flag of the driver. Returns false for an unknown flag.
    bool toMongoUpdateFlag(const UpdateFlag& flag, mongoc_update_flags_t& mongoFlag) const;

private:
    friend class dbc::ClientAccess;

    [[noreturn]] static void throwDriverError(const std::string& message, const bson_error_t& error)
    {
        throw_runtime_error(message, error.message, static_cast<int>(error.code));
    }
    /// Converts a document for the driver. @throws std::invalid_argument with the text @p refusal if it has more than
    /// 1,000 levels
    static void toBson(const ObjectProperties& properties, OwnedBson& bson, const char* refusal);

    DatabaseHandle openDatabase(const std::string& database) const
    {
        return DatabaseHandle(mongoc_client_get_database(m_client.get(), database.c_str()));
    }
    CollectionHandle openCollection(const std::string& database, const std::string& collection) const
    {
        return CollectionHandle(mongoc_client_get_collection(m_client.get(), database.c_str(), collection.c_str()));
    }
    GridFsHandle openGridFs(const std::string& database, const std::string& gridFsCollection) const;

    SharedClient m_client; ///< null when not connected
};
