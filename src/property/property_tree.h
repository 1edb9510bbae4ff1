#pragma once

#include "property.h"

#include <memory>
#include <string>

/// The children and the parent of a node, and whole subtrees. The only class that Property lets in. It hands on plain
/// pointers: a node is held by its parent.
class PropertyTree
{
public:
    using Children = Property::Children;
    using Entry = Children::const_iterator;

    /// A search for a key among the children of a node.
    struct LookUp
    {
        Entry entry; ///< The first child with the key; without one, the place where it would be inserted.
        bool found;
    };

    static LookUp lookUp(const Property& node, const std::string& key);
    /// The first child with the key, or null.
    static Property* child(const Property& node, const std::string& key);
    /// The child at the index, or the end.
    static Entry entryAt(const Property& node, int index);
    /// Whether @p child is a child of @p node.
    static bool holds(const Property& node, const Property& child) noexcept;
    /// An empty pointer if there is no parent, or none any more.
    static std::shared_ptr<Property> parentOf(const Property& node) noexcept { return node.m_parent.lock(); }

    /// A new node without a value.
    static std::shared_ptr<Property> newNode(const std::string& key, PropertyType type,
                                             std::weak_ptr<Property>&& parent);
    /// Adds a child. @p place is where lookUp() found no child with the key.
    static Property* insertChild(Property& node, Entry place, const std::string& key, PropertyType type);
    /// The child with the key, whatever its kind, or a new one. On an array always a new element.
    static Property* createChild(Property& node, const std::string& key, PropertyType type);
    /// What createChild() does on all nodes but arrays, for children that are expected to exist.
    static Property* findOrCreateChild(Property& node, const std::string& key, PropertyType type);
    static void removeChild(Property& node, Entry child) { node.m_children.erase(child); }

    /// Frees the value and makes the node a group. The children stay.
    static void becomeGroup(Property& node) noexcept;
    /// Sets the kind of the value that the node has got, and removes all children.
    static void becomeValue(Property& node, PropertyType type) noexcept;
    /// Like Property::copy(), but the node gets this key.
    static void assume(Property& node, const Property& source, const std::string& key);
    /// Frees the children and what is below them, at any depth and without allocating.
    static void release(Children& children) noexcept { release(children, 0); }

private:
    static std::weak_ptr<Property> self(Property& node);
    static Children copyOfChildren(const Property& source, const std::weak_ptr<Property>& parent);
    static void release(Children& children, int depth) noexcept;
};
