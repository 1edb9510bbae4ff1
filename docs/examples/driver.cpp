// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Using the driver directly. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <bson_to_properties.h>
#include <database_client.h>
#include <dbc/build.h>
#include <json_to_properties.h>
#include <properties_to_bson.h>

#include <mongoc/mongoc.h>

#include <exception>
#include <memory>
#include <stdexcept>

namespace {

//! [handles]
template <auto Destroy>
struct DestroyWith
{
    template <typename Handle>
    void operator()(Handle* handle) const noexcept
    {
        Destroy(handle);
    }
};
using DriverClient = std::unique_ptr<mongoc_client_t, DestroyWith<mongoc_client_destroy>>;
using DriverCollection = std::unique_ptr<mongoc_collection_t, DestroyWith<mongoc_collection_destroy>>;

// A BSON document on the stack, freed at the end of its block.
struct Bson
{
    Bson() { bson_init(&value); }
    explicit Bson(const ObjectProperties& document) { PropertiesToBson::convert(document, &value); }
    Bson(const Bson&) = delete;
    Bson& operator=(const Bson&) = delete;
    ~Bson() { bson_destroy(&value); }
    bson_t value;
};
//! [handles]

void count(const std::string& address, const std::string& databaseName)
{
    section("count");
    DataBaseClient client;
    client.connect(address);
    for (const char* const name : {"Ada", "Alan", "Bob"})
        client.write(databaseName, "people", dbc::document({{"name", name}}));
    const char* const database = databaseName.c_str();
    //! [count]
    const DriverClient driver(mongoc_client_new(address.c_str())); // has its own connection
    if (!driver)
        throw std::runtime_error("invalid connection string");
    const DriverCollection people(mongoc_client_get_collection(driver.get(), database, "people"));

    const Bson query(dbc::document({{"name", {{"$regex", "^A"}}}}));
    bson_error_t error{};
    const auto counted =
        mongoc_collection_count_documents(people.get(), &query.value, nullptr, nullptr, nullptr, &error);
    if (counted < 0)
        throw std::runtime_error(error.message);
    std::cout << counted << '\n';
    //! [count]
}

void command(const std::string& address, const std::string& databaseName)
{
    section("command");
    const DriverClient driver(mongoc_client_new(address.c_str()));
    const char* const database = databaseName.c_str();
    //! [command]
    // Runs any command of the server, for example to create an index. Converts the reply to a document.
    ObjectProperties create;
    JsonToProperties::convert(R"({"createIndexes": "people",
                                  "indexes": [{"name": "by_name", "key": {"name": 1}, "unique": true}]})",
                              &create);
    const Bson request(create);
    Bson reply;
    bson_destroy(&reply.value); // the driver initialises it
    bson_error_t error{};
    if (!mongoc_client_command_simple(driver.get(), database, &request.value, nullptr, &reply.value, &error))
        throw std::runtime_error(error.message);
    ObjectProperties answer;
    BsonToProperties::convert(&reply.value, &answer);
    std::cout << answer.contains("ok") << '\n';
    //! [command]
}

} // namespace

int main()
try
{
    const std::string address = test_support::TestServer::instance().uri();
    const test_support::ScratchDatabase database;
    count(address, database.name());
    command(address, database.name());
}
catch (const std::exception& error)
{
    std::cerr << error.what() << '\n';
    return 1;
}
