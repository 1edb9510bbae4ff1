// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "database_client/sendable.h"

#include "conversion/bson_writer.h"
#include "object_properties.h"
#include "property/nesting_stack.h"

#include <cstddef>
#include <cstdint>

namespace {

// The driver validates documents recursively, so deeper ones could exhaust the stack. Servers accept about 100 levels.
constexpr std::size_t deepestNesting = 1000;
// The smallest size of a level: type, empty key, length and end of the nested document.
constexpr std::uint32_t smallestLevel = 7;

struct OpenDocument
{
    bson_iter_t iter;
};

// If the value at @p iter is a document, an array or code with a scope, sets @p nested before its first field and
// returns true.
bool enter(const bson_iter_t& iter, bson_iter_t& nested)
{
    if (BSON_ITER_HOLDS_DOCUMENT(&iter) || BSON_ITER_HOLDS_ARRAY(&iter))
        return bson_iter_recurse(&iter, &nested);
    if (!BSON_ITER_HOLDS_CODEWSCOPE(&iter))
        return false;
    std::uint32_t codeLength = 0;
    std::uint32_t scopeLength = 0;
    const std::uint8_t* scope = nullptr;
    bson_iter_codewscope(&iter, &codeLength, &scopeLength, &scope);
    return bson_iter_init_from_data(&nested, scope, scopeLength);
}

} // namespace

bool appendSendable(const ObjectProperties& document, bson_t* bson)
{
    return appendChildren(*document.root(), bson, deepestNesting);
}

bool canBeSent(const bson_t* bson)
{
    if (bson->len < smallestLevel * deepestNesting)
        return true; // too small to be too deep, so not walked
    OpenDocument next{};
    if (!bson_iter_init(&next.iter, bson))
        return false;
    NestingStack<OpenDocument> open;
    open.push(next);
    while (!open.empty())
    {
        bson_iter_t& innermost = open.top().iter;
        if (!bson_iter_next(&innermost))
            open.pop();
        else if (enter(innermost, next.iter))
        {
            if (open.size() > deepestNesting)
                return false;
            open.push(next);
        }
    }
    return true;
}
