// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "property.h"
#include "property/property_tree.h"

#include <string>

/// Finds or creates the nodes of a key path, starting at a node.
namespace property_paths {

/// A node in the children of its parent.
struct Location
{
    Property* parent; ///< Null if there is no node at the path.
    PropertyTree::Entry entry;
};

Location locate(Property& from, const std::string& path);

/// Returns the node at @p path, or null.
Property* find(Property& from, const std::string& path);

/// Returns the node at @p path. Creates missing nodes: the last one with the type @p missing, the others as groups. If
/// @p from is an array, always adds an element. If another array is on the path and the node does not exist or its type
/// is not @p accepted (None accepts every type), adds an element to the first array: callers depend on it.
Property* obtain(Property& from, const std::string& path, PropertyType missing, PropertyType accepted);

/// Returns the node whose value a setter sets. See Property::createPropertyIfNotExists().
Property& valueNode(Property& from, const std::string& path);

/// Returns the same node as valueNode(), faster if it exists.
Property& valueNodeToRead(Property& from, const std::string& path);

} // namespace property_paths
