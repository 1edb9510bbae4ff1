// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// A program that knows the headers and the name of the library file, and links nothing of it.
// Usage: dlopen LIBRARY
#include <database_client.h>
#include <factories.h>
#include <object_filter.h>
#include <object_properties.h>

#include <dlfcn.h>
#include <iostream>
#include <memory>

namespace {

template <typename Object>
std::unique_ptr<Object> make(void* library, const char* factory)
{
    const auto create = reinterpret_cast<Object* (*)()>(dlsym(library, factory));
    return std::unique_ptr<Object>(create ? create() : nullptr);
}

} // namespace

int main(int argc, char** argv)
{
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!library)
    {
        std::cerr << "not loaded: " << dlerror() << '\n';
        return 1;
    }

    const auto document = make<ObjectProperties>(library, "createObjectProperties");
    const auto filter = make<ObjectFilter>(library, "createObjectFilter");
    const auto client = make<DataBaseClient>(library, "createDataBaseClient");
    if (!document || !filter || !client)
    {
        std::cerr << "a factory is missing\n";
        return 1;
    }

    document->setValueInt32("a/b", 7);
    document->beginGroup("a");
    filter->setFilterBool(OperationTypeExists, "a", true);
    return document->valueAsInt32("b", 0) == 7 && !filter->isEmpty() && !client->isConnected() &&
                   client->createId().size() == 24
               ? 0
               : 1;
}
