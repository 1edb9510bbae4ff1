#pragma once

/// @file
/// Scopes that move a document's cursor and put it back when they end, also when an exception ends them.

#include "object_properties.h"

#include <memory>
#include <string>
#include <utility>

namespace dbc {

/// Puts the cursor of a document back to where it stood. Base of the scopes below, and usable alone.
///
/// If the node that the cursor stood on has left the document meanwhile, the cursor goes to the root.
class CursorScope
{
public:
    /// Remembers where the cursor of @p document stands. The document must outlive this object.
    explicit CursorScope(const ObjectProperties& document) : m_document(document), m_origin(document.current()) {}
    CursorScope(const CursorScope&) = delete;
    CursorScope& operator=(const CursorScope&) = delete;

    /// Puts the cursor back.
    ~CursorScope()
    {
        if (!m_document.moveTo(m_origin))
            m_document.moveTo(m_document.root());
    }

protected:
    /// The document.
    const ObjectProperties& document() const noexcept { return m_document; }
    /// The node that the cursor stood on.
    const std::shared_ptr<Property>& origin() const noexcept { return m_origin; }

private:
    const ObjectProperties& m_document;
    std::shared_ptr<Property> m_origin;
};

/// Stands in the group of a key while it lives; a missing group is created, as beginGroup() does, also in a const
/// document. On an array this adds an element.
class GroupScope : private CursorScope
{
public:
    /// Enters the group of the key.
    GroupScope(const ObjectProperties& document, const std::string& key) : CursorScope(document)
    {
        document.beginGroup(key);
        m_entered = document.type() == Group;
    }

    /// Whether the cursor stands in a group. With the key of a value or of an array, beginGroup() enters that node.
    explicit operator bool() const noexcept { return m_entered; }

private:
    bool m_entered = false;
};

/// Stands in the array of a key while it lives; a missing array is created.
class ArrayScope : private CursorScope
{
public:
    /// Enters the array of the key.
    ArrayScope(const ObjectProperties& document, const std::string& key) : CursorScope(document)
    {
        document.beginArray(key);
        m_entered = document.type() == Array && document.current() != origin();
    }

    /// Whether the cursor stands in the array. With the key of a group beginArray() goes to the root of the document,
    /// with that of a value it does not move: writing on would write elsewhere.
    explicit operator bool() const noexcept { return m_entered; }

private:
    bool m_entered = false;
};

/// Stands on the child of an index while it lives.
class ObjectScope : private CursorScope
{
public:
    /// Enters the child at the index.
    ObjectScope(const ObjectProperties& document, int index)
        : CursorScope(document), m_entered(document.beginObject(index))
    {}

    /// Whether there is such a child.
    explicit operator bool() const noexcept { return m_entered; }

private:
    bool m_entered;
};

} // namespace dbc
