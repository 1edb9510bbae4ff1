#pragma once

#include "dbc/value.h"
#include "object_properties.h"

#include <string>
#include <vector>

/// Help text for the words of a query.
extern const char* const queryHelp;

/// A query from the command line: nothing, one JSON document, or conditions as words, all of which must hold:
///
///     field=value  field!=value  field>value  field>=value  field<value  field<=value
///     field~pattern  field?  !field
///
/// A value is JSON (5, true, "5", {"$oid": "..."}); anything else is text; 24 hexadecimal digits for a field named _id,
/// or ending in one, are an object id. Keys may be paths with dots, as the server reads them.
dbc::Value parseQuery(const std::vector<std::string>& words);

/// A document of the command line for the library. @throws Failure that names what the document model would drop or
/// bend: a condition that is dropped would match everything
ObjectProperties toProperties(const dbc::Value& document, const std::string& what);
