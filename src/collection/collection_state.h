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
    /// Opens the collection after the checks of every operation.
    CollectionHandle open() const;

    ClientAccess client;
    std::string database;
    std::string name;
};

} // namespace dbc
