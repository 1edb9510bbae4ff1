// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "property.h"

#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Implements ObjectProperties, where the functions are documented: the tree and the cursor of a document. The cursor
/// is only a node: endGroup() uses the parent pointer of the node.
class ObjectPropertiesPrivate
{
public:
    ObjectPropertiesPrivate();
    ObjectPropertiesPrivate(const ObjectPropertiesPrivate&) = delete;
    ObjectPropertiesPrivate& operator=(const ObjectPropertiesPrivate&) = delete;

    Property& rootGroup(const std::string& key) const { return key.empty() || key[0] == '/' ? *root : *current; }

    void beginGroup(const std::string& key) { std::as_const(*this).beginGroup(key); }
    void beginGroup(const std::string& key) const;
    void endGroup() const;
    void beginArray(const std::string& key) const;
    void endArray() const { endGroup(); }
    bool beginObject(const int& index) const;
    void endObject() const { endGroup(); }

    std::string group() const { return current->key(); }
    std::string key() const { return group(); }
    int type() const { return current->type(); }
    int type(const std::string& key) const { return rootGroup(key).type(key); }
    std::size_t childCount() const { return current->childCount(); }
    std::list<std::string> childKeys() const { return current->childKeys(); }
    std::list<std::string> childGroups() const { return current->childGroups(); }
    std::list<std::string> childArrays() const { return current->childArrays(); }
    bool isEmpty() const { return root->childCount() == 0; }
    bool contains(const std::string& key) const { return rootGroup(key).contains(key); }
    void remove(const std::string& key) { rootGroup(key).remove(key); }
    void remove(const int& index) { current->remove(index); }

    void setCurrentValueString(const std::string& value) { current->setValueString(value); }
    void setCurrentValueBool(const bool& value) { current->setValueBool(value); }
    void setCurrentValueInt32(const int& value) { current->setValueInt32(value); }
    void setCurrentValueInt64(const long& value) { current->setValueInt64(value); }
    void setCurrentValueDouble(const double& value) { current->setValueDouble(value); }
    void setCurrentValueTime(const long& value) { current->setValueTime(value); }
    void setCurrentValueId(const std::string& value) { current->setValueId(value); }
    void setCurrentValueBinary(const std::vector<unsigned char>& value) { current->setValueBinary(value); }
    void setCurrentValueRegex(const std::string& pattern, const std::string& options)
    {
        current->setValueRegex(pattern, options);
    }

    std::string currentValueAsString(const std::string& def) const { return current->currentValueAsString(def); }
    bool currentValueAsBool(const bool& def) const { return current->currentValueAsBool(def); }
    int currentValueAsInt32(const int& def) const { return current->currentValueAsInt32(def); }
    long currentValueAsInt64(const long& def) const { return current->currentValueAsInt64(def); }
    double currentValueAsDouble(const double& def) const { return current->currentValueAsDouble(def); }
    long currentValueAsTime(const long& def) const { return current->currentValueAsTime(def); }
    std::string currentValueAsId(const std::string& def) const { return current->currentValueAsId(def); }
    std::vector<unsigned char> currentValueAsBinary(const std::vector<unsigned char>& def) const
    {
        return current->currentValueAsBinary(def);
    }
    std::pair<std::string, std::string> currentValueAsRegex(const std::string& pattern,
                                                            const std::string& options) const
    {
        return current->currentValueAsRegex(pattern, options);
    }

    void setValueString(const std::string& key, const std::string& value) { rootGroup(key).setValueString(key, value); }
    void setValueBool(const std::string& key, const bool& value) { rootGroup(key).setValueBool(key, value); }
    void setValueInt32(const std::string& key, const int& value) { rootGroup(key).setValueInt32(key, value); }
    void setValueInt64(const std::string& key, const long& value) { rootGroup(key).setValueInt64(key, value); }
    void setValueDouble(const std::string& key, const double& value) { rootGroup(key).setValueDouble(key, value); }
    void setValueTime(const std::string& key, const long& value) { rootGroup(key).setValueTime(key, value); }
    void setValueId(const std::string& key, const std::string& value) { rootGroup(key).setValueId(key, value); }
    void setValueBinary(const std::string& key, const std::vector<unsigned char>& value)
    {
        rootGroup(key).setValueBinary(key, value);
    }
    void setValueRegex(const std::string& key, const std::string& pattern, const std::string& options)
    {
        rootGroup(key).setValueRegex(key, pattern, options);
    }

    std::string valueAsString(const std::string& key, const std::string& def) const
    {
        return rootGroup(key).valueAsString(key, def);
    }
    bool valueAsBool(const std::string& key, const bool& def) const { return rootGroup(key).valueAsBool(key, def); }
    int valueAsInt32(const std::string& key, const int& def) const { return rootGroup(key).valueAsInt32(key, def); }
    long valueAsInt64(const std::string& key, const long& def) const { return rootGroup(key).valueAsInt64(key, def); }
    double valueAsDouble(const std::string& key, const double& def) const
    {
        return rootGroup(key).valueAsDouble(key, def);
    }
    long valueAsTime(const std::string& key, const long& def) const { return rootGroup(key).valueAsTime(key, def); }
    std::string valueAsId(const std::string& key, const std::string& def) const
    {
        return rootGroup(key).valueAsId(key, def);
    }
    std::vector<unsigned char> valueAsBinary(const std::string& key, const std::vector<unsigned char>& def) const
    {
        return rootGroup(key).valueAsBinary(key, def);
    }
    std::pair<std::string, std::string> valueAsRegex(const std::string& key, const std::string& pattern,
                                                     const std::string& options) const
    {
        return rootGroup(key).valueAsRegex(key, pattern, options);
    }

    void copy(const ObjectPropertiesPrivate& other);
    void copyWithCursor(const ObjectPropertiesPrivate& other);
    void include(const std::string& key, const ObjectPropertiesPrivate& other);
    void includeElement(const std::string& key, const ObjectPropertiesPrivate& other);
    void exclude(const std::string& key, ObjectPropertiesPrivate& other);
    bool moveTo(const std::shared_ptr<Property>& node) const;
    void visitChildren(bool (*visit)(void* visitor), void* visitor) const;
    void print() const { root->print(); }

    std::shared_ptr<Property> root;
    // Mutable, because reading a const document moves the cursor.
    mutable std::shared_ptr<Property> current;

private:
    static void becomeGroupLike(Property& target, const ObjectPropertiesPrivate& other);
    void leave(const Property& subtree) const;
    std::vector<int> positionsToCursor() const;
};
