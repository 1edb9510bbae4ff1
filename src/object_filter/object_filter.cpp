// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_filter.h"

#include "factories.h"
#include "object_filter/object_filter_d.h"

#include <memory>
#include <string>

// All functions forward to ObjectFilterPrivate.

ObjectFilter::ObjectFilter() : d(std::make_unique<ObjectFilterPrivate>()) {}
ObjectFilter::ObjectFilter(const ObjectFilter& other) : ObjectFilter() { d->copy(*other.d); }
ObjectFilter::~ObjectFilter() = default;

ObjectFilter& ObjectFilter::operator=(const ObjectFilter& other)
{
    if (d != other.d)
        d->copy(*other.d);
    return *this;
}

void ObjectFilter::start_and() { d->start_and(); }
void ObjectFilter::finish_and() { d->finish_and(); }
void ObjectFilter::start_or() { d->start_or(); }
void ObjectFilter::finish_or() { d->finish_or(); }
void ObjectFilter::beginGroup(const std::string& key) { d->beginGroup(key); }
void ObjectFilter::endGroup() { d->endGroup(); }

void ObjectFilter::setFilterString(OperationType operation, const std::string& key, const std::string& value,
                                   const std::string& options)
{
    d->setFilterString(operation, key, value, options);
}

void ObjectFilter::setFilterBool(OperationType operation, const std::string& key, const bool& value)
{
    d->setFilterBool(operation, key, value);
}

void ObjectFilter::setFilterInt(OperationType operation, const std::string& key, const int& value)
{
    d->setFilterInt(operation, key, value);
}

void ObjectFilter::setFilterDouble(OperationType operation, const std::string& key, const double& value)
{
    d->setFilterDouble(operation, key, value);
}

void ObjectFilter::setFilterLongLong(OperationType operation, const std::string& key, const long long& value)
{
    d->setFilterLongLong(operation, key, value);
}

void ObjectFilter::setFilterTime(OperationType operation, const std::string& key, const long long& value)
{
    d->setFilterTime(operation, key, value);
}

void ObjectFilter::setFilterId(OperationType operation, const std::string& key, const std::string& value)
{
    d->setFilterId(operation, key, value);
}

void ObjectFilter::setFilterDocument(const std::string& key, const ObjectProperties& operators)
{
    d->setFilterDocument(key, operators);
}

void ObjectFilter::include(const ObjectFilter& other) { d->include(*other.d); }
void ObjectFilter::exclude(const std::string& key, ObjectFilter& target) { d->exclude(key, *target.d); }
bool ObjectFilter::isEmpty() const { return d->isEmpty(); }
ObjectProperties ObjectFilter::toObjectProeprties() const { return d->toObjectProeprties(); }
void ObjectFilter::fromObjectProperties(const ObjectProperties& properties) { d->fromObjectProperties(properties); }

ObjectFilter* createObjectFilter() { return new ObjectFilter; }
