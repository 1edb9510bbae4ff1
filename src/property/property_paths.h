#pragma once

#include "property/property_tree.h"

#include <string>

/// Key paths that start at a node: they are followed, or created.
namespace property_paths {

/// A node that a path names.
struct Location
{
    Property* parent; ///< Null if the path names no node.
    PropertyTree::Entry entry;
};

Location locate(Property& from, const std::string& path);

/// The node that the path names, or null.
Property* find(Property& from, const std::string& path);

/// The node that the path names if it is of the accepted kind, any kind for None; otherwise what creating the path
/// gives: the last node of kind @p missing, and groups before it. Creation adds an element at the first array on the
/// way, even if the path could be followed there: callers depend on the difference.
Property* obtain(Property& from, const std::string& path, PropertyType missing, PropertyType accepted);

/// The node whose value a path sets: see Property::createPropertyIfNotExists().
Property& valueNode(Property& from, const std::string& path);

/// The same node, found faster if it exists.
Property& valueNodeToRead(Property& from, const std::string& path);

} // namespace property_paths
