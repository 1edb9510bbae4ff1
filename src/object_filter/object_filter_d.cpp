// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_filter/object_filter_d.h"

#include "object_filter.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>

ObjectFilterPrivate::~ObjectFilterPrivate() = default;

// Open lists stay open in the copy, so the cursor is copied too. Without open lists, the cursor of the copy is at the
// root.
void ObjectFilterPrivate::copy(const ObjectFilterPrivate& other)
{
    if (this == &other)
        return;
    if (other.m_depth > 0)
        m_query.copyWithCursor(other.m_query);
    else
        m_query = other.m_query;
    std::copy_n(other.m_lists.begin(), other.listCount(), m_lists.begin());
    m_depth = other.m_depth;
}

std::size_t ObjectFilterPrivate::listCount() const noexcept
{
    return static_cast<std::size_t>(std::min(m_depth, maximumDepth));
}

// Returns an empty string if no list is open.
std::string ObjectFilterPrivate::innermostListName()
{
    return m_depth == 0 ? std::string() : arrayOperationName(m_lists[listCount() - 1]);
}

void ObjectFilterPrivate::startArrayOperation(ArrayOperationType operation)
{
    if (m_depth < maximumDepth)
    {
        begin_operation();
        m_query.beginArray(arrayOperationName(operation));
        m_lists[listCount()] = operation;
    }
    if (m_depth < std::numeric_limits<int>::max())
        ++m_depth;
}

// Adds a condition with any type of value. setValue(target, key) writes the value to a key of a document, and
// setValue(node) to a node.
template <typename SetValue>
void ObjectFilterPrivate::setFilter(OperationType operation, const std::string& key, const SetValue& setValue)
{
    begin_operation();
    if (operation == OperationTypeEqual)
    {
        setValue(m_query, key);
        end_operation();
        return;
    }
    m_query.beginGroup(key);
    const std::string name = operationTypeName(operation);
    if (operation == OperationTypeExists || operation == OperationTypeNotExists)
        m_query.setValueBool(name, operation == OperationTypeExists);
    else if (!name.empty())
        setValue(m_query, name);
    else // not by key: the empty key is the root, so the value would replace the whole query
        setValue(*m_query.current()->createSingleProperty(name));
    m_query.endGroup();
    end_operation();
}

void ObjectFilterPrivate::setFilterString(OperationType operation, const std::string& key, const std::string& value,
                                          const std::string& options)
{
    setFilter(operation, key, [&](auto& target, const auto&... under) {
        target.setValueString(under..., value);
        if (operation == OperationTypeRegex && !options.empty())
            m_query.setValueString("$options", options);
    });
}

void ObjectFilterPrivate::setFilterBool(OperationType operation, const std::string& key, const bool& value)
{
    setFilter(operation, key, [&](auto& target, const auto&... under) { target.setValueBool(under..., value); });
}

void ObjectFilterPrivate::setFilterInt(OperationType operation, const std::string& key, const int& value)
{
    setFilter(operation, key, [&](auto& target, const auto&... under) { target.setValueInt32(under..., value); });
}

void ObjectFilterPrivate::setFilterDouble(OperationType operation, const std::string& key, const double& value)
{
    setFilter(operation, key, [&](auto& target, const auto&... under) { target.setValueDouble(under..., value); });
}

void ObjectFilterPrivate::setFilterLongLong(OperationType operation, const std::string& key, const long long& value)
{
    const long stored = value;
    setFilter(operation, key, [&](auto& target, const auto&... under) { target.setValueInt64(under..., stored); });
}

void ObjectFilterPrivate::setFilterTime(OperationType operation, const std::string& key, const long long& value)
{
    const long stored = value;
    setFilter(operation, key, [&](auto& target, const auto&... under) { target.setValueTime(under..., stored); });
}

void ObjectFilterPrivate::setFilterId(OperationType operation, const std::string& key, const std::string& value)
{
    setFilter(operation, key, [&](auto& target, const auto&... under) { target.setValueId(under..., value); });
}

// Adds the operators one by one, so that they are merged with other conditions on the key.
void ObjectFilterPrivate::setFilterDocument(const std::string& key, const ObjectProperties& operators)
{
    begin_operation();
    if (!key.empty())
        m_query.beginGroup(key);
    const auto condition = m_query.current();
    for (const auto& [name, operand] : *operators.root())
        condition->createSingleProperty(name)->copy(*operand);
    if (!key.empty())
        m_query.endGroup();
    end_operation();
}

void ObjectFilterPrivate::include(const ObjectFilterPrivate& other)
{
    const std::string name = innermostListName();
    if (!name.empty())
    {
        m_query.includeElement(name, other.m_query);
        return;
    }
    m_query.include(name, other.m_query);
    // Moves the cursor to the root, because the current node was removed with the old query.
    m_query.beginGroup(name);
}

void ObjectFilterPrivate::exclude(const std::string& key, ObjectFilterPrivate& target)
{
    ObjectFilterPrivate part;
    m_query.exclude(key, part.m_query);
    target.copy(part);
}

std::string ObjectFilterPrivate::operationTypeName(OperationType operation)
{
    switch (operation)
    {
    case OperationTypeEqual:
        return "$eq";
    case OperationTypeNotEqual:
        return "$ne";
    case OperationTypeGreater:
        return "$gt";
    case OperationTypeGreaterOrEqual:
        return "$gte";
    case OperationTypeLess:
        return "$lt";
    case OperationTypeLessOrEqual:
        return "$lte";
    case OperationTypeExists:
    case OperationTypeNotExists:
        return "$exists";
    case OperationTypeRegex:
        return "$regex";
    case OperationTypeUnknown:
        break;
    }
    return std::string();
}

std::string ObjectFilterPrivate::arrayOperationName(ArrayOperationType operation)
{
    switch (operation)
    {
    case ArrayOperationTypeAnd:
        return "$and";
    case ArrayOperationTypeOr:
        return "$or";
    }
    return std::string();
}

// Closes any list: callers close an "$and" list with finish_or() and vice versa.
void ObjectFilterPrivate::finish_array_operation()
{
    if (m_depth == 0)
        return;
    if (m_depth > maximumDepth)
    {
        --m_depth;
        return;
    }
    m_query.endArray();
    --m_depth;
    end_operation();
}

void ObjectFilterPrivate::begin_operation()
{
    if (m_depth > 0)
        m_query.beginGroup(innermostListName());
}

void ObjectFilterPrivate::end_operation()
{
    if (m_depth > 0)
        m_query.endGroup();
}
