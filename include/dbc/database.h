#pragma once

/// @file
/// The operations on one database: collections, commands, users.

#include "database_client.h"
#include "dbc/collection.h"
#include "dbc/document_ref.h"
#include "dbc/options.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbc {
inline namespace v1 {

/// How strictly validation rules apply.
enum class ValidationLevel
{
    Strict,  ///< To every insert and update.
    Moderate ///< Not to updates of documents that break the rules already.
};

/// Options of Database::createCollection().
struct CreateCollectionOptions
{
    Value validator{};                                         ///< A filter that documents have to match.
    ValidationLevel validationLevel = ValidationLevel::Strict; ///< Sent only with a validator.
    bool warnOnly = false;                                     ///< Log documents that break the rules, and take them.
    std::int64_t cappedBytes = 0;                              ///< Keep the newest documents only; 0 means all.
    std::int64_t cappedDocuments = 0;                          ///< Also limit their number; 0 means no limit.
    Value collation{};                                         ///< Default rules for comparing strings.
};

/// A role of a user.
struct Role
{
    std::string name{};     ///< Its name, such as "readWrite".
    std::string database{}; ///< Where it is valid; if empty, in the database of the user.
};

/// A user of a database.
struct UserInfo
{
    std::string name{};        ///< The user's name.
    std::string database{};    ///< The database that authenticates the user.
    std::vector<Role> roles{}; ///< What the user may do.
    Value definition{};        ///< All that the server reports.
};

} // namespace v1

/// One database of a connected client. Cheap to make: nothing is sent. Must not outlive the DataBaseClient, but may be
/// made before it connects and used across reconnects. Not thread-safe, like the client. Moved
/// from, it can only be assigned to or destroyed.
///
/// Every operation throws, in this order of checks:
/// - std::logic_error       "The client of this object no longer exists"
/// - std::invalid_argument  "Connection is not established. Run connect before"
/// - std::invalid_argument  "Database name is empty", then an empty name among the arguments
/// - std::invalid_argument  a document that cannot be sent
/// - ServerError            a failure that the server or the driver reports
class DATABASE_CLIENT_API Database
{
public:
    /// The database @p name. It is not checked here.
    Database(DataBaseClient& client, std::string name);
    /// Takes over the state of @p other, which can only be destroyed or assigned to afterwards.
    Database(Database&& other) noexcept;
    /// As the constructor; the own state is released first.
    Database& operator=(Database&& other) noexcept;
    ~Database();

    /// Names of the databases of the server that the user may see.
    /// @throws ServerError "Listing databases failed..."
    static std::vector<std::string> names(DataBaseClient& client);

    /// Name of the database.
    const std::string& name() const noexcept;
    /// A collection of the database.
    Collection collection(const std::string& name) const;

    /// Names of the collections and views. @throws ServerError "Listing collections failed..."
    std::vector<std::string> collectionNames();
    /// Creates a collection. Without options there is no need to: the first insert creates it.
    /// @throws std::invalid_argument "Collection name is empty"
    /// @throws ServerError           "Creating the collection failed..."
    Collection createCollection(const std::string& name, const CreateCollectionOptions& options = {});
    /// Removes the database with its collections, without its users. Does nothing if it does not exist.
    /// @throws ServerError "Dropping the database failed..."
    void drop();

    /// Runs any command and returns the reply. Read and write concerns are not added. The name of a command is its
    /// first field: give a Value or braces, not an ObjectProperties, whose fields are sent in key order.
    /// @throws std::invalid_argument "Bad command"
    /// @throws ServerError           "Command failed..."
    Value command(const DocumentRef& command, const std::optional<ReadPreference>& readPreference = {});

    /// The users of the database. @throws ServerError "Listing users failed..."
    std::vector<UserInfo> users();
    /// Creates a user. @throws std::invalid_argument "User name is empty", "Password is empty"
    /// @throws ServerError "Adding the user failed..."
    void addUser(const std::string& name, const std::string& password, const std::vector<Role>& roles);
    /// Replaces the roles of a user. @throws std::invalid_argument "User name is empty"
    /// @throws ServerError "Changing the user failed..."
    void setRoles(const std::string& name, const std::vector<Role>& roles);
    /// Replaces the password of a user. @throws std::invalid_argument "User name is empty", "Password is empty"
    /// @throws ServerError "Changing the user failed..."
    void setPassword(const std::string& name, const std::string& password);
    /// Removes a user. @throws std::invalid_argument "User name is empty"
    /// @throws ServerError "Removing the user failed..."
    void removeUser(const std::string& name);

private:
    struct DATABASE_CLIENT_LOCAL State;
    std::unique_ptr<State> d;
};

} // namespace dbc
