// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <cstdint>

namespace test_support {

/// True if every nested document and array can be opened. The driver relies on that.
inline bool canBeEntered(const bson_t* bson)
{
    bson_iter_t iter;
    if (!bson_iter_init(&iter, bson))
        return false;
    while (bson_iter_next(&iter))
    {
        std::uint32_t length = 0;
        const std::uint8_t* bytes = nullptr;
        if (BSON_ITER_HOLDS_DOCUMENT(&iter))
            bson_iter_document(&iter, &length, &bytes);
        else if (BSON_ITER_HOLDS_ARRAY(&iter))
            bson_iter_array(&iter, &length, &bytes);
        else
            continue;
        bson_t inner;
        if (!bson_init_static(&inner, bytes, length) || !canBeEntered(&inner))
            return false;
    }
    return true;
}

} // namespace test_support
