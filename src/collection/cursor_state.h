#pragma once

#include "conversion/document_refill.h"
#include "dbc/cursor.h"
#include "driver/mongoc_handles.h"

#include <memory>
#include <optional>

namespace dbc {

struct Cursor::State
{
    /// Asks the driver for the next document. @throws ServerError
    void fetch();
    /// @throws std::logic_error
    const bson_t* current() const;

    std::shared_ptr<mongoc_client_t> client; ///< Destroyed after the cursor.
    CursorHandle cursor;                     ///< Null at the end.
    const char* message = nullptr;           ///< For the errors of this cursor, such as "Find failed".
    const bson_t* fetched = nullptr;         ///< Belongs to the driver's cursor.
    bool hasBegun = false; ///< Whether next() was called; before it the first document is fetched already.
    std::optional<ObjectProperties> properties;
    DocumentRefill refill; ///< Of properties.
    Value value;
    bool hasProperties = false; ///< Whether properties holds the current document.
    bool hasValue = false;      ///< Whether value holds the current document.
};

/// Makes cursors.
class CursorAccess
{
public:
    /// Sends the query. @throws ServerError
    static Cursor open(std::shared_ptr<mongoc_client_t> client, CursorHandle cursor, const char* message);
};

} // namespace dbc
