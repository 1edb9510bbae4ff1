// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// The results of a query, one document at a time.

#include "database_client_export.h"
#include "dbc/document_ref.h"
#include "dbc/value.h"
#include "object_properties.h"

#include <cstddef>
#include <iterator>
#include <memory>

namespace dbc {

class CursorAccess;

/// The documents that a query returns, as an input range. The server sends them in batches; the cursor has one document
/// at a time. The type of the loop variable selects the form of the document:
///
///     for (const ObjectProperties& order : orders.find({{"state", "open"}}))
///     for (const dbc::Value& order : orders.find({{"state", "open"}}))
///     for (dbc::BsonView order : orders.find({{"state", "open"}}))
///
/// A document is valid until the next one is fetched, because the cursor reuses its objects. A BsonView does not own
/// its bytes.
///
/// The destructor closes the cursor on the server. A cursor shares ownership of the connection. It stays usable after
/// disconnect() and after the DataBaseClient is destroyed.
///
/// Not thread-safe: use it in the thread of the client. Only assign to a moved-from cursor or destroy it.
/// @since 1.0
class DATABASE_CLIENT_API Cursor
{
public:
    /// The current document. It converts to each of the three forms.
    class DATABASE_CLIENT_API Document
    {
    public:
        /// The document with the fields that ObjectProperties can hold; see dbc::Loss.
        operator const ObjectProperties&() const { return m_cursor->properties(); }
        /// The document with all fields.
        operator const Value&() const { return m_cursor->value(); }
        /// The bytes of the document.
        operator BsonView() const { return m_cursor->bson(); }

        /// @copydoc Cursor::properties()
        const ObjectProperties& properties() const { return m_cursor->properties(); }
        /// @copydoc Cursor::value()
        const Value& value() const { return m_cursor->value(); }
        /// @copydoc Cursor::bson()
        BsonView bson() const { return m_cursor->bson(); }

    private:
        friend class Cursor;
        Document() = default;
        explicit Document(Cursor& cursor) : m_cursor(&cursor) {}
        Cursor* m_cursor = nullptr;
    };

    /// Input iterator over the documents.
    class Iterator
    {
    public:
        /// An input iterator: one pass.
        using iterator_category = std::input_iterator_tag;
        /// Type of the elements.
        using value_type = Document;
        /// Required of an iterator; not used.
        using difference_type = std::ptrdiff_t;
        /// Returned by operator->().
        using pointer = const Document*;
        /// Returned by operator*().
        using reference = const Document&;

        /// The end iterator.
        Iterator() = default;

        /// The current document; valid until the next step.
        reference operator*() const { return m_document; }
        /// The current document; valid until the next step.
        pointer operator->() const { return &m_document; }
        /// Fetches the next document. @throws ServerError
        Iterator& operator++()
        {
            if (!m_document.m_cursor->next())
                m_document.m_cursor = nullptr;
            return *this;
        }
        /// Fetches the next document. @throws ServerError
        void operator++(int) { ++*this; }
        friend bool operator==(const Iterator& left, const Iterator& right) { return left.source() == right.source(); }
        friend bool operator!=(const Iterator& left, const Iterator& right) { return !(left == right); }

    private:
        friend class Cursor;
        explicit Iterator(Cursor& cursor) : m_document(cursor) {}
        const Cursor* source() const { return m_document.m_cursor; }
        Document m_document;
    };
    /// Type of begin() and end().
    using iterator = Iterator;
    /// Type of begin() and end(); the documents cannot be changed.
    using const_iterator = Iterator;

    /// Moves the cursor.
    Cursor(Cursor&& other) noexcept;
    /// Closes this cursor, then moves @p other.
    Cursor& operator=(Cursor&& other) noexcept;
    /// Closes the cursor.
    ~Cursor();

    /// Fetches the next document. Returns false at the end and after close().
    /// @throws ServerError "Find failed..." or "Aggregation failed...". The cursor is at its end then; further calls
    ///                     return false
    bool next();

    /// Returns the current document with the fields that ObjectProperties can hold. The next document reuses the
    /// object.
    /// @throws std::logic_error      "The cursor is on no document" before the first next() and at the end
    /// @throws std::invalid_argument "Bad results" if the server sent a malformed document
    const ObjectProperties& properties();
    /// Returns the current document. The next document reuses the object.
    /// @throws std::logic_error as properties()
    /// @throws FormatError      if the server sent a malformed document
    const Value& value();
    /// Returns the bytes of the current document. @throws std::logic_error as properties()
    BsonView bson() const;

    /// Fetches the first document if next() was not called yet. The range can be visited only once.
    /// @throws ServerError as next()
    Iterator begin();
    /// The end of the range.
    Iterator end() noexcept { return {}; }

    /// Closes the cursor on the server. The destructor calls it.
    void close() noexcept;

private:
    friend class CursorAccess;
    struct DATABASE_CLIENT_LOCAL State;
    explicit Cursor(std::unique_ptr<State> state) noexcept;
    std::unique_ptr<State> d;
};

} // namespace dbc
