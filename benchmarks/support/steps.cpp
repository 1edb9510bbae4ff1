// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "support/steps.h"

#include "driver/driver.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

namespace {

void takeSteps(bson_iter_t& iter, std::vector<Step>& steps)
{
    while (bson_iter_next(&iter))
    {
        Step step{};
        step.key = bson_iter_key(&iter);
        std::uint32_t length = 0;
        switch (bson_iter_type(&iter))
        {
        case BSON_TYPE_INT32:
            step.kind = Step::Kind::Int32;
            step.integer = bson_iter_int32(&iter);
            break;
        case BSON_TYPE_INT64:
            step.kind = Step::Kind::Int64;
            step.integer = bson_iter_int64(&iter);
            break;
        case BSON_TYPE_DOUBLE:
            step.kind = Step::Kind::Double;
            step.number = bson_iter_double(&iter);
            break;
        case BSON_TYPE_BOOL:
            step.kind = Step::Kind::Bool;
            step.integer = bson_iter_bool(&iter) ? 1 : 0;
            break;
        case BSON_TYPE_UTF8: {
            step.kind = Step::Kind::Text;
            const char* text = bson_iter_utf8(&iter, &length);
            step.text.assign(text, length);
            break;
        }
        case BSON_TYPE_BINARY: {
            step.kind = Step::Kind::Binary;
            const std::uint8_t* bytes = nullptr;
            bson_iter_binary(&iter, nullptr, &length, &bytes);
            step.bytes.assign(bytes, bytes + length);
            break;
        }
        case BSON_TYPE_DOCUMENT:
        case BSON_TYPE_ARRAY: {
            const bool isArray = BSON_ITER_HOLDS_ARRAY(&iter);
            step.kind = isArray ? Step::Kind::BeginArray : Step::Kind::BeginGroup;
            steps.push_back(step);
            bson_iter_t nested;
            bson_iter_recurse(&iter, &nested);
            takeSteps(nested, steps);
            step.kind = isArray ? Step::Kind::EndArray : Step::Kind::EndGroup;
            break;
        }
        default:
            throw std::logic_error("a shape holds a type that not every peer knows");
        }
        steps.push_back(std::move(step));
    }
}

} // namespace

std::vector<Step> stepsOf(const std::vector<std::uint8_t>& bson)
{
    bson_iter_t iter;
    std::vector<Step> steps;
    if (!bson_iter_init_from_data(&iter, bson.data(), bson.size()))
        throw std::logic_error("a shape is not BSON");
    takeSteps(iter, steps);
    return steps;
}

void build(const std::vector<Step>& steps, bson_t* bson)
{
    constexpr std::size_t deepest = 128;
    bson_t nested[deepest];
    std::size_t depth = 0;
    bson_t* here = bson;
    for (const Step& step : steps)
    {
        const char* const key = step.key.c_str();
        const int keyLength = static_cast<int>(step.key.size());
        switch (step.kind)
        {
        case Step::Kind::Int32:
            bson_append_int32(here, key, keyLength, static_cast<std::int32_t>(step.integer));
            break;
        case Step::Kind::Int64:
            bson_append_int64(here, key, keyLength, step.integer);
            break;
        case Step::Kind::Double:
            bson_append_double(here, key, keyLength, step.number);
            break;
        case Step::Kind::Bool:
            bson_append_bool(here, key, keyLength, step.integer != 0);
            break;
        case Step::Kind::Text:
            bson_append_utf8(here, key, keyLength, step.text.c_str(), static_cast<int>(step.text.size()));
            break;
        case Step::Kind::Binary:
            bson_append_binary(here, key, keyLength, BSON_SUBTYPE_BINARY, step.bytes.data(),
                               static_cast<std::uint32_t>(step.bytes.size()));
            break;
        case Step::Kind::BeginGroup:
            bson_append_document_begin(here, key, keyLength, &nested[depth]);
            here = &nested[depth++];
            break;
        case Step::Kind::BeginArray:
            beginArray(here, key, keyLength, &nested[depth]);
            here = &nested[depth++];
            break;
        case Step::Kind::EndGroup:
            --depth;
            here = depth == 0 ? bson : &nested[depth - 1];
            bson_append_document_end(here, &nested[depth]);
            break;
        case Step::Kind::EndArray:
            --depth;
            here = depth == 0 ? bson : &nested[depth - 1];
            bson_append_array_end(here, &nested[depth]);
            break;
        }
    }
}

void build(const std::vector<Step>& steps, ObjectProperties& document)
{
    for (const Step& step : steps)
    {
        switch (step.kind)
        {
        case Step::Kind::Int32:
            document.setValueInt32(step.key, static_cast<int>(step.integer));
            break;
        case Step::Kind::Int64:
            document.setValueInt64(step.key, step.integer);
            break;
        case Step::Kind::Double:
            document.setValueDouble(step.key, step.number);
            break;
        case Step::Kind::Bool:
            document.setValueBool(step.key, step.integer != 0);
            break;
        case Step::Kind::Text:
            document.setValueString(step.key, step.text);
            break;
        case Step::Kind::Binary:
            document.setValueBinary(step.key, step.bytes);
            break;
        case Step::Kind::BeginGroup:
            document.beginGroup(step.key);
            break;
        case Step::Kind::BeginArray:
            document.beginArray(step.key);
            break;
        case Step::Kind::EndGroup:
            document.endGroup();
            break;
        case Step::Kind::EndArray:
            document.endArray();
            break;
        }
    }
}

void build(const std::vector<Step>& steps, nlohmann::json& json)
{
    constexpr std::size_t deepest = 128;
    nlohmann::json* open[deepest];
    std::size_t depth = 0;
    nlohmann::json* here = &json;
    const auto place = [&here](const Step& step) -> nlohmann::json& {
        return here->is_array() ? here->emplace_back() : (*here)[step.key];
    };
    for (const Step& step : steps)
    {
        switch (step.kind)
        {
        case Step::Kind::Int32:
        case Step::Kind::Int64:
            place(step) = step.integer;
            break;
        case Step::Kind::Double:
            place(step) = step.number;
            break;
        case Step::Kind::Bool:
            place(step) = step.integer != 0;
            break;
        case Step::Kind::Text:
            place(step) = step.text;
            break;
        case Step::Kind::Binary:
            place(step) = nlohmann::json::binary(step.bytes);
            break;
        case Step::Kind::BeginGroup:
        case Step::Kind::BeginArray: {
            nlohmann::json& nested = place(step);
            nested = step.kind == Step::Kind::BeginArray ? nlohmann::json::array() : nlohmann::json::object();
            open[depth++] = here;
            here = &nested;
            break;
        }
        case Step::Kind::EndGroup:
        case Step::Kind::EndArray:
            here = open[--depth];
            break;
        }
    }
}
