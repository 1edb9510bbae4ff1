// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

class ObjectProperties;

/// Appends the fields of @p document to @p bson.
/// @return false if the document has more than 1,000 nested levels; the driver must not read it
bool appendSendable(const ObjectProperties& document, bson_t* bson);

/// True if the driver can read @p bson: it has at most 1,000 nested levels. For bytes that appendSendable() did not
/// write.
bool canBeSent(const bson_t* bson);
