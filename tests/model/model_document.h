// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model_tree.h"

#include <string>
#include <vector>

namespace model {

/// The rules of the document and its cursor.
struct Document
{
    Document();
    Document(const Document& other);
    Document& operator=(const Document& other);
    ~Document() = default;

    Node& anchor(const std::string& key) const;
    void beginGroup(const std::string& key);
    void beginArray(const std::string& key);
    bool beginObject(int index);
    void end();
    void include(const std::string& key, const Document& other);
    void exclude(const std::string& key, Document& other);
    void becomeGroupLike(Node& target, const Document& other);
    void copyWithCursor(const Document& other);
    bool moveTo(const NodePointer& node);

    NodePointer root;
    NodePointer current;
};

/// The rules of the filter: a document, and the lists that are open, innermost last.
struct Filter
{
    void copy(const Filter& other);
    void start(const std::string& name);
    void finish();
    void set(int operation, const std::string& key, const Value& value, const std::string& options);
    void setDocument(const std::string& key, const Document& operators);
    void include(const Filter& other);
    void exclude(const std::string& key, Filter& target);

    Document document;
    std::vector<std::string> lists;

private:
    void beginOperation();
    void endOperation();
};

} // namespace model
