// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Full collection names of any bytes: how they are cut, and that nothing is done with them without a connection.

#include "database_client.h"
#include "object_properties.h"
#include "require.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <stdexcept>
#include <string>

namespace {

template <typename Call>
void requireNoConnection(Call call)
{
    try
    {
        call();
    }
    catch (const std::invalid_argument& error)
    {
        require(error.what() == std::string("Connection is not established. Run connect before"),
                "the missing connection is reported first");
        return;
    }
    require(false, "an operation without a connection throws");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string fullName(data, data + size);
    std::string database = "before";
    std::string collection = "before";
    parseOldCollectionName(fullName, database, collection);
    if (fullName.find('.') == std::string::npos)
        require(database == fullName && collection == fullName, "without a dot both are the whole name");
    else
    {
        require(database.find('.') == std::string::npos, "the database ends at the first dot");
        require(std::string(database).append(".").append(collection) == fullName, "the rest is the collection");
    }

    std::string same = fullName;
    parseOldCollectionName(same, same, collection);
    require(same == database, "an output may be the input");

    static DataBaseClient client;
    const ObjectProperties document;
    std::list<ObjectProperties*> results;
    requireNoConnection([&] { client.write(fullName, document); });
    requireNoConnection([&] { client.read(fullName, document, results); });
    requireNoConnection([&] { client.remove(fullName, document); });
    require(results.empty(), "nothing is found without a connection");
    return 0;
}
