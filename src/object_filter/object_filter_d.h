// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "object_filter.h"
#include "object_properties.h"

#include <array>
#include <cstddef>
#include <string>

/// The query and the open lists of a filter. The next condition is added at the cursor of the query. Between calls the
/// cursor is on the array of the innermost open list, or at the root if no list is open.
///
/// All functions are called virtually, also by this class, because a derived class may override them.
class ObjectFilterPrivate
{
public:
    /// List operator. arrayOperationName() returns the empty string for all other numbers.
    enum ArrayOperationType : int
    {
        ArrayOperationTypeAnd = 0, ///< "$and"
        ArrayOperationTypeOr = 1   ///< "$or"
    };

    ObjectFilterPrivate() : m_lists{}, m_depth(0) {}
    ObjectFilterPrivate(const ObjectFilterPrivate&) = delete;
    ObjectFilterPrivate& operator=(const ObjectFilterPrivate&) = delete;

    // Slot order is closed, as in ObjectFilter.

    virtual ~ObjectFilterPrivate();
    virtual void copy(const ObjectFilterPrivate& other);
    virtual void start_and() { startArrayOperation(ArrayOperationTypeAnd); }
    virtual void finish_and() { finish_array_operation(); }
    virtual void start_or() { startArrayOperation(ArrayOperationTypeOr); }
    virtual void finish_or() { finish_array_operation(); }
    virtual void beginGroup(const std::string& key) { m_query.beginGroup(key); }
    virtual void endGroup() { m_query.endGroup(); }
    virtual void setFilterString(OperationType operation, const std::string& key, const std::string& value,
                                 const std::string& options);
    virtual void setFilterBool(OperationType operation, const std::string& key, const bool& value);
    virtual void setFilterInt(OperationType operation, const std::string& key, const int& value);
    virtual void setFilterDouble(OperationType operation, const std::string& key, const double& value);
    virtual void setFilterLongLong(OperationType operation, const std::string& key, const long long& value);
    virtual void setFilterTime(OperationType operation, const std::string& key, const long long& value);
    virtual void setFilterId(OperationType operation, const std::string& key, const std::string& value);
    virtual void include(const ObjectFilterPrivate& other);
    virtual void exclude(const std::string& key, ObjectFilterPrivate& target);
    virtual bool isEmpty() const { return m_query.isEmpty(); }
    virtual ObjectProperties toObjectProeprties() const { return d(); }
    virtual void fromObjectProperties(const ObjectProperties& properties) { setD(properties); }
    virtual ObjectProperties d() const { return m_query; }
    virtual void setD(const ObjectProperties& properties) { m_query = properties; }
    virtual std::string operationTypeName(OperationType operation);
    virtual std::string arrayOperationName(ArrayOperationType operation);
    /// Closes the innermost list, "$and" or "$or".
    virtual void finish_array_operation();
    /// Adds an element to the innermost list, if a list is open.
    virtual void begin_operation();
    /// Leaves the element of begin_operation().
    virtual void end_operation();

    // Not virtual, so not part of the closed table.
    void setFilterDocument(const std::string& key, const ObjectProperties& operators);

protected:
    static constexpr int maximumDepth = 100;

    ObjectProperties m_query;
    std::array<ArrayOperationType, maximumDepth> m_lists; // innermost last
    int m_depth; // also counts lists beyond the maximum, which are not in m_lists

private:
    std::size_t listCount() const noexcept;
    std::string innermostListName();
    void startArrayOperation(ArrayOperationType operation);
    template <typename SetValue>
    void setFilter(OperationType operation, const std::string& key, const SetValue& setValue);
};
