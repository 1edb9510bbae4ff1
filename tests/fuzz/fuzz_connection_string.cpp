// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Connection strings: what uri() makes of any texts, and what connect() does with any string. Nothing is sent: a client
// that connects does not ask the server before its first operation.

#include "byte_source.h"
#include "database_client.h"
#include "require.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

// Strings that make the driver ask a name server or open a file.
bool reachesOut(const std::string& uri)
{
    std::string lower;
    for (const char character : uri)
        lower += static_cast<char>(character >= 'A' && character <= 'Z' ? character + 'a' - 'A' : character);
    return lower.find("+srv") != std::string::npos || lower.find("file") != std::string::npos;
}

void requireConnects(const std::string& uri)
{
    if (reachesOut(uri))
        return;
    DataBaseClient client;
    std::string name = "before";
    try
    {
        client.connect(uri);
        require(client.isConnected(), "connected when nothing was thrown");
        client.getDatabaseName(name);
        client.connect(uri);
        require(client.isConnected(), "what connects once connects again");
        client.disconnect();
    }
    catch (const std::runtime_error& error)
    {
        require(error.what() == std::string("Connection failed"), "a string that is refused has one text");
    }
    require(!client.isConnected(), "disconnected in the end");
    client.getDatabaseName(name);
    require(name.empty(), "no database without a connection");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ByteSource source(data, size);
    if (source.byte() % 2 == 0)
    {
        requireConnects(source.rest());
        return 0;
    }
    const int port = source.number<int>();
    const std::string host = source.text();
    const std::string user = source.text();
    const std::string password = source.text();
    const std::string database = source.text();
    const std::string uri = DataBaseClient::uri(host, port, user, password, database);
    std::string expected = "mongodb://";
    if (!user.empty() && !password.empty())
        expected += std::string(user).append(":").append(password).append("@");
    expected += std::string(host).append(":").append(std::to_string(port)).append("/").append(database);
    require(uri == expected, "the parts are joined as they are");
    requireConnects(uri);
    return 0;
}
