#pragma once

/// @file
/// The document: a tree of nodes under one root group, and a cursor that walks it.

#include "database_client_export.h"
#include "property.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

class ObjectPropertiesPrivate;

/// A document with a cursor. Keys are paths cut at "/"; an empty key or a leading "/" starts at the root, any other key
/// at the cursor. A "." in a key is an ordinary character.
///
/// A document owns its nodes alone. One thread at a time: const navigation moves the cursor, and reading a missing key
/// adds it. Nothing here throws but `std::bad_alloc`.
class DATABASE_CLIENT_API ObjectProperties
{
public:
    /// An empty document, the cursor at the root.
    ObjectProperties();
    /// A deep copy. Its cursor is at the root, wherever that of @p other stands.
    ObjectProperties(const ObjectProperties& other);
    /// Takes over nodes and cursor. @p other can then only be assigned to or destroyed.
    ObjectProperties(ObjectProperties&& other) noexcept;

    // Slot order is part of the library's interface and closed.

    virtual ~ObjectProperties();

    /// Moves the cursor to the child at @p index of the current node; false, and no move, when there is none.
    /// Takes time in proportion to @p index.
    virtual bool beginObject(const int& index) const;
    /// Moves the cursor to the parent of the current node; at the root it stays.
    virtual void endObject() const;
    /// Number of children of the current node.
    virtual std::size_t childCount() const;
    /// Moves the cursor into an array, creating it if needed; on an array, into a new element. With the key of a group
    /// the cursor goes to the root: callers depend on it. With the key of a value it stays where it was.
    virtual void beginArray(const std::string& key) const;
    /// The same as endObject().
    virtual void endArray() const;
    /// Moves the cursor to the node of the key, creating a group if there is none; "" and "/" are the root. On an array
    /// every call adds a group element, whatever the key. A node of another kind is entered as it is.
    virtual void beginGroup(const std::string& key);
    /// The same as the non-const form: also on a const document the cursor moves and a missing group is created.
    virtual void beginGroup(const std::string& key) const;
    /// The same as endObject().
    virtual void endGroup() const;
    /// Key of the current node, empty at the root.
    virtual std::string group() const;
    /// Keys of the current node's children that are neither group nor array, in key order.
    virtual std::list<std::string> childKeys() const;
    /// Keys of the current node's children that are groups, in key order.
    virtual std::list<std::string> childGroups() const;
    /// Keys of the current node's children that are arrays, in key order.
    virtual std::list<std::string> childArrays() const;
    /// Kind (PropertyType) of the node of the key; 0 when there is none, and for the empty key.
    virtual int type(const std::string& key) const;
    /// Kind (PropertyType) of the current node.
    virtual int type() const;
    /// The same as group().
    virtual std::string key() const;

    /// @name Setters at the cursor
    /// @{

    /// Gives the current node the value and takes its children away.
    virtual void setValueString(const std::string& value);
    virtual void setValueBool(const bool& value);
    virtual void setValueInt32(const int& value);
    virtual void setValueInt64(const long& value);
    virtual void setValueInt(const int& value);            ///< The same as setValueInt32(): kind Int32.
    virtual void setValueLongLong(const long long& value); ///< The same as setValueInt64(): kind Int64.
    virtual void setValueDouble(const double& value);
    virtual void setValueTime(const long& value); ///< Sets a time, milliseconds since 1970-01-01 UTC.
    virtual void setValueId(const std::string& value);
    virtual void setValueBinary(const std::vector<unsigned char>& value);
    virtual void setValueRegex(const std::string& pattern, const std::string& options);

    /// @}

    /// @name Getters at the cursor
    /// @{

    /// The value of the current node when that is of this very kind, otherwise the default. There is no conversion.
    virtual std::string currentValueAsString(const std::string& def) const;
    virtual bool currentValueAsBool(const bool& def) const;
    virtual int currentValueAsInt32(const int& def) const;
    virtual long currentValueAsInt64(const long& def) const;
    virtual int currentValueAsInt(const int& def) const;
    virtual long long currentValueAsLongLong(const long long& def) const;
    virtual double currentValueAsDouble(const double& def) const;
    virtual long long currentValueAsTime(const long long& def) const;
    virtual std::string currentValueAsId(const std::string& def) const;
    virtual std::vector<unsigned char> currentValueAsBinary(const std::vector<unsigned char>& def) const;
    virtual std::pair<std::string, std::string> currentValueAsRegex(const std::string& pattern,
                                                                    const std::string& options) const;

    /// @}

    /// @name Setters by key
    /// @{

    /// Gives the node of the key the value and takes its children away. Missing nodes are created; on an array every
    /// call adds an element.
    virtual void setValueString(const std::string& key, const std::string& value);
    virtual void setValueBool(const std::string& key, const bool& value);
    virtual void setValueInt32(const std::string& key, const int& value);
    virtual void setValueInt64(const std::string& key, const long& value);
    /// The same as setValueInt32(): kind Int32.
    virtual void setValueInt(const std::string& key, const int& value);
    /// The same as setValueInt64(): kind Int64.
    virtual void setValueLongLong(const std::string& key, const long long& value);
    virtual void setValueDouble(const std::string& key, const double& value);
    /// Sets a time, milliseconds since 1970-01-01 UTC.
    virtual void setValueTime(const std::string& key, const long long& value);
    virtual void setValueId(const std::string& key, const std::string& value);
    virtual void setValueBinary(const std::string& key, const std::vector<unsigned char>& value);
    virtual void setValueRegex(const std::string& key, const std::string& pattern, const std::string& options);

    /// @}

    /// @name Getters by key
    /// @{

    /// The value of the node of the key when that is of this very kind, otherwise the default. Callers depend on it: a
    /// missing key is added as a node of kind Undefined.
    virtual std::string valueAsString(const std::string& key, const std::string& def) const;
    virtual bool valueAsBool(const std::string& key, const bool& def) const;
    virtual int valueAsInt32(const std::string& key, const int& def) const;
    virtual long valueAsInt64(const std::string& key, const long& def) const;
    virtual int valueAsInt(const std::string& key, const int& def) const;
    virtual long long valueAsLongLong(const std::string& key, const long long& def) const;
    virtual double valueAsDouble(const std::string& key, const double& def) const;
    virtual long long valueAsTime(const std::string& key, const long long& def) const;
    virtual std::string valueAsId(const std::string& key, const std::string& def) const;
    virtual std::vector<unsigned char> valueAsBinary(const std::string& key,
                                                     const std::vector<unsigned char>& def) const;
    virtual std::pair<std::string, std::string> valueAsRegex(const std::string& key, const std::string& pattern,
                                                             const std::string& options) const;

    /// @}

    /// Removes the first child of the anchor (root or cursor) whose key is exactly @p key, if there is one. The key is
    /// no path here: callers depend on it.
    virtual void remove(const std::string& key);
    /// Removes the current node's child at @p index, if there is one.
    virtual void remove(const int& index);
    /// Whether the key names a node; false for the empty key.
    virtual bool contains(const std::string& key) const;
    /// Whether the root has no child, wherever the cursor stands.
    virtual bool isEmpty() const;
    /// Makes the group at @p key, created if needed, a deep copy of @p other's root; what it held before is dropped.
    virtual void include(const std::string& key, const ObjectProperties& other);
    /// Moves the subtree at @p key out of this document; it becomes the whole content of @p other, whose cursor goes to
    /// the root. With a key that names no node both documents stay as they are.
    virtual void exclude(const std::string& key, ObjectProperties& other);
    /// Deep copy; the cursor goes to the root. Assigning a document to itself changes nothing but that.
    virtual ObjectProperties& operator=(const ObjectProperties& other);
    /// Takes over nodes and cursor. @p other can then only be assigned to or destroyed.
    virtual ObjectProperties& operator=(ObjectProperties&& other) noexcept;

    // Beside the closed table: not virtual.

    /// Like include(), but with the cursor on an array always as a new element.
    void includeElement(const std::string& key, const ObjectProperties& other);
    /// Deep copy; the cursor goes to the copy of the node where that of @p other stands, or to the root when that node
    /// is no longer part of the document.
    void copyWithCursor(const ObjectProperties& other);
    /// Calls @p visit for each child of the current node in index order, with the cursor on that child, in one walk: a
    /// loop over beginObject() takes time in proportion to the square of the number of children.
    ///
    ///     document.forEachChild([&] { sum += document.currentValueAsInt32(0); });
    ///
    /// The visitor may move the cursor without moving it back, and may change the document, but not assign to, move
    /// from or destroy it. The children are those of the moment of the call: one that is added meanwhile is not
    /// visited, one that is removed still is. Afterwards the cursor stands where it stood, also when the visitor
    /// throws.
    /// @param visit  takes no arguments; returns nothing, or `false` to end the walk
    /// @throws std::bad_alloc, and what the visitor throws
    template <typename Visitor>
    void forEachChild(Visitor&& visit) const
    {
        visitChildren([](void* visitor) { return goesOn(*static_cast<Visited<Visitor>*>(visitor)); },
                      const_cast<void*>(static_cast<const void*>(&visit)));
    }
    /// Writes the whole document to standard output as indented, JSON-like text, for diagnosis.
    void printAsJson() const;
    /// The root node. It lives at least as long as the pointer returned.
    std::shared_ptr<Property> root() const;
    /// The node on which the cursor stands.
    std::shared_ptr<Property> current() const;
    /// Moves the cursor to @p node; false, and no move, when it is empty or no longer in this document's tree.
    /// Takes time in proportion to the depth of the node and to the number of siblings with equal keys on the way.
    bool moveTo(const std::shared_ptr<Property>& node) const;

private:
    template <typename Visitor>
    using Visited = typename std::remove_reference<Visitor>::type;
    template <typename Visitor>
    using ReturnsNothing = std::is_void<decltype(std::declval<Visitor&>()())>;
    template <typename Visitor>
    static typename std::enable_if<ReturnsNothing<Visitor>::value, bool>::type goesOn(Visitor& visit)
    {
        visit();
        return true;
    }
    template <typename Visitor>
    static typename std::enable_if<!ReturnsNothing<Visitor>::value, bool>::type goesOn(Visitor& visit)
    {
        return visit();
    }
    void visitChildren(bool (*visit)(void* visitor), void* visitor) const;

    std::unique_ptr<ObjectPropertiesPrivate> d; // the only member: size and layout never change
};

static_assert(sizeof(ObjectProperties) == 2 * sizeof(void*), "callers were compiled against this layout");
