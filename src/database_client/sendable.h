#pragma once

#include <bson/bson.h>

class ObjectProperties;

/// Appends the fields of @p document to @p bson.
/// @return false if the document is nested more than 1,000 levels deep: the driver must not read it
bool appendSendable(const ObjectProperties& document, bson_t* bson);

/// Whether the driver can read @p bson: it is nested at most 1,000 levels deep. For bytes that appendSendable() did not
/// write.
bool canBeSent(const bson_t* bson);
