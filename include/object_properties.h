// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// A document: a tree of nodes below one root group, and a cursor.

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

/// A document with a cursor. Keys are paths with "/" between the segments. The empty key and keys with a leading "/"
/// start at the root. All other keys start at the cursor. A "." in a key is an ordinary character.
///
/// A document does not share its nodes with other documents. Not thread-safe, not even for reading: const navigation
/// moves the cursor, and a getter adds a missing key. Throws only `std::bad_alloc`.
/// @since 1.0
class DATABASE_CLIENT_API ObjectProperties
{
public:
    /// Creates an empty document with the cursor at the root.
    ObjectProperties();
    /// Copies the whole document. The cursor of the copy is at the root.
    ObjectProperties(const ObjectProperties& other);
    /// Moves the nodes and the cursor. After that, only assign to @p other or destroy it.
    ObjectProperties(ObjectProperties&& other) noexcept;

    // Slot order is part of the library's interface and closed.

    virtual ~ObjectProperties();

    /// Moves the cursor to the child at @p index of the current node. Takes time proportional to @p index.
    /// @return false if there is no such child; the cursor does not move then
    virtual bool beginObject(const int& index) const;
    /// Moves the cursor to the parent of the current node. At the root the cursor does not move.
    virtual void endObject() const;
    /// Returns the number of children of the current node.
    virtual std::size_t childCount() const;
    /// Moves the cursor to the array at @p key. A missing array is created. If the current node is an array, adds an
    /// element. On a group the cursor moves to the root: callers depend on it. On a value the cursor does not move.
    virtual void beginArray(const std::string& key) const;
    /// The same as endObject().
    virtual void endArray() const;
    /// Moves the cursor to the node at @p key, whatever its type. A missing group is created. "" and "/" are the root.
    /// If the current node is an array and @p key does not begin with "/", every call adds a group element with the key
    /// @p key, also if the array has an element with this key.
    virtual void beginGroup(const std::string& key);
    /// The same as the non-const overload. It also creates missing groups in a const document.
    virtual void beginGroup(const std::string& key) const;
    /// The same as endObject().
    virtual void endGroup() const;
    /// Returns the key of the current node; empty at the root.
    virtual std::string group() const;
    /// Returns the keys of the children of the current node that are neither groups nor arrays, in key order.
    virtual std::list<std::string> childKeys() const;
    /// Returns the keys of the children of the current node that are groups, in key order.
    virtual std::list<std::string> childGroups() const;
    /// Returns the keys of the children of the current node that are arrays, in key order.
    virtual std::list<std::string> childArrays() const;
    /// Returns the type (PropertyType) of the node at @p key. Returns 0 if there is no such node, and for the empty
    /// key.
    virtual int type(const std::string& key) const;
    /// Returns the type (PropertyType) of the current node.
    virtual int type() const;
    /// The same as group().
    virtual std::string key() const;

    /// @name Setters at the cursor
    /// @{

    /// Sets the value of the current node and removes its children. An id has 24 hexadecimal digits; they are not
    /// checked.
    virtual void setValueString(const std::string& value);
    virtual void setValueBool(const bool& value);
    virtual void setValueInt32(const int& value);
    virtual void setValueInt64(const long& value);
    virtual void setValueInt(const int& value);            ///< The same as setValueInt32(): type Int32.
    virtual void setValueLongLong(const long long& value); ///< The same as setValueInt64(): type Int64.
    virtual void setValueDouble(const double& value);
    virtual void setValueTime(const long& value); ///< Sets a time, milliseconds since 1970-01-01 UTC.
    virtual void setValueId(const std::string& value);
    virtual void setValueBinary(const std::vector<unsigned char>& value);
    virtual void setValueRegex(const std::string& pattern, const std::string& options);

    /// @}

    /// @name Getters at the cursor
    /// @{

    /// Returns the value of the current node if it has exactly this type, otherwise the default. Does not convert.
    /// Times are milliseconds since 1970-01-01 UTC.
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

    /// Sets the value of the node at @p key and removes its children. Missing nodes are created. Below an array, every
    /// call adds an element. An id has 24 hexadecimal digits; they are not checked.
    virtual void setValueString(const std::string& key, const std::string& value);
    virtual void setValueBool(const std::string& key, const bool& value);
    virtual void setValueInt32(const std::string& key, const int& value);
    virtual void setValueInt64(const std::string& key, const long& value);
    /// The same as setValueInt32(): type Int32.
    virtual void setValueInt(const std::string& key, const int& value);
    /// The same as setValueInt64(): type Int64.
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

    /// Returns the value of the node at @p key if it has exactly this type, otherwise the default. Does not convert. A
    /// missing key is added as a node of type Undefined: callers depend on it. Times are milliseconds since 1970-01-01
    /// UTC.
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

    /// Removes the first child of the root (with a leading "/") or of the current node whose key is exactly @p key.
    /// Does nothing if there is no such child. The key is not a path here: callers depend on it.
    virtual void remove(const std::string& key);
    /// Removes the child at @p index of the current node. Does nothing if there is no such child.
    virtual void remove(const int& index);
    /// True if there is a node at @p key. False for the empty key.
    virtual bool contains(const std::string& key) const;
    /// True if the root has no children.
    virtual bool isEmpty() const;
    /// Replaces the content of the group at @p key by a copy of the root of @p other. A missing group is created.
    virtual void include(const std::string& key, const ObjectProperties& other);
    /// Moves the node at @p key and its descendants out of this document. They replace the content of @p other, whose
    /// cursor moves to the root. If there is no node at @p key, both documents stay unchanged.
    virtual void exclude(const std::string& key, ObjectProperties& other);
    /// Copies the whole document. The cursor moves to the root, also after self-assignment.
    virtual ObjectProperties& operator=(const ObjectProperties& other);
    /// Moves the nodes and the cursor. After that, only assign to @p other or destroy it.
    virtual ObjectProperties& operator=(ObjectProperties&& other) noexcept;

    // Not virtual, so not part of the closed table.

    /// The same as include(), but if the current node is an array, always adds an element.
    void includeElement(const std::string& key, const ObjectProperties& other);
    /// Copies the whole document. The cursor moves to the copy of the current node of @p other. It moves to the root if
    /// that node is no longer in @p other.
    void copyWithCursor(const ObjectProperties& other);
    /// Calls @p visit for each child of the current node, in index order. The cursor is on that child during the call.
    /// Takes time proportional to the number of children; a loop over beginObject() takes quadratic time.
    ///
    ///     document.forEachChild([&] { sum += document.currentValueAsInt32(0); });
    ///
    /// The visitor may leave the cursor anywhere. It may change the document, but must not assign to it, move from it
    /// or destroy it. Children that the visitor adds are not visited. Children that it removes are still visited. After
    /// the call the cursor is where it was before, also after an exception.
    /// @param visit  takes no arguments; returns nothing, or `false` to stop
    /// @throws std::bad_alloc, and the exceptions of the visitor
    template <typename Visitor>
    void forEachChild(Visitor&& visit) const
    {
        visitChildren([](void* visitor) { return goesOn(*static_cast<Visited<Visitor>*>(visitor)); },
                      const_cast<void*>(static_cast<const void*>(&visit)));
    }
    /// Writes the document to standard output as indented, JSON-like text, for debugging.
    void printAsJson() const;
    /// Returns the root node. The pointer keeps it alive.
    std::shared_ptr<Property> root() const;
    /// Returns the current node.
    std::shared_ptr<Property> current() const;
    /// Moves the cursor to @p node. Takes time proportional to the depth of the node and to the number of siblings with
    /// equal keys on the path. If the key of a node was changed by Property::copy(), all its siblings are searched.
    /// @return false if @p node is empty or not in the tree of this document; the cursor does not move then
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
