// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Builds a query, one condition per call.

#include "database_client_export.h"
#include "object_properties.h"

#include <memory>
#include <string>

class ObjectFilterPrivate;

/// Comparison operator of a condition. The numbers are part of the library's interface.
enum OperationType : int
{
    OperationTypeEqual = 0,          ///< {key: value}
    OperationTypeNotEqual = 1,       ///< {key: {"$ne": value}}
    OperationTypeGreater = 2,        ///< {key: {"$gt": value}}
    OperationTypeGreaterOrEqual = 3, ///< {key: {"$gte": value}}
    OperationTypeLess = 4,           ///< {key: {"$lt": value}}
    OperationTypeLessOrEqual = 5,    ///< {key: {"$lte": value}}
    OperationTypeExists = 6,         ///< {key: {"$exists": true}}; the value is ignored
    OperationTypeNotExists = 7,      ///< {key: {"$exists": false}}; the value is ignored
    OperationTypeRegex = 8,          ///< {key: {"$regex": value}}; for strings with "$options" if options are set
    OperationTypeUnknown = 9         ///< {key: {"": value}}; the same for every greater number
};

/// Builds a query: one call per condition. start_and() and start_or() open a list; finish_and() and finish_or() close
/// it. toObjectProeprties() returns the query as a document for DataBaseClient.
///
/// In an open list, each condition becomes a separate element. Outside a list, conditions on the same key are merged,
/// and so are lists with the same operator. Some conditions on the same key cannot be merged; put them into an "$and"
/// list:
/// - A second condition with the same operator replaces the first.
/// - OperationTypeEqual replaces all others. After it, conditions with other operators have no effect: callers depend
///   on it.
///
/// At most 100 lists can be open. Beyond 100, start calls are only counted, so that finish calls still match.
/// Conditions then go into the 100th list.
///
/// A key is a key path of ObjectProperties. Use keys of one segment:
/// - "a.b" is a nested field for the server.
/// - "a/b" is a path of groups. A condition enters each group, but leaves only the last one. Callers depend on it.
/// - The empty key is the whole query. A value replaces the query. Callers depend on it.
///
/// Not thread-safe. Throws only `std::bad_alloc`. A filter whose function has thrown is incomplete: only assign to it
/// or destroy it.
/// @since 1.0
class DATABASE_CLIENT_API ObjectFilter
{
public:
    /// Creates an empty filter without open lists.
    ObjectFilter();
    /// Copies the query. New conditions go into the innermost list that is open in @p other, or to the top level.
    ObjectFilter(const ObjectFilter& other);

    // Slot order is part of the library's interface and closed.

    virtual ~ObjectFilter();

    /// Opens an "$and" list.
    virtual void start_and();
    /// Closes the innermost list, also if it is an "$or" list: callers depend on it. Does nothing if no list is open.
    virtual void finish_and();
    /// Opens an "$or" list.
    virtual void start_or();
    /// The same as finish_and().
    virtual void finish_or();
    /// Puts the following conditions into the sub-document at @p key. Does not affect the lists.
    virtual void beginGroup(const std::string& key);
    /// Ends the innermost beginGroup().
    virtual void endGroup();
    /// @name Conditions
    /// OperationType lists what each operator adds to the query.
    /// @{

    /// Adds a condition that compares the value of @p key with @p value. The parameter @p options of strings has the
    /// options of a regular expression, such as "i". It is ignored unless @p operation is OperationTypeRegex.
    virtual void setFilterString(OperationType operation, const std::string& key, const std::string& value,
                                 const std::string& options);
    virtual void setFilterBool(OperationType operation, const std::string& key, const bool& value);
    virtual void setFilterInt(OperationType operation, const std::string& key, const int& value);
    virtual void setFilterDouble(OperationType operation, const std::string& key, const double& value);
    virtual void setFilterLongLong(OperationType operation, const std::string& key, const long long& value);
    /// Adds a condition on a time. @param value milliseconds since 1970-01-01 UTC
    virtual void setFilterTime(OperationType operation, const std::string& key, const long long& value);
    /// Adds a condition on an object id. @param value 24 hexadecimal digits
    virtual void setFilterId(OperationType operation, const std::string& key, const std::string& value);
    /// @}

    /// Adds the query of @p other as an element of the innermost list. Without an open list, it replaces this query.
    virtual void include(const ObjectFilter& other);
    /// Moves the conditions at @p key to @p target. The old query and the open lists of @p target are lost, also if
    /// there are no conditions at @p key.
    virtual void exclude(const std::string& key, ObjectFilter& target);
    /// True if the query is empty. A query with an open list is not empty.
    virtual bool isEmpty() const;
    /// Returns a copy of the query, also while lists are open. The misspelled name is part of the interface.
    virtual ObjectProperties toObjectProeprties() const;
    /// Replaces the query. New conditions go to its top level. Lists that were open stay open: call this only on a
    /// filter without open lists.
    virtual void fromObjectProperties(const ObjectProperties& properties);
    /// Copies the query as the copy constructor does. Self-assignment changes nothing.
    virtual ObjectFilter& operator=(const ObjectFilter& other);

    // Not virtual, so not part of the closed table.

    /// Adds the condition {key: operators}, for operators that OperationType does not have. Outside a list it is merged
    /// with other conditions on the key, but has no effect after OperationTypeEqual. With the empty key, adds the
    /// fields of @p operators themselves; use this for "$nor".
    void setFilterDocument(const std::string& key, const ObjectProperties& operators);

private:
    std::unique_ptr<ObjectFilterPrivate> d; // the only member: size and layout never change
};

static_assert(sizeof(ObjectFilter) == 2 * sizeof(void*), "callers were compiled against this layout");
