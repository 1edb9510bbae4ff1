// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client/client_access.h"
#include "dbc/collection.h"
#include "driver/mongoc_handles.h"

#include <string>

namespace dbc {

struct Collection::State
{
    /// Makes the checks that every operation starts with, and opens the collection.
    CollectionHandle open() const;

    ClientAccess client;
    std::string database;
    std::string name;
};

} // namespace dbc
