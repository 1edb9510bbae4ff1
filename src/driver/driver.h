#pragma once

#include <bson/bson.h>

#include <cstddef>

/// The one place that depends on the driver's version. Supported are libmongoc and libbson 1.x from 1.23, and 2.x.

/// A document as legacy extended JSON; null for text that is not UTF-8. The caller frees it with bson_free().
inline char* legacyJson(const bson_t* bson, std::size_t* length)
{
#if BSON_CHECK_VERSION(1, 29, 0)
    return bson_as_legacy_extended_json(bson, length);
#else
    return bson_as_json(bson, length);
#endif
}

/// Starts an array in a document. The caller numbers the elements.
inline bool beginArray(bson_t* bson, const char* key, int keyLength, bson_t* child)
{
#if BSON_CHECK_VERSION(2, 3, 0)
    return bson_append_array_unsafe_begin(bson, key, keyLength, child);
#else
    return bson_append_array_begin(bson, key, keyLength, child);
#endif
}
