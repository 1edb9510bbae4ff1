// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <cstddef>

/// Everything that depends on the version of the driver. Supported: libmongoc and libbson 1.x from 1.23, and 2.x.

/// Returns a document as legacy Extended JSON; null if a string is not valid UTF-8. The caller frees it with
/// bson_free().
inline char* legacyJson(const bson_t* bson, std::size_t* length)
{
#if BSON_CHECK_VERSION(1, 29, 0)
    return bson_as_legacy_extended_json(bson, length);
#else
    return bson_as_json(bson, length);
#endif
}

/// Starts an array in a document. The caller chooses the keys of the elements.
inline bool beginArray(bson_t* bson, const char* key, int keyLength, bson_t* child)
{
#if BSON_CHECK_VERSION(2, 3, 0)
    return bson_append_array_unsafe_begin(bson, key, keyLength, child);
#else
    return bson_append_array_begin(bson, key, keyLength, child);
#endif
}
