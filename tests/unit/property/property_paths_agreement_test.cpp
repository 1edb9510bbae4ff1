// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The path operations walk a path once. Here the same paths are followed the slow way, segment by segment with the
// operations for one key, and both must leave the same tree and give the same node.

#include "property.h"
#include "tree_text.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <memory>
#include <random>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;
using test_support::treeText;

bool containsStepwise(NodePointer node, const std::list<std::string>& segments)
{
    for (const std::string& segment : segments)
    {
        if (!node->containsSingleKey(segment))
            return false;
        node = node->propertyBySingleKey(segment);
    }
    return !segments.empty();
}

NodePointer findStepwise(NodePointer node, const std::string& path)
{
    const auto segments = node->splitKey(path);
    if (!containsStepwise(node, segments))
        return nullptr;
    for (const std::string& segment : segments)
        node = node->propertyBySingleKey(segment);
    return node;
}

using CreateLast = NodePointer (Property::*)(const std::string&);

NodePointer createStepwise(NodePointer node, const std::string& path, CreateLast createLast)
{
    auto segments = node->splitKey(path);
    if (segments.empty())
        return node;
    const std::string last = segments.back();
    segments.pop_back();
    for (const std::string& segment : segments)
        node = node->createSingleGroup(segment);
    return ((*node).*createLast)(last);
}

NodePointer obtainStepwise(const NodePointer& node, const std::string& path)
{
    if (containsStepwise(node, node->splitKey(path)) && !node->isArray())
        return findStepwise(node, path);
    return createStepwise(node, path, &Property::createSingleProperty);
}

// Where a node stands: its index at every level, from the outside in.
std::string placeOf(const NodePointer& root, NodePointer node)
{
    if (!node)
        return "none";
    std::string place;
    while (node != root)
    {
        const NodePointer parent = node->parent();
        int index = 0;
        while (parent->childByIndex(index) != node)
            ++index;
        place.insert(0, "/" + std::to_string(index));
        node = parent;
    }
    return "root" + place;
}

class PathMaker
{
public:
    explicit PathMaker(unsigned seed) : m_numbers(seed) {}

    unsigned below(unsigned limit) { return static_cast<unsigned>(m_numbers() % limit); }

    std::string path()
    {
        static constexpr std::array<const char*, 5> parts = {"a", "b", "c", "/", ""};
        std::string path = below(5) == 0 ? "/" : "";
        for (unsigned count = below(5); count > 0; --count)
            path += std::string(path.empty() || path.back() == '/' ? "" : "/") + parts[below(parts.size())];
        return path;
    }

private:
    std::mt19937 m_numbers;
};

struct Pair
{
    NodePointer fast;
    NodePointer slow;
};

Pair apply(unsigned operation, const NodePointer& fast, const NodePointer& slow, const std::string& path)
{
    switch (operation)
    {
    case 0:
        return {fast->createGroup(path), createStepwise(slow, path, &Property::createSingleGroup)};
    case 1:
        return {fast->createArray(path), createStepwise(slow, path, &Property::createSingleArray)};
    case 2:
        return {fast->createProperty(path), createStepwise(slow, path, &Property::createSingleProperty)};
    case 3:
        return {fast->createPropertyIfNotExists(path), obtainStepwise(slow, path)};
    case 4:
        fast->setValueInt32(path, 1);
        obtainStepwise(slow, path)->setValueInt32(1);
        return {};
    case 5:
        fast->valueAsString(path, "");
        obtainStepwise(slow, path);
        return {};
    default:
        EXPECT_EQ(fast->contains(path), containsStepwise(slow, slow->splitKey(path)));
        return {fast->propertyByKey(path), findStepwise(slow, path)};
    }
}

TEST(PropertyPathsAgreement, PathOperationsDoWhatTheirSegmentsDoOneByOne)
{
    for (unsigned seed = 1; seed <= 200; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        PathMaker make(seed);
        const NodePointer fastRoot = Property::create();
        const NodePointer slowRoot = Property::create();
        Pair from{fastRoot, slowRoot};
        for (int step = 0; step < 40; ++step)
        {
            const std::string path = make.path();
            const Pair reached = apply(make.below(7), from.fast, from.slow, path);
            ASSERT_EQ(placeOf(fastRoot, reached.fast), placeOf(slowRoot, reached.slow)) << path;
            ASSERT_EQ(treeText(*fastRoot), treeText(*slowRoot)) << path;
            // Now and then the next step starts inside the tree; a value may have cut that node off, so not for long.
            const bool goInside = reached.fast && make.below(3) == 0;
            from = goInside ? reached : Pair{fastRoot, slowRoot};
        }
    }
}

} // namespace
