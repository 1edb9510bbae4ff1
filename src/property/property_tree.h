// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "property.h"

#include <memory>
#include <string>

/// Operations on the children and the parent of a node, and on subtrees. The only friend of Property. It uses plain
/// pointers, because a parent owns its children.
class PropertyTree
{
public:
    using Children = Property::Children;
    using Entry = Children::const_iterator;

    /// Result of the search for a child by key.
    struct LookUp
    {
        Entry entry; ///< The first child with the key, or the position at which to insert it.
        bool found;
    };

    static LookUp lookUp(const Property& node, const std::string& key);
    /// Returns the first child with the key, or null.
    static Property* child(const Property& node, const std::string& key);
    /// Returns the child at the index, or the end iterator.
    static Entry entryAt(const Property& node, int index);
    /// True if @p child is a child of @p node.
    static bool holds(const Property& node, const Property& child) noexcept;
    /// Returns the parent, or an empty pointer for a root or if the parent no longer exists.
    static std::shared_ptr<Property> parentOf(const Property& node) noexcept { return node.m_parent.lock(); }

    /// Creates a node without a value.
    static std::shared_ptr<Property> newNode(const std::string& key, PropertyType type,
                                             std::weak_ptr<Property>&& parent);
    /// Adds a child. @p place is the position from lookUp().
    static Property* insertChild(Property& node, Entry place, const std::string& key, PropertyType type);
    /// Returns the first child with the key, whatever its type, or a new child. On an array it always adds an element.
    static Property* createChild(Property& node, const std::string& key, PropertyType type);
    /// The same as createChild() for nodes that are not arrays. Faster if the child exists.
    static Property* findOrCreateChild(Property& node, const std::string& key, PropertyType type);
    static void removeChild(Property& node, Entry child) { node.m_children.erase(child); }

    /// Frees the value and makes the node a group. Keeps the children.
    static void becomeGroup(Property& node) noexcept;
    /// Sets the type after the value was set, and removes all children.
    static void becomeValue(Property& node, PropertyType type) noexcept;
    /// The same as Property::copy(), but sets the key to @p key.
    static void assume(Property& node, const Property& source, const std::string& key);
    /// Frees the children and their descendants, whatever their depth, without allocating memory.
    static void release(Children& children) noexcept { release(children, 0); }

private:
    static std::weak_ptr<Property> self(Property& node);
    static Children copyOfChildren(const Property& source, const std::weak_ptr<Property>& parent);
    static void release(Children& children, int depth) noexcept;
};
