// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "conversion/document_refill.h"

#include "bson_to_properties.h"
#include "conversion/bson_element.h"
#include "object_properties.h"
#include "property/nesting_stack.h"

#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

// After this number of successive documents with different fields, comparing them costs more than it saves.
constexpr int missesBeforeRest = 16;

bool isNested(bson_type_t type) { return type == BSON_TYPE_DOCUMENT || type == BSON_TYPE_ARRAY; }

bool isKept(bson_type_t type)
{
    switch (type)
    {
    case BSON_TYPE_DOUBLE:
    case BSON_TYPE_UTF8:
    case BSON_TYPE_SYMBOL:
    case BSON_TYPE_BINARY:
    case BSON_TYPE_OID:
    case BSON_TYPE_BOOL:
    case BSON_TYPE_DATE_TIME:
    case BSON_TYPE_REGEX:
    case BSON_TYPE_INT32:
    case BSON_TYPE_INT64:
    case BSON_TYPE_DOCUMENT:
    case BSON_TYPE_ARRAY:
        return true;
    case BSON_TYPE_EOD:
    case BSON_TYPE_UNDEFINED:
    case BSON_TYPE_NULL:
    case BSON_TYPE_DBPOINTER:
    case BSON_TYPE_CODE:
    case BSON_TYPE_CODEWSCOPE:
    case BSON_TYPE_TIMESTAMP:
    case BSON_TYPE_DECIMAL128:
    case BSON_TYPE_MAXKEY:
    case BSON_TYPE_MINKEY:
        break;
    }
    return false;
}

// Calls visit(iter, type, parent) for each element that a tree keeps, a document before its elements. visit() returns
// the index of the node of the element, or an empty optional to stop. The elements of a nested document get this index
// as their parent.
template <typename Visit>
bool visitKept(const bson_t* bson, Visit visit)
{
    struct Level
    {
        bson_iter_t iter;
        std::size_t parent;
    };
    NestingStack<Level> open;
    bson_iter_t iter;
    if (!bson_iter_init(&iter, bson))
        return false;
    open.push(iter, std::size_t{0});
    while (!open.empty())
    {
        Level& level = open.top();
        if (!bson_iter_next(&level.iter))
        {
            open.pop();
            continue;
        }
        const bson_type_t type = bson_iter_type_unsafe(&level.iter);
        if (!isKept(type))
            continue;
        const std::optional<std::size_t> place = visit(level.iter, type, level.parent);
        if (!place)
            return false;
        if (isNested(type))
        {
            bson_iter_t nested{};
            bson_iter_recurse(&level.iter, &nested);
            open.push(nested, *place);
        }
    }
    return true;
}

bool hasKey(const bson_iter_t& iter, const std::string& key)
{
    return bson_iter_key_len(&iter) == key.size() && std::memcmp(bson_iter_key(&iter), key.data(), key.size()) == 0;
}

bool fits(bson_type_t type, const Property& node)
{
    if (type == BSON_TYPE_DOCUMENT)
        return node.isGroup();
    return type == BSON_TYPE_ARRAY ? node.isArray() : !node.isGroup() && !node.isArray();
}

} // namespace

bool DocumentRefill::convert(const bson_t* bson, ObjectProperties& target)
{
    target.beginGroup("/");
    const bool isResting = m_misses > missesBeforeRest;
    if (!isResting && collect(*target.root()) && refill(bson))
    {
        m_misses = 0;
        return true;
    }
    if (target.root()->isGroup())
        target.root()->clearChilds();
    else
        target = ObjectProperties(); // the last document had an empty key, so its value is in the root
    if (!BsonToProperties::convert(bson, &target))
        return false;
    if (isResting)
        return true;
    ++m_misses;
    if (collect(*target.root()))
        learn(bson);
    return true;
}

// Returns false if a node cannot be reused: the caller has a pointer to it, or a copy into it has changed its key, or
// it is a root with a value.
bool DocumentRefill::collect(Property& root)
{
    struct Level
    {
        Property::Children::iterator next;
        Property::Children::iterator end;
        std::size_t place;
    };
    if (!root.isGroup())
        return false;
    m_nodes.clear();
    m_nodes.push_back({&root, nullptr, 0});
    NestingStack<Level> open;
    open.push(root.begin(), root.end(), std::size_t{0});
    while (!open.empty())
    {
        Level& level = open.top();
        if (level.next == level.end)
        {
            open.pop();
            continue;
        }
        const auto& [key, child] = *level.next++;
        if (child.use_count() != 1 || child->keyView() != key)
            return false;
        m_nodes.push_back({child.get(), &key, level.place});
        if (child->childCount() > 0)
            open.push(child->begin(), child->end(), m_nodes.size() - 1);
    }
    return true;
}

// Returns true if every element was written to a node, and every node was written once.
bool DocumentRefill::refill(const bson_t* bson)
{
    if (m_places.size() + 1 != m_nodes.size())
        return false;
    auto next = m_places.cbegin();
    const auto refillOne = [&](const bson_iter_t& iter, bson_type_t type,
                               std::size_t parent) -> std::optional<std::size_t> {
        if (next == m_places.cend())
            return std::nullopt;
        const std::size_t place = *next++;
        const Node& node = m_nodes[place];
        if (node.parent != parent || !hasKey(iter, *node.key) || !fits(type, *node.property))
            return std::nullopt;
        if (!isNested(type))
            setValue(iter, type, m_scratch, *node.property);
        return place;
    };
    return visitKept(bson, refillOne) && next == m_places.cend();
}

// Stores nothing for documents with duplicate keys or keys that are paths: they have no one-to-one relation to nodes.
void DocumentRefill::learn(const bson_t* bson)
{
    std::unordered_map<const Property*, std::size_t> places;
    for (std::size_t place = 1; place < m_nodes.size(); ++place)
        places.emplace(m_nodes[place].property, place);
    m_places.clear();
    std::vector<std::size_t> learnt;
    const auto learnOne = [&](const bson_iter_t& iter, bson_type_t /*type*/,
                              std::size_t parent) -> std::optional<std::size_t> {
        const std::string& key = ::refill(m_scratch.key, bson_iter_key(&iter), bson_iter_key_len(&iter));
        const auto found = places.find(m_nodes[parent].property->propertyBySingleKey(key).get());
        if (found == places.end())
            return std::nullopt;
        const std::size_t place = found->second;
        places.erase(found);
        learnt.push_back(place);
        return place;
    };
    if (visitKept(bson, learnOne) && places.empty())
        m_places.swap(learnt);
}
