// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property/property_paths.h"

#include "property.h"
#include "property/path_segments.h"
#include "property/property_tree.h"

#include <list>
#include <memory>
#include <string>

namespace {

// Creates the nodes from the current segment on: the last one with the given type, the others as groups.
Property* createPath(Property& from, PathSegments& segments, PropertyType type)
{
    Property* node = &from;
    while (!segments.isLast())
    {
        node = PropertyTree::createChild(*node, segments.segment(), Group);
        segments.next();
    }
    return PropertyTree::createChild(*node, segments.segment(), type);
}

Property* createPath(Property& from, const std::string& path, PropertyType type)
{
    PathSegments segments(path);
    return segments.next() ? createPath(from, segments, type) : &from;
}

Property* obtainByPath(Property& from, const std::string& path, PropertyType missing, PropertyType accepted)
{
    PathSegments segments(path);
    if (!segments.next())
        return &from;
    if (from.isArray())
        return createPath(from, segments, missing);

    Property* node = &from;
    Property* firstArray = nullptr;
    const char* positionAtArray = nullptr;
    const auto createAtArray = [&] {
        segments.goTo(positionAtArray);
        return createPath(*firstArray, segments, missing);
    };
    for (;;)
    {
        if (!firstArray && node->isArray())
        {
            firstArray = node;
            positionAtArray = segments.position();
        }
        const std::string& key = segments.segment();
        const auto [entry, found] = PropertyTree::lookUp(*node, key);
        if (!found && firstArray)
            return createAtArray();
        if (!found)
        {
            const bool last = segments.isLast();
            Property* child = PropertyTree::insertChild(*node, entry, key, last ? missing : Group);
            return last || !segments.next() ? child : createPath(*child, segments, missing);
        }
        node = entry->second.get();
        if (segments.next())
            continue;
        const bool wanted = accepted == None || node->type() == accepted;
        return wanted || !firstArray ? node : createAtArray();
    }
}

} // namespace

property_paths::Location property_paths::locate(Property& from, const std::string& path)
{
    PathSegments segments(path);
    Property* node = &from;
    Location location{nullptr, {}};
    while (segments.next())
    {
        const auto [entry, found] = PropertyTree::lookUp(*node, segments.segment());
        if (!found)
            return {nullptr, entry};
        location = {node, entry};
        node = entry->second.get();
    }
    return location;
}

Property* property_paths::find(Property& from, const std::string& path)
{
    if (isSingleSegment(path))
        return PropertyTree::child(from, path);
    const auto [parent, entry] = locate(from, path);
    return parent ? entry->second.get() : nullptr;
}

Property* property_paths::obtain(Property& from, const std::string& path, PropertyType missing, PropertyType accepted)
{
    return isSingleSegment(path) ? PropertyTree::createChild(from, path, missing)
                                 : obtainByPath(from, path, missing, accepted);
}

Property& property_paths::valueNode(Property& from, const std::string& path)
{
    return *obtain(from, path, Undefined, None);
}

// Searches first, because a node whose value is read usually exists.
Property& property_paths::valueNodeToRead(Property& from, const std::string& path)
{
    if (!isSingleSegment(path))
        return *obtainByPath(from, path, Undefined, None);
    return from.isArray() ? *PropertyTree::createChild(from, path, Undefined)
                          : *PropertyTree::findOrCreateChild(from, path, Undefined);
}

std::list<std::string> Property::splitKey(const std::string& path) const
{
    std::list<std::string> keys;
    for (PathSegments segments(path); segments.next();)
        keys.push_back(segments.segment());
    return keys;
}

bool Property::contains(const std::string& path) { return property_paths::find(*this, path) != nullptr; }

std::shared_ptr<Property> Property::propertyByKey(const std::string& path)
{
    Property* node = property_paths::find(*this, path);
    return node ? node->getPtr() : nullptr;
}

int Property::type(const std::string& path)
{
    const Property* node = property_paths::find(*this, path);
    return node ? node->type() : static_cast<int>(None);
}

std::shared_ptr<Property> Property::createGroup(const std::string& path)
{
    return createPath(*this, path, Group)->getPtr();
}

// Unlike createGroup(), never returns a node of another type: callers depend on it.
std::shared_ptr<Property> Property::createArray(const std::string& path)
{
    PathSegments segments(path);
    if (!segments.next())
        return getPtr();
    Property* node = createPath(*this, segments, Array);
    return node->isArray() ? node->getPtr() : nullptr;
}

std::shared_ptr<Property> Property::createProperty(const std::string& path)
{
    return createPath(*this, path, Undefined)->getPtr();
}

std::shared_ptr<Property> Property::createPropertyIfNotExists(const std::string& path)
{
    return property_paths::valueNode(*this, path).getPtr();
}
