// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client.h"
#include "dbc/collection.h"

#include <memory>
#include <string>

/// Connection options. A password is never required on the command line, where other users could see it.
struct ConnectionOptions
{
    std::string uri;          ///< --uri or DBC_URI; empty for the server on this machine
    std::string user;         ///< --user
    std::string passwordFile; ///< --password-file
    bool quiet = false;       ///< --quiet
};

/// Returns the connection string with percent-encoded credentials. The password comes from the file, from DBC_PASSWORD
/// or from a prompt, in this order.
std::string connectionString(const ConnectionOptions& options);

/// Returns a connected client. @throws Failure if the connection string is invalid; the message does not contain the
/// password
std::unique_ptr<DataBaseClient> connect(const std::string& uri);

/// The same with connectionString(), which may prompt for a password.
std::unique_ptr<DataBaseClient> connect(const ConnectionOptions& options);

/// Returns the database of the connection string. @throws Failure if it has no database; the message suggests @p form
std::string defaultDatabase(DataBaseClient& client, const std::string& form);

/// Help text for the name of a collection.
extern const char* const collectionHelp;

/// Returns the collection DATABASE.COLLECTION, or COLLECTION in the database of the connection string.
/// @throws Failure for any other name
dbc::Collection collectionOf(DataBaseClient& client, const std::string& name);

/// Returns the first line of a file.
std::string readSecretFile(const std::string& path);

/// Prompts on the terminal and hides the input. @throws Failure if there is no terminal
std::string promptSecret(const std::string& question);

/// Turns off the driver's log on standard error. Its errors are reported anyway.
void silenceDriver();

/// Overwrites the password of a connection string in the arguments, so that the list of processes does not show it.
void hidePasswords(int argumentCount, char** arguments);
