// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

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
/// Help text for the fields to print.
extern const char* const fieldsHelp;

/// Parses a query of the command line: no words, one JSON document, or conditions that must all match:
///
///     field=value  field!=value  field>value  field>=value  field<value  field<=value
///     field~pattern  field~/pattern/flags  field?  !field
///
/// A value is JSON (5, true, "5", {"$oid": "..."}) or a time (2023-01-31, 2023-01-31T12:30:00Z). Anything else is a
/// string. In fields whose name ends in "_id", 24 hexadecimal digits are an object id. A field may be a dotted path.
/// @param advice  appended to the error for a word that is not a condition
dbc::Value parseQuery(const std::vector<std::string>& words, const std::string& advice = std::string());

/// Parses a sort order: fields separated by commas, with "-" before a descending one; or JSON.
dbc::Sort parseSort(const std::string& text);

/// Parses the fields to print: fields separated by commas, with "-" before one to leave out; or JSON.
dbc::Value parseFields(const std::string& text);

/// Converts a document of the command line for the library. @throws Failure with the fields that ObjectProperties would
/// drop or change, because a query that has lost a condition matches more documents
ObjectProperties toProperties(const dbc::Value& document, const std::string& what);
