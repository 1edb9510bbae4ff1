// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "comparison.h"

#include "typed_access.h"

namespace {

bool isScalar(int kind)
{
    return kind >= String && kind <= Regex;
}

// What the node says of itself: a default of its own kind, different from every value, must never show.
model::Value valueIn(Property& node)
{
    model::Value def;
    def.kind = node.type();
    if (!isScalar(def.kind))
        return def;
    def.text = "default";
    return getCurrent(node, def);
}

} // namespace

std::string Comparison::show(const std::list<std::string>& texts)
{
    std::string result;
    for (const auto& text : texts)
        result += '"' + text + "\" ";
    return result;
}

void Comparison::sameTree(const std::string& where, Property& library, const model::Node& model)
{
    same(where + " key", library.key(), model.key);
    same(where + " kind", library.type(), model.kind());
    same(where + " number of children", library.childCount(), model.children.size());
    if (differs())
        return;
    if (isScalar(model.kind()))
        same(where + " value", valueIn(library), model.value);
    auto entry = library.begin();
    for (const auto& [key, node] : model.children)
    {
        same(where + " key of an entry", entry->first, key);
        const std::string below = std::string(where).append("/").append(key);
        same(below + " parent", entry->second->parent() == library.getPtr(), true);
        sameTree(below, *entry->second, *node);
        if (differs())
            return;
        ++entry;
    }
}
