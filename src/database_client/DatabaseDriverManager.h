// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// Initializes the driver when the first client is created, and cleans it up when the process exits.
class DatabaseDriverManager
{
public:
    DatabaseDriverManager();
    DatabaseDriverManager(const DatabaseDriverManager&) = delete;
    DatabaseDriverManager& operator=(const DatabaseDriverManager&) = delete;
    ~DatabaseDriverManager();

    /// Initializes the driver if that was not done before. The first call is not thread-safe.
    static void init();
};
