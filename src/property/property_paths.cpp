#include "property.h"

#include "property/path_segments.h"

#include <iterator>

// Everything that follows or creates a key path. Steps hand on plain pointers: the nodes are held by their parents.

Property* Property::findChild(const std::string& key) const
{
    const auto place = m_children.lower_bound(key);
    return place != m_children.end() && place->first == key ? place->second.get() : nullptr;
}

// Flattened: making a node runs through a dozen small library functions, called one by one for every field read.
[[gnu::flatten]] Property* Property::insertChild(Children::iterator place, const std::string& key, PropertyType type)
{
    return m_children.emplace_hint(place, key, std::make_shared<Property>(Passkey(), key, type, self()))->second.get();
}

// On an array every call adds an element, behind those with an equal key: with the end as its hint the map does just
// that, and searches only where the key does not belong to the end. Elsewhere a child that exists is given as it is,
// whatever its kind. Documents mostly arrive in key order, so the end is looked at first: that saves the search.
Property* Property::createChild(const std::string& key, PropertyType type)
{
    if (isArray() || m_children.empty() || std::prev(m_children.end())->first < key)
        return insertChild(m_children.end(), key, type);
    return findOrCreateChild(key, type);
}

// What createChild() does on all nodes but arrays, for children that are expected to exist.
Property* Property::findOrCreateChild(const std::string& key, PropertyType type)
{
    const auto place = m_children.lower_bound(key);
    if (place != m_children.end() && place->first == key)
        return place->second.get();
    return insertChild(place, key, type);
}

// From the current segment on; the node of the last one is of the given type, those before it are groups.
Property* Property::createPath(PathSegments& segments, PropertyType type)
{
    Property* node = this;
    while (!segments.isLast())
    {
        node = node->createChild(segments.segment(), Group);
        segments.next();
    }
    return node->createChild(segments.segment(), type);
}

std::shared_ptr<Property> Property::createPath(const std::string& path, PropertyType type)
{
    PathSegments segments(path);
    return segments.next() ? createPath(segments, type)->getPtr() : getPtr();
}

// The parent and the entry of the node that the path names; no parent when it names none.
std::pair<Property*, Property::Children::iterator> Property::locate(const std::string& path)
{
    PathSegments segments(path);
    Property* node = this;
    std::pair<Property*, Children::iterator> result(nullptr, m_children.end());
    while (segments.next())
    {
        const std::string& key = segments.segment();
        const auto entry = node->m_children.lower_bound(key);
        if (entry == node->m_children.end() || entry->first != key)
            return {nullptr, entry};
        result = {node, entry};
        node = entry->second.get();
    }
    return result;
}

Property* Property::find(const std::string& path)
{
    if (isSingleSegment(path))
        return findChild(path);
    const auto [parent, entry] = locate(path);
    return parent ? entry->second.get() : nullptr;
}

// The node that the path names if it is of the accepted kind, any kind for None; otherwise what creating the path
// gives, in the same walk. Creation adds an element at the first array on the way, even if the path could be followed
// there: callers depend on the difference.
Property* Property::obtain(const std::string& path, PropertyType missing, PropertyType accepted)
{
    return isSingleSegment(path) ? createChild(path, missing) : obtainByPath(path, missing, accepted);
}

Property* Property::obtainByPath(const std::string& path, PropertyType missing, PropertyType accepted)
{
    PathSegments segments(path);
    if (!segments.next())
        return this;
    if (isArray())
        return createPath(segments, missing);

    Property* node = this;
    Property* firstArray = nullptr;
    const char* positionAtArray = nullptr;
    const auto createAtArray = [&] {
        segments.goTo(positionAtArray);
        return firstArray->createPath(segments, missing);
    };
    for (;;)
    {
        if (!firstArray && node->isArray())
        {
            firstArray = node;
            positionAtArray = segments.position();
        }
        const std::string& key = segments.segment();
        const auto place = node->m_children.lower_bound(key);
        const bool found = place != node->m_children.end() && place->first == key;
        if (!found && firstArray)
            return createAtArray();
        if (!found)
        {
            const bool last = segments.isLast();
            Property* child = node->insertChild(place, key, last ? missing : Group);
            return last || !segments.next() ? child : child->createPath(segments, missing);
        }
        node = place->second.get();
        if (segments.next())
            continue;
        const bool wanted = accepted == None || node->m_item.m_type == accepted;
        return wanted || !firstArray ? node : createAtArray();
    }
}

std::list<std::string> Property::splitKey(const std::string& path) const
{
    std::list<std::string> keys;
    for (PathSegments segments(path); segments.next();)
        keys.push_back(segments.segment());
    return keys;
}

bool Property::contains(const std::string& path)
{
    return find(path) != nullptr;
}

std::shared_ptr<Property> Property::propertyByKey(const std::string& path)
{
    Property* node = find(path);
    return node ? node->getPtr() : nullptr;
}

int Property::type(const std::string& path)
{
    const Property* node = find(path);
    return node ? node->type() : static_cast<int>(None);
}

std::shared_ptr<Property> Property::createSingleGroup(const std::string& key)
{
    return createChild(key, Group)->getPtr();
}

std::shared_ptr<Property> Property::createSingleArray(const std::string& key)
{
    Property* child = createChild(key, Array);
    return child->isArray() ? child->getPtr() : nullptr;
}

std::shared_ptr<Property> Property::createSingleProperty(const std::string& key)
{
    return createChild(key, Undefined)->getPtr();
}

std::shared_ptr<Property> Property::createGroup(const std::string& path)
{
    return createPath(path, Group);
}

// The asymmetry with groups and values is deliberate: a node of another kind is not handed out as an array.
std::shared_ptr<Property> Property::createArray(const std::string& path)
{
    PathSegments segments(path);
    if (!segments.next())
        return getPtr();
    Property* node = createPath(segments, Array);
    return node->isArray() ? node->getPtr() : nullptr;
}

std::shared_ptr<Property> Property::createProperty(const std::string& path)
{
    return createPath(path, Undefined);
}

std::shared_ptr<Property> Property::createPropertyIfNotExists(const std::string& path)
{
    return valueNode(path).getPtr();
}
