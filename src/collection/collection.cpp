// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/collection.h"

#include "collection/collection_state.h"
#include "collection/names.h"
#include "database_client.h"
#include "driver/mongoc_handles.h"

#include <utility>

namespace dbc {

CollectionHandle Collection::State::open() const
{
    mongoc_client_t* const connected = client.connected().get();
    checkName(database, "Database name");
    checkName(name, "Collection name");
    return CollectionHandle(mongoc_client_get_collection(connected, database.c_str(), name.c_str()));
}

Collection::Collection(DataBaseClient& client, std::string database, std::string name)
    : d(new State{ClientAccess(client), std::move(database), std::move(name)})
{}

Collection::Collection(Collection&& other) noexcept = default;

Collection& Collection::operator=(Collection&& other) noexcept = default;

Collection::~Collection() = default;

const std::string& Collection::database() const noexcept { return d->database; }

const std::string& Collection::name() const noexcept { return d->name; }

} // namespace dbc
