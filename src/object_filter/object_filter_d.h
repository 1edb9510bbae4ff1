#pragma once

#include "object_filter.h"
#include "object_properties.h"

#include <array>
#include <cstddef>
#include <string>

/// What a filter consists of: the query, whose cursor marks where the next condition goes, and the lists that are open.
/// Between calls the cursor stands on the array of the innermost open list, at depth 0 on the root.
///
/// Every step is called virtually, also from within: a derived class may replace it.
class ObjectFilterPrivate
{
public:
    /// A list operator. Numbers outside the enumeration have the empty text as name.
    enum ArrayOperationType : int
    {
        ArrayOperationTypeAnd = 0, ///< "$and"
        ArrayOperationTypeOr = 1   ///< "$or"
    };

    ObjectFilterPrivate() : m_lists{}, m_depth(0) {}
    ObjectFilterPrivate(const ObjectFilterPrivate&) = delete;
    ObjectFilterPrivate& operator=(const ObjectFilterPrivate&) = delete;

    // Slot order is closed, like that of the facade.

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
    /// Closes the innermost list, whatever its kind.
    virtual void finish_array_operation();
    /// Opens an element of the innermost list, if one is open.
    virtual void begin_operation();
    /// Closes what begin_operation() opened.
    virtual void end_operation();

    // Beside the closed table: not virtual.
    void setFilterDocument(const std::string& key, const ObjectProperties& operators);

protected:
    static constexpr int maximumDepth = 100;

    ObjectProperties m_query;
    std::array<ArrayOperationType, maximumDepth> m_lists; // innermost last
    int m_depth; // lists beyond the maximum are counted here and stand nowhere else

private:
    std::size_t listCount() const noexcept;
    std::string innermostListName();
    void startArrayOperation(ArrayOperationType operation);
    template <typename SetValue>
    void setFilter(OperationType operation, const std::string& key, const SetValue& setValue);
};
