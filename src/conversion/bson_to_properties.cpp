// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "bson_to_properties.h"

#include "conversion/bson_element.h"
#include "object_properties.h"
#include "property/nesting_stack.h"

#include <string>

namespace {

struct OpenDocument
{
    bson_iter_t iter;
    bool isArray;
};

void beginNested(ObjectProperties& properties, const std::string& key, bool isArray)
{
    if (isArray)
        properties.beginArray(key);
    else
        properties.beginGroup(key);
}

void endNested(ObjectProperties& properties, bool isArray)
{
    if (isArray)
        properties.endArray();
    else
        properties.endGroup();
}

} // namespace

bool BsonToProperties::convert(const bson_t* bson, ObjectProperties* properties)
{
    return bson && properties && bson_to_properties(bson, properties);
}

bool BsonToProperties::bson_to_properties(const bson_t* bson, ObjectProperties* properties)
{
    bson_iter_t iter;
    return bson_iter_init(&iter, bson) && parse(iter, properties);
}

bool BsonToProperties::parse(bson_iter_t& iter, ObjectProperties* properties)
{
    Scratch scratch;
    NestingStack<OpenDocument> open;
    for (;;)
    {
        bson_iter_t& current = open.empty() ? iter : open.top().iter;
        if (!bson_iter_next(&current))
        {
            if (open.empty())
                return true;
            endNested(*properties, open.top().isArray);
            open.pop();
            continue;
        }
        refill(scratch.key, bson_iter_key(&current), bson_iter_key_len(&current));
        const bson_type_t type = bson_iter_type_unsafe(&current);
        if (type != BSON_TYPE_ARRAY && type != BSON_TYPE_DOCUMENT)
        {
            setValue(current, type, scratch, *properties, scratch.key);
            continue;
        }
        const bool isArray = type == BSON_TYPE_ARRAY;
        beginNested(*properties, scratch.key, isArray);
        OpenDocument nested{{}, isArray};
        bson_iter_recurse(&current, &nested.iter); // fails for other types only
        open.push(nested);
    }
}
