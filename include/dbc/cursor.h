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

/// The documents that a query finds, received from the server batch by batch. An input range that holds one document at
/// a time. The type of the loop variable decides its form:
///
///     for (const ObjectProperties& order : orders.find({{"state", "open"}}))
///     for (const dbc::Value& order : orders.find({{"state", "open"}}))
///     for (dbc::BsonView order : orders.find({{"state", "open"}}))
///
/// A document is valid until the next one is fetched: the object that a form refers to is used again. As BsonView the
/// document is not copied.
///
/// Destroying the cursor before the end closes it on the server.
/// The cursor keeps the connection that it was made with open, also after disconnect() and after the end of the
/// DataBaseClient. Not thread-safe, and to be used by the client's thread. Moved from, it can only be assigned to or
/// destroyed.
class DATABASE_CLIENT_API Cursor
{
public:
    /// The current document in the form that the caller asks for.
    class DATABASE_CLIENT_API Document
    {
    public:
        /// The document with the fields that ObjectProperties can hold; see docs/guide/kinds.md.
        operator const ObjectProperties&() const { return m_cursor->properties(); }
        /// The document as it is.
        operator const Value&() const { return m_cursor->value(); }
        /// Its bytes.
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

    /// Visits the documents once.
    class Iterator
    {
    public:
        /// Documents come once.
        using iterator_category = std::input_iterator_tag;
        /// What an iterator points to.
        using value_type = Document;
        /// Required of an iterator; nothing measures distances.
        using difference_type = std::ptrdiff_t;
        /// Result of operator->().
        using pointer = const Document*;
        /// Result of operator*().
        using reference = const Document&;

        /// The end.
        Iterator() = default;

        /// The document of the cursor; valid until the next step.
        reference operator*() const { return m_document; }
        /// The document of the cursor; valid until the next step.
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
    /// The iterator of a range.
    using iterator = Iterator;
    /// The iterator of a range; documents cannot be changed.
    using const_iterator = Iterator;

    /// Takes over the state of @p other, which can only be destroyed or assigned to afterwards.
    Cursor(Cursor&& other) noexcept;
    /// As the constructor; the own state is released first.
    Cursor& operator=(Cursor&& other) noexcept;
    /// Closes the cursor.
    ~Cursor();

    /// Moves to the next document; false at the end, and after close().
    /// @throws ServerError "Find failed...", "Aggregation failed...": once; after it the cursor is at its end
    bool next();

    /// The current document with the fields that ObjectProperties can hold. The same object for every document.
    /// @throws std::logic_error "The cursor is on no document", before the first next() and at the end
    const ObjectProperties& properties();
    /// The current document. The same object for every document. @throws std::logic_error as properties()
    /// @throws FormatError if the server sent a malformed document
    const Value& value();
    /// The bytes of the current document. @throws std::logic_error as properties()
    BsonView bson() const;

    /// Moves to the first document if next() was not called yet. The range can be visited once.
    /// @throws ServerError as next()
    Iterator begin();
    /// The end of the range.
    Iterator end() noexcept { return {}; }

    /// Ends the query. The server frees what it holds for it. Called by the destructor.
    void close() noexcept;

private:
    friend class CursorAccess;
    struct DATABASE_CLIENT_LOCAL State;
    explicit Cursor(std::unique_ptr<State> state) noexcept;
    std::unique_ptr<State> d;
};

} // namespace dbc
