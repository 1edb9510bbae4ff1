// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// A document as a parameter, in any form.

#include "dbc/value.h"
#include "object_properties.h"

#include <cstddef>
#include <initializer_list>
#include <optional>

namespace dbc {

class DocumentRefAccess;

inline namespace v1 {

/// The bytes of one BSON document. Does not own them.
struct BsonView
{
    const unsigned char* data = nullptr; ///< The start of the document, with its length.
    std::size_t size = 0;                ///< Number of bytes.
};

/// A parameter that is a document in one of these forms:
/// - an ObjectProperties; its fields are sent in key order
/// - a Value or braces; the fields are sent in their own order
/// - BSON bytes
///
/// It refers to the document and does not own it, except for braces. Use it only as a parameter.
///
///     orders.insertOne({{"item", "cup"}, {"count", 3}});
/// @since 1.0
class DocumentRef
{
public:
    /// A document without fields.
    DocumentRef() noexcept : m_form(Form::Empty) {}
    /// The whole document; the cursor does not matter.
    DocumentRef(const ObjectProperties& document) noexcept : m_form(Form::Properties), m_document(&document) {}
    /// An object. A parameter for a pipeline also takes an array of stages.
    DocumentRef(const Value& document) noexcept : m_form(Form::Value), m_document(&document) {}
    /// BSON bytes. They are checked before they are sent.
    DocumentRef(const BsonView& document) noexcept : m_form(Form::Bson), m_document(&document) {}
    /// An object with these fields.
    DocumentRef(std::initializer_list<Field> fields) : m_form(Form::Owned), m_owned(Value(fields)) {}
    DocumentRef(const DocumentRef&) = delete;
    DocumentRef& operator=(const DocumentRef&) = delete;

private:
    friend class dbc::DocumentRefAccess;

    enum class Form
    {
        Empty,
        Properties,
        Value,
        Bson,
        Owned
    };

    Form m_form;
    const void* m_document = nullptr;
    std::optional<Value> m_owned;
};

} // namespace v1
} // namespace dbc
