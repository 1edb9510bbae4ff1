// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"

#include "property/property_tree.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>

namespace {

// @param keyIfWanted  returns the key of a child, or null to leave it out
template <typename KeyIfWanted>
std::list<std::string> keysOfChildren(const Property& node, KeyIfWanted keyIfWanted)
{
    std::list<std::string> keys;
    if (!node.isGroup() && !node.isArray())
        return keys;
    for (const auto& entry : node)
    {
        if (const std::string* key = keyIfWanted(entry))
            keys.push_back(*key);
    }
    return keys;
}

} // namespace

Property::Property(const std::string& key, std::shared_ptr<Property> parent) : m_parent(parent) { m_item.m_key = key; }

std::shared_ptr<Property> Property::create()
{
    auto node = PropertyTree::newNode(std::string(), Undefined, {});
    node->init();
    return node;
}

void Property::init() { getPtr(); }
std::shared_ptr<Property> Property::getPtr() { return shared_from_this(); }
std::shared_ptr<Property> Property::parent() { return std::shared_ptr<Property>(m_parent); }
std::string Property::key() const { return m_item.m_key; }
const std::string& Property::keyView() const noexcept { return m_item.m_key; }

int Property::type() const { return m_item.m_type; }
bool Property::isGroup() const { return m_item.m_type == Group; }
bool Property::isArray() const { return m_item.m_type == Array; }
bool Property::isString() const { return m_item.m_type == String; }
bool Property::isBool() const { return m_item.m_type == Bool; }
bool Property::isInt32() const { return m_item.m_type == Int32; }
bool Property::isInt64() const { return m_item.m_type == Int64; }
bool Property::isDouble() const { return m_item.m_type == Double; }
bool Property::isTime() const { return m_item.m_type == Time; }
bool Property::isId() const { return m_item.m_type == Id; }
bool Property::isBinary() const { return m_item.m_type == Binary; }
bool Property::isRegex() const { return m_item.m_type == Regex; }

std::size_t Property::childCount() const { return m_children.size(); }
Property::Children::iterator Property::begin() { return m_children.begin(); }
Property::Children::iterator Property::end() { return m_children.end(); }
Property::Children::const_iterator Property::begin() const { return m_children.begin(); }
Property::Children::const_iterator Property::end() const { return m_children.end(); }

std::list<std::string> Property::childKeys() const
{
    return keysOfChildren(*this, [](const Children::value_type& entry) {
        return entry.second->isGroup() || entry.second->isArray() ? nullptr : &entry.first;
    });
}

std::list<std::string> Property::childGroups() const
{
    return keysOfChildren(
        *this, [](const Children::value_type& entry) { return entry.second->isGroup() ? &entry.first : nullptr; });
}

// Uses the key of the child, not the key of its map entry. They differ after a copy into the child: callers depend on
// it.
std::list<std::string> Property::childArrays() const
{
    return keysOfChildren(*this, [](const Children::value_type& entry) {
        return entry.second->isArray() ? &entry.second->keyView() : nullptr;
    });
}

bool Property::containsSingleKey(const std::string& key) const { return PropertyTree::child(*this, key) != nullptr; }

std::shared_ptr<Property> Property::propertyBySingleKey(const std::string& key)
{
    Property* child = PropertyTree::child(*this, key);
    return child ? child->getPtr() : nullptr;
}

std::shared_ptr<Property> Property::childByIndex(const int& index)
{
    const auto entry = PropertyTree::entryAt(*this, index);
    return entry == m_children.end() ? nullptr : entry->second;
}

std::shared_ptr<Property> Property::createSingleGroup(const std::string& key)
{
    return PropertyTree::createChild(*this, key, Group)->getPtr();
}

std::shared_ptr<Property> Property::createSingleArray(const std::string& key)
{
    Property* child = PropertyTree::createChild(*this, key, Array);
    return child->isArray() ? child->getPtr() : nullptr;
}

std::shared_ptr<Property> Property::createSingleProperty(const std::string& key)
{
    return PropertyTree::createChild(*this, key, Undefined)->getPtr();
}

void Property::remove(const std::string& key)
{
    const auto [entry, found] = PropertyTree::lookUp(*this, key);
    if (found)
        m_children.erase(entry);
}

void Property::removeAll(const std::string& key) { m_children.erase(key); }

void Property::remove(const int& index)
{
    const auto entry = PropertyTree::entryAt(*this, index);
    if (entry != m_children.end())
        m_children.erase(entry);
}

void Property::clearChilds() { PropertyTree::release(m_children); }

void Property::clear()
{
    clearChilds();
    m_item.clear();
}

void Property::copy(const Property& source) { PropertyTree::assume(*this, source, source.m_item.m_key); }
