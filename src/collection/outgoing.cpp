// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "collection/outgoing.h"

#include "database_client/sendable.h"
#include "dbc/document_ref.h"
#include "dbc/value.h"
#include "object_properties.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace dbc {

/// Access to the content of a DocumentRef. Each function returns null if the document has another form.
class DocumentRefAccess
{
public:
    static const ObjectProperties* properties(const DocumentRef& document)
    {
        return document.m_form == DocumentRef::Form::Properties
                   ? static_cast<const ObjectProperties*>(document.m_document)
                   : nullptr;
    }

    static const Value* value(const DocumentRef& document)
    {
        if (document.m_form == DocumentRef::Form::Owned)
            return &*document.m_owned;
        return document.m_form == DocumentRef::Form::Value ? static_cast<const Value*>(document.m_document) : nullptr;
    }

    static const BsonView* bson(const DocumentRef& document)
    {
        return document.m_form == DocumentRef::Form::Bson ? static_cast<const BsonView*>(document.m_document) : nullptr;
    }
};

namespace {

// Size of type, key and value of an "_id".
constexpr std::size_t idSize = 1 + sizeof("_id") + sizeof(bson_oid_t::bytes);
constexpr std::size_t lengthSize = sizeof(std::uint32_t);

// Checks the depth first, because bson_validate() is recursive.
bool isBson(const BsonView& bytes, bson_t* view)
{
    return bytes.data && bson_init_static(view, bytes.data, bytes.size) && canBeSent(view) &&
           bson_validate(view, BSON_VALIDATE_NONE, nullptr);
}

void require(bool condition, const char* refusal)
{
    if (!condition)
        throw std::invalid_argument(refusal);
}

// Adds a new id as the first field. `bytes` has `idSize` unused bytes and then the document. The length of the document
// moves to the front, and the new field fills the bytes between the length and the first field.
void putIdFirst(std::vector<std::uint8_t>& bytes)
{
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data() + idSize, lengthSize);
    length = BSON_UINT32_TO_LE(BSON_UINT32_FROM_LE(length) + static_cast<std::uint32_t>(idSize));
    bson_oid_t id;
    bson_oid_init(&id, nullptr);
    std::uint8_t* place = bytes.data();
    std::memcpy(place, &length, lengthSize);
    place += lengthSize;
    *place++ = BSON_TYPE_OID;
    std::memcpy(place, "_id", sizeof("_id"));
    std::memcpy(place + sizeof("_id"), id.bytes, sizeof(id.bytes));
}

} // namespace

OutgoingBson::OutgoingBson(const DocumentRef& document, const char* refusal, Shape shape)
{
    if (const Value* const value = DocumentRefAccess::value(document))
    {
        require(value->isObject() || (value->isArray() && shape == Shape::ObjectOrArray), refusal);
        value->appendBson(m_bytes);
        require(bson_init_static(&m_view, m_bytes.data(), m_bytes.size()) && canBeSent(&m_view), refusal);
        m_current = &m_view;
    }
    else if (const BsonView* const bytes = DocumentRefAccess::bson(document))
    {
        require(isBson(*bytes, &m_view), refusal);
        m_current = &m_view;
    }
    else if (const ObjectProperties* const properties = DocumentRefAccess::properties(document))
        require(appendSendable(*properties, m_own.get()), refusal);
}

void OutgoingBson::convertForInsert(const DocumentRef& document, const char* refusal)
{
    if (const Value* const value = DocumentRefAccess::value(document))
    {
        require(value->isObject(), refusal);
        const bool hasId = value->contains("_id");
        m_bytes.resize(hasId ? 0 : idSize);
        value->appendBson(m_bytes);
        if (!hasId)
            putIdFirst(m_bytes);
        require(bson_init_static(&m_view, m_bytes.data(), m_bytes.size()) && canBeSent(&m_view), refusal);
        m_current = &m_view;
    }
    else if (const BsonView* const bytes = DocumentRefAccess::bson(document))
    {
        require(isBson(*bytes, &m_view), refusal);
        m_current = &m_view;
        if (!bson_has_field(&m_view, "_id"))
        {
            m_bytes.assign(idSize, 0);
            m_bytes.insert(m_bytes.end(), bytes->data, bytes->data + bytes->size);
            putIdFirst(m_bytes);
            require(bson_init_static(&m_view, m_bytes.data(), m_bytes.size()), refusal);
        }
    }
    else
    {
        bson_reinit(m_own.get());
        m_current = m_own.get();
        const ObjectProperties* const properties = DocumentRefAccess::properties(document);
        if (!properties || !properties->contains("/_id"))
        {
            bson_oid_t id;
            bson_oid_init(&id, nullptr);
            BSON_APPEND_OID(m_own.get(), "_id", &id);
        }
        if (properties)
            require(appendSendable(*properties, m_own.get()), refusal);
    }
}

} // namespace dbc
