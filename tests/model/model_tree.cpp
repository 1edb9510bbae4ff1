// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "model_tree.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>

namespace model {

namespace {

// Bit by bit: a NaN is equal to itself, and the two zeros differ.
std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

} // namespace

bool operator==(const Value& left, const Value& right)
{
    return left.kind == right.kind && left.text == right.text && left.options == right.options &&
           left.bytes == right.bytes && left.number == right.number && bitsOf(left.real) == bitsOf(right.real);
}

std::string describe(const Value& value)
{
    std::ostringstream text;
    text << "kind " << value.kind << " number " << value.number << " real " << value.real << " text \"" << value.text
         << "\" options \"" << value.options << "\" bytes";
    for (const unsigned char byte : value.bytes)
        text << ' ' << static_cast<int>(byte);
    return text.str();
}

NodePointer newNode(const std::string& key, int kind)
{
    auto node = std::make_shared<Node>();
    node->key = key;
    node->value.kind = kind;
    return node;
}

std::vector<std::string> split(const std::string& path)
{
    std::vector<std::string> segments(1);
    for (const char character : path)
    {
        if (character == '/')
            segments.emplace_back();
        else
            segments.back() += character;
    }
    segments.erase(std::remove(segments.begin(), segments.end(), std::string()), segments.end());
    return segments;
}

NodePointer Node::child(const std::string& wanted) const
{
    for (const auto& entry : children)
    {
        if (entry.first == wanted)
            return entry.second;
    }
    return nullptr;
}

NodePointer Node::childAt(int index) const
{
    if (index < 0 || index >= static_cast<int>(children.size()))
        return nullptr;
    return children[static_cast<std::size_t>(index)].second;
}

NodePointer Node::createChild(const std::string& wanted, int kind)
{
    if (const auto existing = child(wanted); existing && !isArray())
        return existing;
    auto created = newNode(wanted, kind);
    created->parent = weak_from_this();
    auto place = children.begin();
    while (place != children.end() && place->first <= wanted)
        ++place;
    children.insert(place, {wanted, created});
    return created;
}

NodePointer Node::createChildArray(const std::string& wanted)
{
    const auto existing = child(wanted);
    if (existing && !isArray() && !existing->isArray())
        return nullptr;
    return createChild(wanted, 3);
}

void Node::remove(const std::string& wanted)
{
    for (auto entry = children.begin(); entry != children.end(); ++entry)
    {
        if (entry->first == wanted)
        {
            children.erase(entry);
            return;
        }
    }
}

void Node::removeAll(const std::string& wanted)
{
    while (child(wanted))
        remove(wanted);
}

void Node::remove(int index)
{
    if (childAt(index))
        children.erase(children.begin() + index);
}

NodePointer Node::find(const std::string& path)
{
    const auto segments = split(path);
    if (segments.empty())
        return nullptr;
    NodePointer node = shared_from_this();
    for (const auto& segment : segments)
    {
        node = node->child(segment);
        if (!node)
            return nullptr;
    }
    return node;
}

namespace {

// Everything before the last segment, made as groups where it is missing.
NodePointer walkTo(Node& start, const std::vector<std::string>& segments)
{
    NodePointer node = start.shared_from_this();
    for (std::size_t i = 0; i + 1 < segments.size(); ++i)
        node = node->createChild(segments[i], 2);
    return node;
}

} // namespace

NodePointer Node::createGroup(const std::string& path)
{
    const auto segments = split(path);
    return segments.empty() ? shared_from_this() : walkTo(*this, segments)->createChild(segments.back(), 2);
}

NodePointer Node::createArray(const std::string& path)
{
    const auto segments = split(path);
    return segments.empty() ? shared_from_this() : walkTo(*this, segments)->createChildArray(segments.back());
}

NodePointer Node::createProperty(const std::string& path)
{
    const auto segments = split(path);
    return segments.empty() ? shared_from_this() : walkTo(*this, segments)->createChild(segments.back(), 1);
}

NodePointer Node::createIfMissing(const std::string& path)
{
    const auto found = find(path);
    return found && !isArray() ? found : createProperty(path);
}

std::list<std::string> Node::childKeys() const
{
    std::list<std::string> keys;
    if (!isGroup() && !isArray())
        return keys;
    for (const auto& entry : children)
    {
        if (!entry.second->isGroup() && !entry.second->isArray())
            keys.push_back(entry.first);
    }
    return keys;
}

std::list<std::string> Node::childGroups() const
{
    std::list<std::string> keys;
    if (!isGroup() && !isArray())
        return keys;
    for (const auto& entry : children)
    {
        if (entry.second->isGroup())
            keys.push_back(entry.first);
    }
    return keys;
}

std::list<std::string> Node::childArrays() const
{
    std::list<std::string> keys;
    if (!isGroup() && !isArray())
        return keys;
    for (const auto& entry : children)
    {
        if (entry.second->isArray())
            keys.push_back(entry.second->key);
    }
    return keys;
}

void Node::setValue(const Value& newValue)
{
    children.clear();
    value = newValue;
    const auto endAtZero = [](std::string& text) {
        if (const auto zero = text.find('\0'); zero != std::string::npos)
            text.resize(zero);
    };
    if (value.kind == 4 || value.kind == 10)
        endAtZero(value.text);
}

void Node::copy(const Node& source)
{
    if (&source == this)
        return;
    const std::string newKey = source.key;
    const Value newValue = source.value;
    std::vector<std::pair<std::string, NodePointer>> copies;
    for (const auto& entry : source.children)
    {
        auto node = newNode();
        node->parent = weak_from_this();
        node->copy(*entry.second);
        copies.emplace_back(entry.first, node);
    }
    key = newKey;
    value = newValue;
    children = copies;
}

} // namespace model
