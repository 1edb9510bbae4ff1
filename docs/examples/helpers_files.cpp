// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Files as streams. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <database_client.h>
#include <dbc/files.h>

#include <cstdint>
#include <exception>
#include <sstream>

namespace {

void stream(DataBaseClient& client, const std::string& database)
{
    section("stream");
    //! [stream]
    std::istringstream source("123456789"); // any stream, or a function that fills a buffer
    dbc::writeFile(client, database, "fs", "digits", source);

    std::ostringstream target;
    dbc::Download download(target, [](std::uint64_t bytes) {
        std::cout << bytes << " bytes so far\n";
        return true; // continue
    });
    client.readFile(database, "fs", "digits", &download);
    std::cout << target.str() << " has the checksum " << std::hex << download.crc32() << std::dec << '\n';
    //! [stream]
}

void cancel(DataBaseClient& client, const std::string& database)
{
    section("cancel");
    //! [cancel]
    std::ostringstream target;
    dbc::Download download(target, [](std::uint64_t /*bytes*/) { return false; });
    try
    {
        client.readFile(database, "fs", "digits", &download);
    }
    catch (const dbc::Cancelled& cancelled)
    {
        std::cout << cancelled.what() << '\n';
    }
    //! [cancel]
}

} // namespace

int main()
try
{
    const test_support::ScratchDatabase database;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    stream(client, database.name());
    cancel(client, database.name());
}
catch (const std::exception& error)
{
    std::cerr << error.what() << '\n';
    return 1;
}
