// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Each allocation of an operation fails, one per run. The node is unchanged afterwards.

#include "allocation_failure.h"
#include "property.h"
#include "property_kinds.h"
#include "tree_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace {

using NodePointer = std::shared_ptr<Property>;
using test_support::failEveryAllocation;

const std::string longText = "a text that is long enough for the heap";

NodePointer groupWithMembers()
{
    const NodePointer node = Property::create()->createSingleGroup("key");
    node->setValueString("a", longText);
    node->setValueInt32("b/c", 1);
    return node;
}

void expectGroupWithMembers(const NodePointer& node)
{
    EXPECT_TRUE(node->isGroup());
    EXPECT_EQ(node->key(), "key");
    EXPECT_EQ(node->childCount(), 2U);
    EXPECT_EQ(node->valueAsString("a", ""), longText);
    EXPECT_EQ(node->valueAsInt32("b/c", 0), 1);
}

class NodeValueWithoutMemory : public testing::TestWithParam<ValueKind>
{};

TEST_P(NodeValueWithoutMemory, SetOnAGroupLeavesTheGroup)
{
    failEveryAllocation(
        groupWithMembers, [](const NodePointer& node) { GetParam().set(*node); }, expectGroupWithMembers);
}

TEST_P(NodeValueWithoutMemory, SetOverAnyValueLeavesThatValue)
{
    for (const ValueKind& before : valueKinds())
    {
        const auto prepare = [&] {
            const NodePointer node = Property::create();
            before.set(*node);
            node->createSingleProperty("child");
            return node;
        };
        const auto expectBefore = [&](const NodePointer& node) {
            EXPECT_TRUE(before.hasSample(*node)) << before;
            EXPECT_EQ(node->childCount(), 1U) << before;
        };
        failEveryAllocation(
            prepare, [](const NodePointer& node) { GetParam().set(*node); }, expectBefore);
    }
}

TEST_P(NodeValueWithoutMemory, SetByPathLeavesEveryOtherNode)
{
    const auto expectRestUnchanged = [](const NodePointer& node) {
        EXPECT_EQ(node->valueAsString("a", ""), longText);
        EXPECT_EQ(node->valueAsInt32("b/c", 0), 1);
        for (const char* path : {"b/d", "b/d/e"})
        {
            const int kind = node->type(path);
            EXPECT_TRUE(kind == None || kind == Undefined || kind == Group) << path;
        }
    };
    const std::size_t failures = failEveryAllocation(
        groupWithMembers, [](const NodePointer& node) { GetParam().setAt(*node, "b/d/e"); }, expectRestUnchanged);
    EXPECT_GT(failures, 0U);
}

TEST_P(NodeValueWithoutMemory, CopiedLeavesTheTarget)
{
    const NodePointer source = Property::create();
    GetParam().set(*source);

    failEveryAllocation(
        groupWithMembers, [&](const NodePointer& node) { node->copy(*source); }, expectGroupWithMembers);
}

TEST_P(NodeValueWithoutMemory, AsAnItemLeavesTheTargetItem)
{
    const auto prepare = [] { return std::make_unique<Property::PropertyItem>(); };
    const auto work = [](const std::unique_ptr<Property::PropertyItem>& item) {
        item->setValueString(longText);
        item->setValueRegex({longText, longText});
        item->setValueBinary(std::vector<unsigned char>(100));
        const Property::PropertyItem copy(*item);
        item->setValueInt32(1);
    };
    EXPECT_GT(failEveryAllocation(prepare, work, [](const auto&) {}), 0U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, NodeValueWithoutMemory, testing::ValuesIn(valueKinds()), RowName());

TEST(TreeWithoutMemory, ACopyOfATreeLeavesTheTarget)
{
    const NodePointer source = Property::create()->createSingleGroup("source");
    for (const ValueKind& kind : valueKinds())
        kind.setAt(*source, "a group with a long key, beyond short strings/" + kind.name);
    NodePointer deep = source;
    for (int level = 0; level < 40; ++level)
        deep = deep->createGroup("level");
    const std::string before = test_support::treeText(*source);
    const NodePointer child = source->childByIndex(0);
    const auto expectUntouched = [&](const NodePointer& node) {
        expectGroupWithMembers(node);
        EXPECT_EQ(test_support::treeText(*source), before);
        EXPECT_EQ(source->childByIndex(0), child);
        EXPECT_EQ(child->parent(), source);
        EXPECT_EQ(child.use_count(), 2);
    };

    const std::size_t failures = failEveryAllocation(
        groupWithMembers, [&](const NodePointer& node) { node->copy(*source); }, expectUntouched);

    EXPECT_GT(failures, 50U);
}

TEST(TreeWithoutMemory, ACopyIntoItsOwnSubtreeLeavesTheTree)
{
    const std::size_t failures = failEveryAllocation(
        groupWithMembers, [](const NodePointer& node) { node->propertyByKey("b")->copy(*node); },
        expectGroupWithMembers);
    EXPECT_GT(failures, 0U);
}

TEST(TreeWithoutMemory, ANewChildIsAddedCompletelyOrNotAtAll)
{
    const std::string longKey = "a key that is long enough for the heap";
    using Create = std::function<void(Property&)>;
    const Create creations[] = {[&](Property& node) { node.createSingleGroup(longKey); },
                                [&](Property& node) { node.createSingleArray(longKey); },
                                [&](Property& node) { node.createSingleProperty(longKey); }};
    for (const Create& create : creations)
    {
        const std::size_t failures = failEveryAllocation(
            groupWithMembers, [&](const NodePointer& node) { create(*node); }, expectGroupWithMembers);
        EXPECT_GE(failures, 3U);
    }
}

TEST(TreeWithoutMemory, AFailedPathLeavesAtMostGroups)
{
    const auto expectGroupsOnly = [](const NodePointer& root) {
        for (NodePointer node = root; node; node = node->childByIndex(0))
            EXPECT_TRUE(node == root || node->isGroup());
    };
    const std::size_t failures = failEveryAllocation(
        [] { return Property::create(); },
        [](const NodePointer& root) { root->createArray("a long first segment of the path/second/third"); },
        expectGroupsOnly);
    EXPECT_GE(failures, 6U);
}

TEST(TreeWithoutMemory, CreateFailsWithoutANode)
{
    const std::size_t failures = failEveryAllocation([] { return 0; }, [](int) { Property::create(); }, [](int) {});
    EXPECT_EQ(failures, 1U);
}

} // namespace
