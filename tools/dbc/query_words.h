#pragma once

#include "dbc/options.h"
#include "dbc/value.h"
#include "object_properties.h"

#include <string>
#include <vector>

/// Help text for the words of a query.
extern const char* const queryHelp;
/// Help text for a sort order.
extern const char* const sortHelp;

/// A query from the command line: nothing, one JSON document, or conditions as words, all of which must hold:
///
///     field=value  field!=value  field>value  field>=value  field<value  field<=value
///     field~pattern  field~/pattern/flags  field?  !field
///
/// A value is JSON (5, true, "5", {"$oid": "..."}) or a time (2023-01-31, 2023-01-31T12:30:00Z); anything else is a
/// string; 24 hexadecimal digits for a field named _id, or ending in it, are an object id. Keys may be paths with dots,
/// as the server reads them.
dbc::Value parseQuery(const std::vector<std::string>& words);

/// A sort order: fields with commas between, "-" in front of one that is sorted downwards; or JSON.
dbc::Sort parseSort(const std::string& text);

/// A document of the command line for the library. @throws Failure that names what the document model would drop or
/// bend: a condition that is dropped would match everything
ObjectProperties toProperties(const dbc::Value& document, const std::string& what);
