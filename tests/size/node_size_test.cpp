// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "captured_output.h"
#include "property.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;

const int depth = many();

NodePointer nested(int levels)
{
    NodePointer root = Property::create();
    Property* node = root.get();
    for (int level = 0; level < levels; ++level)
        node = (level % 2 ? node->createSingleArray("a") : node->createSingleGroup("g")).get();
    node->setValueString("text", "at the bottom");
    return root;
}

// Returns the number of levels below the root, not counting the value in the innermost level.
int depthOf(const Property& root)
{
    int levels = -1;
    for (const Property* node = &root; node->childCount() > 0; node = node->begin()->second.get())
        ++levels;
    return levels;
}

TEST(DeepTree, IsBuiltAndFreed)
{
    runOnSmallStack([] {
        NodePointer root = nested(depth);
        EXPECT_EQ(depthOf(*root), depth);
        const std::weak_ptr<Property> child = root->begin()->second;
        root.reset();
        EXPECT_TRUE(child.expired());
    });
}

TEST(DeepTree, OfAMillionLevelsIsCopiedAndFreed)
{
    runOnSmallStack([] {
        constexpr int million = 1000000;
        const NodePointer root = nested(million);
        const NodePointer copy = Property::create();
        copy->copy(*root);
        EXPECT_EQ(depthOf(*copy), million);
    });
}

TEST(DeepTree, IsCopiedOverAnotherOne)
{
    runOnSmallStack([] {
        const NodePointer root = nested(depth);
        const NodePointer copy = nested(depth / 2);
        copy->copy(*root);
        EXPECT_EQ(depthOf(*copy), depth);
    });
}

TEST(DeepTree, IsReplacedByItsOwnSubtreeAndGrowsByItsOwnCopy)
{
    runOnSmallStack([] {
        const NodePointer root = nested(depth);
        root->copy(*root->childByIndex(0));
        EXPECT_EQ(depthOf(*root), depth - 1);
        root->childByIndex(0)->copy(*root);
        EXPECT_EQ(depthOf(*root), depth);
    });
}

TEST(DeepTree, IsFreedByEveryOperationThatDropsChildren)
{
    runOnSmallStack([] {
        const NodePointer root = Property::create();
        root->createGroup("0")->copy(*nested(depth));
        root->createGroup("1")->copy(*nested(depth));
        root->createGroup("2")->copy(*nested(depth));
        root->createGroup("3")->copy(*nested(depth));
        root->propertyByKey("0")->clearChilds();
        root->propertyByKey("1")->clear();
        root->setValueInt32("2", 1);
        root->remove("3");
        EXPECT_EQ(root->childCount(), 3U);
    });
}

TEST(DeepTree, IsFreedExceptForNodesThatAreOwnedElsewhere)
{
    runOnSmallStack([] {
        NodePointer root = nested(depth);
        NodePointer held = root;
        for (int level = 0; level < depth / 2; ++level)
            held = held->childByIndex(0);
        root.reset();
        EXPECT_EQ(depthOf(*held), depth - depth / 2);
    });
}

TEST(DeepTree, IsCreatedAndFoundByItsPath)
{
    runOnSmallStack([] {
        std::string path;
        for (int level = 0; level < depth; ++level)
            path += "/g";
        const NodePointer root = Property::create();
        const NodePointer last = root->createGroup(path);
        EXPECT_EQ(root->propertyByKey(path), last);
        EXPECT_EQ(root->createPropertyIfNotExists(path), last);
        EXPECT_EQ(root->splitKey(path).size(), static_cast<std::size_t>(depth));
    });
}

TEST(DeepTree, IsPrinted)
{
    runOnSmallStack([] {
        const NodePointer root = nested(depth);
        test_support::CapturedOutput output;
        // A negative start level, so that no line is indented. Otherwise the output would not fit in memory.
        root->print(root.get(), -depth - 1);
        const std::string text = output.text();
        EXPECT_EQ(text.size(), (sizeof("\"g\": {\n") - 1 + sizeof("},\n") - 1) * static_cast<std::size_t>(depth) +
                                   sizeof("\"text\": \"at the bottom\",\n") - 1);
        EXPECT_EQ(text.substr(0, 14), "\"g\": {\n\"a\": [\n");
        EXPECT_EQ(text.substr(text.size() - 6), "],\n},\n");
    });
}

TEST(WideTree, OfAMillionMembersIsBuiltReadCopiedAndFreed)
{
    constexpr int million = 1000000;
    const NodePointer root = Property::create()->createSingleGroup("root");
    for (int number = 0; number < million; ++number)
        root->setValueInt32(std::to_string(number), number);
    const NodePointer copy = Property::create();

    copy->copy(*root);

    ASSERT_EQ(copy->childCount(), static_cast<std::size_t>(million));
    for (const auto& [key, child] : *copy)
        ASSERT_EQ(std::to_string(child->currentValueAsInt32(-1)), key);
    EXPECT_EQ(copy->valueAsInt32("999999", 0), 999999);
    EXPECT_EQ(copy->childKeys().size(), static_cast<std::size_t>(million));
}

TEST(WideTree, OfAMillionElementsWithOneKeyKeepsTheirOrder)
{
    constexpr int million = 1000000;
    const NodePointer array = Property::create()->createArray("list");
    for (int number = 0; number < million; ++number)
        array->setValueInt32("k", number);

    ASSERT_EQ(array->childCount(), static_cast<std::size_t>(million));
    int expected = 0;
    for (const auto& entry : *array)
        ASSERT_EQ(entry.second->currentValueAsInt32(-1), expected++);
    array->removeAll("k");
    EXPECT_EQ(array->childCount(), 0U);
}

TEST(WideAndDeepTree, IsFreedWhereEveryLevelHasManyMembers)
{
    runOnSmallStack([] {
        NodePointer root = Property::create();
        Property* node = root.get();
        for (int level = 0; level < 2000; ++level)
        {
            for (int member = 0; member < 20; ++member)
                node->createSingleGroup(std::to_string(member))->setValueInt32("v", member);
            node = node->childByIndex(level % 20).get();
        }
        const std::weak_ptr<Property> last = node->getPtr();
        root.reset();
        EXPECT_TRUE(last.expired());
    });
}

} // namespace
