#include "bson_to_properties.h"

#include "object_properties.h"
#include "property/nesting_stack.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Texts that the setters take, kept for the whole walk: their storage is used again for every element.
struct Scratch
{
    std::string key;
    std::string text;
    std::string options;
};

// What assign() does, in half of its instructions.
const std::string& refill(std::string& scratch, const char* text, std::size_t length)
{
    scratch.clear();
    return scratch.append(text, length);
}

// A text ends at its first zero byte, whatever its length.
const std::string& cutText(std::string& scratch, const char* text, std::size_t length)
{
    return refill(scratch, text, strnlen(text, length));
}

void setRegex(const bson_iter_t& iter, ObjectProperties& properties, Scratch& scratch)
{
    const char* options = nullptr;
    scratch.text = bson_iter_regex(&iter, &options);
    scratch.options = options;
    properties.setValueRegex(scratch.key, scratch.text, scratch.options);
}

void setBinary(const bson_iter_t& iter, ObjectProperties& properties, const std::string& key)
{
    bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
    std::uint32_t size = 0;
    const std::uint8_t* bytes = nullptr;
    bson_iter_binary(&iter, &subtype, &size, &bytes);
    properties.setValueBinary(key, std::vector<unsigned char>(bytes, bytes + size));
}

void setId(const bson_iter_t& iter, ObjectProperties& properties, Scratch& scratch)
{
    char text[25];
    bson_oid_to_string(bson_iter_oid(&iter), text);
    properties.setValueId(scratch.key, refill(scratch.text, text, sizeof(text) - 1));
}

// Elements of the kinds that the tree does not know are left out. The readers named unsafe do not ask for the type
// again: that is a call into the driver less for each value.
void setValue(const bson_iter_t& iter, bson_type_t type, ObjectProperties& properties, Scratch& scratch)
{
    std::uint32_t length = 0;
    std::size_t textLength = 0;
    const char* text = nullptr;
    switch (type)
    {
    case BSON_TYPE_DOUBLE:
        properties.setValueDouble(scratch.key, bson_iter_double_unsafe(&iter));
        break;
    case BSON_TYPE_UTF8:
        text = bson_iter_utf8_unsafe(&iter, &textLength);
        properties.setValueString(scratch.key, cutText(scratch.text, text, textLength));
        break;
    case BSON_TYPE_SYMBOL:
        text = bson_iter_symbol(&iter, &length);
        properties.setValueString(scratch.key, cutText(scratch.text, text, length));
        break;
    case BSON_TYPE_BINARY:
        setBinary(iter, properties, scratch.key);
        break;
    case BSON_TYPE_OID:
        setId(iter, properties, scratch);
        break;
    case BSON_TYPE_BOOL:
        properties.setValueBool(scratch.key, bson_iter_bool_unsafe(&iter));
        break;
    case BSON_TYPE_DATE_TIME:
        properties.setValueTime(scratch.key, static_cast<long long>(bson_iter_int64_unsafe(&iter)));
        break;
    case BSON_TYPE_REGEX:
        setRegex(iter, properties, scratch);
        break;
    case BSON_TYPE_INT32:
        properties.setValueInt32(scratch.key, bson_iter_int32_unsafe(&iter));
        break;
    case BSON_TYPE_INT64:
        properties.setValueInt64(scratch.key, bson_iter_int64_unsafe(&iter));
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

struct OpenDocument
{
    bson_iter_t iter;
    bool isArray;
};

void beginNested(ObjectProperties& properties, const std::string& key, bool isArray)
{
    if (isArray)
        properties.beginArray(key);
    else
        properties.beginGroup(key);
}

void endNested(ObjectProperties& properties, bool isArray)
{
    if (isArray)
        properties.endArray();
    else
        properties.endGroup();
}

} // namespace

bool BsonToProperties::convert(const bson_t* bson, ObjectProperties* properties)
{
    return bson && properties && bson_to_properties(bson, properties);
}

bool BsonToProperties::bson_to_properties(const bson_t* bson, ObjectProperties* properties)
{
    bson_iter_t iter;
    return bson_iter_init(&iter, bson) && parse(iter, properties);
}

bool BsonToProperties::parse(bson_iter_t& iter, ObjectProperties* properties)
{
    Scratch scratch;
    NestingStack<OpenDocument> open;
    for (;;)
    {
        bson_iter_t& current = open.empty() ? iter : open.top().iter;
        if (!bson_iter_next(&current))
        {
            if (open.empty())
                return true;
            endNested(*properties, open.top().isArray);
            open.pop();
            continue;
        }
        refill(scratch.key, bson_iter_key(&current), bson_iter_key_len(&current));
        const bson_type_t type = bson_iter_type_unsafe(&current);
        if (type != BSON_TYPE_ARRAY && type != BSON_TYPE_DOCUMENT)
        {
            setValue(current, type, *properties, scratch);
            continue;
        }
        const bool isArray = type == BSON_TYPE_ARRAY;
        beginNested(*properties, scratch.key, isArray);
        OpenDocument nested{{}, isArray};
        bson_iter_recurse(&current, &nested.iter); // fails for other types only
        open.push(nested);
    }
}
