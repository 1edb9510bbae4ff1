// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Loads the library at run time: this program is not linked with it. It finds three factories by name, and calls only
// virtual functions of the objects. Functions that are not virtual, such as DataBaseClient::instance(), and objects
// made without a factory need a linked library.
#include <database_client.h>
#include <dbc/results.h>
#include <object_filter.h>
#include <object_properties.h>

#include <dlfcn.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace {

struct CloseLibrary
{
    void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

// Creates an object with the factory of this name.
template <typename Object>
std::unique_ptr<Object> make(const Library& library, const char* factory)
{
    void* const found = dlsym(library.get(), factory);
    if (!found)
        throw std::runtime_error(dlerror());
    return std::unique_ptr<Object>(reinterpret_cast<Object* (*)()>(found)());
}

void run(const Library& library, const std::string& uri)
{
    const auto client = make<DataBaseClient>(library, "createDataBaseClient");
    client->connect(uri);
    std::string database;
    client->getDatabaseName(database);
    if (database.empty())
        database = "example";

    const auto document = make<ObjectProperties>(library, "createObjectProperties");
    document->setValueString("name", "Lisbon");
    client->write(database, "cities", *document);

    const auto filter = make<ObjectFilter>(library, "createObjectFilter");
    filter->setFilterString(OperationTypeRegex, "name", "^lis", "i");
    // Constructed in place: copying or destroying a temporary object needs a linked library.
    const std::unique_ptr<ObjectProperties> query(new ObjectProperties(filter->toObjectProeprties()));

    dbc::Results found;
    client->read(database, "cities", *query, found);
    for (const ObjectProperties& city : found)
        std::cout << city.valueAsString("name", "?") << '\n';
    client->remove(database, "cities", *query);
}

} // namespace

// LIBRARY is libdatabase_client.so.1, or libdatabase_client.so.1-mongoc2 if the library is built with libmongoc 2.x.
int main(int argc, char** argv)
try
{
    const Library library(dlopen(LIBRARY, RTLD_NOW));
    if (!library)
        throw std::runtime_error(dlerror());
    const char* const given = argc > 1 ? argv[1] : std::getenv("MONGODB_URI");
    run(library, given != nullptr ? given : "mongodb://127.0.0.1:27017/"); // destroys its objects first
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
