#include "database_client/sendable.h"

#include <cstdint>

namespace {

// The driver checks documents with one call of its own per level: deeper ones would exhaust the stack of the thread.
// Servers take a tenth of that.
constexpr int deepestNesting = 1000;
// The least that a level takes: kind, an empty key, length and end of the nested document.
constexpr std::uint32_t smallestLevel = 7;

bool nestsWithin(bson_iter_t& iter, int levels)
{
    while (bson_iter_next(&iter))
    {
        bson_iter_t nested;
        if (!(BSON_ITER_HOLDS_DOCUMENT(&iter) || BSON_ITER_HOLDS_ARRAY(&iter)) || !bson_iter_recurse(&iter, &nested))
            continue;
        if (levels == 0 || !nestsWithin(nested, levels - 1))
            return false;
    }
    return true;
}

} // namespace

bool canBeSent(const bson_t* bson)
{
    if (bson->len < smallestLevel * deepestNesting)
        return true; // too short to be deep: nothing to walk
    bson_iter_t iter;
    return bson_iter_init(&iter, bson) && nestsWithin(iter, deepestNesting);
}
