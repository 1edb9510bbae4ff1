// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"
#include "property/property_paths.h"
#include "property/property_tree.h"

#include <string>
#include <utility>
#include <vector>

using property_paths::valueNode;
using property_paths::valueNodeToRead;

// A setter creates the new value before it removes the children, so the node is unchanged after std::bad_alloc.

void Property::setValueString(const std::string& value)
{
    m_item.setValueString(value);
    PropertyTree::becomeValue(*this, String);
}

void Property::setValueBool(const bool& value)
{
    m_item.setValueBool(value);
    PropertyTree::becomeValue(*this, Bool);
}

void Property::setValueInt32(const int& value)
{
    m_item.setValueInt32(value);
    PropertyTree::becomeValue(*this, Int32);
}

void Property::setValueInt64(const long& value)
{
    m_item.setValueInt64(value);
    PropertyTree::becomeValue(*this, Int64);
}

void Property::setValueDouble(const double& value)
{
    m_item.setValueDouble(value);
    PropertyTree::becomeValue(*this, Double);
}

void Property::setValueTime(const long& value)
{
    m_item.setValueInt64(value);
    PropertyTree::becomeValue(*this, Time);
}

void Property::setValueId(const std::string& value)
{
    m_item.setValueString(value);
    PropertyTree::becomeValue(*this, Id);
}

void Property::setValueBinary(const std::vector<unsigned char>& value)
{
    m_item.setValueBinary(value);
    PropertyTree::becomeValue(*this, Binary);
}

void Property::setValueRegex(const std::string& pattern, const std::string& options)
{
    m_item.setValueRegex({pattern, options});
    PropertyTree::becomeValue(*this, Regex);
}

void Property::setValueUndefined()
{
    m_item.clear();
    PropertyTree::becomeValue(*this, Undefined);
}

std::string Property::currentValueAsString(const std::string& def) { return isString() ? m_item.valueAsString() : def; }
bool Property::currentValueAsBool(const bool& def) { return isBool() ? m_item.valueAsBool() : def; }
int Property::currentValueAsInt32(const int& def) { return isInt32() ? m_item.valueAsInt32() : def; }
long Property::currentValueAsInt64(const long& def) { return isInt64() ? m_item.valueAsInt64() : def; }
double Property::currentValueAsDouble(const double& def) { return isDouble() ? m_item.valueAsDouble() : def; }
long Property::currentValueAsTime(const long& def) { return isTime() ? m_item.valueAsInt64() : def; }
std::string Property::currentValueAsId(const std::string& def) { return isId() ? m_item.valueAsString() : def; }

std::vector<unsigned char> Property::currentValueAsBinary(const std::vector<unsigned char>& def) const
{
    return isBinary() ? m_item.valueAsBinary() : def;
}

std::pair<std::string, std::string> Property::currentValueAsRegex(const std::string& pattern,
                                                                  const std::string& options) const
{
    return isRegex() ? m_item.valueAsRegex() : std::make_pair(pattern, options);
}

void Property::setValueString(const std::string& path, const std::string& value)
{
    valueNode(*this, path).setValueString(value);
}

void Property::setValueBool(const std::string& path, const bool& value) { valueNode(*this, path).setValueBool(value); }
void Property::setValueInt32(const std::string& path, const int& value) { valueNode(*this, path).setValueInt32(value); }

void Property::setValueInt64(const std::string& path, const long& value)
{
    valueNode(*this, path).setValueInt64(value);
}

void Property::setValueDouble(const std::string& path, const double& value)
{
    valueNode(*this, path).setValueDouble(value);
}

void Property::setValueTime(const std::string& path, const long& value) { valueNode(*this, path).setValueTime(value); }

void Property::setValueId(const std::string& path, const std::string& value)
{
    valueNode(*this, path).setValueId(value);
}

void Property::setValueBinary(const std::string& path, const std::vector<unsigned char>& value)
{
    valueNode(*this, path).setValueBinary(value);
}

void Property::setValueRegex(const std::string& path, const std::string& pattern, const std::string& options)
{
    valueNode(*this, path).setValueRegex(pattern, options);
}

void Property::setValueUndefined(const std::string& path) { valueNode(*this, path).setValueUndefined(); }

std::string Property::valueAsString(const std::string& path, const std::string& def)
{
    return valueNodeToRead(*this, path).currentValueAsString(def);
}

bool Property::valueAsBool(const std::string& path, const bool& def)
{
    return valueNodeToRead(*this, path).currentValueAsBool(def);
}

int Property::valueAsInt32(const std::string& path, const int& def)
{
    return valueNodeToRead(*this, path).currentValueAsInt32(def);
}

long Property::valueAsInt64(const std::string& path, const long& def)
{
    return valueNodeToRead(*this, path).currentValueAsInt64(def);
}

double Property::valueAsDouble(const std::string& path, const double& def)
{
    return valueNodeToRead(*this, path).currentValueAsDouble(def);
}

long Property::valueAsTime(const std::string& path, const long& def)
{
    return valueNodeToRead(*this, path).currentValueAsTime(def);
}

std::string Property::valueAsId(const std::string& path, const std::string& def)
{
    return valueNodeToRead(*this, path).currentValueAsId(def);
}

std::vector<unsigned char> Property::valueAsBinary(const std::string& path, const std::vector<unsigned char>& def)
{
    return valueNodeToRead(*this, path).currentValueAsBinary(def);
}

std::pair<std::string, std::string> Property::valueAsRegex(const std::string& path, const std::string& pattern,
                                                           const std::string& options)
{
    return valueNodeToRead(*this, path).currentValueAsRegex(pattern, options);
}

const char* Property::textView() const noexcept
{
    if (m_item.m_type != String && m_item.m_type != Id)
        return nullptr;
    return m_item.m_value.text ? m_item.m_value.text : "";
}

const std::vector<unsigned char>& Property::bytesView() const noexcept { return m_item.m_binary; }
const std::string& Property::patternView() const noexcept { return m_item.m_regexPattern; }
const std::string& Property::optionsView() const noexcept { return m_item.m_regexOptions; }
