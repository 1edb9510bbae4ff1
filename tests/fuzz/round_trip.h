// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_handles.h"
#include "bson_to_properties.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "require.h"

#include <cstring>

/// Whether every element can be reached. bson_validate() would also refuse keys that are not UTF-8, which a document
/// may hold.
inline bool isWellFormed(const bson_t* bson)
{
    struct Walk
    {
        static bool toTheEnd(bson_iter_t& iter)
        {
            while (bson_iter_next(&iter))
            {
                const bool nested = BSON_ITER_HOLDS_DOCUMENT(&iter) || BSON_ITER_HOLDS_ARRAY(&iter);
                bson_iter_t child;
                if (nested && (!bson_iter_recurse(&iter, &child) || !toTheEnd(child)))
                    return false;
            }
            return iter.err_off == 0;
        }
    };
    bson_iter_t iter;
    return bson_iter_init(&iter, bson) && Walk::toTheEnd(iter);
}

/// The document as bytes. They become the same document again, and that one the same bytes: what a document can hold is
/// a fixed point of the conversion.
inline void requireFixedPoint(const ObjectProperties& document, OwnedBson& bson)
{
    require(PropertiesToBson::convert(document, bson.get()), "a document converts");
    require(isWellFormed(bson.get()), "what it converts to is well formed");

    ObjectProperties again;
    require(BsonToProperties::convert(bson.get(), &again), "what was written can be read");
    require(again.type() == Group && again.current() == again.root(), "the cursor is where it was");
    OwnedBson second;
    require(PropertiesToBson::convert(again, second.get()), "what was read converts");
    require(bson_equal(bson.get(), second.get()), "the second conversion gives the bytes of the first");

    const ObjectProperties copy(again);
    OwnedBson third;
    require(PropertiesToBson::convert(copy, third.get()), "a copy converts");
    require(bson_equal(bson.get(), third.get()), "a copy gives the same bytes");
}
