// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The rules of the document tree written down a second time, as plainly as possible and without a line of the
/// library's, so that a mistake in one of the two shows as a difference.
namespace model {

struct Value
{
    int kind = 1;
    std::string text;    // text, id, pattern
    std::string options; // of a pattern
    std::vector<unsigned char> bytes;
    long number = 0;
    double real = 0;
};

bool operator==(const Value& left, const Value& right);
std::string describe(const Value& value);

struct Node;
using NodePointer = std::shared_ptr<Node>;

struct Node : std::enable_shared_from_this<Node>
{
    std::string key;
    Value value; // its kind is the node's
    std::vector<std::pair<std::string, NodePointer>> children;
    std::weak_ptr<Node> parent;

    int kind() const { return value.kind; }
    bool isGroup() const { return kind() == 2; }
    bool isArray() const { return kind() == 3; }

    NodePointer child(const std::string& wanted) const;
    NodePointer childAt(int index) const;
    NodePointer createChild(const std::string& wanted, int kind);
    NodePointer createChildArray(const std::string& wanted);
    void remove(const std::string& wanted);
    void removeAll(const std::string& wanted);
    void remove(int index);

    NodePointer find(const std::string& path);
    NodePointer createGroup(const std::string& path);
    NodePointer createArray(const std::string& path);
    NodePointer createProperty(const std::string& path);
    NodePointer createIfMissing(const std::string& path);

    std::list<std::string> childKeys() const;
    std::list<std::string> childGroups() const;
    std::list<std::string> childArrays() const;

    void setValue(const Value& newValue);
    void copy(const Node& source);
};

NodePointer newNode(const std::string& key = "", int kind = 1);
std::vector<std::string> split(const std::string& path);

} // namespace model
