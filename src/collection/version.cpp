// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/version.h"

#include <mongoc/mongoc.h>

namespace dbc {

const char* libraryVersion() noexcept { return DATABASE_CLIENT_VERSION; }

const char* driverVersion() noexcept { return mongoc_get_version(); }

} // namespace dbc
