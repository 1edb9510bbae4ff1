#include "bson_to_properties.h"

#include "object_properties.h"
#include "property/nesting_stack.h"

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

// A text ends at its first zero byte, whatever its length.
const std::string& cutText(std::string& scratch, const char* text, std::uint32_t length)
{
    return text ? scratch.assign(text, strnlen(text, length)) : scratch.assign("");
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
    properties.setValueId(scratch.key, scratch.text.assign(text, sizeof(text) - 1));
}

// Elements of the kinds that the tree does not know are left out.
void setValue(const bson_iter_t& iter, ObjectProperties& properties, Scratch& scratch)
{
    std::uint32_t length = 0;
    const char* text = nullptr;
    switch (bson_iter_type(&iter))
    {
    case BSON_TYPE_DOUBLE:
        properties.setValueDouble(scratch.key, bson_iter_double(&iter));
        break;
    case BSON_TYPE_UTF8:
        text = bson_iter_utf8(&iter, &length);
        properties.setValueString(scratch.key, cutText(scratch.text, text, length));
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
        properties.setValueBool(scratch.key, bson_iter_bool(&iter));
        break;
    case BSON_TYPE_DATE_TIME:
        properties.setValueTime(scratch.key, static_cast<long long>(bson_iter_date_time(&iter)));
        break;
    case BSON_TYPE_REGEX:
        setRegex(iter, properties, scratch);
        break;
    case BSON_TYPE_INT32:
        properties.setValueInt32(scratch.key, bson_iter_int32(&iter));
        break;
    case BSON_TYPE_INT64:
        properties.setValueInt64(scratch.key, bson_iter_int64(&iter));
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
        scratch.key.assign(bson_iter_key(&current), bson_iter_key_len(&current));
        const bool isArray = BSON_ITER_HOLDS_ARRAY(&current);
        if (!isArray && !BSON_ITER_HOLDS_DOCUMENT(&current))
        {
            setValue(current, *properties, scratch);
            continue;
        }
        beginNested(*properties, scratch.key, isArray);
        OpenDocument nested{{}, isArray};
        if (bson_iter_recurse(&current, &nested.iter))
            open.push(nested);
        else
            endNested(*properties, isArray);
    }
}
