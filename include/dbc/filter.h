// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Query operators that ObjectFilter has no function for. Each function adds one condition to an ObjectFilter, or to a
/// query document at its cursor. It is merged with other conditions on the same key, but has no effect if the query has
/// a value for the key, such as {key: 1}: use an "$and" list then.
/// @since 1.0

#include "dbc/build.h"
#include "dbc/scopes.h"
#include "dbc/value.h"
#include "object_filter.h"
#include "object_properties.h"

#include <string>
#include <utility>

namespace dbc {

/// Adds the condition {key: operators}. With the empty key, adds the operators themselves.
inline void addCondition(ObjectFilter& filter, const std::string& key, const ObjectProperties& operators)
{
    filter.setFilterDocument(key, operators);
}

/// Adds the condition {key: operators} at the cursor. With the empty key, adds the operators themselves. The cursor
/// does not move.
inline void addCondition(ObjectProperties& query, const std::string& key, const ObjectProperties& operators)
{
    const CursorScope scope(query);
    if (!key.empty())
        query.beginGroup(key);
    const auto condition = query.current();
    for (const auto& [name, operand] : *operators.root())
        condition->createSingleProperty(name)->copy(*operand);
}

/// Adds a condition: the field equals one of the values. The @p target of this and of all functions below is an
/// ObjectFilter, or an ObjectProperties with a query.
template <typename Target>
void addIn(Target& target, const std::string& key, Elements values)
{
    addCondition(target, key, document({{"$in", array(std::move(values))}}));
}

/// Adds a condition: the field is missing or equals none of the values.
template <typename Target>
void addNotIn(Target& target, const std::string& key, Elements values)
{
    addCondition(target, key, document({{"$nin", array(std::move(values))}}));
}

/// Adds a condition: the field does not match the operators. Example: `addNot(filter, "age", {{"$gt", 30}})`.
template <typename Target>
void addNot(Target& target, const std::string& key, Fields operators)
{
    addCondition(target, key, document({{"$not", object(std::move(operators))}}));
}

/// Adds a condition: the document matches none of the queries.
template <typename Target>
void addNor(Target& target, Elements queries)
{
    addCondition(target, std::string(), document({{"$nor", array(std::move(queries))}}));
}

/// Adds a condition: the array contains all values.
template <typename Target>
void addAll(Target& target, const std::string& key, Elements values)
{
    addCondition(target, key, document({{"$all", array(std::move(values))}}));
}

/// Adds a condition: the array has this number of elements.
template <typename Target>
void addSize(Target& target, const std::string& key, int count)
{
    addCondition(target, key, document({{"$size", count}}));
}

/// Adds a condition: the field has this BSON type. @p bsonType is its name, such as "string", or its number.
template <typename Target>
void addType(Target& target, const std::string& key, const Value& bsonType)
{
    addCondition(target, key, document({{"$type", bsonType}}));
}

/// Adds a condition: one element of the array matches all conditions.
template <typename Target>
void addElemMatch(Target& target, const std::string& key, Fields conditions)
{
    addCondition(target, key, document({{"$elemMatch", object(std::move(conditions))}}));
}

/// Adds a condition: the field modulo @p divisor is @p remainder.
template <typename Target>
void addMod(Target& target, const std::string& key, long divisor, long remainder)
{
    addCondition(target, key, document({{"$mod", array({divisor, remainder})}}));
}

} // namespace dbc
