// Connection strings.
#include <companion/connection_string.h>
#include <database_client.h>

#include <iostream>
#include <memory>
#include <stdexcept>

#include "example.h"

namespace {

void built()
{
    section("built");
    //! [built]
    std::cout << DataBaseClient::uri("db.example", 27017, "", "", "shop") << '\n';
    std::cout << DataBaseClient::uri("db.example", 27017, "ada", "secret", "shop") << '\n';
    std::cout << DataBaseClient::uri("db.example", 27017, "ada", "", "") << '\n'; // no password: no credentials
    //! [built]
}

void escaped()
{
    section("escaped");
    //! [escaped]
    DataBaseClient client;
    try
    {
        client.connect("shop", "db.example", 27017, "ada", "p@ss/word"); // uri() escapes nothing
    }
    catch (const std::runtime_error& error)
    {
        std::cout << error.what() << '\n';
    }

    client.connect("shop", "db.example", 27017, "ada", companion::percentEncoded("p@ss/word"));
    std::cout << client.isConnected() << '\n'; // the text is a connection string; no server was asked
    //! [escaped]
}

void options()
{
    section("options");
    //! [options]
    using std::chrono::seconds;
    std::cout << companion::ConnectionString()
                     .host("one.example")
                     .host("two.example", 27018)
                     .replicaSet("rs0")
                     .user("ada", "p@ss/word")
                     .authSource("admin")
                     .database("shop")
                     .tlsCaFile("/etc/ssl/shop-ca.pem")
                     .serverSelectionTimeout(seconds(5))
                     .socketTimeout(seconds(30))
                     .text()
              << '\n';
    //! [options]
}

} // namespace

int main()
{
    built();
    escaped();
    options();
}
