#pragma once

/// @file
/// The node of a document tree: a key, a typed value or named children, and a weak link to the parent.

#include "database_client_export.h"

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Kind of a node and of its value. The numbers are part of the library's interface.
enum PropertyType : int
{
    None = 0,      ///< Answer for a path that names no node; never stored.
    Undefined = 1, ///< No value; the kind of every new node.
    Group = 2,     ///< Children are members, each under its name.
    Array = 3,     ///< Children are elements.
    String = 4,    ///< Text up to its first zero byte.
    Bool = 5,      ///< Truth value.
    Int32 = 6,     ///< Signed 32-bit integer.
    Int64 = 7,     ///< Signed 64-bit integer.
    Double = 8,    ///< IEEE 754 binary64.
    Time = 9,      ///< Signed 64-bit count of milliseconds since 1970-01-01 UTC.
    Id = 10,       ///< Object id as 24 hexadecimal digits; the tree itself checks neither length nor alphabet.
    Binary = 11,   ///< Bytes; an empty vector is a value.
    Regex = 12     ///< Regular expression: pattern and options.
};

/// A node of a document tree. A parent owns its children, a child sees its parent weakly, and every node is owned by a
/// `std::shared_ptr`: make one with create(). Children are ordered byte by byte by key; equal keys keep the order in
/// which they were inserted, and "index" always means the position in that order.
///
/// A key path names a node below another one: segments cut at "/", empty segments ignored, no escape and no index
/// syntax. Where several children share a key, a path takes the first of them.
///
/// One thread at a time. Nothing here throws but `std::bad_alloc` and, where said, `std::bad_weak_ptr`.
/// Looking up one segment takes logarithmic time in the number of children.
class DATABASE_CLIENT_API Property : public std::enable_shared_from_this<Property>
{
public:
    /// Children in index order: the key under which a child was inserted, and the child.
    using Children = std::multimap<std::string, std::shared_ptr<Property>>;

    /// The value of a node together with its kind and key. The getters do not check the kind: ask the node instead.
    class DATABASE_CLIENT_API PropertyItem
    {
    public:
        /// Storage of the kinds that fit in one word. The item frees the text, the union frees nothing.
        union DATABASE_CLIENT_API PropertyValue
        {
            PropertyValue();
            ~PropertyValue();

            char* text;      ///< String and Id: zero-terminated, owned by the item.
            bool boolean;    ///< Bool.
            int int32;       ///< Int32.
            long int64;      ///< Int64 and Time.
            double binary64; ///< Double.
        };

        /// An item without a value, of kind Undefined.
        PropertyItem();
        /// A copy of key, kind and value.
        PropertyItem(const PropertyItem& other);
        /// The same as copy().
        PropertyItem& operator=(const PropertyItem& other);
        /// Frees the value.
        ~PropertyItem();

        /// @name Setters
        /// @{

        /// Frees the value held and stores another one.
        void setValueBool(const bool& value);
        void setValueInt32(const int& value);
        void setValueInt64(const long& value);
        void setValueDouble(const double& value);
        /// Stores the text up to its first zero byte. The kind stays: the node sets it to String or Id.
        void setValueString(const std::string& value);
        /// Stores the bytes. The kind stays: the node sets it to Binary.
        void setValueBinary(const std::vector<unsigned char>& value);
        /// Stores pattern and options. The kind stays: the node sets it to Regex.
        void setValueRegex(const std::pair<std::string, std::string>& value);

        /// @}

        /// @name Getters
        /// @{

        /// The value, which must be of this kind: that is not checked.
        std::string valueAsString() const;
        bool valueAsBool() const;
        int valueAsInt32() const;
        long valueAsInt64() const;
        double valueAsDouble() const;
        std::vector<unsigned char> valueAsBinary() const;
        std::pair<std::string, std::string> valueAsRegex() const;

        /// @}

        /// Frees the text, if one is held, and zeroes the value word.
        void clearString();
        /// Frees the bytes of a Binary.
        void clearBinary();
        /// Frees pattern and options of a Regex.
        void clearRegex();
        /// Frees whatever value is held; the kind stays.
        void releaseMemory();
        /// Frees whatever value is held; the kind becomes Undefined, the key stays.
        void clear();

        /// Takes over key, kind and value. On `std::bad_alloc` this item is as it was before.
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

    /// A new node without key, parent and children, of kind Undefined.
    static std::shared_ptr<Property> create();

    /// A node of kind Undefined. Construct it only into a `std::shared_ptr`.
    Property(const std::string& key, std::shared_ptr<Property> parent);

    /// Frees the subtree, whatever its depth, without allocating. A descendant that is held elsewhere stays alive.
    ~Property();

    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    // The order of these three slots is part of the library's interface and closed.

    /// Writes this node's children to standard output as indented, JSON-like text between braces.
    virtual void print();
    /// Writes the children of @p node, one entry a line, indented for nesting level @p level.
    virtual void print(Property* node, int level);
    /// Writes 3 * @p level spaces.
    virtual void printJustify(int level) const;

    /// Does nothing on a node owned by a shared pointer. @throws std::bad_weak_ptr otherwise
    void init();
    /// The node itself. @throws std::bad_weak_ptr when no shared pointer owns it
    std::shared_ptr<Property> getPtr();
    /// The parent. @throws std::bad_weak_ptr when there is none, or none any more
    std::shared_ptr<Property> parent();

    /// @name Key and kind
    /// @{
    /// The node's own key, as a copy.
    std::string key() const;
    /// The node's kind, a PropertyType.
    int type() const;
    /// Whether the node is of this kind.
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

    /// Keys of the children that are neither group nor array, in index order; none unless this is a group or an array.
    std::list<std::string> childKeys() const;
    /// Keys of the children that are groups; otherwise like childKeys().
    std::list<std::string> childGroups() const;
    /// Keys of the children that are arrays; otherwise like childKeys().
    std::list<std::string> childArrays() const;
    /// @}

    /// @name One segment: the key is taken literally, "/" included
    /// @{
    bool containsSingleKey(const std::string& key) const;
    /// The first child with the key, or an empty pointer.
    std::shared_ptr<Property> propertyBySingleKey(const std::string& key);
    /// The child at the index, or an empty pointer. Takes time in proportion to the index: to visit all children, use
    /// begin() and end().
    std::shared_ptr<Property> childByIndex(const int& index);
    /// The child with the key, whatever its kind, or a new group. On an array always a new element.
    std::shared_ptr<Property> createSingleGroup(const std::string& key);
    /// The child with the key if it is an array, an empty pointer if it is anything else, or a new array. On an array
    /// always a new element.
    std::shared_ptr<Property> createSingleArray(const std::string& key);
    /// The child with the key, whatever its kind, or a new node of kind Undefined. On an array always a new element.
    std::shared_ptr<Property> createSingleProperty(const std::string& key);
    /// Removes the first child with the key, if there is one.
    void remove(const std::string& key);
    /// Removes every child with the key.
    void removeAll(const std::string& key);
    /// Removes the child at the index, if there is one. The other children keep their keys.
    void remove(const int& index);
    /// @}

    /// @name Key paths
    /// @{
    /// The segments of a path: "/a//b/" gives a and b.
    std::list<std::string> splitKey(const std::string& path) const;
    /// Whether the path names a node. A path without segments names none.
    bool contains(const std::string& path);
    /// The node that the path names, or an empty pointer.
    std::shared_ptr<Property> propertyByKey(const std::string& path);
    /// Kind of the node that the path names, None when it names none.
    int type(const std::string& path);
    /// Creates what is missing on the path as groups and returns the last node. An existing node of another kind is
    /// passed through, or returned, with its kind and value kept; a step below an array always adds an element.
    /// A path without segments gives this node.
    std::shared_ptr<Property> createGroup(const std::string& path);
    /// Like createGroup(), the last segment as by createSingleArray(): an empty pointer when it names a node of another
    /// kind.
    std::shared_ptr<Property> createArray(const std::string& path);
    /// Like createGroup(), the last segment as by createSingleProperty().
    std::shared_ptr<Property> createProperty(const std::string& path);
    /// The node that the path names, or createProperty(). On an array always a new element.
    std::shared_ptr<Property> createPropertyIfNotExists(const std::string& path);
    /// @}

    /// @name Value of this node
    /// @{

    /// Sets value and kind and removes all children. On `std::bad_alloc` the node is as it was before.
    void setValueString(const std::string& value);
    void setValueBool(const bool& value);
    void setValueInt32(const int& value);
    void setValueInt64(const long& value);
    void setValueDouble(const double& value);
    /// Sets a time, milliseconds since 1970-01-01 UTC.
    void setValueTime(const long& value);
    /// Sets an object id, 24 hexadecimal digits; they are not checked.
    void setValueId(const std::string& value);
    void setValueBinary(const std::vector<unsigned char>& value);
    void setValueRegex(const std::string& pattern, const std::string& options);
    /// Takes the value away: kind Undefined.
    void setValueUndefined();
    /// @}

    /// @name Value of this node, or a default
    /// @{

    /// The value when the node is of this very kind, otherwise the default. There is no conversion.
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

    /// Sets the value of the node that createPropertyIfNotExists() gives for the path.
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

    /// The value of the node that createPropertyIfNotExists() gives for the path, or the default when that is of
    /// another kind. Callers depend on it: reading a path that names no node leaves a node of kind Undefined there.
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

    /// @name Views: what the getters above copy, without the copy. Valid until the node changes.
    /// @{
    const std::string& keyView() const noexcept;
    /// Zero-terminated text of a String or an Id; null on any other kind.
    const char* textView() const noexcept;
    /// Bytes of a Binary; empty on any other kind.
    const std::vector<unsigned char>& bytesView() const noexcept;
    /// Pattern of a Regex; empty on any other kind.
    const std::string& patternView() const noexcept;
    /// Options of a Regex; empty on any other kind.
    const std::string& optionsView() const noexcept;
    /// @}

    /// @name Whole nodes
    /// @{
    /// Removes all children.
    void clearChilds();
    /// Removes all children and the value; the kind becomes Undefined, the key stays.
    void clear();
    /// Replaces value, kind, key and children by deep copies of those of @p source, which may be this node, one of its
    /// descendants or one of its ancestors. The entry under which this node stands in its parent keeps its old key:
    /// callers depend on it. On `std::bad_alloc` this node is as it was before.
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
    /// For the tree itself: a node of kind @p type without a value.
    DATABASE_CLIENT_LOCAL Property(const Passkey& passkey, const std::string& key, PropertyType type,
                                   std::weak_ptr<Property>&& parent);

private:
    PropertyItem m_item;
    Children m_children;
    std::weak_ptr<Property> m_parent;
};
