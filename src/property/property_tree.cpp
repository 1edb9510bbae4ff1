// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property/property_tree.h"

#include "property.h"
#include "property/nesting_stack.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

PropertyTree::LookUp PropertyTree::lookUp(const Property& node, const std::string& key)
{
    const Entry entry = node.m_children.lower_bound(key);
    return {entry, entry != node.m_children.end() && entry->first == key};
}

Property* PropertyTree::child(const Property& node, const std::string& key)
{
    const auto [entry, found] = lookUp(node, key);
    return found ? entry->second.get() : nullptr;
}

// Starts at the nearer end, because a map has no random access.
PropertyTree::Entry PropertyTree::entryAt(const Property& node, int index)
{
    const Children& children = node.m_children;
    const auto count = static_cast<std::ptrdiff_t>(children.size());
    if (index < 0 || index >= count)
        return children.end();
    return index <= count / 2 ? std::next(children.begin(), index) : std::prev(children.end(), count - index);
}

// Searches by key first. That finds nothing if a copy into the child has changed its key; then searches all children.
bool PropertyTree::holds(const Property& node, const Property& child) noexcept
{
    const auto isChild = [&child](const Children::value_type& entry) { return entry.second.get() == &child; };
    const auto [first, last] = node.m_children.equal_range(child.m_item.m_key);
    return std::any_of(first, last, isChild) || std::any_of(node.m_children.begin(), node.m_children.end(), isChild);
}

// The same as getPtr(), also in throwing std::bad_weak_ptr, but does not change the reference count.
std::weak_ptr<Property> PropertyTree::self(Property& node)
{
    auto weak = node.weak_from_this();
    if (weak.expired())
        throw std::bad_weak_ptr();
    return weak;
}

Property::Property(const Passkey& /*passkey*/, const std::string& key, PropertyType type,
                   std::weak_ptr<Property>&& parent)
    : m_item(key, type), m_parent(std::move(parent))
{}

std::shared_ptr<Property> PropertyTree::newNode(const std::string& key, PropertyType type,
                                                std::weak_ptr<Property>&& parent)
{
    return std::make_shared<Property>(Property::Passkey(), key, type, std::move(parent));
}

// Inlines all calls (flatten), because creating a node calls a dozen small functions of the standard library.
[[gnu::flatten]] Property* PropertyTree::insertChild(Property& node, Entry place, const std::string& key,
                                                     PropertyType type)
{
    return node.m_children.emplace_hint(place, key, newNode(key, type, self(node)))->second.get();
}

// On an array, the end hint inserts after all elements with an equal key. Fields are often added in key order, so the
// last key is compared first: if it is smaller, no search is needed.
Property* PropertyTree::createChild(Property& node, const std::string& key, PropertyType type)
{
    const Children& children = node.m_children;
    if (node.m_item.m_type == Array || children.empty() || std::prev(children.end())->first < key)
        return insertChild(node, children.end(), key, type);
    return findOrCreateChild(node, key, type);
}

Property* PropertyTree::findOrCreateChild(Property& node, const std::string& key, PropertyType type)
{
    const auto [entry, found] = lookUp(node, key);
    return found ? entry->second.get() : insertChild(node, entry, key, type);
}

void PropertyTree::becomeGroup(Property& node) noexcept
{
    if (node.m_item.m_type == Group)
        return;
    node.m_item.clear();
    node.m_item.m_type = Group;
}

void PropertyTree::becomeValue(Property& node, PropertyType type) noexcept
{
    node.m_item.m_type = type;
    release(node.m_children);
}

// Creates everything new before it frees anything: the source may be an ancestor or a descendant of this node.
void PropertyTree::assume(Property& node, const Property& source, const std::string& key)
{
    if (&node == &source)
        return;
    Property::PropertyItem item(source.m_item);
    item.m_key = key;
    Children children = copyOfChildren(source, self(node));
    node.m_item.swap(item);
    node.m_children.swap(children);
    release(children);
}

// Copies each level as a whole map first, because that needs no search for each child. The copied map shares the
// children of the source. Then replaces them by copies, one by one.
[[gnu::flatten]] PropertyTree::Children PropertyTree::copyOfChildren(const Property& source,
                                                                     const std::weak_ptr<Property>& parent)
{
    struct Level
    {
        Children::iterator next;
        Children::iterator end;
        std::weak_ptr<Property> parent;
    };
    Children result(source.m_children);
    NestingStack<Level> open;
    open.push(result.begin(), result.end(), parent);
    while (!open.empty())
    {
        Level& level = open.top();
        if (level.next == level.end)
        {
            open.pop();
            continue;
        }
        std::shared_ptr<Property>& entry = level.next++->second;
        const auto copy = newNode(entry->m_item.m_key, entry->m_item.m_type, std::weak_ptr<Property>(level.parent));
        copy->m_item.copyValue(entry->m_item);
        if (!entry->m_children.empty())
        {
            copy->m_children = entry->m_children;
            open.push(copy->m_children.begin(), copy->m_children.end(), copy);
        }
        entry = copy;
    }
    return result;
}

// Recursion is fast, but only safe up to a small depth. Deeper descendants are moved into one map and freed from there.
// That needs neither memory nor stack, so it cannot fail.
void PropertyTree::release(Children& children, int depth) noexcept
{
    if (children.empty())
        return;
    constexpr int deepest = 64;
    const auto ownsMore = [](const std::shared_ptr<Property>& child) {
        return !child->m_children.empty() && child.use_count() == 1;
    };
    if (depth < deepest)
    {
        for (auto& entry : children)
        {
            if (ownsMore(entry.second))
                release(entry.second->m_children, depth + 1);
        }
        children.clear();
        return;
    }
    while (!children.empty())
    {
        const auto entry = children.extract(children.begin());
        if (ownsMore(entry.mapped()))
            children.merge(entry.mapped()->m_children);
    }
}

Property::~Property() { PropertyTree::release(m_children); }
