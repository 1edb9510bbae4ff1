// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "model_document.h"

#include <array>

namespace model {

Document::Document() : root(newNode("", 2)), current(root) {}

Document::Document(const Document& other) : Document()
{
    *this = other;
}

Document& Document::operator=(const Document& other)
{
    if (this != &other)
        root->copy(*other.root);
    current = root;
    return *this;
}

Node& Document::anchor(const std::string& key) const
{
    return key.empty() || key[0] == '/' ? *root : *current;
}

void Document::beginGroup(const std::string& key)
{
    if (key.empty() || key == "/")
    {
        current = root;
        return;
    }
    Node& start = anchor(key);
    const auto found = start.isArray() ? nullptr : start.find(key);
    current = found && found->isGroup() ? found : start.createGroup(key);
}

void Document::beginArray(const std::string& key)
{
    if (key.empty() || key == "/")
    {
        current = root;
        return;
    }
    Node& start = anchor(key);
    const auto found = start.isArray() ? nullptr : start.find(key);
    if (found && found->isGroup())
        current = root;
    else if (const auto array = start.createArray(key)) // none for a key that holds a value: the cursor stays
        current = array;
}

bool Document::beginObject(int index)
{
    const auto child = current->childAt(index);
    if (child)
        current = child;
    return child != nullptr;
}

void Document::end()
{
    if (const auto parent = current->parent.lock())
        current = parent;
}

void Document::becomeGroupLike(Node& target, const Document& other)
{
    const std::string key = target.key;
    target.copy(*other.root);
    target.key = key;
    if (target.kind() != 2)
    {
        target.value = Value();
        target.value.kind = 2;
    }
}

void Document::include(const std::string& key, const Document& other)
{
    Node& start = anchor(key);
    const auto found = start.find(key);
    const auto target = found && found->isGroup() ? found : start.createGroup(key);
    becomeGroupLike(*target, other);
}

void Document::exclude(const std::string& key, Document& other)
{
    const auto node = anchor(key).find(key);
    if (!node)
        return;
    const auto copy = newNode();
    copy->copy(*node);
    copy->key = "";
    const auto parent = node->parent.lock();
    if (&other != this)
    {
        auto& siblings = parent->children;
        for (auto entry = siblings.begin(); entry != siblings.end(); ++entry)
        {
            if (entry->second == node)
            {
                siblings.erase(entry);
                break;
            }
        }
        for (auto place = current; place; place = place->parent.lock())
        {
            if (place == node)
            {
                current = root;
                break;
            }
        }
    }
    other.root->copy(*copy);
    other.current = other.root;
}

namespace {

// Where a node stands in a tree: the index at every level. Nothing when it is not part of it.
bool findPlace(const NodePointer& tree, const NodePointer& node, std::vector<int>& place)
{
    if (tree == node)
        return true;
    for (std::size_t i = 0; i < tree->children.size(); ++i)
    {
        place.push_back(static_cast<int>(i));
        if (findPlace(tree->children[i].second, node, place))
            return true;
        place.pop_back();
    }
    return false;
}

} // namespace

void Document::copyWithCursor(const Document& other)
{
    std::vector<int> place;
    findPlace(other.root, other.current, place);
    *this = other;
    for (const int index : place)
        current = current->childAt(index);
}

bool Document::moveTo(const NodePointer& node)
{
    std::vector<int> place;
    const bool found = node && findPlace(root, node, place);
    if (found)
        current = node;
    return found;
}

void Filter::copy(const Filter& other)
{
    if (&other == this)
        return;
    if (other.lists.empty())
        document = other.document;
    else
        document.copyWithCursor(other.document);
    lists = other.lists;
}

void Filter::beginOperation()
{
    if (!lists.empty())
        document.beginGroup(lists.back());
}

void Filter::endOperation()
{
    if (!lists.empty())
        document.end();
}

void Filter::start(const std::string& name)
{
    beginOperation();
    document.beginArray(name);
    lists.push_back(name);
}

void Filter::finish()
{
    if (lists.empty())
        return;
    document.end();
    lists.pop_back();
    endOperation();
}

void Filter::set(int operation, const std::string& key, const Value& value, const std::string& options)
{
    static const std::array<const char*, 9> names{"$eq",  "$ne",     "$gt",     "$gte",  "$lt",
                                                  "$lte", "$exists", "$exists", "$regex"};
    beginOperation();
    const auto put = [this](const std::string& name, const Value& content) {
        document.anchor(name).createIfMissing(name)->setValue(content);
    };
    if (operation == 0)
        put(key, value);
    else if (operation >= 9)
    {
        document.beginGroup(key);
        document.current->createChild("", 1)->setValue(value);
        document.end();
    }
    else
    {
        const std::string name = names[static_cast<std::size_t>(operation)];
        document.beginGroup(key);
        Value content = value;
        if (operation == 6 || operation == 7)
        {
            content = Value();
            content.kind = 5;
            content.number = operation == 6;
        }
        put(name, content);
        if (value.kind == 4 && operation == 8 && !options.empty())
        {
            content = Value();
            content.kind = 4;
            content.text = options;
            put("$options", content);
        }
        document.end();
    }
    endOperation();
}

void Filter::setDocument(const std::string& key, const Document& operators)
{
    beginOperation();
    if (!key.empty())
        document.beginGroup(key);
    const auto condition = document.current;
    for (const auto& [name, operand] : operators.root->children)
        condition->createChild(name, 1)->copy(*operand);
    if (!key.empty())
        document.end();
    endOperation();
}

void Filter::include(const Filter& other)
{
    const std::string name = lists.empty() ? std::string() : lists.back();
    const auto target = document.anchor(name).createGroup(name);
    document.becomeGroupLike(*target, other.document);
    if (lists.empty())
        document.current = document.root;
}

void Filter::exclude(const std::string& key, Filter& target)
{
    Document fresh;
    document.exclude(key, fresh);
    target.document = fresh;
    target.lists.clear();
}

} // namespace model
