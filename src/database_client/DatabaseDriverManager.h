#pragma once

/// Keeps the driver initialised: from the first client's construction to the exit of the process.
class DatabaseDriverManager
{
public:
    DatabaseDriverManager();
    DatabaseDriverManager(const DatabaseDriverManager&) = delete;
    DatabaseDriverManager& operator=(const DatabaseDriverManager&) = delete;
    ~DatabaseDriverManager();

    /// Initialises the driver, unless that was done before. Not to be called by two threads at once the first time.
    static void init();
};
