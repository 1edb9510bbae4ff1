#pragma once

/// @file
/// A list of found documents that owns what it holds.

#include "object_properties.h"

#include <cstddef>
#include <iterator>
#include <list>
#include <memory>
#include <type_traits>
#include <utility>

namespace dbc {

/// Takes the place of the `std::list<ObjectProperties*>` that find(), read() and aggregate() fill, and deletes what it
/// holds at its end:
///
///     dbc::Results found;
///     client.read("shop", "orders", query, found);
///     for (const ObjectProperties& order : found)
///         ...
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
        ListIterator m_place{};
    };

public:
    /// What the container holds.
    using value_type = ObjectProperties;
    /// Visits the documents.
    using iterator = Iterator<List::iterator, ObjectProperties>;
    /// Visits the documents without changing them.
    using const_iterator = Iterator<List::const_iterator, const ObjectProperties>;

    /// No documents.
    Results() = default;
    /// Takes over the documents of @p other.
    Results(Results&& other) noexcept { m_documents.swap(other.m_documents); }
    /// Deletes its own documents and takes over those of @p other.
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

    /// The list for the client to append to. What is appended belongs to this object.
    operator std::list<ObjectProperties*>&() noexcept { return m_documents; }

    /// Number of documents.
    std::size_t size() const noexcept { return m_documents.size(); }
    /// Whether there is no document.
    bool empty() const noexcept { return m_documents.empty(); }
    /// The first document.
    iterator begin() { return iterator(m_documents.begin()); }
    /// The place behind the last document.
    iterator end() { return iterator(m_documents.end()); }
    /// The first document.
    const_iterator begin() const { return const_iterator(m_documents.begin()); }
    /// The place behind the last document.
    const_iterator end() const { return const_iterator(m_documents.end()); }
    /// The first document; there must be one.
    ObjectProperties& front() { return *m_documents.front(); }
    /// The last document; there must be one.
    ObjectProperties& back() { return *m_documents.back(); }

    /// Moves the first document out; an empty pointer when there is none.
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
