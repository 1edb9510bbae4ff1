// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "comparison.h"
#include "property.h"
#include "sequences.h"
#include "typed_access.h"

#include <array>
#include <exception>
#include <memory>

namespace {

constexpr std::size_t registers = 4;

// Nodes that a caller holds, in the library and in the model; any of them may be part of the tree of any other.
struct State
{
    State()
    {
        for (std::size_t i = 0; i < registers; ++i)
        {
            library[i] = Property::create();
            model[i] = model::newNode();
        }
        library[1] = library[0]->createSingleGroup("g");
        model[1] = model[0]->createChild("g", 2);
        library[2] = library[0]->createSingleArray("l");
        model[2] = model[0]->createChild("l", 3);
    }

    void hold(std::size_t place, const std::shared_ptr<Property>& node, const model::NodePointer& modelNode)
    {
        comparison.same("a node is given", node != nullptr, modelNode != nullptr);
        if (!node || !modelNode)
            return;
        library[place] = node;
        model[place] = modelNode;
    }

    std::array<std::shared_ptr<Property>, registers> library;
    std::array<model::NodePointer, registers> model;
    Comparison comparison;
};

struct Step
{
    std::string name;
    void (*take)(State&, Property&, model::Node&, const Operation&);
};

template <int Kind>
void addTyped(std::vector<Step>& steps, const std::string& kind)
{
    steps.push_back({"setValue" + kind + "(key)", [](State&, Property& l, model::Node& m, const Operation& o) {
                         m.createIfMissing(o.key)->setValue(valueOf(o, Kind));
                         set(l, valueOf(o, Kind), o.key);
                     }});
    steps.push_back({"setValue" + kind, [](State&, Property& l, model::Node& m, const Operation& o) {
                         m.setValue(valueOf(o, Kind));
                         set(l, valueOf(o, Kind));
                     }});
    steps.push_back({"valueAs" + kind, [](State& s, Property& l, model::Node& m, const Operation& o) {
                         const auto node = m.createIfMissing(o.key);
                         const auto def = valueOf(o, Kind);
                         s.comparison.same("value", get(l, o.key, def), node->kind() == Kind ? node->value : def);
                     }});
    steps.push_back({"currentValueAs" + kind, [](State& s, Property& l, model::Node& m, const Operation& o) {
                         const auto def = valueOf(o, Kind);
                         s.comparison.same("value", getCurrent(l, def), m.kind() == Kind ? m.value : def);
                     }});
}

void addCreation(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    add("createSingleGroup", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createSingleGroup(o.key), m.createChild(o.key, 2));
    });
    add("createSingleArray", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createSingleArray(o.key), m.createChildArray(o.key));
    });
    add("createSingleProperty", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createSingleProperty(o.key), m.createChild(o.key, 1));
    });
    add("createGroup", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createGroup(o.key), m.createGroup(o.key));
    });
    add("createArray", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createArray(o.key), m.createArray(o.key));
    });
    add("createProperty", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createProperty(o.key), m.createProperty(o.key));
    });
    add("createPropertyIfNotExists", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.createPropertyIfNotExists(o.key), m.createIfMissing(o.key));
    });
    add("create", [](State& s, Property&, model::Node&, const Operation& o) {
        s.hold(o.target, Property::create(), model::newNode());
    });
    add("Property(key, parent)", [](State& s, Property& l, model::Node& m, const Operation& o) {
        const auto node = model::newNode(o.key);
        node->parent = m.weak_from_this();
        s.hold(o.target, std::make_shared<Property>(o.key, l.getPtr()), node);
    });
}

void addLookUp(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    add("contains", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.comparison.same("contains", l.contains(o.key), m.find(o.key) != nullptr);
    });
    add("containsSingleKey", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.comparison.same("containsSingleKey", l.containsSingleKey(o.key), m.child(o.key) != nullptr);
    });
    add("type(key)", [](State& s, Property& l, model::Node& m, const Operation& o) {
        const auto node = m.find(o.key);
        s.comparison.same("type", l.type(o.key), node ? node->kind() : 0);
    });
    add("propertyByKey", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.propertyByKey(o.key), m.find(o.key));
    });
    add("propertyBySingleKey", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.propertyBySingleKey(o.key), m.child(o.key));
    });
    add("childByIndex", [](State& s, Property& l, model::Node& m, const Operation& o) {
        s.hold(o.target, l.childByIndex(o.index), m.childAt(o.index));
    });
    add("parent", [](State& s, Property& l, model::Node& m, const Operation& o) {
        std::shared_ptr<Property> parent;
        try
        {
            parent = l.parent();
        }
        catch (const std::bad_weak_ptr&)
        {}
        s.hold(o.target, parent, m.parent.lock());
    });
    add("splitKey", [](State& s, Property& l, model::Node&, const Operation& o) {
        const auto segments = model::split(o.key);
        s.comparison.same("segments", l.splitKey(o.key), std::list<std::string>(segments.begin(), segments.end()));
    });
    add("lists of keys", [](State& s, Property& l, model::Node& m, const Operation&) {
        s.comparison.same("childKeys", l.childKeys(), m.childKeys());
        s.comparison.same("childGroups", l.childGroups(), m.childGroups());
        s.comparison.same("childArrays", l.childArrays(), m.childArrays());
    });
}

void addRemovalAndCopy(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    add("remove(key)", [](State&, Property& l, model::Node& m, const Operation& o) {
        l.remove(o.key);
        m.remove(o.key);
    });
    add("removeAll", [](State&, Property& l, model::Node& m, const Operation& o) {
        l.removeAll(o.key);
        m.removeAll(o.key);
    });
    add("remove(index)", [](State&, Property& l, model::Node& m, const Operation& o) {
        l.remove(o.index);
        m.remove(o.index);
    });
    add("setValueUndefined", [](State&, Property& l, model::Node& m, const Operation&) {
        l.setValueUndefined();
        m.setValue(model::Value());
    });
    add("setValueUndefined(key)", [](State&, Property& l, model::Node& m, const Operation& o) {
        l.setValueUndefined(o.key);
        m.createIfMissing(o.key)->setValue(model::Value());
    });
    add("clearChilds", [](State&, Property& l, model::Node& m, const Operation&) {
        l.clearChilds();
        m.children.clear();
    });
    add("clear", [](State&, Property& l, model::Node& m, const Operation&) {
        l.clear();
        m.setValue(model::Value());
    });
    add("copy", [](State& s, Property& l, model::Node& m, const Operation& o) {
        l.copy(*s.library[o.other]);
        m.copy(*s.model[o.other]);
    });
}

const std::vector<Step>& steps()
{
    static const auto table = [] {
        std::vector<Step> result;
        addTyped<String>(result, "String");
        addTyped<Bool>(result, "Bool");
        addTyped<Int32>(result, "Int32");
        addTyped<Int64>(result, "Int64");
        addTyped<Double>(result, "Double");
        addTyped<Time>(result, "Time");
        addTyped<Id>(result, "Id");
        addTyped<Binary>(result, "Binary");
        addTyped<Regex>(result, "Regex");
        addCreation(result);
        addLookUp(result);
        addRemovalAndCopy(result);
        return result;
    }();
    return table;
}

void take(State& state, const Operation& operation)
{
    // Held for the step: it may remove or replace the node that it works on.
    const auto library = state.library[operation.subject];
    const auto model = state.model[operation.subject];
    steps()[operation.kind].take(state, *library, *model, operation);
}

void compare(State& state)
{
    for (std::size_t i = 0; i < registers; ++i)
    {
        state.comparison.sameTree("node " + std::to_string(i), *state.library[i], *state.model[i]);
        for (std::size_t j = 0; j < i; ++j)
        {
            state.comparison.same("node " + std::to_string(i) + " is node " + std::to_string(j),
                                  state.library[i] == state.library[j], state.model[i] == state.model[j]);
        }
    }
}

} // namespace

System propertySystem()
{
    return systemOf("property", registers, steps(), take, compare);
}
