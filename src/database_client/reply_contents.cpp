#include "database_client/reply_contents.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

struct Rule
{
    const char* key;
    bool (*isHarmless)(const bson_iter_t& value);
};

// Whether the value keeps the rule that there is for its key.
template <std::size_t count>
bool keepsRules(const bson_iter_t& value, const Rule (&rules)[count])
{
    const char* const key = bson_iter_key(&value);
    const auto* const rule = std::find_if(std::begin(rules), std::end(rules), [key](const Rule& one) {
        return *key == *one.key && std::strcmp(key, one.key) == 0; // most differ in their first letter
    });
    return rule == std::end(rules) || rule->isHarmless(value);
}

template <typename Holds>
bool allOf(bson_iter_t& elements, Holds holds)
{
    while (bson_iter_next(&elements))
        if (!holds(elements))
            return false;
    return true;
}

bool isDocument(const bson_iter_t& value)
{
    return BSON_ITER_HOLDS_DOCUMENT(&value);
}

bool hasElements(const bson_iter_t& value)
{
    return BSON_ITER_HOLDS_DOCUMENT(&value) || BSON_ITER_HOLDS_ARRAY(&value);
}

// What is neither a document nor an array has none.
template <typename Holds>
bool allElementsOf(const bson_iter_t& value, Holds holds)
{
    bson_iter_t elements;
    return !hasElements(value) || !bson_iter_recurse(&value, &elements) || allOf(elements, holds);
}

bool isText(const bson_iter_t& value)
{
    return BSON_ITER_HOLDS_UTF8(&value);
}

bool holdsTexts(const bson_iter_t& value)
{
    return allElementsOf(value, isText);
}

// Errors. The driver keeps 32 bits of a code, and asserts that one of them is set; of messages it measures the length.

bool isErrorCode(const bson_iter_t& value)
{
    return !BSON_ITER_HOLDS_NUMBER(&value) || static_cast<std::uint32_t>(bson_iter_as_int64(&value)) != 0;
}

bool isWriteConcernError(const bson_iter_t& value)
{
    static constexpr Rule rules[] = {{"code", isErrorCode}, {"errmsg", isText}};
    return isDocument(value) && allElementsOf(value, [](const bson_iter_t& field) { return keepsRules(field, rules); });
}

// Unlike that of a write concern, the code of a single write may be 0.
bool holdsWriteErrors(const bson_iter_t& value)
{
    static constexpr Rule rules[] = {{"errmsg", isText}};
    return allElementsOf(value, [](const bson_iter_t& error) {
        return allElementsOf(error, [](const bson_iter_t& field) { return keepsRules(field, rules); });
    });
}

// Cursors.

// "database.collection". Where a cursor goes on, the driver cuts it at the dot and asserts that both are there.
bool isNamespace(const bson_iter_t& value)
{
    if (!isText(value))
        return false;
    std::uint32_t length = 0;
    const char* const text = bson_iter_utf8(&value, &length);
    const char* const dot = std::strchr(text, '.');
    return dot && dot > text && dot[1] != '\0' && std::strlen(text) == length;
}

bool isCursor(const bson_iter_t& value)
{
    static constexpr Rule rules[] = {{"ns", isNamespace}};
    return allElementsOf(value, [](const bson_iter_t& field) { return keepsRules(field, rules); });
}

// Of each index the driver compares the key document with what it looks for.
bool holdsIndexes(const bson_iter_t& value)
{
    static constexpr Rule rules[] = {{"key", isDocument}};
    return allElementsOf(value, [](const bson_iter_t& batch) {
        return allElementsOf(batch, [](const bson_iter_t& index) {
            return allElementsOf(index, [](const bson_iter_t& field) { return keepsRules(field, rules); });
        });
    });
}

// What a server tells of itself.

// "name", "name:port", "[address]" or "[address]:port". The driver uses a member of a replica set before it finds out
// that it cannot read where that is.
bool isHostAndPort(const bson_iter_t& value)
{
    constexpr std::size_t longestName = 255;
    if (!isText(value))
        return false;
    const char* const begin = bson_iter_utf8(&value, nullptr);
    const char* const bracket = *begin == '[' ? std::strchr(begin, ']') : nullptr;
    if (*begin == '[' && !bracket)
        return false;
    const char* const nameEnd = bracket ? bracket + 1 : begin + std::strcspn(begin, ":]");
    const auto nameLength = static_cast<std::size_t>(nameEnd - begin);
    const std::size_t shortestName = bracket ? std::strlen("[:]") : 1;
    if (nameLength < shortestName || nameLength > longestName)
        return false;
    const unsigned long port = *nameEnd == ':' ? std::strtoul(nameEnd + 1, nullptr, 10) : 1;
    return (*nameEnd == '\0' || *nameEnd == ':') && port > 0 && port <= UINT16_MAX && !std::strchr(nameEnd, ']');
}

bool holdsHosts(const bson_iter_t& value)
{
    return allElementsOf(value, isHostAndPort);
}

// Attributes of the form "r=...,s=...,i=4096" (RFC 5802). The driver looks for the "=" of each behind the end, too, and
// for the number where there is none.
bool isScramMessage(const bson_iter_t& value)
{
    if (!BSON_ITER_HOLDS_BINARY(&value))
        return true;
    std::uint32_t size = 0;
    const std::uint8_t* attribute = nullptr;
    bson_iter_binary(&value, nullptr, &size, &attribute);
    const std::uint8_t* const messageEnd = attribute + size;
    while (attribute < messageEnd)
    {
        const auto* const end = std::find(attribute, messageEnd, ',');
        if (end - attribute < 2 || attribute[1] != '=')
            return false;
        const auto isDigit = [](std::uint8_t byte) { return byte >= '0' && byte <= '9'; };
        if (attribute[0] == 'i' && (end - attribute == 2 || !std::all_of(attribute + 2, end, isDigit)))
            return false;
        attribute = end == messageEnd ? end : end + 1;
    }
    return true;
}

bool holdsScramMessage(const bson_iter_t& value)
{
    static constexpr Rule rules[] = {{"payload", isScramMessage}};
    return allElementsOf(value, [](const bson_iter_t& field) { return keepsRules(field, rules); });
}

constexpr Rule replyRules[] = {
    {"code", isErrorCode},
    {"writeConcernError", isWriteConcernError},
    {"writeErrors", holdsWriteErrors},
    {"errorLabels", hasElements},
    {"cursor", isCursor},
    {"hosts", holdsHosts},
    {"passives", holdsHosts},
    {"arbiters", holdsHosts},
    {"tags", holdsTexts},
    {"compression", holdsTexts},
    {"speculativeAuthenticate", isDocument},
};
constexpr Rule indexListRules[] = {{"cursor", holdsIndexes}};
constexpr Rule scramRules[] = {{"payload", isScramMessage}, {"speculativeAuthenticate", holdsScramMessage}};

} // namespace

bool isHarmless(const bson_t& reply, const ReplyContext& context) noexcept
{
    bson_iter_t fields;
    return bson_iter_init(&fields, &reply) && allOf(fields, [&context](const bson_iter_t& field) {
               return keepsRules(field, replyRules) && (!context.listsIndexes || keepsRules(field, indexListRules)) &&
                      (!context.usesScram || keepsRules(field, scramRules));
           });
}
