// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "property.h"

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

std::unique_ptr<char[]> newText(const char* text, std::size_t size)
{
    std::unique_ptr<char[]> copy(new char[size + 1]);
    std::memcpy(copy.get(), text, size);
    copy[size] = '\0';
    return copy;
}

template <typename Container>
void freeStorage(Container& container) noexcept
{
    Container().swap(container);
}

// The value word is a number only for these types. For all other types it is null or a string that the item owns. This
// is also true between storing a string and setting its type, so no string leaks.
bool isNumber(PropertyType type) noexcept { return type >= Bool && type <= Time; }

} // namespace

Property::PropertyItem::PropertyValue::PropertyValue() : text(nullptr) {}
Property::PropertyItem::PropertyValue::~PropertyValue() {}
Property::PropertyItem::PropertyItem() = default;
Property::PropertyItem::PropertyItem(const std::string& key, PropertyType type) : m_key(key), m_type(type) {}

Property::PropertyItem::PropertyItem(const PropertyItem& other) : PropertyItem(other.m_key, other.m_type)
{
    copyValue(other);
}

// Copies only the members that the type uses. Copying the empty ones as well takes as long as copying a short string.
void Property::PropertyItem::copyValue(const PropertyItem& other)
{
    switch (m_type)
    {
    case String:
    case Id:
        if (other.m_value.text)
            m_value.text = newText(other.m_value.text, std::strlen(other.m_value.text)).release();
        break;
    case Bool:
    case Int32:
    case Int64:
    case Double:
    case Time:
        m_value = other.m_value;
        break;
    case Binary:
        m_binary = other.m_binary;
        break;
    case Regex:
        m_regexPattern = other.m_regexPattern;
        m_regexOptions = other.m_regexOptions;
        break;
    case None:
    case Undefined:
    case Group:
    case Array:
        break;
    }
}

Property::PropertyItem& Property::PropertyItem::operator=(const PropertyItem& other)
{
    copy(other);
    return *this;
}

Property::PropertyItem::~PropertyItem() { clearString(); }

void Property::PropertyItem::swap(PropertyItem& other) noexcept
{
    std::swap(m_value, other.m_value);
    m_binary.swap(other.m_binary);
    m_regexPattern.swap(other.m_regexPattern);
    m_regexOptions.swap(other.m_regexOptions);
    m_key.swap(other.m_key);
    std::swap(m_type, other.m_type);
}

// The parameter is passed by value, because the argument of a setter may be a reference into this item.
template <typename Number>
void Property::PropertyItem::setNumber(Number PropertyValue::*member, Number value, PropertyType type) noexcept
{
    releaseMemory();
    m_value.*member = value;
    m_type = type;
}

// The setters create the new value before they free the old one, so an item is unchanged after std::bad_alloc.

void Property::PropertyItem::setValueString(const std::string& value)
{
    auto text = newText(value.data(), std::strlen(value.c_str()));
    releaseMemory();
    if (isNumber(m_type))
        m_type = Undefined;
    m_value.text = text.release();
}

void Property::PropertyItem::setValueBool(const bool& value) { setNumber(&PropertyValue::boolean, value, Bool); }
void Property::PropertyItem::setValueInt32(const int& value) { setNumber(&PropertyValue::int32, value, Int32); }
void Property::PropertyItem::setValueInt64(const long& value) { setNumber(&PropertyValue::int64, value, Int64); }
void Property::PropertyItem::setValueDouble(const double& value) { setNumber(&PropertyValue::binary64, value, Double); }

void Property::PropertyItem::setValueBinary(const std::vector<unsigned char>& value)
{
    std::vector<unsigned char> bytes(value);
    releaseMemory();
    m_binary.swap(bytes);
}

void Property::PropertyItem::setValueRegex(const std::pair<std::string, std::string>& value)
{
    std::pair<std::string, std::string> regex(value);
    releaseMemory();
    m_regexPattern.swap(regex.first);
    m_regexOptions.swap(regex.second);
}

std::string Property::PropertyItem::valueAsString() const
{
    return isNumber(m_type) || !m_value.text ? std::string() : m_value.text;
}

bool Property::PropertyItem::valueAsBool() const { return m_value.boolean; }
int Property::PropertyItem::valueAsInt32() const { return m_value.int32; }
long Property::PropertyItem::valueAsInt64() const { return m_value.int64; }
double Property::PropertyItem::valueAsDouble() const { return m_value.binary64; }
std::vector<unsigned char> Property::PropertyItem::valueAsBinary() const { return m_binary; }

std::pair<std::string, std::string> Property::PropertyItem::valueAsRegex() const
{
    return {m_regexPattern, m_regexOptions};
}

void Property::PropertyItem::clearString()
{
    if (!isNumber(m_type))
        delete[] m_value.text;
    m_value.text = nullptr;
}

void Property::PropertyItem::clearBinary()
{
    if (m_type == Binary)
        freeStorage(m_binary);
}

void Property::PropertyItem::clearRegex()
{
    if (m_type != Regex)
        return;
    freeStorage(m_regexPattern);
    freeStorage(m_regexOptions);
}

void Property::PropertyItem::releaseMemory()
{
    clearString();
    clearBinary();
    clearRegex();
}

void Property::PropertyItem::clear()
{
    releaseMemory();
    m_type = Undefined;
}

void Property::PropertyItem::copy(const PropertyItem& other)
{
    if (this == &other)
        return;
    PropertyItem item(other);
    swap(item);
}
