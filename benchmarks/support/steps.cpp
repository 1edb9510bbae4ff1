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
            step.kind = Step::Int32;
            step.integer = bson_iter_int32(&iter);
            break;
        case BSON_TYPE_INT64:
            step.kind = Step::Int64;
            step.integer = bson_iter_int64(&iter);
            break;
        case BSON_TYPE_DOUBLE:
            step.kind = Step::Double;
            step.number = bson_iter_double(&iter);
            break;
        case BSON_TYPE_BOOL:
            step.kind = Step::Bool;
            step.integer = bson_iter_bool(&iter) ? 1 : 0;
            break;
        case BSON_TYPE_UTF8: {
            step.kind = Step::Text;
            const char* text = bson_iter_utf8(&iter, &length);
            step.text.assign(text, length);
            break;
        }
        case BSON_TYPE_BINARY: {
            step.kind = Step::Binary;
            const std::uint8_t* bytes = nullptr;
            bson_iter_binary(&iter, nullptr, &length, &bytes);
            step.bytes.assign(bytes, bytes + length);
            break;
        }
        case BSON_TYPE_DOCUMENT:
        case BSON_TYPE_ARRAY: {
            const bool isArray = BSON_ITER_HOLDS_ARRAY(&iter);
            step.kind = isArray ? Step::BeginArray : Step::BeginGroup;
            steps.push_back(step);
            bson_iter_t nested;
            bson_iter_recurse(&iter, &nested);
            takeSteps(nested, steps);
            step.kind = isArray ? Step::EndArray : Step::EndGroup;
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
        case Step::Int32:
            bson_append_int32(here, key, keyLength, static_cast<std::int32_t>(step.integer));
            break;
        case Step::Int64:
            bson_append_int64(here, key, keyLength, step.integer);
            break;
        case Step::Double:
            bson_append_double(here, key, keyLength, step.number);
            break;
        case Step::Bool:
            bson_append_bool(here, key, keyLength, step.integer != 0);
            break;
        case Step::Text:
            bson_append_utf8(here, key, keyLength, step.text.c_str(), static_cast<int>(step.text.size()));
            break;
        case Step::Binary:
            bson_append_binary(here, key, keyLength, BSON_SUBTYPE_BINARY, step.bytes.data(),
                               static_cast<std::uint32_t>(step.bytes.size()));
            break;
        case Step::BeginGroup:
            bson_append_document_begin(here, key, keyLength, &nested[depth]);
            here = &nested[depth++];
            break;
        case Step::BeginArray:
            beginArray(here, key, keyLength, &nested[depth]);
            here = &nested[depth++];
            break;
        case Step::EndGroup:
            --depth;
            here = depth == 0 ? bson : &nested[depth - 1];
            bson_append_document_end(here, &nested[depth]);
            break;
        case Step::EndArray:
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
        case Step::Int32:
            document.setValueInt32(step.key, static_cast<int>(step.integer));
            break;
        case Step::Int64:
            document.setValueInt64(step.key, step.integer);
            break;
        case Step::Double:
            document.setValueDouble(step.key, step.number);
            break;
        case Step::Bool:
            document.setValueBool(step.key, step.integer != 0);
            break;
        case Step::Text:
            document.setValueString(step.key, step.text);
            break;
        case Step::Binary:
            document.setValueBinary(step.key, step.bytes);
            break;
        case Step::BeginGroup:
            document.beginGroup(step.key);
            break;
        case Step::BeginArray:
            document.beginArray(step.key);
            break;
        case Step::EndGroup:
            document.endGroup();
            break;
        case Step::EndArray:
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
        case Step::Int32:
        case Step::Int64:
            place(step) = step.integer;
            break;
        case Step::Double:
            place(step) = step.number;
            break;
        case Step::Bool:
            place(step) = step.integer != 0;
            break;
        case Step::Text:
            place(step) = step.text;
            break;
        case Step::Binary:
            place(step) = nlohmann::json::binary(step.bytes);
            break;
        case Step::BeginGroup:
        case Step::BeginArray: {
            nlohmann::json& nested = place(step);
            nested = step.kind == Step::BeginArray ? nlohmann::json::array() : nlohmann::json::object();
            open[depth++] = here;
            here = &nested;
            break;
        }
        case Step::EndGroup:
        case Step::EndArray:
            here = open[--depth];
            break;
        }
    }
}
