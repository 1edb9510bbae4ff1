// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// A list of documents that owns them.

#include "object_properties.h"

#include <cstddef>
#include <iterator>
#include <list>
#include <memory>
#include <type_traits>

namespace dbc {

/// A list of documents that owns them. Pass it to find(), read() and aggregate() in place of a
/// `std::list<ObjectProperties*>`. The destructor deletes the documents. Not thread-safe.
///
///     dbc::Results found;
///     client.read("shop", "orders", query, found);
///     for (const ObjectProperties& order : found)
///         ...
/// @since 1.0
class Results
{
    using List = std::list<ObjectProperties*>;

    template <typename ListIterator, typename Document>
    class Iterator
    {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = ObjectProperties;
        using difference_type = std::ptrdiff_t;
        using pointer = Document*;
        using reference = Document&;

        Iterator() = default;
        explicit Iterator(ListIterator place) : m_place(place) {}
        /// From an iterator over documents that can be changed.
        template <typename OtherIterator, typename OtherDocument,
                  typename = std::enable_if_t<std::is_convertible_v<OtherDocument*, Document*>>>
        Iterator(const Iterator<OtherIterator, OtherDocument>& other) : m_place(other.m_place)
        {}

        reference operator*() const { return **m_place; }
        pointer operator->() const { return *m_place; }
        Iterator& operator++()
        {
            ++m_place;
            return *this;
        }
        Iterator operator++(int) { return Iterator(m_place++); }
        Iterator& operator--()
        {
            --m_place;
            return *this;
        }
        Iterator operator--(int) { return Iterator(m_place--); }
        friend bool operator==(const Iterator& left, const Iterator& right) { return left.m_place == right.m_place; }
        friend bool operator!=(const Iterator& left, const Iterator& right) { return left.m_place != right.m_place; }

    private:
        template <typename, typename>
        friend class Results::Iterator;
        ListIterator m_place{};
    };

public:
    /// Type of the elements.
    using value_type = ObjectProperties;
    /// Iterator over the documents.
    using iterator = Iterator<List::iterator, ObjectProperties>;
    /// Iterator over documents that cannot be changed.
    using const_iterator = Iterator<List::const_iterator, const ObjectProperties>;

    /// Creates an empty list.
    Results() = default;
    /// Moves the documents.
    Results(Results&& other) noexcept { m_documents.swap(other.m_documents); }
    /// Deletes the documents of this list, then moves those of @p other.
    Results& operator=(Results&& other) noexcept
    {
        if (this != &other)
        {
            clear();
            m_documents.swap(other.m_documents);
        }
        return *this;
    }
    Results(const Results&) = delete;
    Results& operator=(const Results&) = delete;
    /// Deletes the documents.
    ~Results() { clear(); }

    /// The list that the client appends to. This object owns the appended documents.
    operator std::list<ObjectProperties*>&() noexcept { return m_documents; }

    /// Number of documents.
    std::size_t size() const noexcept { return m_documents.size(); }
    /// True if there are no documents.
    bool empty() const noexcept { return m_documents.empty(); }
    /// The first document.
    iterator begin() { return iterator(m_documents.begin()); }
    /// Past the last document.
    iterator end() { return iterator(m_documents.end()); }
    /// The first document.
    const_iterator begin() const { return const_iterator(m_documents.begin()); }
    /// Past the last document.
    const_iterator end() const { return const_iterator(m_documents.end()); }
    /// The first document; there must be one.
    ObjectProperties& front() { return *m_documents.front(); }
    /// The last document; there must be one.
    ObjectProperties& back() { return *m_documents.back(); }

    /// Removes the first document from the list and returns it; null if the list is empty.
    std::unique_ptr<ObjectProperties> takeFront()
    {
        if (m_documents.empty())
            return nullptr;
        std::unique_ptr<ObjectProperties> document(m_documents.front());
        m_documents.pop_front();
        return document;
    }

    /// Deletes every document.
    void clear() noexcept
    {
        for (const ObjectProperties* document : m_documents)
            delete document;
        m_documents.clear();
    }

private:
    List m_documents;
};

} // namespace dbc
