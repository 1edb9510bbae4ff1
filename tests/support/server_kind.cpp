// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "server_kind.h"

#include <string>

namespace test_support {
namespace {

/// Returns the string at a dotted path; empty if it does not exist.
std::string textAt(const bson_t* document, const char* path)
{
    bson_iter_t iter;
    bson_iter_t found;
    if (!bson_iter_init(&iter, document) || !bson_iter_find_descendant(&iter, path, &found) ||
        !BSON_ITER_HOLDS_UTF8(&found))
        return "";
    return bson_iter_utf8(&found, nullptr);
}

} // namespace

ServerKind serverKindFrom(const bson_t* buildInfo)
{
    // Version 1 has its version in "ferretdbVersion", version 2 in "ferretdb.version".
    for (const char* const path : {"ferretdbVersion", "ferretdb.version"})
    {
        if (textAt(buildInfo, path).rfind("v1.", 0) == 0)
            return ServerKind::FerretDbV1;
    }
    const bool isFerretDb = bson_has_field(buildInfo, "ferretdb") || bson_has_field(buildInfo, "ferretdbVersion");
    return isFerretDb ? ServerKind::FerretDbV2 : ServerKind::MongoDb;
}

} // namespace test_support
