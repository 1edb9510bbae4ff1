#include "property.h"

#include "property/nesting_stack.h"

#include <algorithm>
#include <iterator>
#include <utility>

Property::Property(const std::string& key, std::shared_ptr<Property> parent) : m_parent(parent)
{
    m_item.m_key = key;
}

Property::Property(const Passkey& /*passkey*/, const PropertyItem& item, const std::weak_ptr<Property>& parent)
    : m_item(item), m_parent(parent)
{}

Property::Property(const Passkey& /*passkey*/, const std::string& key, PropertyType type,
                   std::weak_ptr<Property>&& parent)
    : m_item(key, type), m_parent(std::move(parent))
{}

Property::~Property()
{
    release(m_children, 0);
}

std::shared_ptr<Property> Property::create()
{
    auto node = std::make_shared<Property>(Passkey(), std::string(), Undefined, std::weak_ptr<Property>());
    node->init();
    return node;
}

void Property::init()
{
    getPtr();
}

std::shared_ptr<Property> Property::getPtr()
{
    return shared_from_this();
}

std::shared_ptr<Property> Property::parent()
{
    return std::shared_ptr<Property>(m_parent);
}

// What getPtr() is to an owner: it throws alike, but takes no share.
std::weak_ptr<Property> Property::self()
{
    auto weak = weak_from_this();
    if (weak.expired())
        throw std::bad_weak_ptr();
    return weak;
}

std::string Property::key() const
{
    return m_item.m_key;
}

std::size_t Property::childCount() const
{
    return m_children.size();
}

Property::Children::iterator Property::begin()
{
    return m_children.begin();
}

Property::Children::iterator Property::end()
{
    return m_children.end();
}

Property::Children::const_iterator Property::begin() const
{
    return m_children.begin();
}

Property::Children::const_iterator Property::end() const
{
    return m_children.end();
}

std::list<std::string> Property::keysOfChildren(const std::string* (*keyIfWanted)(const Children::value_type&)) const
{
    std::list<std::string> keys;
    if (!isGroup() && !isArray())
        return keys;
    for (const auto& entry : m_children)
    {
        if (const std::string* key = keyIfWanted(entry))
            keys.push_back(*key);
    }
    return keys;
}

std::list<std::string> Property::childKeys() const
{
    return keysOfChildren([](const Children::value_type& entry) {
        return entry.second->isGroup() || entry.second->isArray() ? nullptr : &entry.first;
    });
}

std::list<std::string> Property::childGroups() const
{
    return keysOfChildren(
        [](const Children::value_type& entry) { return entry.second->isGroup() ? &entry.first : nullptr; });
}

// The child's own key, not that of its entry, which a copy into the child can make differ: callers depend on it.
std::list<std::string> Property::childArrays() const
{
    return keysOfChildren([](const Children::value_type& entry) -> const std::string* {
        return entry.second->isArray() ? &entry.second->m_item.m_key : nullptr;
    });
}

bool Property::containsSingleKey(const std::string& key) const
{
    return findChild(key) != nullptr;
}

std::shared_ptr<Property> Property::propertyBySingleKey(const std::string& key)
{
    Property* child = findChild(key);
    return child ? child->getPtr() : nullptr;
}

std::shared_ptr<Property> Property::childByIndex(const int& index)
{
    const auto place = entryAt(index);
    return place == m_children.end() ? nullptr : place->second;
}

void Property::remove(const std::string& key)
{
    const auto place = m_children.lower_bound(key);
    if (place != m_children.end() && place->first == key)
        m_children.erase(place);
}

void Property::removeAll(const std::string& key)
{
    m_children.erase(key);
}

void Property::remove(const int& index)
{
    const auto place = entryAt(index);
    if (place != m_children.end())
        m_children.erase(place);
}

// From the nearer end: the map has no positions.
Property::Children::iterator Property::entryAt(int index)
{
    const auto count = static_cast<std::ptrdiff_t>(m_children.size());
    if (index < 0 || index >= count)
        return m_children.end();
    return index <= count / 2 ? std::next(m_children.begin(), index) : std::prev(m_children.end(), count - index);
}

void Property::clearChilds()
{
    release(m_children, 0);
}

void Property::clear()
{
    clearChilds();
    m_item.clear();
}

// The key leads to the node unless a copy into the node has changed it.
bool Property::holds(const Property& child) const noexcept
{
    const auto isChild = [&child](const Children::value_type& entry) { return entry.second.get() == &child; };
    const auto [first, last] = m_children.equal_range(child.m_item.m_key);
    return std::any_of(first, last, isChild) || std::any_of(m_children.begin(), m_children.end(), isChild);
}

void Property::becomeGroup() noexcept
{
    if (isGroup())
        return;
    m_item.clear();
    m_item.m_type = Group;
}

void Property::copy(const Property& source)
{
    assume(source, source.m_item.m_key);
}

// Everything new is made before anything old goes: the source may be part of this subtree, or this part of the
// source's.
void Property::assume(const Property& source, const std::string& key)
{
    if (this == &source)
        return;
    PropertyItem item(source.m_item);
    item.m_key = key;
    Children children = copyOfChildren(source, self());
    m_item.swap(item);
    m_children.swap(children);
    release(children, 0);
}

// Each level is first copied as a map, which takes over the shape of the tree: that saves searching a place for every
// child. Until its turn comes an entry of the copy shares the child of the source.
[[gnu::flatten]] Property::Children Property::copyOfChildren(const Property& source,
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
        const auto copy = std::make_shared<Property>(Passkey(), entry->m_item, level.parent);
        if (!entry->m_children.empty())
        {
            copy->m_children = entry->m_children;
            open.push(copy->begin(), copy->end(), copy);
        }
        entry = copy;
    }
    return result;
}

// Recursion is fast but bounded. Below the bound the children of a level are merged into one map and freed from there:
// that allocates nothing, so freeing cannot fail, and needs no stack, so it may be any depth.
void Property::release(Children& children, int depth) noexcept
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
