// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_properties_d.h"

#include "property.h"
#include "property/property_paths.h"
#include "property/property_tree.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

// True for keys without segments: empty, or only "/".
bool isRootKey(const std::string& key) noexcept { return key.find_first_not_of('/') == std::string::npos; }

// Restores the cursor, also after an exception.
class CursorReturn
{
public:
    explicit CursorReturn(std::shared_ptr<Property>& cursor) : m_cursor(cursor), m_node(cursor) {}
    CursorReturn(const CursorReturn&) = delete;
    CursorReturn& operator=(const CursorReturn&) = delete;
    ~CursorReturn() { m_cursor = std::move(m_node); }

private:
    std::shared_ptr<Property>& m_cursor;
    std::shared_ptr<Property> m_node;
};

} // namespace

ObjectPropertiesPrivate::ObjectPropertiesPrivate() : root(Property::create()), current(root)
{
    PropertyTree::becomeGroup(*root);
}

void ObjectPropertiesPrivate::beginGroup(const std::string& key) const
{
    current = isRootKey(key) ? root : property_paths::obtain(rootGroup(key), key, Group, Group)->getPtr();
}

// The cursor does not move if the node has no parent. That is the root, or a removed node whose parent was destroyed.
void ObjectPropertiesPrivate::endGroup() const
{
    if (auto parent = PropertyTree::parentOf(*current))
        current = std::move(parent);
}

// beginArray() on a group moves to the root, but beginGroup() with the key of an array enters the array: callers depend
// on the difference.
void ObjectPropertiesPrivate::beginArray(const std::string& key) const
{
    if (isRootKey(key))
    {
        current = root;
        return;
    }
    Property* node = property_paths::obtain(rootGroup(key), key, Array, Group);
    if (node->isGroup())
        current = root;
    else if (node->isArray())
        current = node->getPtr();
}

bool ObjectPropertiesPrivate::beginObject(const int& index) const
{
    auto child = current->childByIndex(index);
    if (!child)
        return false;
    current = std::move(child);
    return true;
}

void ObjectPropertiesPrivate::copy(const ObjectPropertiesPrivate& other)
{
    root->copy(*other.root);
    current = root;
}

void ObjectPropertiesPrivate::copyWithCursor(const ObjectPropertiesPrivate& other)
{
    const std::vector<int> positions = other.positionsToCursor();
    copy(other);
    for (auto position = positions.rbegin(); position != positions.rend(); ++position)
        beginObject(*position);
}

// Returns the child indexes on the path from the root to the cursor, innermost first. Empty if the cursor is outside
// the tree. Uses indexes, because elements can have equal keys.
std::vector<int> ObjectPropertiesPrivate::positionsToCursor() const
{
    std::vector<int> positions;
    for (auto node = current; node != root;)
    {
        auto parent = PropertyTree::parentOf(*node);
        if (!parent)
            return {};
        int position = 0;
        auto entry = parent->begin();
        for (; entry != parent->end() && entry->second != node; ++entry)
            ++position;
        if (entry == parent->end())
            return {};
        positions.push_back(position);
        node = std::move(parent);
    }
    return positions;
}

void ObjectPropertiesPrivate::include(const std::string& key, const ObjectPropertiesPrivate& other)
{
    Property& anchor = rootGroup(key);
    Property* target = property_paths::find(anchor, key);
    if (!target || !target->isGroup())
        target = anchor.createGroup(key).get();
    becomeGroupLike(*target, other);
}

void ObjectPropertiesPrivate::includeElement(const std::string& key, const ObjectPropertiesPrivate& other)
{
    becomeGroupLike(*rootGroup(key).createGroup(key), other);
}

// The target keeps its key. It becomes a group even if the other root has a value.
void ObjectPropertiesPrivate::becomeGroupLike(Property& target, const ObjectPropertiesPrivate& other)
{
    PropertyTree::assume(target, *other.root, target.keyView());
    PropertyTree::becomeGroup(target);
}

void ObjectPropertiesPrivate::exclude(const std::string& key, ObjectPropertiesPrivate& other)
{
    const auto [parent, entry] = property_paths::locate(rootGroup(key), key);
    if (!parent)
        return;
    const auto node = entry->second;
    PropertyTree::assume(*other.root, *node, std::string());
    other.current = other.root;
    if (&other == this)
        return; // assume() has replaced the whole tree
    PropertyTree::removeChild(*parent, entry);
    leave(*node);
}

// A removed node still has its parent pointer, so each step checks that the node is a child of its parent.
bool ObjectPropertiesPrivate::moveTo(const std::shared_ptr<Property>& node) const
{
    for (auto place = node; place != root;)
    {
        const auto parent = place ? PropertyTree::parentOf(*place) : nullptr;
        if (!parent || !PropertyTree::holds(*parent, *place))
            return false;
        place = parent;
    }
    current = node;
    return true;
}

// Owns the children during the walk, because the visitor may remove them.
void ObjectPropertiesPrivate::visitChildren(bool (*visit)(void* visitor), void* visitor) const
{
    std::vector<std::shared_ptr<Property>> children;
    children.reserve(current->childCount());
    for (const auto& entry : *current)
        children.push_back(entry.second);

    const CursorReturn cursorReturn(current);
    for (auto& child : children)
    {
        current = std::move(child);
        if (!visit(visitor))
            return;
    }
}

// Moves a cursor inside the subtree to the root.
void ObjectPropertiesPrivate::leave(const Property& subtree) const
{
    for (auto node = current; node; node = PropertyTree::parentOf(*node))
    {
        if (node.get() == &subtree)
        {
            current = root;
            return;
        }
    }
}
