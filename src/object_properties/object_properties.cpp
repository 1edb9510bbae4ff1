// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "object_properties.h"

#include "object_properties_d.h"
#include "property.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// All functions forward to ObjectPropertiesPrivate.

ObjectProperties::ObjectProperties() : d(std::make_unique<ObjectPropertiesPrivate>()) {}
ObjectProperties::ObjectProperties(const ObjectProperties& other) : ObjectProperties() { d->copy(*other.d); }
ObjectProperties::ObjectProperties(ObjectProperties&& other) noexcept = default;
ObjectProperties::~ObjectProperties() = default;

ObjectProperties& ObjectProperties::operator=(const ObjectProperties& other)
{
    if (!d)
        d = std::make_unique<ObjectPropertiesPrivate>();
    d->copy(*other.d);
    return *this;
}

ObjectProperties& ObjectProperties::operator=(ObjectProperties&& other) noexcept
{
    d = std::move(other.d);
    return *this;
}

bool ObjectProperties::beginObject(const int& index) const { return d->beginObject(index); }
void ObjectProperties::endObject() const { d->endObject(); }
std::size_t ObjectProperties::childCount() const { return d->childCount(); }
void ObjectProperties::beginArray(const std::string& key) const { d->beginArray(key); }
void ObjectProperties::endArray() const { d->endArray(); }
void ObjectProperties::beginGroup(const std::string& key) { d->beginGroup(key); }
void ObjectProperties::beginGroup(const std::string& key) const { d->beginGroup(key); }
void ObjectProperties::endGroup() const { d->endGroup(); }
std::string ObjectProperties::group() const { return d->group(); }
std::list<std::string> ObjectProperties::childKeys() const { return d->childKeys(); }
std::list<std::string> ObjectProperties::childGroups() const { return d->childGroups(); }
std::list<std::string> ObjectProperties::childArrays() const { return d->childArrays(); }
int ObjectProperties::type(const std::string& key) const { return d->type(key); }
int ObjectProperties::type() const { return d->type(); }
std::string ObjectProperties::key() const { return d->key(); }

void ObjectProperties::setValueString(const std::string& value) { d->setCurrentValueString(value); }
void ObjectProperties::setValueBool(const bool& value) { d->setCurrentValueBool(value); }
void ObjectProperties::setValueInt32(const int& value) { d->setCurrentValueInt32(value); }
void ObjectProperties::setValueInt64(const long& value) { d->setCurrentValueInt64(value); }
void ObjectProperties::setValueInt(const int& value) { d->setCurrentValueInt32(value); }
void ObjectProperties::setValueLongLong(const long long& value) { d->setCurrentValueInt64(static_cast<long>(value)); }
void ObjectProperties::setValueDouble(const double& value) { d->setCurrentValueDouble(value); }
void ObjectProperties::setValueTime(const long& value) { d->setCurrentValueTime(value); }
void ObjectProperties::setValueId(const std::string& value) { d->setCurrentValueId(value); }
void ObjectProperties::setValueBinary(const std::vector<unsigned char>& value) { d->setCurrentValueBinary(value); }

void ObjectProperties::setValueRegex(const std::string& pattern, const std::string& options)
{
    d->setCurrentValueRegex(pattern, options);
}

std::string ObjectProperties::currentValueAsString(const std::string& def) const
{
    return d->currentValueAsString(def);
}

bool ObjectProperties::currentValueAsBool(const bool& def) const { return d->currentValueAsBool(def); }
int ObjectProperties::currentValueAsInt32(const int& def) const { return d->currentValueAsInt32(def); }
long ObjectProperties::currentValueAsInt64(const long& def) const { return d->currentValueAsInt64(def); }
int ObjectProperties::currentValueAsInt(const int& def) const { return d->currentValueAsInt32(def); }

long long ObjectProperties::currentValueAsLongLong(const long long& def) const
{
    return d->currentValueAsInt64(static_cast<long>(def));
}

double ObjectProperties::currentValueAsDouble(const double& def) const { return d->currentValueAsDouble(def); }

long long ObjectProperties::currentValueAsTime(const long long& def) const
{
    return d->currentValueAsTime(static_cast<long>(def));
}

std::string ObjectProperties::currentValueAsId(const std::string& def) const { return d->currentValueAsId(def); }

std::vector<unsigned char> ObjectProperties::currentValueAsBinary(const std::vector<unsigned char>& def) const
{
    return d->currentValueAsBinary(def);
}

std::pair<std::string, std::string> ObjectProperties::currentValueAsRegex(const std::string& pattern,
                                                                          const std::string& options) const
{
    return d->currentValueAsRegex(pattern, options);
}

void ObjectProperties::setValueString(const std::string& key, const std::string& value)
{
    d->setValueString(key, value);
}

void ObjectProperties::setValueBool(const std::string& key, const bool& value) { d->setValueBool(key, value); }
void ObjectProperties::setValueInt32(const std::string& key, const int& value) { d->setValueInt32(key, value); }
void ObjectProperties::setValueInt64(const std::string& key, const long& value) { d->setValueInt64(key, value); }
void ObjectProperties::setValueInt(const std::string& key, const int& value) { d->setValueInt32(key, value); }

void ObjectProperties::setValueLongLong(const std::string& key, const long long& value)
{
    d->setValueInt64(key, static_cast<long>(value));
}

void ObjectProperties::setValueDouble(const std::string& key, const double& value) { d->setValueDouble(key, value); }

void ObjectProperties::setValueTime(const std::string& key, const long long& value)
{
    d->setValueTime(key, static_cast<long>(value));
}

void ObjectProperties::setValueId(const std::string& key, const std::string& value) { d->setValueId(key, value); }

void ObjectProperties::setValueBinary(const std::string& key, const std::vector<unsigned char>& value)
{
    d->setValueBinary(key, value);
}

void ObjectProperties::setValueRegex(const std::string& key, const std::string& pattern, const std::string& options)
{
    d->setValueRegex(key, pattern, options);
}

std::string ObjectProperties::valueAsString(const std::string& key, const std::string& def) const
{
    return d->valueAsString(key, def);
}

bool ObjectProperties::valueAsBool(const std::string& key, const bool& def) const { return d->valueAsBool(key, def); }
int ObjectProperties::valueAsInt32(const std::string& key, const int& def) const { return d->valueAsInt32(key, def); }
long ObjectProperties::valueAsInt64(const std::string& key, const long& def) const { return d->valueAsInt64(key, def); }
int ObjectProperties::valueAsInt(const std::string& key, const int& def) const { return d->valueAsInt32(key, def); }

long long ObjectProperties::valueAsLongLong(const std::string& key, const long long& def) const
{
    return d->valueAsInt64(key, static_cast<long>(def));
}

double ObjectProperties::valueAsDouble(const std::string& key, const double& def) const
{
    return d->valueAsDouble(key, def);
}

long long ObjectProperties::valueAsTime(const std::string& key, const long long& def) const
{
    return d->valueAsTime(key, static_cast<long>(def));
}

std::string ObjectProperties::valueAsId(const std::string& key, const std::string& def) const
{
    return d->valueAsId(key, def);
}

std::vector<unsigned char> ObjectProperties::valueAsBinary(const std::string& key,
                                                           const std::vector<unsigned char>& def) const
{
    return d->valueAsBinary(key, def);
}

std::pair<std::string, std::string> ObjectProperties::valueAsRegex(const std::string& key, const std::string& pattern,
                                                                   const std::string& options) const
{
    return d->valueAsRegex(key, pattern, options);
}

void ObjectProperties::remove(const std::string& key) { d->remove(key); }
void ObjectProperties::remove(const int& index) { d->remove(index); }
bool ObjectProperties::contains(const std::string& key) const { return d->contains(key); }
bool ObjectProperties::isEmpty() const { return d->isEmpty(); }
void ObjectProperties::include(const std::string& key, const ObjectProperties& other) { d->include(key, *other.d); }

void ObjectProperties::includeElement(const std::string& key, const ObjectProperties& other)
{
    d->includeElement(key, *other.d);
}

void ObjectProperties::exclude(const std::string& key, ObjectProperties& other) { d->exclude(key, *other.d); }
void ObjectProperties::printAsJson() const { d->print(); }
void ObjectProperties::copyWithCursor(const ObjectProperties& other) { d->copyWithCursor(*other.d); }

void ObjectProperties::visitChildren(bool (*visit)(void* visitor), void* visitor) const
{
    d->visitChildren(visit, visitor);
}

std::shared_ptr<Property> ObjectProperties::root() const { return d->root; }
std::shared_ptr<Property> ObjectProperties::current() const { return d->current; }
bool ObjectProperties::moveTo(const std::shared_ptr<Property>& node) const { return d->moveTo(node); }
