#include "query_words.h"

#include "failure.h"
#include "input.h"

#include <array>
#include <cstring>
#include <stdexcept>
#include <utility>

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

bool isObjectId(const std::string& text)
{
    return text.size() == 24 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
}

dbc::Value textOf(const Word& word)
{
    dbc::Value text = word.value;
    try
    {
        text.toJson(); // the server is not asked with what is not UTF-8
        return text;
    }
    catch (const std::invalid_argument&)
    {
        throw Failure(UsageError, "not UTF-8: the value of " + word.field);
    }
}

// What is JSON stays, what is not becomes a text.
dbc::Value valueOf(const Word& word)
{
    if (isIdField(word.field) && isObjectId(word.value))
        return dbc::ObjectId{word.value};
    if (word.operatorText == "$regex")
        return textOf(word);
    try
    {
        return dbc::Value::fromJson(word.value);
    }
    catch (const dbc::FormatError&)
    {
        return textOf(word);
    }
}

dbc::Value conditionOf(const std::string& text)
{
    const Word word = split(text);
    if (word.operatorText.empty())
        return {{word.field, valueOf(word)}};
    return {{word.field, {{word.operatorText, valueOf(word)}}}};
}

} // namespace

dbc::Value parseQuery(const std::vector<std::string>& words)
{
    if (words.empty())
        return {};
    const std::size_t begin = words[0].find_first_not_of(" \t\n");
    if (words.size() == 1 && begin != std::string::npos && words[0][begin] == '{')
        return parseDocument(words[0], "the query");
    if (words.size() == 1)
        return conditionOf(words[0]);
    // As a list: two conditions may be on one field.
    dbc::Value list = dbc::Value::array();
    for (const std::string& word : words)
        list.push(conditionOf(word));
    return {{"$and", std::move(list)}};
}

ObjectProperties toProperties(const dbc::Value& document, const std::string& what)
{
    try
    {
        return document.toProperties();
    }
    catch (const dbc::LossError& error)
    {
        const dbc::LossAt& loss = error.losses().front();
        throw Failure(UsageError, what + " is beyond what can be sent: " + loss.path + ": " + nameOf(loss.loss));
    }
}
