// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

namespace test_support {

/// Servers that accept different commands. Tests use it if their expectations depend on the server.
enum class ServerKind
{
    MongoDb,
    /// Version 1: closes the connection if array keys are not 0, 1, 2 ... or if a value is undefined. Rejects duplicate
    /// keys.
    FerretDbV1,
    /// Version 2 and later: stores documents unchanged. Users belong to the whole server, not to a database.
    FerretDbV2,
};

/// Detects the server from its reply to `buildInfo`.
ServerKind serverKindFrom(const bson_t* buildInfo);

} // namespace test_support
