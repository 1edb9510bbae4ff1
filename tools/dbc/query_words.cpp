#include "query_words.h"

#include "bson_to_properties.h"
#include "dbc/loss_guard.h"
#include "driver/driver.h"
#include "failure.h"
#include "input.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>

const char* const queryHelp =
    "The query: one JSON document, or words that must all hold:\n"
    "field=value field!=value field>value field>=value field<value field<=value field~pattern field? !field";

namespace {

struct Comparison
{
    const char* sign;
    const char* operatorText; // empty where the value itself stands under the field
};

// Longer signs first: ">=" is no ">".
constexpr std::array<Comparison, 7> comparisons{
    {{"!=", "$ne"}, {">=", "$gte"}, {"<=", "$lte"}, {"=", ""}, {">", "$gt"}, {"<", "$lt"}, {"~", "$regex"}}};

struct Word
{
    std::string field;
    std::string operatorText;
    std::string value;
};

Word split(const std::string& word)
{
    if (word.size() > 1 && word.front() == '!')
        return {word.substr(1), "$exists", "false"};
    const std::size_t place = word.find_first_of("!=<>~");
    if (place == std::string::npos && word.size() > 1 && word.back() == '?')
        return {word.substr(0, word.size() - 1), "$exists", "true"};
    for (const Comparison& comparison : comparisons)
    {
        const std::size_t length = std::strlen(comparison.sign);
        if (place != std::string::npos && place > 0 && word.compare(place, length, comparison.sign) == 0)
            return {word.substr(0, place), comparison.operatorText, word.substr(place + length)};
    }
    throw Failure(UsageError, "not a condition: " + word);
}

bool isIdField(const std::string& field)
{
    return field == "_id" || (field.size() > 3 && field.compare(field.size() - 3, 3, "_id") == 0);
}

// The JSON text of a value: what is JSON stays, what is not becomes a text.
std::string jsonValue(const Word& word)
{
    const std::string& value = word.value;
    if (isIdField(word.field) && bson_oid_is_valid(value.c_str(), value.size()))
        return R"({"$oid": ")" + value + "\"}";
    bson_error_t error{};
    const std::string wrapped = R"({"v": )" + value + "}";
    const bool isPattern = word.operatorText == "$regex";
    const BsonPointer parsed(isPattern ? nullptr
                                       : bson_new_from_json(reinterpret_cast<const std::uint8_t*>(wrapped.data()),
                                                            static_cast<ssize_t>(wrapped.size()), &error));
    // A value such as `1, "x": 2` is JSON only together with what it was wrapped in.
    if (parsed && bson_count_keys(parsed.get()) == 1)
        return value;
    const BsonText escaped(bson_utf8_escape_for_json(value.data(), static_cast<ssize_t>(value.size())));
    if (!escaped)
        throw Failure(UsageError, "not UTF-8: the value of " + word.field);
    return "\"" + std::string(escaped.get()) + "\"";
}

void appendCondition(bson_t* query, const Word& word)
{
    const std::string json = word.operatorText.empty()
                                 ? R"({"v": )" + jsonValue(word) + "}"
                                 : R"({"v": {")" + word.operatorText + "\": " + jsonValue(word) + "}}";
    const BsonPointer parsed = parseJson(json, "the value of " + word.field);
    bson_iter_t iter;
    if (bson_iter_init_find(&iter, parsed.get(), "v"))
        bson_append_iter(query, word.field.c_str(), static_cast<int>(word.field.size()), &iter);
}

} // namespace

BsonPointer parseQuery(const std::vector<std::string>& words)
{
    if (words.size() == 1 && words[0].find_first_not_of(" \t\n") != std::string::npos &&
        words[0][words[0].find_first_not_of(" \t\n")] == '{')
        return parseJson(words[0], "the query");
    BsonPointer query(bson_new());
    if (words.size() == 1)
        appendCondition(query.get(), split(words[0]));
    if (words.size() <= 1)
        return query;
    // As a list: two conditions may be on one field.
    bson_t list;
    beginArray(query.get(), "$and", -1, &list);
    std::uint32_t index = 0;
    for (const std::string& word : words)
    {
        std::array<char, 16> storage;
        const char* key = nullptr;
        bson_uint32_to_string(index++, &key, storage.data(), storage.size());
        bson_t condition;
        BSON_APPEND_DOCUMENT_BEGIN(&list, key, &condition);
        appendCondition(&condition, split(word));
        bson_append_document_end(&list, &condition);
    }
    bson_append_array_end(query.get(), &list);
    return query;
}

ObjectProperties toProperties(const bson_t& bson, const std::string& what)
{
    for (const dbc::LossAt& loss : dbc::findLosses(bson))
    {
        // A server ignores the keys of an array, but not its order.
        throw Failure(UsageError, what + " is beyond what can be sent: " + loss.path + ": " + nameOf(loss.loss));
    }
    ObjectProperties properties;
    BsonToProperties::convert(&bson, &properties);
    return properties;
}
