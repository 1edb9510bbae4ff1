#pragma once

/// @file
/// Builds a server query document call by call.

#include "database_client_export.h"
#include "object_properties.h"

#include <memory>
#include <string>

class ObjectFilterPrivate;

/// Comparison of a condition. The numbers are part of the library's interface.
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
    OperationTypeRegex = 8,          ///< {key: {"$regex": value}}, texts with "$options" when options are given
    OperationTypeUnknown = 9         ///< {key: {"": value}}, like every number above
};

/// A query under construction: one call per condition, "$and" and "$or" lists opened and closed like brackets. The
/// result, toObjectProeprties(), is an ordinary document for DataBaseClient.
///
/// Inside an open list every condition is an element of its own; outside, conditions on one key merge, and so do two
/// "$and" or two "$or" lists. At most 100 lists are open at once: further ones are counted, so that their ends pair up,
/// and otherwise ignored, conditions going into the hundredth.
///
/// Keys are those of ObjectProperties: use one segment. "a.b" is a field inside a field as the server reads it, while
/// "a/b" is a path whose groups a condition leaves by one level only, and an empty key is the whole query, which a
/// value replaces: callers depend on both.
///
/// One thread at a time. Nothing here throws but `std::bad_alloc`; a filter that threw is incomplete and can only be
/// assigned to or destroyed.
class DATABASE_CLIENT_API ObjectFilter
{
public:
    /// An empty filter without open lists.
    ObjectFilter();
    /// A full copy: it goes on in the innermost list that @p other has open, without open lists at the top level.
    ObjectFilter(const ObjectFilter& other);

    // Slot order is part of the library's interface and closed.

    virtual ~ObjectFilter();

    /// Opens an "$and" list.
    virtual void start_and();
    /// Closes the innermost list, of either kind: callers depend on it. Does nothing when none is open.
    virtual void finish_and();
    /// Opens an "$or" list.
    virtual void start_or();
    /// The same as finish_and().
    virtual void finish_or();
    /// Puts the following conditions inside a sub-document; no part of the lists.
    virtual void beginGroup(const std::string& key);
    /// Ends the innermost beginGroup().
    virtual void endGroup();
    /// @name Conditions
    /// What each adds to the query is told at OperationType.
    /// @{

    /// Adds a condition: the value under @p key compares with @p value as @p operation says.
    /// For texts also options of a regular expression, such as "i", ignored unless @p operation is OperationTypeRegex.
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

    /// Adds the query of @p other as a new element of the innermost list; without an open list it replaces this query.
    virtual void include(const ObjectFilter& other);
    /// Moves what stands under @p key, if anything, into @p target, whose query and open lists are lost in any case.
    virtual void exclude(const std::string& key, ObjectFilter& target);
    /// Whether the query holds nothing yet; an open list counts as something.
    virtual bool isEmpty() const;
    /// A copy of the query as it stands, also while lists are open. The misspelling is part of the interface.
    virtual ObjectProperties toObjectProeprties() const;
    /// Takes over a query and goes on at its top level. Lists that are open still wait for their end: use a filter
    /// without any.
    virtual void fromObjectProperties(const ObjectProperties& properties);
    /// Like the copy constructor. Assigning a filter to itself changes nothing.
    virtual ObjectFilter& operator=(const ObjectFilter& other);

    // Beside the closed table: not virtual.

    /// Adds the condition {key: operators}, for operators that have no call of their own. Outside a list it merges with
    /// other conditions on the key. With the empty key the members of @p operators stand in the place of a condition
    /// themselves, as "$nor" does.
    void setFilterDocument(const std::string& key, const ObjectProperties& operators);

private:
    std::unique_ptr<ObjectFilterPrivate> d; // the only member: size and layout never change
};

static_assert(sizeof(ObjectFilter) == 2 * sizeof(void*), "callers were compiled against this layout");
