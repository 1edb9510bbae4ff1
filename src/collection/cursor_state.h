// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "conversion/document_refill.h"
#include "dbc/cursor.h"
#include "dbc/value.h"
#include "driver/mongoc_handles.h"
#include "object_properties.h"

#include <memory>
#include <optional>

namespace dbc {

struct Cursor::State
{
    /// Fetches the next document from the driver. @throws ServerError
    void fetch();
    /// @throws std::logic_error
    const bson_t* current() const;

    std::shared_ptr<mongoc_client_t> client; ///< Must be destroyed after the cursor.
    CursorHandle cursor;                     ///< Null at the end.
    const char* message = nullptr;           ///< For exceptions, such as "Find failed".
    const bson_t* fetched = nullptr;         ///< The driver's cursor owns it.
    bool hasBegun = false; ///< True after next() was called. The first document is fetched before that.
    std::optional<ObjectProperties> properties;
    DocumentRefill refill; ///< Fills properties.
    Value value;
    bool hasProperties = false; ///< True if properties has the current document.
    bool hasValue = false;      ///< True if value has the current document.
};

/// Access to the private constructor of Cursor.
class CursorAccess
{
public:
    /// Sends the query. @throws ServerError
    static Cursor open(std::shared_ptr<mongoc_client_t> client, CursorHandle cursor, const char* message);
};

} // namespace dbc
