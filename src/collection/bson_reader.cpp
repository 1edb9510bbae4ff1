// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/bson_reader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dbc {

bool findField(const bson_t* bson, const char* path, bson_iter_t* iter)
{
    bson_iter_t start;
    return bson_iter_init(&start, bson) && bson_iter_find_descendant(&start, path, iter);
}

std::string textField(const bson_t* bson, const char* path)
{
    bson_iter_t iter;
    if (!findField(bson, path, &iter) || !BSON_ITER_HOLDS_UTF8(&iter))
        return {};
    std::uint32_t length = 0;
    const char* const text = bson_iter_utf8(&iter, &length);
    return {text, length};
}

std::vector<std::string> textListField(const bson_t* bson, const char* path)
{
    std::vector<std::string> texts;
    bson_iter_t iter;
    bson_iter_t element;
    if (!findField(bson, path, &iter) || !BSON_ITER_HOLDS_ARRAY(&iter) || !bson_iter_recurse(&iter, &element))
        return texts;
    while (bson_iter_next(&element))
    {
        std::uint32_t length = 0;
        if (BSON_ITER_HOLDS_UTF8(&element))
        {
            const char* const text = bson_iter_utf8(&element, &length);
            texts.emplace_back(text, length);
        }
    }
    return texts;
}

std::int64_t numberField(const bson_t* bson, const char* path)
{
    bson_iter_t iter;
    if (!findField(bson, path, &iter))
        return 0;
    if (BSON_ITER_HOLDS_DOUBLE(&iter) || BSON_ITER_HOLDS_INT32(&iter) || BSON_ITER_HOLDS_INT64(&iter))
        return bson_iter_as_int64(&iter);
    return 0;
}

} // namespace dbc
