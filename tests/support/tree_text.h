// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "object_properties.h"
#include "property.h"

#include <cstdio>
#include <string>

namespace test_support {

inline std::string quoted(const std::string& bytes)
{
    std::string text = "\"";
    for (const char character : bytes)
    {
        const auto byte = static_cast<unsigned char>(character);
        char hex[5];
        std::snprintf(hex, sizeof(hex), "\\x%02x", byte);
        text += byte >= ' ' && byte < 0x7f && byte != '"' && byte != '\\' ? std::string(1, character) : hex;
    }
    return text + "\"";
}

inline std::string valueText(Property& node)
{
    char number[64] = "";
    switch (static_cast<PropertyType>(node.type()))
    {
    case String:
        return "String=" + quoted(node.textView());
    case Bool:
        return node.currentValueAsBool(false) ? "Bool=true" : "Bool=false";
    case Int32:
        return "Int32=" + std::to_string(node.currentValueAsInt32(0));
    case Int64:
        return "Int64=" + std::to_string(node.currentValueAsInt64(0));
    case Double:
        std::snprintf(number, sizeof(number), "%a", node.currentValueAsDouble(0));
        return std::string("Double=") + number;
    case Time:
        return "Time=" + std::to_string(node.currentValueAsTime(0));
    case Id:
        return "Id=" + quoted(node.textView());
    case Binary:
        return "Binary=" + quoted(std::string(node.bytesView().begin(), node.bytesView().end()));
    case Regex:
        return "Regex=" + quoted(node.patternView()) + quoted(node.optionsView());
    case Undefined:
        return "Undefined";
    case Group:
        return "Group";
    case Array:
        return "Array";
    case None:
        break;
    }
    return "kind " + std::to_string(node.type());
}

/// Returns a node and all its descendants with their values on one line. Two trees are equal if their strings are
/// equal. Recursive, so only for trees of moderate depth.
inline std::string treeText(Property& node)
{
    std::string text = valueText(node);
    if (node.childCount() == 0)
        return text;
    text += "{";
    for (const auto& [key, child] : node)
    {
        text += quoted(key) + ":";
        if (child->keyView() != key)
            text += "(" + quoted(child->keyView()) + ")";
        text += treeText(*child) + ",";
    }
    text.back() = '}';
    return text;
}

/// The same for a whole document; "Group" if it is empty.
inline std::string treeText(const ObjectProperties& document)
{
    return treeText(*document.root());
}

} // namespace test_support
