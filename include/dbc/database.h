// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Operations on one database: collections, commands, users.

#include "database_client.h"
#include "database_client_export.h"
#include "dbc/collection.h"
#include "dbc/document_ref.h"
#include "dbc/options.h"
#include "dbc/value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbc {
inline namespace v1 {

/// Which writes are validated.
enum class ValidationLevel
{
    Strict,  ///< Every insert and update.
    Moderate ///< All writes except updates of documents that already break the rules.
};

/// Options of Database::createCollection().
struct CreateCollectionOptions
{
    Value validator{};                                         ///< Filter that every document must match.
    ValidationLevel validationLevel = ValidationLevel::Strict; ///< Sent only if there is a validator.
    bool warnOnly = false;                                     ///< Log documents that break the rules, but store them.
    std::int64_t cappedBytes = 0;     ///< Maximum size: the oldest documents are removed. 0 means no limit.
    std::int64_t cappedDocuments = 0; ///< Maximum number of documents if cappedBytes is set; 0 means no limit.
    Value collation{};                ///< Default rules for comparing strings.
};

/// A role of a user.
struct Role
{
    std::string name{};     ///< Name of the role, such as "readWrite".
    std::string database{}; ///< Database of the role; the database of the user if empty.
};

/// A user of a database.
struct UserInfo
{
    std::string name{};        ///< Name of the user.
    std::string database{};    ///< Authentication database of the user.
    std::vector<Role> roles{}; ///< Roles of the user.
    Value definition{};        ///< The whole user document of the server.
};

} // namespace v1

/// One database of a client. Creating a Database sends nothing. It can be created before connect(), and stays usable
/// after a reconnect. It does not own the DataBaseClient and must not outlive it: every operation then throws. Not
/// thread-safe: use it only in the thread of the client. Only assign to a moved-from object or destroy it.
///
/// Every operation checks in this order and throws:
/// - std::logic_error       "The client of this object no longer exists"
/// - std::invalid_argument  "Connection is not established. Run connect before"
/// - std::invalid_argument  "Database name is empty", then the text of the first argument that is empty;
///                          "... contains a zero byte" for a name or password
/// - std::invalid_argument  a document that cannot be sent
/// - ServerError            an error of the server or the driver
/// @since 1.0
class DATABASE_CLIENT_API Database
{
public:
    /// The database @p name. The name is not checked here.
    Database(DataBaseClient& client, std::string name);
    /// Moves the state.
    Database(Database&& other) noexcept;
    /// Moves the state.
    Database& operator=(Database&& other) noexcept;
    ~Database();

    /// Returns the names of all databases of the server that the user may see.
    /// @throws ServerError "Listing databases failed..."
    static std::vector<std::string> names(DataBaseClient& client);

    /// Name of the database.
    const std::string& name() const noexcept;
    /// Returns a collection of the database. Sends nothing, and does not check the name.
    /// @throws std::logic_error "The client of this object no longer exists"
    Collection collection(const std::string& name) const;

    /// Returns the names of the collections and views. @throws ServerError "Listing collections failed..."
    std::vector<std::string> collectionNames();
    /// Creates a collection. Needed only for options: the first insert creates a collection without options.
    /// @throws std::invalid_argument "Collection name is empty"
    /// @throws ServerError           "Creating the collection failed..."
    Collection createCollection(const std::string& name, const CreateCollectionOptions& options = {});
    /// Removes the database with its collections, but not its users. Does nothing if it does not exist.
    /// @throws ServerError "Dropping the database failed..."
    void drop();

    /// Runs any command and returns the reply. Adds no read concern or write concern. The first field must be the name
    /// of the command: pass a Value or braces, because the fields of an ObjectProperties are sent in key order.
    /// @throws std::invalid_argument "Bad command"
    /// @throws ServerError           "Command failed..."
    Value command(const DocumentRef& command, const std::optional<ReadPreference>& readPreference = {});

    /// Returns the users of the database. @throws ServerError "Listing users failed..."
    std::vector<UserInfo> users();
    /// Creates a user.
    /// @throws std::invalid_argument "User name is empty", "Password is empty"
    /// @throws ServerError           "Adding the user failed..."
    void addUser(const std::string& name, const std::string& password, const std::vector<Role>& roles);
    /// Replaces the roles of a user.
    /// @throws std::invalid_argument "User name is empty"
    /// @throws ServerError           "Changing the user failed..."
    void setRoles(const std::string& name, const std::vector<Role>& roles);
    /// Changes the password of a user.
    /// @throws std::invalid_argument "User name is empty", "Password is empty"
    /// @throws ServerError           "Changing the user failed..."
    void setPassword(const std::string& name, const std::string& password);
    /// Removes a user.
    /// @throws std::invalid_argument "User name is empty"
    /// @throws ServerError           "Removing the user failed..."
    void removeUser(const std::string& name);

private:
    struct DATABASE_CLIENT_LOCAL State;
    std::unique_ptr<State> d;
};

} // namespace dbc
