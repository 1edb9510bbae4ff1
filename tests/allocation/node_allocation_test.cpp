// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Nodes if memory runs out.

#include "allocation_failure.h"
#include "property.h"
#include "row_name.h"

#include <memory>
#include <string>
#include <vector>

namespace {

const std::string longText = "a text that is too long for the small buffer of a string";
const std::string deepPath = "a first segment that is long/a second segment that is long/a third segment that is long";
const std::vector<unsigned char> bytes(100, 7);

void fill(Property& node)
{
    node.createGroup("group/inner")->setValueString("text", longText);
    node.setValueBinary("group/binary", bytes);
    node.setValueRegex("group/regex", longText, longText);
    node.setValueId("id", longText);
    const auto array = node.createArray("array");
    array->setValueInt32("element", 1);
    array->createSingleGroup("element")->setValueBool("flag", true);
}

struct Nodes
{
    Nodes() : node(Property::create()), other(Property::create())
    {
        fill(*node);
        fill(*other);
    }

    void use() const
    {
        node->setValueString("used", longText);
        EXPECT_EQ(node->valueAsString("used", ""), longText);
        const auto copy = Property::create();
        copy->copy(*node);
        EXPECT_EQ(copy->childCount(), node->childCount());
    }

    std::shared_ptr<Property> node;
    std::shared_ptr<Property> other;
};

using Operation = test_support::AllocatingOperation<Nodes>;

class NodeOperationWithoutMemory : public testing::TestWithParam<Operation>
{};

TEST_P(NodeOperationWithoutMemory, ThrowsAndLeavesItsObjectUsable)
{
    test_support::expectUsableAfterEveryFailure<Nodes>(GetParam().operate);
}

const Operation operations[] = {
    {"create", [](Nodes&) { Property::create(); }},
    {"construction", [](Nodes& n) { std::make_shared<Property>(longText, n.node); }},
    {"key", [](Nodes& n) { n.node->propertyByKey("group/inner")->key(); }},
    {"childKeys", [](Nodes& n) { n.node->childKeys(); }},
    {"childGroups", [](Nodes& n) { n.node->createGroup(longText)->childGroups(); }},
    {"childArrays", [](Nodes& n) { n.node->createGroup("group")->childArrays(); }},
    {"propertyBySingleKey", [](Nodes& n) { n.node->propertyBySingleKey(longText); }},
    {"childByIndex", [](Nodes& n) { n.node->childByIndex(1); }},
    {"createSingleGroup", [](Nodes& n) { n.node->createSingleGroup(longText); }},
    {"createSingleArray", [](Nodes& n) { n.node->createSingleArray(longText); }},
    {"createSingleProperty", [](Nodes& n) { n.node->createSingleProperty(longText); }},
    {"createSingleGroupOnAnArray", [](Nodes& n) { n.node->createArray("array")->createSingleGroup("element"); }},
    {"splitKey", [](Nodes& n) { n.node->splitKey(deepPath); }},
    {"contains", [](Nodes& n) { n.node->contains(deepPath); }},
    {"propertyByKey", [](Nodes& n) { n.node->propertyByKey("group//inner/" + longText); }},
    {"type", [](Nodes& n) { n.node->type(deepPath); }},
    {"createGroup", [](Nodes& n) { n.node->createGroup(deepPath); }},
    {"createArray", [](Nodes& n) { n.node->createArray(deepPath); }},
    {"createProperty", [](Nodes& n) { n.node->createProperty(deepPath); }},
    {"createPropertyIfNotExists", [](Nodes& n) { n.node->createPropertyIfNotExists(deepPath); }},
    {"setValueString", [](Nodes& n) { n.node->setValueString(longText); }},
    {"setValueId", [](Nodes& n) { n.node->setValueId(longText); }},
    {"setValueBinary", [](Nodes& n) { n.node->setValueBinary(bytes); }},
    {"setValueRegex", [](Nodes& n) { n.node->setValueRegex(longText, longText); }},
    {"setValueInt32", [](Nodes& n) { n.node->setValueInt32(1); }},
    {"setValueUndefined", [](Nodes& n) { n.node->setValueUndefined(); }},
    {"setValueStringByPath", [](Nodes& n) { n.node->setValueString(deepPath, longText); }},
    {"setValueBoolByPath", [](Nodes& n) { n.node->setValueBool(deepPath, true); }},
    {"setValueInt32ByPath", [](Nodes& n) { n.node->setValueInt32(deepPath, 1); }},
    {"setValueInt64ByPath", [](Nodes& n) { n.node->setValueInt64(deepPath, 1); }},
    {"setValueDoubleByPath", [](Nodes& n) { n.node->setValueDouble(deepPath, 1); }},
    {"setValueTimeByPath", [](Nodes& n) { n.node->setValueTime(deepPath, 1); }},
    {"setValueIdByPath", [](Nodes& n) { n.node->setValueId(deepPath, longText); }},
    {"setValueBinaryByPath", [](Nodes& n) { n.node->setValueBinary(deepPath, bytes); }},
    {"setValueRegexByPath", [](Nodes& n) { n.node->setValueRegex(deepPath, longText, longText); }},
    {"setValueUndefinedByPath", [](Nodes& n) { n.node->setValueUndefined(deepPath); }},
    {"setValueOverAGroup", [](Nodes& n) { n.node->setValueString("group", longText); }},
    {"valueAsString", [](Nodes& n) { n.node->valueAsString("group/inner/text", longText); }},
    {"valueAsStringOfAMissingKey", [](Nodes& n) { n.node->valueAsString(deepPath, longText); }},
    {"valueAsBoolOfAMissingKey", [](Nodes& n) { n.node->valueAsBool(deepPath, true); }},
    {"valueAsInt32OfAMissingKey", [](Nodes& n) { n.node->valueAsInt32(deepPath, 1); }},
    {"valueAsInt64OfAMissingKey", [](Nodes& n) { n.node->valueAsInt64(deepPath, 1); }},
    {"valueAsDoubleOfAMissingKey", [](Nodes& n) { n.node->valueAsDouble(deepPath, 1); }},
    {"valueAsTimeOfAMissingKey", [](Nodes& n) { n.node->valueAsTime(deepPath, 1); }},
    {"valueAsId", [](Nodes& n) { n.node->valueAsId("id", longText); }},
    {"valueAsBinary", [](Nodes& n) { n.node->valueAsBinary("group/binary", bytes); }},
    {"valueAsRegex", [](Nodes& n) { n.node->valueAsRegex("group/regex", longText, longText); }},
    {"remove", [](Nodes& n) { n.node->remove("group"); }},
    {"removeAll", [](Nodes& n) { n.node->createArray("array")->removeAll("element"); }},
    {"removeByIndex", [](Nodes& n) { n.node->remove(0); }},
    {"clearChilds", [](Nodes& n) { n.node->clearChilds(); }},
    {"clear", [](Nodes& n) { n.node->clear(); }},
    {"copy", [](Nodes& n) { n.node->copy(*n.other); }},
    {"copyOfADescendant", [](Nodes& n) { n.node->copy(*n.node->propertyByKey("group")); }},
    {"copyOfAnAncestor", [](Nodes& n) { n.node->propertyByKey("group")->copy(*n.node); }},
};

INSTANTIATE_TEST_SUITE_P(Node, NodeOperationWithoutMemory, testing::ValuesIn(operations), RowName());

} // namespace
