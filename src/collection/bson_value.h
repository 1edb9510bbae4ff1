#pragma once

#include "dbc/value.h"

#include <bson/bson.h>

/// Values from and to documents of the driver.
namespace dbc {

/// Appends @p value under @p key.
void appendValue(bson_t* bson, const char* key, const Value& value);
/// The value under @p iter. @throws FormatError what the driver received is not BSON
Value valueAt(const bson_iter_t& iter);
/// The object with the fields of @p bson. @throws FormatError what the driver received is not BSON
Value valueFrom(const bson_t* bson);
/// An object id.
Value valueFrom(const bson_oid_t& id);

} // namespace dbc
