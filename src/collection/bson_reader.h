// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <cstdint>
#include <string>
#include <vector>

/// Reads fields of a reply by their dotted path. A field of another type is treated as missing.
namespace dbc {

/// Returns the string at @p path; empty if it does not exist.
std::string textField(const bson_t* bson, const char* path);
/// Returns the strings of the array at @p path.
std::vector<std::string> textListField(const bson_t* bson, const char* path);
/// Returns the number at @p path, of any numeric type; 0 if it does not exist.
std::int64_t numberField(const bson_t* bson, const char* path);
/// Sets @p iter to the field at @p path. Returns false if it does not exist.
bool findField(const bson_t* bson, const char* path, bson_iter_t* iter);

/// Calls @p visit with each document of the array at @p path.
template <typename Visit>
void forEachDocument(const bson_t* bson, const char* path, Visit visit)
{
    bson_iter_t iter;
    bson_iter_t element;
    if (!findField(bson, path, &iter) || !BSON_ITER_HOLDS_ARRAY(&iter) || !bson_iter_recurse(&iter, &element))
        return;
    while (bson_iter_next(&element))
    {
        bson_t document;
        const std::uint8_t* data = nullptr;
        std::uint32_t length = 0;
        if (!BSON_ITER_HOLDS_DOCUMENT(&element))
            continue;
        bson_iter_document(&element, &length, &data);
        if (bson_init_static(&document, data, length))
            visit(&document);
    }
}

} // namespace dbc
