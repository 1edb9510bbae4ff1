// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "comparison.h"
#include "model_document.h"
#include "object_filter.h"
#include "sequences.h"
#include "typed_access.h"

#include <array>
#include <memory>

namespace {

constexpr std::size_t filters = 3;

struct State
{
    std::array<ObjectFilter, filters> library;
    std::array<model::Filter, filters> model;
    Comparison comparison;
};

struct Step
{
    std::string name;
    void (*take)(State&, ObjectFilter&, model::Filter&, const Operation&);
};

// Also numbers behind the last enumerator.
int comparisonOf(const Operation& operation)
{
    return static_cast<int>(static_cast<unsigned long>(operation.number) % 11 + operation.text.size() % 3) % 11;
}

template <int Kind>
void addCondition(std::vector<Step>& steps, const std::string& name)
{
    steps.push_back({name, [](State&, ObjectFilter& l, model::Filter& m, const Operation& o) {
                         const auto operation = static_cast<OperationType>(comparisonOf(o));
                         const auto value = valueOf(o, Kind);
                         if constexpr (Kind == String)
                             l.setFilterString(operation, o.key, o.text, o.options);
                         else if constexpr (Kind == Bool)
                             l.setFilterBool(operation, o.key, value.number != 0);
                         else if constexpr (Kind == Int32)
                             l.setFilterInt(operation, o.key, static_cast<int>(value.number));
                         else if constexpr (Kind == Double)
                             l.setFilterDouble(operation, o.key, value.real);
                         else if constexpr (Kind == Int64)
                             l.setFilterLongLong(operation, o.key, value.number);
                         else if constexpr (Kind == Time)
                             l.setFilterTime(operation, o.key, value.number);
                         else
                             l.setFilterId(operation, o.key, o.text);
                         m.set(comparisonOf(o), o.key, value, o.options);
                     }});
}

void addLists(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    const auto finish = [](State&, ObjectFilter& l, model::Filter& m, const Operation& o) {
        if (o.index % 2 == 0)
            l.finish_and();
        else
            l.finish_or();
        m.finish();
    };
    add("finish", finish);
    add("finish", finish);
    add("start_and", [](State&, ObjectFilter& l, model::Filter& m, const Operation&) {
        l.start_and();
        m.start("$and");
    });
    add("start_or", [](State&, ObjectFilter& l, model::Filter& m, const Operation&) {
        l.start_or();
        m.start("$or");
    });
    add("beginGroup", [](State&, ObjectFilter& l, model::Filter& m, const Operation& o) {
        l.beginGroup(o.key);
        m.document.beginGroup(o.key);
    });
    add("endGroup", [](State&, ObjectFilter& l, model::Filter& m, const Operation&) {
        l.endGroup();
        m.document.end();
    });
}

// A condition of the caller's own making: as large as another filter's query, or one operator.
void addDocuments(std::vector<Step>& steps)
{
    steps.push_back(
        {"setFilterDocument of a query", [](State& s, ObjectFilter& l, model::Filter& m, const Operation& o) {
             l.setFilterDocument(o.key, s.library[o.other].toObjectProeprties());
             m.setDocument(o.key, model::Document(s.model[o.other].document));
         }});
    steps.push_back({"setFilterDocument", [](State& s, ObjectFilter& l, model::Filter& m, const Operation& o) {
                         const auto value = valueOf(o, Int64);
                         ObjectProperties operators;
                         operators.setValueInt64("$operator", value.number);
                         operators.beginArray("$in");
                         operators.setValueString("0", o.text);
                         model::Document same;
                         same.root->createIfMissing("$operator")->setValue(value);
                         same.root->createArray("$in")->createIfMissing("0")->setValue(valueOf(o, String));
                         s.comparison.sameTree("operators", *operators.root(), *same.root);
                         l.setFilterDocument(o.key, operators);
                         m.setDocument(o.key, same);
                         s.comparison.sameTree("operators afterwards", *operators.root(), *same.root);
                     }});
}

void addCopies(std::vector<Step>& steps)
{
    const auto add = [&steps](const char* name, auto take) { steps.push_back({name, take}); };
    add("include", [](State& s, ObjectFilter& l, model::Filter& m, const Operation& o) {
        l.include(s.library[o.other]);
        m.include(s.model[o.other]);
    });
    add("exclude", [](State& s, ObjectFilter& l, model::Filter& m, const Operation& o) {
        l.exclude(o.key, s.library[o.other]);
        m.exclude(o.key, s.model[o.other]);
    });
    add("assignment", [](State& s, ObjectFilter& l, model::Filter& m, const Operation& o) {
        l = std::as_const(s.library[o.other]);
        m.copy(s.model[o.other]);
    });
    add("copy construction", [](State& s, ObjectFilter& l, model::Filter& m, const Operation&) {
        ObjectFilter copy(l);
        copy.endGroup(); // the copy's cursor is its own
        s.comparison.sameTree("copy", *copy.toObjectProeprties().root(), *m.document.root);
    });
    add("fromObjectProperties", [](State& s, ObjectFilter& l, model::Filter& m, const Operation& o) {
        l.fromObjectProperties(s.library[o.other].toObjectProeprties());
        m.document = model::Document(s.model[o.other].document);
    });
}

const std::vector<Step>& steps()
{
    static const auto table = [] {
        std::vector<Step> result;
        addCondition<String>(result, "setFilterString");
        addCondition<Bool>(result, "setFilterBool");
        addCondition<Int32>(result, "setFilterInt");
        addCondition<Double>(result, "setFilterDouble");
        addCondition<Int64>(result, "setFilterLongLong");
        addCondition<Time>(result, "setFilterTime");
        addCondition<Id>(result, "setFilterId");
        addLists(result);
        addDocuments(result);
        addCopies(result);
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
    for (std::size_t i = 0; i < filters && !state.comparison.differs(); ++i)
    {
        const std::string name = "filter " + std::to_string(i);
        state.comparison.sameTree(name, *state.library[i].toObjectProeprties().root(), *state.model[i].document.root);
        state.comparison.same(name + " isEmpty", state.library[i].isEmpty(),
                              state.model[i].document.root->children.empty());
    }
}

} // namespace

System filterSystem()
{
    return systemOf("filter", filters, steps(), take, compare);
}
