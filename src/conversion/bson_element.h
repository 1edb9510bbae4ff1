// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <bson/bson.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// Converts BSON elements for the setters of a document, which have a key parameter, and for those of a node, which
/// have no key parameter.

// The strings that are passed to the setters. Reused for every element, to avoid allocations.
struct Scratch
{
    std::string key;
    std::string text;
    std::string options;
};

// The same as assign(), but takes half as many instructions.
inline const std::string& refill(std::string& scratch, const char* text, std::size_t length)
{
    scratch.clear();
    return scratch.append(text, length);
}

// Cuts the string at its first zero byte: callers depend on it.
inline const std::string& cutText(std::string& scratch, const char* text, std::size_t length)
{
    return refill(scratch, text, strnlen(text, length));
}

template <typename Target, typename... Key>
void setRegex(const bson_iter_t& iter, Scratch& scratch, Target& target, const Key&... key)
{
    const char* options = nullptr;
    scratch.text = bson_iter_regex(&iter, &options);
    scratch.options = options;
    target.setValueRegex(key..., scratch.text, scratch.options);
}

template <typename Target, typename... Key>
void setBinary(const bson_iter_t& iter, Target& target, const Key&... key)
{
    bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
    std::uint32_t size = 0;
    const std::uint8_t* bytes = nullptr;
    bson_iter_binary(&iter, &subtype, &size, &bytes);
    target.setValueBinary(key..., std::vector<unsigned char>(bytes, bytes + size));
}

template <typename Target, typename... Key>
void setId(const bson_iter_t& iter, Scratch& scratch, Target& target, const Key&... key)
{
    char text[25];
    bson_oid_to_string(bson_iter_oid(&iter), text);
    target.setValueId(key..., refill(scratch.text, text, sizeof(text) - 1));
}

// Skips elements of types that the tree does not have. The unsafe functions of libbson do not check the type again,
// which saves a call per value.
template <typename Target, typename... Key>
void setValue(const bson_iter_t& iter, bson_type_t type, Scratch& scratch, Target& target, const Key&... key)
{
    std::uint32_t length = 0;
    std::size_t textLength = 0;
    const char* text = nullptr;
    switch (type)
    {
    case BSON_TYPE_DOUBLE:
        target.setValueDouble(key..., bson_iter_double_unsafe(&iter));
        break;
    case BSON_TYPE_UTF8:
        text = bson_iter_utf8_unsafe(&iter, &textLength);
        target.setValueString(key..., cutText(scratch.text, text, textLength));
        break;
    case BSON_TYPE_SYMBOL:
        text = bson_iter_symbol(&iter, &length);
        target.setValueString(key..., cutText(scratch.text, text, length));
        break;
    case BSON_TYPE_BINARY:
        setBinary(iter, target, key...);
        break;
    case BSON_TYPE_OID:
        setId(iter, scratch, target, key...);
        break;
    case BSON_TYPE_BOOL:
        target.setValueBool(key..., bson_iter_bool_unsafe(&iter));
        break;
    case BSON_TYPE_DATE_TIME:
        target.setValueTime(key..., static_cast<long long>(bson_iter_int64_unsafe(&iter)));
        break;
    case BSON_TYPE_REGEX:
        setRegex(iter, scratch, target, key...);
        break;
    case BSON_TYPE_INT32:
        target.setValueInt32(key..., bson_iter_int32_unsafe(&iter));
        break;
    case BSON_TYPE_INT64:
        target.setValueInt64(key..., bson_iter_int64_unsafe(&iter));
        break;
    case BSON_TYPE_DOCUMENT:
    case BSON_TYPE_ARRAY:
    case BSON_TYPE_EOD:
    case BSON_TYPE_UNDEFINED:
    case BSON_TYPE_NULL:
    case BSON_TYPE_DBPOINTER:
    case BSON_TYPE_CODE:
    case BSON_TYPE_CODEWSCOPE:
    case BSON_TYPE_TIMESTAMP:
    case BSON_TYPE_DECIMAL128:
    case BSON_TYPE_MAXKEY:
    case BSON_TYPE_MINKEY:
        break;
    }
}
