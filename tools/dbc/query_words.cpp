// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "query_words.h"

#include "dbc/options.h"
#include "dbc/value.h"
#include "dbc/value_type.h"
#include "dbc/values.h"
#include "failure.h"
#include "input.h"
#include "json_syntax.h"
#include "object_properties.h"
#include "scalar_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

const char* const queryHelp =
    "Query: one JSON document, or conditions that must all match:\n"
    "field=value field!=value field>value field>=value field<value field<=value field~pattern field~/pattern/flags "
    "field? !field\n"
    "A value is JSON (5, true, null, [1, 2]) or a time (2023-01-31, 2023-01-31T12:30Z). Anything else is a string. "
    "A value in quotes is always a string: 'when=\"2023-01-31\"'";

const char* const sortHelp =
    R"(Sort order: name,-age sorts by name ascending, then by age descending; or JSON: {"name": 1, "age": -1})";

const char* const fieldsHelp = R"(Fields to print: name,-_id prints names without ids; or JSON: {"name": 1, "_id": 0})";

namespace {

struct Comparison
{
    std::string_view sign;
    const char* operatorText; // empty if the field has the value itself
};

// Longer signs first: ">=" must not be read as ">".
constexpr std::array<Comparison, 7> comparisons{
    {{"!=", "$ne"}, {">=", "$gte"}, {"<=", "$lte"}, {"=", ""}, {">", "$gt"}, {"<", "$lt"}, {"~", "$regex"}}};

struct WrongSign
{
    std::string_view wrong;
    const char* right;
};

constexpr std::array<WrongSign, 5> wrongSigns{{{"==", "="}, {"=>", ">="}, {"=<", "<="}, {"=~", "~"}, {"<>", "!="}}};

// True if invalid JSON must be an error. Used as a string, it would match no document and the user would not know why.
bool isMeantAsJson(const std::string& text)
{
    return !text.empty() && std::string_view("{[\"").find(text.front()) != std::string_view::npos;
}

dbc::Value valueOf(const std::string& field, const std::string& text)
{
    if (validUtf8Length(text) < text.size())
        throw Failure(UsageError, "the value of " + field + " is not UTF-8");
    if (isIdField(field) && isObjectIdText(text))
        return dbc::ObjectId{text};
    if (const auto time = parseTime(text))
        return *time;
    if (looksLikeTime(text))
    {
        throw Failure(UsageError, "invalid time " + text + "; write a string as " + field + "=\"" + text + "\"");
    }
    if (isMeantAsJson(text))
        return parseJson(text, "the value of " + field);
    try
    {
        return dbc::Value::fromJson(text);
    }
    catch (const dbc::FormatError& /*error*/)
    {
        return text;
    }
}

// Parses pattern, or /pattern/flags.
dbc::Value expressionOf(const std::string& field, const std::string& text)
{
    if (validUtf8Length(text) < text.size())
        throw Failure(UsageError, "the pattern of " + field + " is not UTF-8");
    const std::size_t last = text.rfind('/');
    if (text.empty() || text.front() != '/' || last == 0)
        return {{"$regex", text}};
    std::string flags = text.substr(last + 1);
    std::sort(flags.begin(), flags.end()); // as the server requires
    flags.erase(std::unique(flags.begin(), flags.end()), flags.end());
    const std::size_t wrong = flags.find_first_not_of("imsx");
    if (wrong != std::string::npos)
    {
        throw Failure(
            UsageError,
            field + "~" + text + ": " + quotedCharacter(flags[wrong]) +
                " is not a flag of a regular expression (i, m, s, x); write a pattern that begins with \"/\" as " +
                field + "~\\" + text);
    }
    dbc::Value expression{{"$regex", text.substr(1, last - 1)}};
    if (!flags.empty())
        expression.append("$options", flags);
    return expression;
}

// Rejects operators of other languages, such as "==". Read as "=" and a string, they would match no document and the
// user would not know why.
void rejectWrongSign(const std::string& word, std::size_t place)
{
    for (const auto& [wrong, right] : wrongSigns)
    {
        if (word.compare(place, wrong.size(), wrong) != 0)
            continue;
        const std::string field = word.substr(0, place);
        throw Failure(UsageError, "not a condition: " + word + "; did you mean " + field + right +
                                      word.substr(place + wrong.size()) + "? Write a string as " + field + word[place] +
                                      '"' + word.substr(place + 1) + '"');
    }
}

dbc::Field conditionOf(const std::string& word, const std::string& advice)
{
    if (word.size() > 1 && word.front() == '!')
        return {word.substr(1), {{"$exists", false}}};
    const std::size_t place = word.find_first_of("!=<>~");
    if (place == std::string::npos && word.size() > 1 && word.back() == '?')
        return {word.substr(0, word.size() - 1), {{"$exists", true}}};
    if (place != std::string::npos)
        rejectWrongSign(word, place);
    for (const auto& [sign, operatorText] : comparisons)
    {
        if (place == std::string::npos || place == 0 || word.compare(place, sign.size(), sign) != 0)
            continue;
        const std::string field = word.substr(0, place);
        const std::string text = word.substr(place + sign.size());
        if (sign == "~")
            return {field, expressionOf(field, text)};
        dbc::Value value = valueOf(field, text);
        if (*operatorText == '\0')
            return {field, std::move(value)};
        return {field, {{operatorText, std::move(value)}}};
    }
    throw Failure(UsageError,
                  "not a condition: " + word + "; write conditions as field=value, field>value, field?" + advice);
}

bool isDocument(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    return begin != std::string::npos && text[begin] == '{';
}

dbc::SortField sortFieldOf(std::string_view word, const std::string& option)
{
    const bool isDescending = !word.empty() && word.front() == '-';
    if (isDescending || (!word.empty() && word.front() == '+'))
        word.remove_prefix(1);
    if (word.empty())
        throw Failure(UsageError, option + ": a field is missing; write name,-age");
    return {std::string(word), isDescending ? dbc::Order::Descending : dbc::Order::Ascending};
}

// name,-age
dbc::Sort sortOfWords(const std::string& text, const std::string& option)
{
    dbc::Sort sort;
    std::string_view rest = text;
    while (!rest.empty())
    {
        const std::size_t comma = rest.find(',');
        sort.push_back(sortFieldOf(rest.substr(0, comma), option));
        if (comma == std::string_view::npos)
            break;
        rest.remove_prefix(comma + 1);
        if (rest.empty())
            sortFieldOf(rest, option); // throws for a comma at the end
    }
    return sort;
}

dbc::Sort sortOfJson(const std::string& text)
{
    dbc::Sort sort;
    const dbc::Value order = parseJson(text, "--sort");
    for (const auto& [field, direction] : order.fields())
    {
        const std::optional<int> number = direction.get<int>();
        if (!number || (*number != 1 && *number != -1))
            throw Failure(UsageError, "--sort: " + std::string(field) + " must be 1 or -1");
        sort.push_back({std::string(field), *number > 0 ? dbc::Order::Ascending : dbc::Order::Descending});
    }
    return sort;
}

} // namespace

dbc::Value parseQuery(const std::vector<std::string>& words, const std::string& advice)
{
    if (words.empty())
        return {};
    if (words.size() == 1)
        return isDocument(words[0]) ? parseJson(words[0], "the query") : dbc::Value{conditionOf(words[0], advice)};
    // As a list, because two conditions may have the same field.
    dbc::Value list = dbc::Value::array();
    for (const std::string& word : words)
        list.push({conditionOf(word, advice)});
    return {{"$and", std::move(list)}};
}

dbc::Sort parseSort(const std::string& text)
{
    return isDocument(text) ? sortOfJson(text) : sortOfWords(text, "--sort");
}

dbc::Value parseFields(const std::string& text)
{
    if (isDocument(text))
        return parseJson(text, "--fields");
    dbc::Value projection;
    for (const dbc::SortField& field : sortOfWords(text, "--fields"))
        projection.append(field.field, field.order == dbc::Order::Ascending ? 1 : 0);
    return projection;
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
        throw Failure(UsageError, what + " cannot be sent: " + loss.path + ": " + nameOf(loss.loss));
    }
}
