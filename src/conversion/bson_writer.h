// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <cstddef>

class Property;

/// Appends the children of @p node to @p bson. Groups and arrays deeper than @p levels are left out.
/// @param levels  maximum depth of groups and arrays; 0 allows only values
/// @return false if groups or arrays were left out
bool appendChildren(const Property& node, bson_t* bson, std::size_t levels);
