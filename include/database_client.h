#pragma once

/// @file
/// The client: documents, users and files of a MongoDB server.

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
    UpdateFlagUpsert = 1,     ///< The first match; without one a new document is inserted.
    UpdateFlagMultiUpdate = 2 ///< Every match.
};

/// Operator of an update. The numbers are part of the library's interface.
enum UpdateCommand : int
{
    UpdateCommandUndefined = 0, ///< Refused: "Uncknown command".
    UpdateCommandReplace = 1,   ///< No operator: the document replaces the match, or holds the operators itself.
    UpdateCommandRename = 2,    ///< "$rename"
    UpdateCommandSet = 3,       ///< "$set"
    UpdateCommandUnset = 4,     ///< "$unset"
    UpdateCommandAddToSet = 5,  ///< "$addToSet"
    UpdateCommandPop = 6,       ///< "$pop"
    UpdateCommandPull = 7,      ///< "$pull"
    UpdateCommandPullAll = 8,   ///< "$pullAll"
    UpdateCommandPush = 9       ///< "$push"
};

/// Splits "database.collection" at its first dot. Without a dot both are the whole name: callers depend on it.
/// @param database    replaced by the text before the dot
/// @param collection  replaced by the text after it, further dots included
DATABASE_CLIENT_API void parseOldCollectionName(const std::string& fullName, std::string& database,
                                                std::string& collection);

/// A client of one server. It starts no thread, keeps no state but its connection, and reports every failure by an
/// exception that carries only a text:
/// - `std::invalid_argument`: "Connection is not established. Run connect before"; "<name> is empty" for a required
///   name; a document of more than 1,000 nested levels; an enumerator out of range. Nothing was sent.
/// - `std::runtime_error`: a failure that the driver or the server reports, as
///   "<message>: <driver text>(code: <code>)", the driver's text and the code left out where there is none.
///
/// Checks run in this order: the connection, each required name, the documents, the driver call. A failed operation
/// leaves the client connected and usable.
///
/// Depth: every operation refuses a document, query, projection, pipeline, roles or custom data of more than 1,000
/// levels of groups and arrays, with the text of that parameter ("Bad properties" and so on). The driver reads
/// documents by recursion, so deeper ones could exhaust the stack. libmongoc 1.30 and later refuse most documents of
/// more than 500 levels with an error of their own, a `std::runtime_error`. MongoDB itself takes 100.
///
/// One thread at a time, each client. The first client, and the first instance() call, come before other threads use
/// the library.
class DATABASE_CLIENT_API DataBaseClient
{
public:
    /// An unconnected client. The first one of the process starts the driver.
    DataBaseClient();
    DataBaseClient(const DataBaseClient&) = delete;
    DataBaseClient& operator=(const DataBaseClient&) = delete;

    // Slot order is part of the library's interface and closed.

    /// Disconnects.
    virtual ~DataBaseClient();

    /// Connects with uri() of these arguments; calls the virtual connect(uri). Mind the order: the database comes
    /// first.
    /// @throws std::runtime_error "Connection failed"
    virtual void connect(const std::string& database, const std::string& host, const int& port, const std::string& user,
                         const std::string& password);
    /// Takes a connection string, dropping an older connection first. Nothing is sent: a server that cannot be reached
    /// shows at the first operation.
    /// @throws std::runtime_error "Connection failed" when the text is not a connection string; the client is then
    ///         disconnected
    virtual void connect(const std::string& uri);
    /// Drops the connection, if there is one.
    virtual void disconnect();
    /// Whether connect() has succeeded since the last disconnect(). Asks no server.
    virtual bool isConnected() const;
    /// Inserts a document; the id is thrown away. Calls the virtual four-argument write.
    virtual void write(const std::string& database, const std::string& collection, const ObjectProperties& document);
    /// Inserts a document with a new "_id", appended whether or not the document holds one already: callers depend on
    /// it.
    /// @param id  replaced by the new id, 24 hexadecimal digits; set before the insert, so also when that fails
    /// @throws std::invalid_argument  no connection; an empty name; "Bad properties": more than 1,000 levels
    /// @throws std::runtime_error     "Error occurred while insert operation..."
    virtual void write(const std::string& database, const std::string& collection, const ObjectProperties& document,
                       std::string& id);
    /// Changes the documents that match @p query.
    /// @param document  operand of the operator @p command
    /// @throws std::invalid_argument  no connection; an empty name; "Uncknown command", "Uncknown update flag",
    ///                                "Bad properties" (@p document) or "Bad condition" (@p query): more than 1,000
    ///                                levels
    /// @throws std::runtime_error     "Error creating update document."; "Updating failed..."
    virtual void update(const std::string& database, const std::string& collection, const ObjectProperties& query,
                        const ObjectProperties& document, const UpdateFlag& flag, const UpdateCommand& command);
    /// Appends every match to @p results. Calls the virtual find without projection, limit and skip.
    virtual void read(const std::string& database, const std::string& collection, const ObjectProperties& query,
                      std::list<ObjectProperties*>& results);
    /// Appends the documents that match @p query to @p results.
    /// @param query       also the form {"$query": {...}, "$orderby": {...}}
    /// @param projection  fields to return; an empty document returns them all
    /// @param results     extended at its end, never cleared; the caller deletes each element
    /// @param limit       most documents to return; 0 is no limit
    /// @param skip        matching documents to pass over first
    /// @throws std::invalid_argument  no connection; an empty name; "Bad condition": more than 1,000 levels, or a
    ///                                "$query" that is not a document; "Bad propjection": more than 1,000 levels;
    ///                                "Bad results": a document from the server is not valid BSON
    /// @throws std::runtime_error     "Find error...."; what arrived before stays in @p results
    /// @note Documents without fields are left out.
    virtual void find(const std::string& database, const std::string& collection, const ObjectProperties& query,
                      const ObjectProperties& projection, std::list<ObjectProperties*>& results, int limit, int skip);
    /// Runs an aggregation; results as by find().
    /// @param pipeline  {"pipeline": [...]}, or a document whose keys are 0, 1, 2 and whose members are the stages
    /// @throws std::invalid_argument  no connection; an empty name; "Bad pipeline": more than 1,000 levels; "Bad
    ///                                results": a document from the server is not valid BSON
    /// @throws std::runtime_error     "Aggregation error...."; what arrived before stays in @p results
    virtual void aggregate(const std::string& database, const std::string& collection, const ObjectProperties& pipeline,
                           std::list<ObjectProperties*>& results);
    /// Deletes every document that matches @p query.
    /// @throws std::invalid_argument  no connection; an empty name; "Bad condition": more than 1,000 levels
    /// @throws std::runtime_error     "Error occurred while remove operation..."
    virtual void remove(const std::string& database, const std::string& collection, const ObjectProperties& query);
    /// Replaces @p name by the database of the connection string; by an empty text when there is none, or no
    /// connection.
    virtual void getDatabaseName(std::string& name);
    /// A new object id, 24 lower-case hexadecimal digits. Needs no connection.
    virtual std::string createId() const;
    /// Creates a user of @p database.
    /// @param password    an empty one is left out of the command
    /// @param roles       array-shaped: keys 0, 1, 2 ...
    /// @param customData  kept by the server with the user
    /// @throws std::invalid_argument  no connection; an empty name; "Bad roles." or "Bad custom data": more than 1,000
    ///                                levels
    /// @throws std::runtime_error     "Error occurred while adding user..."
    virtual void addUser(const std::string& database, std::string user, const std::string& password,
                         const ObjectProperties& roles, const ObjectProperties& customData);
    /// Replaces roles and custom data of a user, both also when empty. The password stays.
    /// @throws std::invalid_argument  no connection; an empty name; "Bad roles." or "Bad custom data": more than 1,000
    ///                                levels
    /// @throws std::runtime_error     "Error occurred while updating user..."
    virtual void updateUser(const std::string& database, std::string user, const ObjectProperties& roles,
                            const ObjectProperties& customData);
    /// Gives a user a new password.
    /// @throws std::invalid_argument  no connection; an empty name or password
    /// @throws std::runtime_error     "Error occurred while changing password..."
    virtual void changeUserPassword(const std::string& database, std::string user, const std::string& password);
    /// Deletes a user.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while removing user..."
    virtual void removeUser(const std::string& database, std::string user);
    /// Writes the content of a stored file to @p stream, at its write position. Needs 4096 bytes, whatever the file's
    /// size. The stream's state is not examined.
    /// @param gridFsCollection  prefix of the store's two collections
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error: iostream is not initialized"; "Error occurred while <driver call>
    ///                                operation..."; what was read before is in the stream
    virtual void readFile(const std::string& database, const std::string& gridFsCollection, const std::string& fileName,
                          std::iostream* stream);
    /// Stores a local file. A stored file of the same name stays beside it.
    ///
    /// The file has its name from the first chunk of 255 KiB on, and its length grows with each further one. If the
    /// upload fails or the process ends in the middle, a file of this name stays that is too short, but reads without
    /// an error. dbc::writeFile() of dbc/files.h gives the name only when everything is stored.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while <driver call> operation..."
    virtual void writeFile(const std::string& database, const std::string& gridFsCollection,
                           const std::string& fileName, const std::string& inputFilePath);
    /// Appends the names of all stored files, ascending; files without a name are left out.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while list gridFS files operation..."; names appended before stay
    virtual void listFiles(const std::string& database, const std::string& gridFsCollection,
                           std::list<std::string>& names);
    /// Deletes every stored file of this name, upper and lower case taken as equal: callers depend on it. Without a
    /// match nothing happens.
    /// @throws std::invalid_argument  no connection; an empty name
    /// @throws std::runtime_error     "Error occurred while remove gridFS file operation..."; files removed before stay
    ///                                removed
    virtual void removeFile(const std::string& database, const std::string& gridFsCollection,
                            const std::string& fileName);
    /// Connects with uri() of host and port; calls the virtual connect(uri).
    virtual void connect(const std::string& host, int port);
    /// read() with the names that parseOldCollectionName() gives.
    virtual void read(const std::string& fullCollectionName, const ObjectProperties& query,
                      std::list<ObjectProperties*>& results);
    /// write() with the names that parseOldCollectionName() gives.
    virtual void write(const std::string& fullCollectionName, const ObjectProperties& document);
    /// remove() with the names that parseOldCollectionName() gives.
    virtual void remove(const std::string& fullCollectionName, const ObjectProperties& query);

    // Beside the closed table: static.

    /// The client shared by the whole process, made at the first call and ended at exit. Never delete it.
    static DataBaseClient* instance();
    /// "mongodb://", "user:password@" when both are given, "host:port/database". Nothing is escaped: characters that
    /// are reserved in a connection string must be percent-encoded by the caller.
    static std::string uri(const std::string& host, const int& port, const std::string& user,
                           const std::string& password, const std::string& database);

private:
    friend class dbc::ClientAccess;

    std::unique_ptr<DataBaseClientPrivate> d; // the only member: size and layout never change
};

static_assert(sizeof(DataBaseClient) == 2 * sizeof(void*), "callers were compiled against this layout");
