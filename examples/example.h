// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <database_client.h>

#include <cstdlib>
#include <string>

// The connection string: the first argument, otherwise MONGODB_URI, otherwise a server on this machine.
inline std::string uriFrom(int argc, char** argv)
{
    const char* const fromEnvironment = std::getenv("MONGODB_URI");
    return argc > 1 ? argv[1] : fromEnvironment ? fromEnvironment : "mongodb://127.0.0.1:27017/";
}

// The database in the connection string, as in mongodb://host/name.
inline std::string databaseOf(DataBaseClient& client)
{
    std::string name;
    client.getDatabaseName(name);
    return name.empty() ? "example" : name;
}
