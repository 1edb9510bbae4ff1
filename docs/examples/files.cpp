// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Files in GridFS. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <database_client.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <list>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

std::string makeLocalFile(const std::string& content)
{
    std::string path = "/tmp/database_client_example_XXXXXX";
    const int file = mkstemp(path.data());
    std::ofstream(path) << content;
    close(file);
    return path;
}

void store(DataBaseClient& client, const std::string& database, const std::string& path)
{
    section("store");
    //! [store]
    client.writeFile(database, "fs", "note.txt", path);
    client.writeFile(database, "fs", "Note.TXT", path);

    std::list<std::string> names; // listFiles() appends and never clears
    client.listFiles(database, "fs", names);
    for (const std::string& name : names)
        std::cout << name << '\n';
    //! [store]
}

void load(DataBaseClient& client, const std::string& database)
{
    section("load");
    //! [load]
    std::stringstream content;
    client.readFile(database, "fs", "note.txt", &content);
    std::cout << content.str().size() << " bytes\n";
    //! [load]
}

void replace(DataBaseClient& client, const std::string& database, const std::string& path)
{
    section("replace");
    //! [replace]
    client.removeFile(database, "fs", "note.txt"); // removes both files: ignores case
    client.writeFile(database, "fs", "note.txt", path);

    std::list<std::string> names;
    client.listFiles(database, "fs", names);
    std::cout << names.size() << '\n';
    //! [replace]
}

void missing(DataBaseClient& client, const std::string& database)
{
    section("missing");
    //! [missing]
    client.removeFile(database, "fs", "other.txt"); // not an error, although the file does not exist
    try
    {
        std::stringstream content;
        client.readFile(database, "fs", "other.txt", &content);
    }
    catch (const std::runtime_error& error)
    {
        std::cout << error.what() << '\n';
    }
    //! [missing]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase database;
    const std::string path = makeLocalFile("Nothing is lost.\n");
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    store(client, database.name(), path);
    load(client, database.name());
    replace(client, database.name(), path);
    missing(client, database.name());
    std::remove(path.c_str());
}
