// The library has no call that drops a database, so this one file talks to the driver. The driver is running by then:
// the first DataBaseClient has started it.
#include "own_database.h"

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
using ClientHandle = std::unique_ptr<mongoc_client_t, DestroyWith<mongoc_client_destroy>>;
using DatabaseHandle = std::unique_ptr<mongoc_database_t, DestroyWith<mongoc_database_destroy>>;

} // namespace

OwnDatabase::OwnDatabase(std::string uri, std::string name) : m_uri(std::move(uri)), m_name(std::move(name)) {}

OwnDatabase::~OwnDatabase()
{
    try
    {
        drop();
    }
    catch (const std::exception& problem)
    {
        std::cerr << "tour: the database " << m_name << " is left behind: " << problem.what() << '\n';
    }
}

void OwnDatabase::drop()
{
    if (std::exchange(m_dropped, true))
    {
        return;
    }
    const ClientHandle client(mongoc_client_new(m_uri.c_str()));
    if (!client)
    {
        throw std::runtime_error("no connection");
    }
    const DatabaseHandle database(mongoc_client_get_database(client.get(), m_name.c_str()));
    bson_error_t error{};
    if (!mongoc_database_drop(database.get(), &error))
    {
        throw std::runtime_error(error.message);
    }
}

} // namespace tour
