// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model_tree.h"
#include "operation.h"
#include "property.h"

#include <stdexcept>

// Nodes and documents name their typed operations alike; one switch per form of them serves both.

/// The value that an operation carries, seen as one of kind @p kind.
inline model::Value valueOf(const Operation& operation, int kind)
{
    model::Value value;
    value.kind = kind;
    switch (kind)
    {
    case String:
    case Id:
        value.text = operation.text;
        break;
    case Bool:
        value.number = operation.number & 1;
        break;
    case Int32:
        value.number = static_cast<int>(operation.number);
        break;
    case Int64:
    case Time:
        value.number = operation.number;
        break;
    case Double:
        value.real = operation.real;
        break;
    case Binary:
        value.bytes.assign(operation.text.begin(), operation.text.end());
        break;
    case Regex:
        value.text = operation.text;
        value.options = operation.options;
        break;
    default:
        throw std::logic_error("no such kind");
    }
    return value;
}

/// Calls the setter of the value's kind: with @p key as its first argument, or none for the setter at the node.
template <typename Subject, typename... Key>
void set(Subject& subject, const model::Value& value, const Key&... key)
{
    switch (value.kind)
    {
    case String:
        return subject.setValueString(key..., value.text);
    case Id:
        return subject.setValueId(key..., value.text);
    case Bool:
        return subject.setValueBool(key..., value.number != 0);
    case Int32:
        return subject.setValueInt32(key..., static_cast<int>(value.number));
    case Int64:
        return subject.setValueInt64(key..., value.number);
    case Time:
        return subject.setValueTime(key..., value.number);
    case Double:
        return subject.setValueDouble(key..., value.real);
    case Binary:
        return subject.setValueBinary(key..., value.bytes);
    case Regex:
        return subject.setValueRegex(key..., value.text, value.options);
    default:
        throw std::logic_error("no such kind");
    }
}

/// Calls the getter by key of the default's kind.
template <typename Subject>
model::Value get(Subject& subject, const std::string& key, const model::Value& def)
{
    model::Value result;
    result.kind = def.kind;
    switch (def.kind)
    {
    case String:
        result.text = subject.valueAsString(key, def.text);
        break;
    case Id:
        result.text = subject.valueAsId(key, def.text);
        break;
    case Bool:
        result.number = subject.valueAsBool(key, def.number != 0);
        break;
    case Int32:
        result.number = subject.valueAsInt32(key, static_cast<int>(def.number));
        break;
    case Int64:
        result.number = subject.valueAsInt64(key, def.number);
        break;
    case Time:
        result.number = subject.valueAsTime(key, def.number);
        break;
    case Double:
        result.real = subject.valueAsDouble(key, def.real);
        break;
    case Binary:
        result.bytes = subject.valueAsBinary(key, def.bytes);
        break;
    case Regex:
        std::tie(result.text, result.options) = subject.valueAsRegex(key, def.text, def.options);
        break;
    default:
        throw std::logic_error("no such kind");
    }
    return result;
}

/// Calls the getter at the node, or at the cursor, of the default's kind.
template <typename Subject>
model::Value getCurrent(Subject& subject, const model::Value& def)
{
    model::Value result;
    result.kind = def.kind;
    switch (def.kind)
    {
    case String:
        result.text = subject.currentValueAsString(def.text);
        break;
    case Id:
        result.text = subject.currentValueAsId(def.text);
        break;
    case Bool:
        result.number = subject.currentValueAsBool(def.number != 0);
        break;
    case Int32:
        result.number = subject.currentValueAsInt32(static_cast<int>(def.number));
        break;
    case Int64:
        result.number = subject.currentValueAsInt64(def.number);
        break;
    case Time:
        result.number = subject.currentValueAsTime(def.number);
        break;
    case Double:
        result.real = subject.currentValueAsDouble(def.real);
        break;
    case Binary:
        result.bytes = subject.currentValueAsBinary(def.bytes);
        break;
    case Regex:
        std::tie(result.text, result.options) = subject.currentValueAsRegex(def.text, def.options);
        break;
    default:
        throw std::logic_error("no such kind");
    }
    return result;
}
