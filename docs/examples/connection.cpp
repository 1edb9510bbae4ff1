// Connection strings.
#include <database_client.h>
#include <dbc/connection_string.h>
#include <dbc/log.h>

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

    client.connect("shop", "db.example", 27017, "ada", dbc::percentEncoded("p@ss/word"));
    std::cout << client.isConnected() << '\n'; // the text is a connection string; no server was asked
    //! [escaped]
}

void options()
{
    section("options");
    //! [options]
    using std::chrono::seconds;
    std::cout << dbc::ConnectionString()
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

void log()
{
    //! [log]
    // At the start of the program. Without a handler: dbc::setLogHandler(nullptr).
    dbc::setLogHandler([](dbc::LogLevel level, const std::string& domain, const std::string& message) {
        if (level <= dbc::LogLevel::Warning)
            std::clog << dbc::nameOf(level) << " from " << domain << ": " << message << '\n';
    });
    //! [log]
}

} // namespace

int main()
{
    log();
    built();
    escaped();
    options();
}
