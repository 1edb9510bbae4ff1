#pragma once

#include <bson/bson.h>

#include <cstddef>

class Property;

/// Appends the children of @p node to @p bson. Groups and arrays below the deepest level that is allowed are left out.
/// @param levels  how deep groups and arrays may be nested; 0 allows values only
/// @return false if something was left out for its depth
bool appendChildren(const Property& node, bson_t* bson, std::size_t levels);
