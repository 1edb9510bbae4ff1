// Reading the text of an exception. Needs no server.
#include "example.h"

#include <companion/errors.h>
#include <database_client.h>

#include <stdexcept>

namespace {

void taken()
{
    section("apart");
    //! [apart]
    const std::runtime_error error("Error occurred while insert operation: E11000 duplicate key error(code: 11000)");
    const companion::ErrorInfo info = companion::describe(error);
    std::cout << companion::nameOf(info.kind) << ' ' << *info.code << '\n' << info.text << '\n';
    //! [apart]
}

void unconnected()
{
    section("unconnected");
    //! [unconnected]
    DataBaseClient client;
    try
    {
        client.remove("shop", "orders", ObjectProperties());
    }
    catch (const std::exception& error)
    {
        std::cout << companion::nameOf(companion::describe(error).kind) << '\n';
    }
    //! [unconnected]
}

} // namespace

int main()
{
    taken();
    unconnected();
}
