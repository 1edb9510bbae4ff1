// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bson_bytes.h"
#include "bson_handles.h"
#include "bson_to_properties.h"
#include "driver.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "tree_text.h"

#include <functional>
#include <string>

using test_support::BsonBytes;
using test_support::treeText;

/// A document to append to. A separate type, because a template argument drops the alignment attribute of bson_t.
class BsonTarget
{
public:
    BsonTarget(bson_t* bson) : m_bson(bson) {}
    operator bson_t*() const noexcept { return m_bson; }

private:
    bson_t* m_bson;
};

using BuildBson = std::function<void(BsonTarget)>;

inline BsonBytes written(const ObjectProperties& document)
{
    OwnedBson bson;
    EXPECT_TRUE(PropertiesToBson::convert(document, bson.get()));
    return BsonBytes(bson.get());
}

inline BsonBytes built(const BuildBson& build)
{
    OwnedBson bson;
    build(bson.get());
    return BsonBytes(bson.get());
}

inline ObjectProperties readBson(const bson_t* bson)
{
    ObjectProperties document;
    EXPECT_TRUE(BsonToProperties::convert(bson, &document));
    return document;
}

inline ObjectProperties readBuilt(const BuildBson& build)
{
    OwnedBson bson;
    build(bson.get());
    return readBson(bson.get());
}

/// Appends a sub-document or an array that @p fill fills.
inline void appendNested(bson_t* bson, const char* key, bool isArray, const BuildBson& fill)
{
    bson_t child;
    if (isArray)
        beginArray(bson, key, -1, &child);
    else
        bson_append_document_begin(bson, key, -1, &child);
    fill(&child);
    if (isArray)
        bson_append_array_end(bson, &child);
    else
        bson_append_document_end(bson, &child);
}

inline void appendGroup(bson_t* bson, const char* key, const BuildBson& fill)
{
    appendNested(bson, key, false, fill);
}

inline void appendArray(bson_t* bson, const char* key, const BuildBson& fill)
{
    appendNested(bson, key, true, fill);
}

inline void appendNothing(bson_t* /*bson*/) {}
