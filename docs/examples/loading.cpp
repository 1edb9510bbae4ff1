// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Loading the library at run time. This program is not linked with the library.
#include <database_client.h>
#include <object_properties.h>

#include <dlfcn.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

//! [library]
struct CloseLibrary
{
    void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

Library load()
{
    Library library(dlopen(LIBRARY, RTLD_NOW)); // "libdatabase_client.so.1"
    if (!library)
        throw std::runtime_error(dlerror());
    return library;
}
//! [library]

//! [make]
// Object is ObjectProperties, ObjectFilter or DataBaseClient.
template <typename Object>
std::unique_ptr<Object> make(const Library& library, const char* factory)
{
    void* const found = dlsym(library.get(), factory);
    if (!found)
        throw std::runtime_error(dlerror());
    return std::unique_ptr<Object>(reinterpret_cast<Object* (*)()>(found)());
}
//! [make]

void use()
{
    std::cout << "== use\n";
    //! [use]
    const Library library = load(); // declared first, so closed last
    const auto person = make<ObjectProperties>(library, "createObjectProperties");
    person->setValueString("name", "Ada");
    std::cout << person->valueAsString("name", "?") << '\n';

    const auto client = make<DataBaseClient>(library, "createDataBaseClient");
    std::cout << client->isConnected() << '\n';
    //! [use]
}

} // namespace

int main()
try
{
    use();
}
catch (const std::exception& error)
{
    std::cerr << error.what() << '\n';
    return 1;
}
