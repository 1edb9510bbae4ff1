// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "comparison.h"
#include "model_document.h"
#include "object_properties.h"
#include "sequences.h"
#include "typed_access.h"

#include <array>
#include <utility>

namespace {

constexpr std::size_t documents = 3;

struct State
{
    std::array<ObjectProperties, documents> library;
    std::array<model::Document, documents> model;
    // A node that a caller keeps, of whichever document.
    std::shared_ptr<Property> heldInLibrary;
    model::NodePointer heldInModel;
    Comparison comparison;
};

struct Step
{
    std::string name;
    void (*take)(State&, ObjectProperties&, model::Document&, const Operation&);
};

model::NodePointer valueNode(model::Document& document, const std::string& key)
{
    return document.anchor(key).createIfMissing(key);
}

template <int Kind>
void addTyped(std::vector<Step>& steps, const std::string& kind)
{
    steps.push_back(
        {"setValue" + kind + "(key)", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
             valueNode(m, o.key)->setValue(valueOf(o, Kind));
             set(l, valueOf(o, Kind), o.key);
         }});
    steps.push_back({"setValue" + kind, [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
                         m.current->setValue(valueOf(o, Kind));
                         set(l, valueOf(o, Kind));
                     }});
    steps.push_back({"valueAs" + kind, [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
                         const auto node = valueNode(m, o.key);
                         const auto def = valueOf(o, Kind);
                         s.comparison.same("value", get(l, o.key, def), node->kind() == Kind ? node->value : def);
                     }});
    steps.push_back(
        {"currentValueAs" + kind, [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
             const auto def = valueOf(o, Kind);
             s.comparison.same("value", getCurrent(l, def), m.current->kind() == Kind ? m.current->value : def);
         }});
}

// The overloads that only the document has: of another name or type, but the same kinds.
void addIntegerOverloads(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    add("setValueInt(key)", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.setValueInt(o.key, o.index);
        Operation written = o;
        written.number = o.index;
        valueNode(m, o.key)->setValue(valueOf(written, Int32));
    });
    add("setValueLongLong(key)", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.setValueLongLong(o.key, o.number);
        valueNode(m, o.key)->setValue(valueOf(o, Int64));
    });
    add("setValueLongLong", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.setValueLongLong(o.number);
        m.current->setValue(valueOf(o, Int64));
    });
    add("setValueInt", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.setValueInt(static_cast<int>(o.number));
        m.current->setValue(valueOf(o, Int32));
    });
    add("valueAsInt and valueAsLongLong", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        const auto node = valueNode(m, o.key);
        s.comparison.same("int", l.valueAsInt(o.key, 7), node->kind() == Int32 ? node->value.number : 7);
        const auto again = valueNode(m, o.key); // on an array a second reading adds a second element
        s.comparison.same("long long", l.valueAsLongLong(o.key, 7), again->kind() == Int64 ? again->value.number : 7);
    });
    add("currentValueAsInt and LongLong", [](State& s, ObjectProperties& l, model::Document& m, const Operation&) {
        const auto& value = m.current->value;
        s.comparison.same("int", l.currentValueAsInt(7), value.kind == Int32 ? value.number : 7);
        s.comparison.same("long long", l.currentValueAsLongLong(7), value.kind == Int64 ? value.number : 7);
    });
}

void addNavigation(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    const auto beginGroup = [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.beginGroup(o.key);
        m.beginGroup(o.key);
    };
    const auto beginArray = [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.beginArray(o.key);
        m.beginArray(o.key);
    };
    const auto end = [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        if (o.index % 3 == 0)
            l.endGroup();
        else if (o.index % 3 == 1)
            l.endArray();
        else
            l.endObject();
        m.end();
    };
    // More often than the rest: without navigation everything happens at the root.
    for (int i = 0; i < 4; ++i)
    {
        add("beginGroup", beginGroup);
        add("beginArray", beginArray);
        add("end", end);
    }
    add("beginGroup const", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        std::as_const(l).beginGroup(o.key);
        m.beginGroup(o.key);
    });
    add("beginObject", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        s.comparison.same("beginObject", l.beginObject(o.index), m.beginObject(o.index));
    });
    add("hold the current node", [](State& s, ObjectProperties& l, model::Document& m, const Operation&) {
        s.heldInLibrary = l.current();
        s.heldInModel = m.current;
    });
    add("moveTo", [](State& s, ObjectProperties& l, model::Document& m, const Operation&) {
        s.comparison.same("moveTo", l.moveTo(s.heldInLibrary), m.moveTo(s.heldInModel));
    });
    add("type(key)", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        const auto node = m.anchor(o.key).find(o.key);
        s.comparison.same("type", l.type(o.key), node ? node->kind() : 0);
    });
    add("contains", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        s.comparison.same("contains", l.contains(o.key), m.anchor(o.key).find(o.key) != nullptr);
    });
}

void addRemovalAndCopy(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    add("remove(key)", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.remove(o.key);
        m.anchor(o.key).remove(o.key);
    });
    add("remove(index)", [](State&, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.remove(o.index);
        m.current->remove(o.index);
    });
    add("include", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.include(o.key, s.library[o.other]);
        m.include(o.key, s.model[o.other]);
    });
    add("exclude", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.exclude(o.key, s.library[o.other]);
        m.exclude(o.key, s.model[o.other]);
    });
    add("copy assignment", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        l = std::as_const(s.library[o.other]);
        m = s.model[o.other];
    });
    add("copy construction", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        ObjectProperties copy(l);
        s.comparison.sameTree("copy", *copy.root(), *m.root);
        s.library[o.target] = std::move(copy);
        const model::Document modelCopy(m);
        s.model[o.target].root = modelCopy.root;
        s.model[o.target].current = modelCopy.root;
    });
    add("copyWithCursor", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.copyWithCursor(s.library[o.other]);
        m.copyWithCursor(s.model[o.other]);
    });
    add("includeElement", [](State& s, ObjectProperties& l, model::Document& m, const Operation& o) {
        l.includeElement(o.key, s.library[o.other]);
        m.becomeGroupLike(*m.anchor(o.key).createGroup(o.key), s.model[o.other]);
    });
    add("move", [](State&, ObjectProperties& l, model::Document&, const Operation&) {
        ObjectProperties moved(std::move(l));
        l = std::move(moved);
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
        addIntegerOverloads(result);
        addNavigation(result);
        addRemovalAndCopy(result);
        return result;
    }();
    return table;
}

void take(State& state, const Operation& operation)
{
    steps()[operation.kind].take(state, state.library[operation.subject], state.model[operation.subject], operation);
}

void compare(State& state)
{
    auto& comparison = state.comparison;
    for (std::size_t i = 0; i < documents && !comparison.differs(); ++i)
    {
        const std::string name = "document " + std::to_string(i);
        const auto& library = state.library[i];
        const auto& model = state.model[i];
        comparison.sameTree(name, *library.root(), *model.root);
        comparison.sameTree(name + " at the cursor", *library.current(), *model.current);
        comparison.same(name + " cursor at the root", library.current() == library.root(), model.current == model.root);
        comparison.same(name + " isEmpty", library.isEmpty(), model.root->children.empty());
        comparison.same(name + " group", library.group(), model.current->key);
        comparison.same(name + " key", library.key(), model.current->key);
        comparison.same(name + " type", library.type(), model.current->kind());
        comparison.same(name + " childCount", library.childCount(), model.current->children.size());
        comparison.same(name + " childKeys", library.childKeys(), model.current->childKeys());
        comparison.same(name + " childGroups", library.childGroups(), model.current->childGroups());
        comparison.same(name + " childArrays", library.childArrays(), model.current->childArrays());
    }
}

} // namespace

System documentSystem()
{
    return systemOf("document", documents, steps(), take, compare);
}
