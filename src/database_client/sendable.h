// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

class ObjectProperties;

/// Appends the fields of @p document to @p bson.
/// @return false if the document has more than 1,000 nested levels. Do not pass @p bson to the driver then
bool appendSendable(const ObjectProperties& document, bson_t* bson);

/// True if @p bson has at most 1,000 nested levels, so that it can be passed to the driver. Call this for bytes that
/// appendSendable() did not write.
bool canBeSent(const bson_t* bson);
