// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// The client: documents, users and GridFS files of a MongoDB server.

#include "database_client_export.h"

#include <iosfwd>
#include <list>
#include <memory>
#include <string>

class DataBaseClientPrivate;
class ObjectProperties;

namespace dbc {
class ClientAccess;
}

/// Which documents an update changes. The numbers are part of the library's interface.
enum UpdateFlag : int
{
    UpdateFlagNone = 0,       ///< The first match.
    UpdateFlagUpsert = 1,     ///< The first match. Inserts a new document if there is no match.
    UpdateFlagMultiUpdate = 2 ///< Every match.
};

/// Update operator. The numbers are part of the library's interface.
enum UpdateCommand : int
{
    UpdateCommandUndefined = 0, ///< Throws std::invalid_argument "Uncknown command".
    UpdateCommandReplace = 1,   ///< No operator: the document replaces the match, or contains the operators itself.
    UpdateCommandRename = 2,    ///< "$rename"
    UpdateCommandSet = 3,       ///< "$set"
    UpdateCommandUnset = 4,     ///< "$unset"
    UpdateCommandAddToSet = 5,  ///< "$addToSet"
    UpdateCommandPop = 6,       ///< "$pop"
    UpdateCommandPull = 7,      ///< "$pull"
    UpdateCommandPullAll = 8,   ///< "$pullAll"
    UpdateCommandPush = 9       ///< "$push"
};

/// Splits "database.collection" at the first dot. Without a dot, both results are the whole name: callers depend on it.
/// @param database    set to the part before the dot
/// @param collection  set to the part after the dot, which may contain more dots
DATABASE_CLIENT_API void parseOldCollectionName(const std::string& fullName, std::string& database,
                                                std::string& collection);

/// A client of one server. It starts no thread. Its only state is the connection. Failures throw one of two exceptions.
/// They have no error code as a member: use dbc::describe() of dbc/errors.h to get the kind and the code.
/// - `std::invalid_argument`: "Connection is not established. Run connect before"; "<name> is empty" for a required
///   name; a document of more than 1,000 nested levels; an enumerator out of range. Nothing was sent to the server.
/// - `std::runtime_error`: an error of the driver or the server, as "<message>: <driver text>(code: <code>)". The part
///   ": <driver text>" is left out if the text is empty, and "(code: <code>)" if the code is 0.
///
/// Every operation first checks the connection, then each required name, then the documents. A failed operation leaves
/// the client connected and usable.
///
/// Depth limit: every operation throws for a document, query, projection, pipeline, roles or custom data of more than
/// 1,000 nested groups and arrays. The text of the exception depends on the parameter, such as "Bad properties". The
/// driver reads documents recursively, so deeper ones could exhaust the stack. libmongoc 1.30 and later reject most
/// documents of more than 500 levels; this is a `std::runtime_error`. MongoDB itself accepts 100 levels.
///
/// A client is not thread-safe; different clients can be used in different threads. Create the first client, and call
/// instance() for the first time, before other threads use the library.
/// @since 1.0
class DATABASE_CLIENT_API DataBaseClient
{
public:
    /// Creates an unconnected client. The first client of a process initializes the driver.
    DataBaseClient();
    DataBaseClient(const DataBaseClient&) = delete;
    DataBaseClient& operator=(const DataBaseClient&) = delete;

    // Slot order is part of the library's interface and closed.

    /// Disconnects.
    virtual ~DataBaseClient();

    /// Calls the virtual connect(uri) with the result of uri(). The database is the first parameter here, but the last
    /// parameter of uri(): callers depend on it.
    /// @throws std::runtime_error "Connection failed"
    virtual void connect(const std::string& database, const std::string& host, const int& port, const std::string& user,
                         const std::string& password);
    /// Drops the old connection and sets a new connection string. Sends nothing: an unreachable server causes an
    /// exception in the first operation.
    /// @throws std::runtime_error "Connection failed" if the connection string is invalid; the client is disconnected
    ///                            then
    virtual void connect(const std::string& uri);
    /// Drops the connection. Does nothing without a connection.
    virtual void disconnect();
    /// True if connect() has succeeded since the last disconnect(). Sends nothing.
    virtual bool isConnected() const;
    /// Calls the virtual overload below and ignores the id.
    virtual void write(const std::string& database, const std::string& collection, const ObjectProperties& document);
    /// Inserts a document. Always appends a new "_id", also if the document already has one: callers depend on it.
    /// @param id  set to the new id, 24 hexadecimal digits. Set before the insert, so also if the insert fails
    /// @throws std::invalid_argument  no connection; an empty name; "Bad properties": more than 1,000 levels
    /// @throws std::runtime_error     "Error occurred while insert operation..."
    virtual void write(const std::string& database, const std::string& collection, const ObjectProperties& document,
                       std::string& id);
    /// Updates the documents that match @p query.
    /// @param document  operand of the operator @p command
    /// @throws std::invalid_argument  no connection; an empty name; "Uncknown command"; "Uncknown update flag"; "Bad
    ///                                properties" (@p document) or "Bad condition" (@p query): more than 1,000 levels
    /// @throws std::runtime_error     "Error creating update document.": larger than BSON allows (2 GiB); "Updating
    ///                                failed..."
    virtual void update(const std::string& database, const std::string& collection, const ObjectProperties& query,
                        const ObjectProperties& document, const UpdateFlag& flag, const UpdateCommand& command);
    /// Calls the virtual find() without projection, limit and skip.
    virtual void read(const std::string& database, const std::string& collection, const ObjectProperties& query,
                      std::list<ObjectProperties*>& results);
    /// Appends the documents that match @p query to @p results. Leaves out documents without fields, also those whose
    /// fields BsonToProperties leaves out.
    /// @param query       a filter, or {"$query": {...}, "$orderby": {...}}
    /// @param projection  fields to return; an empty document returns all fields
    /// @param results     appended to, never cleared; the caller deletes the elements
    /// @param limit       maximum number of documents; 0 means no limit. The number -n requests one batch
    ///                    of at most n documents
    /// @param skip        number of matches to skip. A negative number is sent as an unsigned 32-bit number: callers
    ///                    depend on it
    /// @throws std::invalid_argument  no connection; an empty name; "Bad condition": more than 1,000 levels, or a
    ///                                "$query" that is not a document; "Bad propjection": more than 1,000 levels; "Bad
    ///                                results": the server sent a document that is not valid BSON
    /// @throws std::runtime_error     "Find error...."; documents received so far stay in @p results
    virtual void find(const std::string& database, const std::string& collection, const ObjectProperties& query,
                      const ObjectProperties& projection, std::list<ObjectProperties*>& results, int limit, int skip);
    /// Runs an aggregation and appends the resulting documents to @p results, as find() does.
    /// @param pipeline  {"pipeline": [...]}, or a document with the keys 0, 1, 2 ... whose values are the stages
    /// @throws std::invalid_argument  no connection; an empty name; "Bad pipeline": more than 1,000 levels; "Bad
    ///                                results": the server sent a document that is not valid BSON
    /// @throws std::runtime_error     "Aggregation error...."; documents received so far stay in @p results
    virtual void aggregate(const std::string& database, const std::string& collection, const ObjectProperties& pipeline,
                           std::list<ObjectProperties*>& results);
    /// Removes every document that matches @p query.
    /// @throws std::invalid_argument  no connection; an empty name; "Bad condition": more than 1,000 levels
    /// @throws std::runtime_error     "Error occurred while remove operation..."
    virtual void remove(const std::string& database, const std::string& collection, const ObjectProperties& query);
    /// Sets @p name to the database of the connection string. Sets it to the empty string if the connection string has
    /// no database, or if there is no connection.
    virtual void getDatabaseName(std::string& name);
    /// Returns a new object id of 24 lower-case hexadecimal digits. Needs no connection.
    virtual std::string createId() const;
    /// Creates a user of @p database.
    /// @param password    left out of the command if empty
    /// @param roles       an array in the form of a document with the keys 0, 1, 2 ...
    /// @param customData  stored by the server with the user
    /// @throws std::invalid_argument  no connection; an empty name; "Bad roles." or "Bad custom data": more than 1,000
    ///                                levels
    /// @throws std::runtime_error     "Error occurred while adding user..."
    virtual void addUser(const std::string& database, std::string user, const std::string& password,
                         const ObjectProperties& roles, const ObjectProperties& customData);
    /// Replaces the roles and the custom data of a user, also by empty ones. Does not change the password.
    /// @throws std::invalid_argument  no connection; an empty name; "Bad roles." or "Bad custom data": more than 1,000
    ///                                levels
    /// @throws std::runtime_error     "Error occurred while updating user..."
    virtual void updateUser(const std::string& database, std::string user, const ObjectProperties& roles,
                            const ObjectProperties& customData);
    /// Changes the password of a user.
    /// @throws std::invalid_argument  no connection; an empty name or password
    /// @throws std::runtime_error     "Error occurred while changing password..."
    virtual void changeUserPassword(const std::string& database, std::string user, const std::string& password);
    /// Removes a user.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while removing user..."
    virtual void removeUser(const std::string& database, std::string user);
    /// Writes the content of a stored file to @p stream at its write position. If several files have this name, the
    /// server chooses one of them. Writes pieces of 4096 bytes. Does not check the state of the stream: dbc::Download
    /// of dbc/files.h throws if the stream fails.
    /// @param gridFsCollection  prefix of the two GridFS collections
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error: iostream is not initialized" if @p stream is null; "Error occurred while
    ///                                <step> operation..."; bytes read so far are in the stream
    virtual void readFile(const std::string& database, const std::string& gridFsCollection, const std::string& fileName,
                          std::iostream* stream);
    /// Stores a local file. Does not replace a stored file with the same name.
    ///
    /// The file is visible under its name from the first chunk of 255 KiB on, and its length grows with each chunk. If
    /// the upload fails or the process ends, an incomplete file stays. It can be read without an error.
    /// dbc::writeFile() of dbc/files.h sets the name only after all bytes are stored.
    /// @throws std::invalid_argument  no connection; an empty name or path
    /// @throws std::runtime_error     "Error occurred while <step> operation..."
    virtual void writeFile(const std::string& database, const std::string& gridFsCollection,
                           const std::string& fileName, const std::string& inputFilePath);
    /// Appends the names of all stored files to @p names, in ascending order. Files without a name are left out.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while <step> operation..."; names appended so far stay
    virtual void listFiles(const std::string& database, const std::string& gridFsCollection,
                           std::list<std::string>& names);
    /// Removes every stored file with this name. The comparison ignores case: callers depend on it. Does nothing if
    /// there is no such file. Reads the whole list of files, so the time grows with their number.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while <step> operation..."; files removed so far stay removed
    virtual void removeFile(const std::string& database, const std::string& gridFsCollection,
                            const std::string& fileName);
    /// Calls the virtual connect(uri) with the uri() of host and port.
    virtual void connect(const std::string& host, int port);
    /// Calls the virtual read() with the two names that parseOldCollectionName() returns.
    virtual void read(const std::string& fullCollectionName, const ObjectProperties& query,
                      std::list<ObjectProperties*>& results);
    /// Calls the virtual write() with the two names that parseOldCollectionName() returns.
    virtual void write(const std::string& fullCollectionName, const ObjectProperties& document);
    /// Calls the virtual remove() with the two names that parseOldCollectionName() returns.
    virtual void remove(const std::string& fullCollectionName, const ObjectProperties& query);

    // Static, so not part of the closed table.

    /// Returns the client that the whole process shares. The first call creates it; that call is not thread-safe. It is
    /// destroyed at exit: do not delete it.
    static DataBaseClient* instance();
    /// Returns "mongodb://", "user:password@" if both are set, and "host:port/database". Does not escape anything: the
    /// caller must percent-encode characters that are reserved in a connection string.
    static std::string uri(const std::string& host, const int& port, const std::string& user,
                           const std::string& password, const std::string& database);

private:
    friend class dbc::ClientAccess;

    std::unique_ptr<DataBaseClientPrivate> d; // the only member: size and layout never change
};

static_assert(sizeof(DataBaseClient) == 2 * sizeof(void*), "callers were compiled against this layout");
