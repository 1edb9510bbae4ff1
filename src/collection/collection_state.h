#pragma once

#include "database_client/client_access.h"
#include "dbc/collection.h"
#include "driver/mongoc_handles.h"

#include <string>

namespace dbc {

struct Collection::State
{
    /// The collection, after the checks that every operation begins with.
    CollectionHandle open() const;

    ClientAccess client;
    std::string database;
    std::string name;
};

} // namespace dbc
