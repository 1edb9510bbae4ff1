// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "properties_to_bson.h"

#include "conversion/bson_writer.h"
#include "driver/driver.h"
#include "object_properties.h"
#include "property.h"
#include "property/nesting_stack.h"

#include <bson/bson.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

// A document that is being written. libbson builds a nested document in the buffer of its parent.
struct OpenDocument
{
    // `_bson_t` has no alignment attribute. A template argument would drop the attribute of `bson_t`, with a warning.
    explicit OpenDocument(const Property& node, _bson_t* parentBson = nullptr)
        : next(node.begin()), end(node.end()), isArray(node.isArray()), parent(parentBson)
    {}

    Property::Children::const_iterator next;
    Property::Children::const_iterator end;
    bool isArray;
    bson_t* parent;
    bson_t bson;
};

void appendId(bson_t* bson, const char* key, int keyLength, const char* text)
{
    // libbson reads 24 characters, also beyond the end of a shorter string.
    char padded[25] = {};
    std::memcpy(padded, text, strnlen(text, sizeof(padded) - 1));
    bson_oid_t id;
    bson_oid_init_from_string(&id, padded);
    bson_append_oid(bson, key, keyLength, &id);
}

void appendBinary(bson_t* bson, const std::string& key, const std::vector<unsigned char>& bytes)
{
    // A binary without bytes is left out: callers depend on it.
    if (!bytes.empty())
    {
        bson_append_binary(bson, key.c_str(), static_cast<int>(key.size()), BSON_SUBTYPE_BINARY, bytes.data(),
                           static_cast<std::uint32_t>(bytes.size()));
    }
}

void appendValue(bson_t* bson, Property& node, PropertyType type)
{
    const std::string& fullKey = node.keyView();
    const char* const key = fullKey.c_str();
    const auto keyLength = static_cast<int>(std::strlen(key));
    switch (type)
    {
    case Undefined:
        bson_append_undefined(bson, key, keyLength);
        break;
    case String:
        bson_append_utf8(bson, key, keyLength, node.textView(), static_cast<int>(std::strlen(node.textView())));
        break;
    case Bool:
        bson_append_bool(bson, key, keyLength, node.currentValueAsBool(false));
        break;
    case Int32:
        bson_append_int32(bson, key, keyLength, node.currentValueAsInt32(0));
        break;
    case Int64:
        bson_append_int64(bson, key, keyLength, node.currentValueAsInt64(0));
        break;
    case Double:
        bson_append_double(bson, key, keyLength, node.currentValueAsDouble(0.0));
        break;
    case Time:
        bson_append_date_time(bson, key, keyLength, node.currentValueAsTime(0));
        break;
    case Id:
        appendId(bson, key, keyLength, node.textView());
        break;
    case Binary:
        appendBinary(bson, fullKey, node.bytesView());
        break;
    case Regex:
        bson_append_regex(bson, key, static_cast<int>(fullKey.size()), node.patternView().c_str(),
                          node.optionsView().c_str());
        break;
    case None:
    case Group:
    case Array:
        break;
    }
}

// Large documents do not fit in the caches, so the next node is fetched while libbson copies this one. Value and key
// are in different cache lines.
void fetchAhead(const Property& node) noexcept
{
    __builtin_prefetch(&node);
    __builtin_prefetch(&node.keyView());
}

// Returns the next child that is a group or an array, or null at the end.
const Property* appendValuesUpToNested(bson_t* bson, OpenDocument& document)
{
    while (document.next != document.end)
    {
        Property& child = *document.next->second;
        if (++document.next != document.end)
            fetchAhead(*document.next->second);
        const auto type = static_cast<PropertyType>(child.type());
        if (type == Group || type == Array)
            return &child;
        appendValue(bson, child, type);
    }
    return nullptr;
}

bool beginNested(const Property& node, bson_t* parent, bson_t* child)
{
    const char* const key = node.keyView().c_str();
    const auto keyLength = static_cast<int>(std::strlen(key));
    return node.isArray() ? beginArray(parent, key, keyLength, child)
                          : bson_append_document_begin(parent, key, keyLength, child);
}

void endNested(OpenDocument& nested)
{
    if (nested.isArray)
        bson_append_array_end(nested.parent, &nested.bson);
    else
        bson_append_document_end(nested.parent, &nested.bson);
}

} // namespace

bool PropertiesToBson::convert(const ObjectProperties& properties, bson_t* bson)
{
    return bson && properties_to_bson(properties, bson);
}

bool PropertiesToBson::properties_to_bson(const ObjectProperties& properties, bson_t* bson)
{
    bson_init(bson);
    return parse(properties.root(), bson);
}

bool PropertiesToBson::parse(std::shared_ptr<Property> node, bson_t* bson)
{
    return !node || appendChildren(*node, bson, std::numeric_limits<std::size_t>::max());
}

bool appendChildren(const Property& node, bson_t* bson, std::size_t levels)
{
    bool complete = true;
    NestingStack<OpenDocument> open;
    open.push(node);
    for (;;)
    {
        OpenDocument& innermost = open.top();
        bson_t* const target = innermost.parent ? &innermost.bson : bson;
        if (const Property* const nested = appendValuesUpToNested(target, innermost))
        {
            // beginNested() fails if the document reached the size limit of libbson. Then there is nothing to end.
            if (open.size() > levels)
                complete = false;
            else if (!beginNested(*nested, target, &open.push(*nested, target).bson))
                open.pop();
            continue;
        }
        if (!innermost.parent)
            return complete;
        endNested(innermost);
        open.pop();
    }
}
