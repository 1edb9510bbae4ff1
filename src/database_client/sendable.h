#pragma once

#include <bson/bson.h>

/// Whether the driver can walk @p bson: it is nested at most 1,000 levels deep.
bool canBeSent(const bson_t* bson);
