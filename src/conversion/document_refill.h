#pragma once

#include "conversion/bson_element.h"

#include <bson/bson.h>

#include <cstddef>
#include <string>
#include <vector>

class ObjectProperties;
class Property;

/// Converts one document after the other into the same ObjectProperties. Documents of one collection mostly have the
/// same fields: then their values are set in the nodes that are there, which takes less than half of the instructions
/// of freeing the nodes and making new ones.
class DocumentRefill
{
public:
    /// What BsonToProperties::convert() does with an empty document. @p target must be the same each time; its cursor
    /// moves to the root. False if @p bson cannot be read.
    bool convert(const bson_t* bson, ObjectProperties& target);

private:
    struct Node
    {
        Property* property;
        const std::string* key; // under which it stands in its parent
        std::size_t parent;     // its place in m_nodes
    };

    bool collect(Property& root);
    bool refill(const bson_t* bson);
    void learn(const bson_t* bson);

    std::vector<Node> m_nodes;         // the tree: each node before its children
    std::vector<std::size_t> m_places; // the place in m_nodes of each element of the last document, in its order
    Scratch m_scratch;
    int m_misses = 0; // documents in a row that were unlike the one before
};
