#pragma once

#include "property.h"

#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// What a document consists of: a tree and a place in it. A key that is empty or begins with "/" is resolved from the
/// root, any other from the cursor. There is no stack of positions: a level is left through the node's parent link.
class ObjectPropertiesPrivate
{
public:
    ObjectPropertiesPrivate();
    ObjectPropertiesPrivate(const ObjectPropertiesPrivate&) = delete;
    ObjectPropertiesPrivate& operator=(const ObjectPropertiesPrivate&) = delete;

    Property& rootGroup(const std::string& key) const;

    void beginGroup(const std::string& key);
    void beginGroup(const std::string& key) const;
    void endGroup() const;
    void beginArray(const std::string& key) const;
    void endArray() const;
    bool beginObject(const int& index) const;
    void endObject() const;

    std::string group() const;
    std::string key() const;
    int type() const;
    int type(const std::string& key) const;
    std::size_t childCount() const;
    std::list<std::string> childKeys() const;
    std::list<std::string> childGroups() const;
    std::list<std::string> childArrays() const;
    bool isEmpty() const;
    bool contains(const std::string& key) const;
    void remove(const std::string& key);
    void remove(const int& index);

    void setCurrentValueString(const std::string& value);
    void setCurrentValueBool(const bool& value);
    void setCurrentValueInt32(const int& value);
    void setCurrentValueInt64(const long& value);
    void setCurrentValueDouble(const double& value);
    void setCurrentValueTime(const long& value);
    void setCurrentValueId(const std::string& value);
    void setCurrentValueBinary(const std::vector<unsigned char>& value);
    void setCurrentValueRegex(const std::string& pattern, const std::string& options);

    std::string currentValueAsString(const std::string& def) const;
    bool currentValueAsBool(const bool& def) const;
    int currentValueAsInt32(const int& def) const;
    long currentValueAsInt64(const long& def) const;
    double currentValueAsDouble(const double& def) const;
    long currentValueAsTime(const long& def) const;
    std::string currentValueAsId(const std::string& def) const;
    std::vector<unsigned char> currentValueAsBinary(const std::vector<unsigned char>& def) const;
    std::pair<std::string, std::string> currentValueAsRegex(const std::string& pattern,
                                                            const std::string& options) const;

    void setValueString(const std::string& key, const std::string& value);
    void setValueBool(const std::string& key, const bool& value);
    void setValueInt32(const std::string& key, const int& value);
    void setValueInt64(const std::string& key, const long& value);
    void setValueDouble(const std::string& key, const double& value);
    void setValueTime(const std::string& key, const long& value);
    void setValueId(const std::string& key, const std::string& value);
    void setValueBinary(const std::string& key, const std::vector<unsigned char>& value);
    void setValueRegex(const std::string& key, const std::string& pattern, const std::string& options);

    std::string valueAsString(const std::string& key, const std::string& def) const;
    bool valueAsBool(const std::string& key, const bool& def) const;
    int valueAsInt32(const std::string& key, const int& def) const;
    long valueAsInt64(const std::string& key, const long& def) const;
    double valueAsDouble(const std::string& key, const double& def) const;
    long valueAsTime(const std::string& key, const long& def) const;
    std::string valueAsId(const std::string& key, const std::string& def) const;
    std::vector<unsigned char> valueAsBinary(const std::string& key, const std::vector<unsigned char>& def) const;
    std::pair<std::string, std::string> valueAsRegex(const std::string& key, const std::string& pattern,
                                                     const std::string& options) const;

    void copy(const ObjectPropertiesPrivate& other);
    void copyWithCursor(const ObjectPropertiesPrivate& other);
    void include(const std::string& key, const ObjectPropertiesPrivate& other);
    void includeElement(const std::string& key, const ObjectPropertiesPrivate& other);
    void exclude(const std::string& key, ObjectPropertiesPrivate& other);
    bool moveTo(const std::shared_ptr<Property>& node) const;
    void visitChildren(bool (*visit)(void* visitor), void* visitor) const;
    void print() const;

    std::shared_ptr<Property> root;
    // A reader walks a const document, so the cursor moves in it too.
    mutable std::shared_ptr<Property> current;

private:
    static void becomeGroupLike(Property& target, const ObjectPropertiesPrivate& other);
    void leave(const Property& subtree) const;
    std::vector<int> positionsToCursor() const;
};
