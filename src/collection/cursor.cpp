// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/cursor.h"

#include "collection/bson_value.h"
#include "collection/cursor_state.h"
#include "collection/driver_error.h"
#include "dbc/document_ref.h"
#include "dbc/value.h"
#include "object_properties.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace dbc {

void Cursor::State::fetch()
{
    hasProperties = false;
    hasValue = false;
    fetched = nullptr;
    if (!cursor || mongoc_cursor_next(cursor.get(), &fetched))
        return;
    fetched = nullptr;
    const CursorHandle ended = std::move(cursor); // owns the reply of the error
    bson_error_t error{};
    const bson_t* reply = nullptr;
    if (mongoc_cursor_error_document(ended.get(), &error, &reply))
        throwServerError(message, error, reply);
}

const bson_t* Cursor::State::current() const
{
    if (!hasBegun || !fetched)
        throw std::logic_error("The cursor is on no document");
    return fetched;
}

Cursor CursorAccess::open(std::shared_ptr<mongoc_client_t> client, CursorHandle cursor, const char* message)
{
    auto state = std::make_unique<Cursor::State>();
    state->client = std::move(client);
    state->cursor = std::move(cursor);
    state->message = message;
    // The query is sent now, because a pipeline that writes must run even if its results are not read.
    state->fetch();
    return Cursor(std::move(state));
}

Cursor::Cursor(std::unique_ptr<State> state) noexcept : d(std::move(state)) {}

Cursor::Cursor(Cursor&& other) noexcept = default;

Cursor& Cursor::operator=(Cursor&& other) noexcept = default;

Cursor::~Cursor() = default;

bool Cursor::next()
{
    if (d->hasBegun)
        d->fetch();
    d->hasBegun = true;
    return d->fetched != nullptr;
}

const ObjectProperties& Cursor::properties()
{
    const bson_t* const bson = d->current();
    if (d->hasProperties)
        return *d->properties;
    if (!d->properties)
        d->properties.emplace();
    if (!d->refill.convert(bson, *d->properties))
        throw std::invalid_argument("Bad results");
    d->hasProperties = true;
    return *d->properties;
}

const Value& Cursor::value()
{
    const bson_t* const bson = d->current();
    if (!d->hasValue)
        d->value = valueFrom(bson);
    d->hasValue = true;
    return d->value;
}

BsonView Cursor::bson() const
{
    const bson_t* const bson = d->current();
    return {bson_get_data(bson), bson->len};
}

Cursor::Iterator Cursor::begin()
{
    const bool isOnDocument = d->hasBegun ? d->fetched != nullptr : next();
    return isOnDocument ? Iterator(*this) : Iterator();
}

void Cursor::close() noexcept
{
    d->fetched = nullptr;
    d->cursor = CursorHandle(); // also ends the session of its deleter, before the client is released
    d->client.reset();
}

} // namespace dbc
