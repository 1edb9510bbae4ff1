#include "property.h"

#include "property/path_segments.h"

// A setter makes the new value first, then drops the children: when memory is short the node stays as it was.

int Property::type() const
{
    return m_item.m_type;
}

bool Property::isGroup() const
{
    return m_item.m_type == Group;
}

bool Property::isArray() const
{
    return m_item.m_type == Array;
}

bool Property::isString() const
{
    return m_item.m_type == String;
}

bool Property::isBool() const
{
    return m_item.m_type == Bool;
}

bool Property::isInt32() const
{
    return m_item.m_type == Int32;
}

bool Property::isInt64() const
{
    return m_item.m_type == Int64;
}

bool Property::isDouble() const
{
    return m_item.m_type == Double;
}

bool Property::isTime() const
{
    return m_item.m_type == Time;
}

bool Property::isId() const
{
    return m_item.m_type == Id;
}

bool Property::isBinary() const
{
    return m_item.m_type == Binary;
}

bool Property::isRegex() const
{
    return m_item.m_type == Regex;
}

void Property::setValueString(const std::string& value)
{
    m_item.setValueString(value);
    becomeValue(String);
}

void Property::setValueBool(const bool& value)
{
    m_item.setValueBool(value);
    becomeValue(Bool);
}

void Property::setValueInt32(const int& value)
{
    m_item.setValueInt32(value);
    becomeValue(Int32);
}

void Property::setValueInt64(const long& value)
{
    m_item.setValueInt64(value);
    becomeValue(Int64);
}

void Property::setValueDouble(const double& value)
{
    m_item.setValueDouble(value);
    becomeValue(Double);
}

void Property::setValueTime(const long& value)
{
    m_item.setValueInt64(value);
    becomeValue(Time);
}

void Property::setValueId(const std::string& value)
{
    m_item.setValueString(value);
    becomeValue(Id);
}

void Property::setValueBinary(const std::vector<unsigned char>& value)
{
    m_item.setValueBinary(value);
    becomeValue(Binary);
}

void Property::setValueRegex(const std::string& pattern, const std::string& options)
{
    m_item.setValueRegex({pattern, options});
    becomeValue(Regex);
}

void Property::setValueUndefined()
{
    m_item.clear();
    becomeValue(Undefined);
}

void Property::becomeValue(PropertyType type) noexcept
{
    m_item.m_type = type;
    clearChilds();
}

std::string Property::currentValueAsString(const std::string& def)
{
    return isString() ? m_item.valueAsString() : def;
}

bool Property::currentValueAsBool(const bool& def)
{
    return isBool() ? m_item.valueAsBool() : def;
}

int Property::currentValueAsInt32(const int& def)
{
    return isInt32() ? m_item.valueAsInt32() : def;
}

long Property::currentValueAsInt64(const long& def)
{
    return isInt64() ? m_item.valueAsInt64() : def;
}

double Property::currentValueAsDouble(const double& def)
{
    return isDouble() ? m_item.valueAsDouble() : def;
}

long Property::currentValueAsTime(const long& def)
{
    return isTime() ? m_item.valueAsInt64() : def;
}

std::string Property::currentValueAsId(const std::string& def)
{
    return isId() ? m_item.valueAsString() : def;
}

std::vector<unsigned char> Property::currentValueAsBinary(const std::vector<unsigned char>& def) const
{
    return isBinary() ? m_item.valueAsBinary() : def;
}

std::pair<std::string, std::string> Property::currentValueAsRegex(const std::string& pattern,
                                                                  const std::string& options) const
{
    return isRegex() ? m_item.valueAsRegex() : std::make_pair(pattern, options);
}

Property& Property::valueNode(const std::string& path)
{
    return *obtain(path, Undefined, None);
}

// The same node: what is read mostly exists, so here it is searched for at once.
Property& Property::valueNodeToRead(const std::string& path)
{
    if (!isSingleSegment(path))
        return *obtainByPath(path, Undefined, None);
    return isArray() ? *createChild(path, Undefined) : *findOrCreateChild(path, Undefined);
}

void Property::setValueString(const std::string& path, const std::string& value)
{
    valueNode(path).setValueString(value);
}

void Property::setValueBool(const std::string& path, const bool& value)
{
    valueNode(path).setValueBool(value);
}

void Property::setValueInt32(const std::string& path, const int& value)
{
    valueNode(path).setValueInt32(value);
}

void Property::setValueInt64(const std::string& path, const long& value)
{
    valueNode(path).setValueInt64(value);
}

void Property::setValueDouble(const std::string& path, const double& value)
{
    valueNode(path).setValueDouble(value);
}

void Property::setValueTime(const std::string& path, const long& value)
{
    valueNode(path).setValueTime(value);
}

void Property::setValueId(const std::string& path, const std::string& value)
{
    valueNode(path).setValueId(value);
}

void Property::setValueBinary(const std::string& path, const std::vector<unsigned char>& value)
{
    valueNode(path).setValueBinary(value);
}

void Property::setValueRegex(const std::string& path, const std::string& pattern, const std::string& options)
{
    valueNode(path).setValueRegex(pattern, options);
}

void Property::setValueUndefined(const std::string& path)
{
    valueNode(path).setValueUndefined();
}

std::string Property::valueAsString(const std::string& path, const std::string& def)
{
    return valueNodeToRead(path).currentValueAsString(def);
}

bool Property::valueAsBool(const std::string& path, const bool& def)
{
    return valueNodeToRead(path).currentValueAsBool(def);
}

int Property::valueAsInt32(const std::string& path, const int& def)
{
    return valueNodeToRead(path).currentValueAsInt32(def);
}

long Property::valueAsInt64(const std::string& path, const long& def)
{
    return valueNodeToRead(path).currentValueAsInt64(def);
}

double Property::valueAsDouble(const std::string& path, const double& def)
{
    return valueNodeToRead(path).currentValueAsDouble(def);
}

long Property::valueAsTime(const std::string& path, const long& def)
{
    return valueNodeToRead(path).currentValueAsTime(def);
}

std::string Property::valueAsId(const std::string& path, const std::string& def)
{
    return valueNodeToRead(path).currentValueAsId(def);
}

std::vector<unsigned char> Property::valueAsBinary(const std::string& path, const std::vector<unsigned char>& def)
{
    return valueNodeToRead(path).currentValueAsBinary(def);
}

std::pair<std::string, std::string> Property::valueAsRegex(const std::string& path, const std::string& pattern,
                                                           const std::string& options)
{
    return valueNodeToRead(path).currentValueAsRegex(pattern, options);
}

const std::string& Property::keyView() const noexcept
{
    return m_item.m_key;
}

const char* Property::textView() const noexcept
{
    if (m_item.m_type != String && m_item.m_type != Id)
        return nullptr;
    return m_item.m_value.text ? m_item.m_value.text : "";
}

const std::vector<unsigned char>& Property::bytesView() const noexcept
{
    return m_item.m_binary;
}

const std::string& Property::patternView() const noexcept
{
    return m_item.m_regexPattern;
}

const std::string& Property::optionsView() const noexcept
{
    return m_item.m_regexOptions;
}
