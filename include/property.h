// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// A node of a document tree: a key, a typed value or children, and a weak pointer to the parent.

#include "database_client_export.h"

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Type of a node and of its value. The numbers are part of the library's interface.
enum PropertyType : int
{
    None = 0,      ///< Returned for a path without a node; never stored.
    Undefined = 1, ///< No value; the type of every new node.
    Group = 2,     ///< The children are fields.
    Array = 3,     ///< The children are elements.
    String = 4,    ///< A string up to its first zero byte.
    Bool = 5,      ///< True or false.
    Int32 = 6,     ///< Signed 32-bit integer.
    Int64 = 7,     ///< Signed 64-bit integer.
    Double = 8,    ///< IEEE 754 binary64.
    Time = 9,      ///< Milliseconds since 1970-01-01 UTC, signed 64-bit.
    Id = 10,       ///< Object id as 24 hexadecimal digits; the tree does not check them.
    Binary = 11,   ///< Bytes; may be empty.
    Regex = 12     ///< Regular expression: pattern and options.
};

/// A node of a document tree. A parent owns its children. A child has a weak pointer to its parent. A `std::shared_ptr`
/// owns every node: use create() to make one. Children are sorted by key, byte by byte. Children with equal keys keep
/// the order in which they were inserted. An "index" is always the position in this order.
///
/// A key path names a descendant of a node. Segments are separated by "/", and empty segments are ignored. There is no
/// escape character and no syntax for indexes. If several children have the same key, a path uses the first of them.
///
/// Not thread-safe. Throws only `std::bad_alloc`, and `std::bad_weak_ptr` where documented. Finding one segment takes
/// time logarithmic in the number of children.
/// @since 1.0
class DATABASE_CLIENT_API Property : public std::enable_shared_from_this<Property>
{
public:
    /// The children in index order: the key under which a child was inserted, and the child.
    using Children = std::multimap<std::string, std::shared_ptr<Property>>;

    /// The key, type and value of a node. The getters do not check the type: use the getters of the node instead.
    class DATABASE_CLIENT_API PropertyItem
    {
    public:
        /// Storage of values that fit in one word. The item frees the string; the union frees nothing.
        union DATABASE_CLIENT_API PropertyValue
        {
            PropertyValue();
            ~PropertyValue();

            char* text;      ///< String and Id: null-terminated, owned by the item.
            bool boolean;    ///< Bool.
            int int32;       ///< Int32.
            long int64;      ///< Int64 and Time.
            double binary64; ///< Double.
        };

        /// Creates an item of type Undefined without a value.
        PropertyItem();
        /// Copies key, type and value.
        PropertyItem(const PropertyItem& other);
        /// The same as copy().
        PropertyItem& operator=(const PropertyItem& other);
        /// Frees the value.
        ~PropertyItem();

        /// @name Setters
        /// @{

        /// Frees the old value, then stores the new one.
        void setValueBool(const bool& value);
        void setValueInt32(const int& value);
        void setValueInt64(const long& value);
        void setValueDouble(const double& value);
        /// Stores the string up to its first zero byte. Does not change the type: the node sets it to String or Id.
        void setValueString(const std::string& value);
        /// Stores the bytes. Does not change the type: the node sets it to Binary.
        void setValueBinary(const std::vector<unsigned char>& value);
        /// Stores pattern and options. Does not change the type: the node sets it to Regex.
        void setValueRegex(const std::pair<std::string, std::string>& value);

        /// @}

        /// @name Getters
        /// @{

        /// Returns the value. Call only the getter of its type: the type is not checked.
        std::string valueAsString() const;
        bool valueAsBool() const;
        int valueAsInt32() const;
        long valueAsInt64() const;
        double valueAsDouble() const;
        std::vector<unsigned char> valueAsBinary() const;
        std::pair<std::string, std::string> valueAsRegex() const;

        /// @}

        /// Frees the string, if there is one, and sets the word to zero.
        void clearString();
        /// Frees the bytes of a Binary.
        void clearBinary();
        /// Frees the pattern and the options of a Regex.
        void clearRegex();
        /// Frees the value. The type does not change.
        void releaseMemory();
        /// Frees the value and sets the type to Undefined. The key does not change.
        void clear();

        /// Copies key, type and value. This item is unchanged if `std::bad_alloc` is thrown.
        void copy(const PropertyItem& other);

    private:
        friend class Property;
        friend class PropertyTree;

        DATABASE_CLIENT_LOCAL PropertyItem(const std::string& key, PropertyType type);
        DATABASE_CLIENT_LOCAL void copyValue(const PropertyItem& other);
        template <typename Number>
        DATABASE_CLIENT_LOCAL void setNumber(Number PropertyValue::*member, Number value, PropertyType type) noexcept;
        DATABASE_CLIENT_LOCAL void swap(PropertyItem& other) noexcept;

        PropertyValue m_value;
        std::vector<unsigned char> m_binary;
        std::string m_regexPattern;
        std::string m_regexOptions;
        std::string m_key;
        PropertyType m_type = Undefined;
    };

    /// Creates a node of type Undefined without key, parent and children.
    static std::shared_ptr<Property> create();

    /// Creates a node of type Undefined. Construct it only into a `std::shared_ptr`.
    Property(const std::string& key, std::shared_ptr<Property> parent);

    /// Frees the subtree, whatever its depth, without allocating memory. Descendants with another owner stay alive.
    ~Property();

    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    // The order of these three slots is part of the library's interface and closed.

    /// Writes the children of this node to standard output as indented, JSON-like text between braces.
    virtual void print();
    /// Writes the children of @p node, one per line, indented for nesting level @p level.
    virtual void print(Property* node, int level);
    /// Writes 3 * @p level spaces.
    virtual void printJustify(int level) const;

    /// Does nothing. @throws std::bad_weak_ptr if no shared pointer owns the node
    void init();
    /// Returns this node. @throws std::bad_weak_ptr if no shared pointer owns it
    std::shared_ptr<Property> getPtr();
    /// Returns the parent. @throws std::bad_weak_ptr if there is no parent or it no longer exists
    std::shared_ptr<Property> parent();

    /// @name Key and type
    /// @{
    /// Returns a copy of the key of this node.
    std::string key() const;
    /// Returns the type of this node, a PropertyType.
    int type() const;
    /// True if the node has this type.
    bool isGroup() const;
    bool isArray() const;
    bool isString() const;
    bool isBool() const;
    bool isInt32() const;
    bool isInt64() const;
    bool isDouble() const;
    bool isTime() const;
    bool isId() const;
    bool isBinary() const;
    bool isRegex() const;
    /// @}

    /// @name Children
    /// @{
    std::size_t childCount() const;
    Children::iterator begin();
    Children::iterator end();
    Children::const_iterator begin() const;
    Children::const_iterator end() const;

    /// Returns the keys of the children that are neither groups nor arrays, in index order. Empty if this node is
    /// neither a group nor an array.
    std::list<std::string> childKeys() const;
    /// The same as childKeys(), for the children that are groups.
    std::list<std::string> childGroups() const;
    /// The same as childKeys(), for the children that are arrays.
    std::list<std::string> childArrays() const;
    /// @}

    /// @name Single keys: the key is used as it is, "/" included
    /// @{
    bool containsSingleKey(const std::string& key) const;
    /// Returns the first child with this key, or an empty pointer.
    std::shared_ptr<Property> propertyBySingleKey(const std::string& key);
    /// Returns the child at @p index, or an empty pointer. Takes time proportional to @p index: to visit all children,
    /// use begin() and end().
    std::shared_ptr<Property> childByIndex(const int& index);
    /// Returns the first child with this key, whatever its type, or adds a group. On an array it always adds an
    /// element.
    std::shared_ptr<Property> createSingleGroup(const std::string& key);
    /// Returns the first child with this key if it is an array, or an empty pointer if it has any other type. If there
    /// is no child with this key, adds an array. On an array it always adds an element.
    std::shared_ptr<Property> createSingleArray(const std::string& key);
    /// Returns the first child with this key, whatever its type, or adds a node of type Undefined. On an array it
    /// always adds an element.
    std::shared_ptr<Property> createSingleProperty(const std::string& key);
    /// Removes the first child with this key. Does nothing if there is no such child.
    void remove(const std::string& key);
    /// Removes every child with this key.
    void removeAll(const std::string& key);
    /// Removes the child at @p index. Does nothing if there is no such child. The other children keep their keys.
    void remove(const int& index);
    /// @}

    /// @name Key paths
    /// @{
    /// Returns the segments of a path: a and b for "/a//b/".
    std::list<std::string> splitKey(const std::string& path) const;
    /// True if there is a node at @p path. False for a path without segments.
    bool contains(const std::string& path);
    /// Returns the node at @p path, or an empty pointer.
    std::shared_ptr<Property> propertyByKey(const std::string& path);
    /// Returns the type of the node at @p path, or None if there is no such node.
    int type(const std::string& path);
    /// Returns the node at @p path. Missing nodes are created as groups. Existing nodes keep their type and value, also
    /// if they are not groups. Below an array every step adds an element. Returns this node for a path without
    /// segments.
    std::shared_ptr<Property> createGroup(const std::string& path);
    /// The same as createGroup(), but the last segment is created as by createSingleArray(). Returns an empty pointer
    /// if the node at @p path has another type.
    std::shared_ptr<Property> createArray(const std::string& path);
    /// The same as createGroup(), but the last segment is created as by createSingleProperty().
    std::shared_ptr<Property> createProperty(const std::string& path);
    /// Returns the node at @p path, or the result of createProperty() if there is no such node. On an array it always
    /// adds an element.
    std::shared_ptr<Property> createPropertyIfNotExists(const std::string& path);
    /// @}

    /// @name Value of this node
    /// @{

    /// Sets value and type, and removes all children. The node is unchanged if `std::bad_alloc` is thrown.
    void setValueString(const std::string& value);
    void setValueBool(const bool& value);
    void setValueInt32(const int& value);
    void setValueInt64(const long& value);
    void setValueDouble(const double& value);
    /// Sets a time in milliseconds since 1970-01-01 UTC.
    void setValueTime(const long& value);
    /// Sets an object id of 24 hexadecimal digits. The digits are not checked.
    void setValueId(const std::string& value);
    void setValueBinary(const std::vector<unsigned char>& value);
    void setValueRegex(const std::string& pattern, const std::string& options);
    /// Removes the value and sets the type to Undefined.
    void setValueUndefined();
    /// @}

    /// @name Value of this node, or a default
    /// @{

    /// Returns the value if it has exactly this type, otherwise the default. Does not convert. Times are milliseconds
    /// since 1970-01-01 UTC.
    std::string currentValueAsString(const std::string& def);
    bool currentValueAsBool(const bool& def);
    int currentValueAsInt32(const int& def);
    long currentValueAsInt64(const long& def);
    double currentValueAsDouble(const double& def);
    long currentValueAsTime(const long& def);
    std::string currentValueAsId(const std::string& def);
    std::vector<unsigned char> currentValueAsBinary(const std::vector<unsigned char>& def) const;
    std::pair<std::string, std::string> currentValueAsRegex(const std::string& pattern,
                                                            const std::string& options) const;
    /// @}

    /// @name Value of the node at a path
    /// @{

    /// Sets the value of the node that createPropertyIfNotExists() returns for @p path.
    void setValueString(const std::string& path, const std::string& value);
    void setValueBool(const std::string& path, const bool& value);
    void setValueInt32(const std::string& path, const int& value);
    void setValueInt64(const std::string& path, const long& value);
    void setValueDouble(const std::string& path, const double& value);
    void setValueTime(const std::string& path, const long& value);
    void setValueId(const std::string& path, const std::string& value);
    void setValueBinary(const std::string& path, const std::vector<unsigned char>& value);
    void setValueRegex(const std::string& path, const std::string& pattern, const std::string& options);
    void setValueUndefined(const std::string& path);
    /// @}

    /// @name Value of the node at a path, or a default
    /// @{

    /// Returns the value of the node at @p path if it has exactly this type, otherwise the default. A missing node is
    /// added with type Undefined, as by createPropertyIfNotExists(): callers depend on it. Times are milliseconds since
    /// 1970-01-01 UTC.
    std::string valueAsString(const std::string& path, const std::string& def);
    bool valueAsBool(const std::string& path, const bool& def);
    int valueAsInt32(const std::string& path, const int& def);
    long valueAsInt64(const std::string& path, const long& def);
    double valueAsDouble(const std::string& path, const double& def);
    long valueAsTime(const std::string& path, const long& def);
    std::string valueAsId(const std::string& path, const std::string& def);
    std::vector<unsigned char> valueAsBinary(const std::string& path, const std::vector<unsigned char>& def);
    std::pair<std::string, std::string> valueAsRegex(const std::string& path, const std::string& pattern,
                                                     const std::string& options);
    /// @}

    /// @name Views: the values that the getters above copy. Valid until the node changes.
    /// @{
    const std::string& keyView() const noexcept;
    /// Null-terminated string of a String or an Id; null for any other type.
    const char* textView() const noexcept;
    /// Bytes of a Binary; empty for any other type.
    const std::vector<unsigned char>& bytesView() const noexcept;
    /// Pattern of a Regex; empty for any other type.
    const std::string& patternView() const noexcept;
    /// Options of a Regex; empty for any other type.
    const std::string& optionsView() const noexcept;
    /// @}

    /// @name Whole nodes
    /// @{
    /// Removes all children.
    void clearChilds();
    /// Removes all children and the value, and sets the type to Undefined. The key does not change.
    void clear();
    /// Replaces value, type, key and children by copies of those of @p source. @p source may be this node, a descendant
    /// or an ancestor. The parent still has this node under its old key: callers depend on it. This node is unchanged
    /// if `std::bad_alloc` is thrown.
    void copy(const Property& source);
    /// @}

private:
    friend class PropertyTree;
    class Passkey
    {
        friend class PropertyTree;
        Passkey() {}
    };

public:
    /// For PropertyTree only: creates a node of type @p type without a value.
    DATABASE_CLIENT_LOCAL Property(const Passkey& passkey, const std::string& key, PropertyType type,
                                   std::weak_ptr<Property>&& parent);

private:
    PropertyItem m_item;
    Children m_children;
    std::weak_ptr<Property> m_parent;
};
