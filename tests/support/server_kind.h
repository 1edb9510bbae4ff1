// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

namespace test_support {

/// Servers that take different commands. Tests of behaviour on which these differ decide by this.
enum class ServerKind
{
    MongoDb,
    /// Closes the connection on array keys other than 0, 1, 2 ... and on undefined, and refuses duplicate keys.
    FerretDbV1,
    /// Version 2 and later: stores documents byte for byte; users belong to the whole server.
    FerretDbV2,
};

/// The kind of server that sent this reply to `buildInfo`.
ServerKind serverKindFrom(const bson_t* buildInfo);

} // namespace test_support
