#pragma once

#include "database_client.h"
#include "dbc/collection.h"

#include <memory>
#include <string>

/// Where to connect, and as whom. A password never has to stand on the command line, where other users see it.
struct ConnectionOptions
{
    std::string uri;          ///< --uri or DBC_URI; empty for the server on this machine
    std::string user;         ///< --user
    std::string passwordFile; ///< --password-file
    bool quiet = false;       ///< --quiet
};

/// The connection string with the credentials in it, percent-encoded. The password comes from the file, from
/// DBC_PASSWORD or from a prompt, in this order.
std::string connectionString(const ConnectionOptions& options);

/// A connected client. @throws Failure if the connection string cannot be read; without the password in its text
std::unique_ptr<DataBaseClient> connect(const std::string& uri);

/// The same, with the string of connectionString(), which may ask for a password.
std::unique_ptr<DataBaseClient> connect(const ConnectionOptions& options);

/// The database of the connection string. @throws Failure if it names none
std::string defaultDatabase(DataBaseClient& client);

/// Help text for the name of a collection.
extern const char* const collectionHelp;

/// The collection that the command line names as DATABASE.COLLECTION, or as COLLECTION in the database of the
/// connection string. @throws Failure for any other name
dbc::Collection collectionOf(DataBaseClient& client, const std::string& name);

/// First line of a file.
std::string readSecretFile(const std::string& path);

/// Asks on the terminal without showing what is typed. @throws Failure when there is no terminal
std::string promptSecret(const std::string& question);

/// The driver writes warnings of its own to standard error; what matters in them is in the errors that it reports.
void silenceDriver();

/// Hides the password of a connection string that was given on the command line from the list of processes.
void hidePasswords(int argumentCount, char** arguments);
