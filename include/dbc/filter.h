#pragma once

/// @file
/// The query operators that ObjectFilter has no call for. Each function writes one condition into an ObjectFilter,
/// where it follows the filter's rules for lists, or into a query document, at its cursor.

#include "dbc/build.h"
#include "dbc/scopes.h"
#include "object_filter.h"
#include "object_properties.h"

#include <string>
#include <utility>

namespace dbc {

/// Adds {key: operators}; with the empty key, the operators themselves.
inline void addCondition(ObjectFilter& filter, const std::string& key, const ObjectProperties& operators)
{
    filter.setFilterDocument(key, operators);
}

/// Adds {key: operators}, merged with what the key holds; with the empty key, the operators themselves.
inline void addCondition(ObjectProperties& query, const std::string& key, const ObjectProperties& operators)
{
    const CursorScope scope(query);
    if (!key.empty())
        query.beginGroup(key);
    const auto condition = query.current();
    for (const auto& [name, operand] : *operators.root())
        condition->createSingleProperty(name)->copy(*operand);
}

/// The field equals one of the values. @p target is an ObjectFilter or a query document, as in all that follow.
template <typename Target>
void addIn(Target& target, const std::string& key, Elements values)
{
    addCondition(target, key, document({{"$in", array(std::move(values))}}));
}

/// The field equals none of the values, or is missing.
template <typename Target>
void addNotIn(Target& target, const std::string& key, Elements values)
{
    addCondition(target, key, document({{"$nin", array(std::move(values))}}));
}

/// The field does not meet these operators: `addNot(filter, "age", {{"$gt", 30}})`.
template <typename Target>
void addNot(Target& target, const std::string& key, Fields operators)
{
    addCondition(target, key, document({{"$not", object(std::move(operators))}}));
}

/// The document meets none of these queries.
template <typename Target>
void addNor(Target& target, Elements queries)
{
    addCondition(target, std::string(), document({{"$nor", array(std::move(queries))}}));
}

/// The array holds all of the values.
template <typename Target>
void addAll(Target& target, const std::string& key, Elements values)
{
    addCondition(target, key, document({{"$all", array(std::move(values))}}));
}

/// The array has this many elements.
template <typename Target>
void addSize(Target& target, const std::string& key, int count)
{
    addCondition(target, key, document({{"$size", count}}));
}

/// The field is of this BSON type, by its name ("string", "array") or by its number.
template <typename Target>
void addType(Target& target, const std::string& key, const Value& bsonType)
{
    addCondition(target, key, document({{"$type", bsonType}}));
}

/// One element of the array meets all of these conditions.
template <typename Target>
void addElemMatch(Target& target, const std::string& key, Fields conditions)
{
    addCondition(target, key, document({{"$elemMatch", object(std::move(conditions))}}));
}

/// The field divided by @p divisor leaves @p remainder.
template <typename Target>
void addMod(Target& target, const std::string& key, long divisor, long remainder)
{
    addCondition(target, key, document({{"$mod", array({divisor, remainder})}}));
}

} // namespace dbc
