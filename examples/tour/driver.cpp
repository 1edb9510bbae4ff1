// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Drops a database with the driver; the rest of the tour uses only the
// library. The first DataBaseClient has initialised the driver.
#include "driver.h"

#include <dbc/log.h>
#include <dbc/results.h>

#include <database_client.h>

#include <mongoc/mongoc.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace tour {

namespace {

template <auto Destroy>
struct DestroyWith
{
    template <typename Handle>
    void operator()(Handle* handle) const noexcept
    {
        Destroy(handle);
    }
};
using ClientHandle =
    std::unique_ptr<mongoc_client_t, DestroyWith<mongoc_client_destroy>>;
using DatabaseHandle =
    std::unique_ptr<mongoc_database_t, DestroyWith<mongoc_database_destroy>>;

// Turns off the driver's log: the tour prints its own error message for an
// invalid connection string.
class SilentDriver
{
public:
    SilentDriver() { dbc::setLogHandler({}); }
    SilentDriver(const SilentDriver&) = delete;
    SilentDriver& operator=(const SilentDriver&) = delete;
    ~SilentDriver() { quietDriverLog(); }
};

} // namespace

void quietDriverLog()
{
    dbc::setLogHandler([](dbc::LogLevel level, const std::string& domain,
                          const std::string& message) {
        if (level <= dbc::LogLevel::Warning &&
            message.find("\"endSessions\"") == std::string::npos)
            std::cerr << "driver, " << domain << ": " << message << '\n';
    });
}

void connect(DataBaseClient& client, const std::string& uri,
             const std::string& database)
{
    try
    {
        const SilentDriver silent;
        client.connect(uri);
    }
    catch (const std::runtime_error& failed)
    {
        throw std::runtime_error(
            std::string(failed.what()) +
            ": not a connection string such as mongodb://host:port/");
    }
    try
    {
        dbc::Results found;
        client.find(database, "nothing", ObjectProperties(),
                    ObjectProperties(), found, 1, 0);
    }
    catch (const std::runtime_error& failed)
    {
        throw std::runtime_error(std::string("no answer from the server: ") +
                                 failed.what());
    }
}

OwnDatabase::OwnDatabase(std::string uri, std::string name)
    : m_uri(std::move(uri)), m_name(std::move(name))
{}

OwnDatabase::~OwnDatabase()
{
    try
    {
        drop();
    }
    catch (const std::exception& problem)
    {
        std::cerr << "tour: the database " << m_name
                  << " is left behind: " << problem.what() << '\n';
    }
}

void OwnDatabase::drop()
{
    if (std::exchange(m_dropped, true))
        return;
    const ClientHandle client(mongoc_client_new(m_uri.c_str()));
    if (!client)
        throw std::runtime_error("no connection");
    const DatabaseHandle database(
        mongoc_client_get_database(client.get(), m_name.c_str()));
    bson_error_t error{};
    if (!mongoc_database_drop(database.get(), &error))
        throw std::runtime_error(error.message);
}

} // namespace tour
