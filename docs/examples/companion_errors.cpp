// What can be done about a failure. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <companion/errors.h>
#include <database_client.h>

#include <exception>
#include <sstream>

namespace {

void kinds(DataBaseClient& client, const std::string& database)
{
    section("kinds");
    //! [kinds]
    std::stringstream content;
    try
    {
        client.readFile(database, "fs", "absent", &content);
    }
    catch (const std::exception& error)
    {
        const companion::ErrorInfo info = companion::describe(error);
        if (info.kind == companion::ErrorKind::Network || info.kind == companion::ErrorKind::Timeout)
            std::cout << "worth another try\n";
        else
            std::cout << companion::nameOf(info.kind) << '\n';
    }
    //! [kinds]
}

} // namespace

int main()
{
    const test_support::ScratchDatabase database;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    kinds(client, database.name());
}
