// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/value.h"

#include <bson/bson.h>

/// Converts values to and from bson_t.
namespace dbc {

/// Appends a field with @p key and @p value.
/// @throws std::invalid_argument "Bad options" if the value has more than 1,000 levels; the driver must not read it
void appendValue(bson_t* bson, const char* key, const Value& value);
/// Returns the value of the current field of @p iter. @throws FormatError if the BSON is invalid
Value valueAt(const bson_iter_t& iter);
/// Returns an object with the fields of @p bson. @throws FormatError if the BSON is invalid
Value valueFrom(const bson_t* bson);
/// Returns an object id.
Value valueFrom(const bson_oid_t& id);

} // namespace dbc
