// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Objects that move the cursor of a document, and restore it in their destructor.

#include "object_properties.h"

#include <memory>
#include <string>

namespace dbc {

/// Restores the cursor of a document in the destructor. If the node is no longer in the document, the cursor moves to
/// the root. Base class of the scopes below; can also be used alone.
/// @since 1.0
class CursorScope
{
public:
    /// Stores the cursor of @p document. The document must outlive this object.
    explicit CursorScope(const ObjectProperties& document) : m_document(document), m_origin(document.current()) {}
    CursorScope(const CursorScope&) = delete;
    CursorScope& operator=(const CursorScope&) = delete;

    /// Restores the cursor.
    ~CursorScope()
    {
        if (!m_document.moveTo(m_origin))
            m_document.moveTo(m_document.root());
    }

protected:
    /// The document.
    const ObjectProperties& document() const noexcept { return m_document; }
    /// The node to which the cursor returns.
    const std::shared_ptr<Property>& origin() const noexcept { return m_origin; }

private:
    const ObjectProperties& m_document;
    std::shared_ptr<Property> m_origin;
};

/// Moves the cursor into a group, and back in the destructor. A missing group is created, also in a const document, as
/// beginGroup() does. On an array this adds an element.
/// @since 1.0
class GroupScope : private CursorScope
{
public:
    /// Moves the cursor into the group at @p key.
    GroupScope(const ObjectProperties& document, const std::string& key) : CursorScope(document)
    {
        document.beginGroup(key);
        m_entered = document.type() == Group;
    }

    /// True if the cursor is in a group. beginGroup() also enters a value or an array.
    explicit operator bool() const noexcept { return m_entered; }

private:
    bool m_entered = false;
};

/// Moves the cursor into an array, and back in the destructor. A missing array is created.
/// @since 1.0
class ArrayScope : private CursorScope
{
public:
    /// Moves the cursor into the array at @p key.
    ArrayScope(const ObjectProperties& document, const std::string& key) : CursorScope(document)
    {
        document.beginArray(key);
        m_entered = document.type() == Array && document.current() != origin();
    }

    /// True if the cursor is in the array. If it is false, do not write: on a group, beginArray() moves to the root,
    /// and on a value it does not move.
    explicit operator bool() const noexcept { return m_entered; }

private:
    bool m_entered = false;
};

/// Moves the cursor to a child by its index, and back in the destructor.
/// @since 1.0
class ObjectScope : private CursorScope
{
public:
    /// Moves the cursor to the child at @p index.
    ObjectScope(const ObjectProperties& document, int index)
        : CursorScope(document), m_entered(document.beginObject(index))
    {}

    /// True if there is such a child.
    explicit operator bool() const noexcept { return m_entered; }

private:
    bool m_entered;
};

} // namespace dbc
