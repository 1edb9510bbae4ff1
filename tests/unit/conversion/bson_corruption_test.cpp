// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Bytes that are no BSON. A slow reader, recursive and built on the driver's own value reading, says what a document
// made from them must hold; the bytes stand in storage of exactly their length.

#include "conversions.h"
#include "little_endian.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;
using test_support::BorrowedBson;
using test_support::putInt32;

void readSlowly(bson_iter_t& iter, ObjectProperties& document);

void readNested(const bson_iter_t& iter, ObjectProperties& document, const std::string& key, bool isArray)
{
    if (isArray)
        document.beginArray(key);
    else
        document.beginGroup(key);
    bson_iter_t child;
    if (bson_iter_recurse(&iter, &child))
        readSlowly(child, document);
    if (isArray)
        document.endArray();
    else
        document.endGroup();
}

void readScalar(const bson_value_t& value, ObjectProperties& document, const std::string& key)
{
    char digits[25];
    switch (value.value_type)
    {
    case BSON_TYPE_DOUBLE:
        return document.setValueDouble(key, value.value.v_double);
    case BSON_TYPE_UTF8:
        return document.setValueString(key, value.value.v_utf8.str);
    case BSON_TYPE_SYMBOL:
        return document.setValueString(key, value.value.v_symbol.symbol);
    case BSON_TYPE_BINARY:
        return document.setValueBinary(
            key, {value.value.v_binary.data, value.value.v_binary.data + value.value.v_binary.data_len});
    case BSON_TYPE_OID:
        bson_oid_to_string(&value.value.v_oid, digits);
        return document.setValueId(key, digits);
    case BSON_TYPE_BOOL:
        return document.setValueBool(key, value.value.v_bool);
    case BSON_TYPE_DATE_TIME:
        return document.setValueTime(key, static_cast<long long>(value.value.v_datetime));
    case BSON_TYPE_REGEX:
        return document.setValueRegex(key, value.value.v_regex.regex, value.value.v_regex.options);
    case BSON_TYPE_INT32:
        return document.setValueInt32(key, value.value.v_int32);
    case BSON_TYPE_INT64:
        return document.setValueInt64(key, value.value.v_int64);
    default:
        return;
    }
}

void readSlowly(bson_iter_t& iter, ObjectProperties& document)
{
    while (bson_iter_next(&iter))
    {
        const std::string key = bson_iter_key(&iter);
        const bson_type_t type = bson_iter_type(&iter);
        if (type == BSON_TYPE_DOCUMENT || type == BSON_TYPE_ARRAY)
            readNested(iter, document, key, type == BSON_TYPE_ARRAY);
        else if (type <= BSON_TYPE_INT64)
            readScalar(*bson_iter_value(&iter), document, key);
    }
}

// Whether the driver follows every length of a document to its end.
bool isSound(bson_iter_t& iter)
{
    bson_iter_t child;
    while (bson_iter_next(&iter))
    {
        const bool nested = BSON_ITER_HOLDS_DOCUMENT(&iter) || BSON_ITER_HOLDS_ARRAY(&iter);
        if (nested && !(bson_iter_recurse(&iter, &child) && isSound(child)))
            return false;
    }
    return iter.err_off == 0;
}

// The reader agrees with the slow one, wherever that stops, and what was read can be written.
void expectReadAsFarAsTheDriverGoes(const Bytes& bytes)
{
    const BorrowedBson bson(bytes);
    if (!bson.isValid())
        return;
    ObjectProperties expected;
    bson_iter_t iter;
    ASSERT_TRUE(bson_iter_init(&iter, bson.get()));
    readSlowly(iter, expected);
    ObjectProperties document;

    EXPECT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(treeText(document), treeText(expected)) << BsonBytes(bytes);
    EXPECT_EQ(document.key(), expected.key());
    OwnedBson copy;
    EXPECT_TRUE(PropertiesToBson::convert(document, copy.get()));
    ASSERT_TRUE(bson_iter_init(&iter, copy.get()));
    EXPECT_TRUE(isSound(iter)) << BsonBytes(bytes);
}

void appendEveryType(bson_t* bson)
{
    bson_oid_t id;
    bson_oid_init_from_string(&id, "507f1f77bcf86cd799439011");
    bson_decimal128_t decimal;
    bson_decimal128_from_string("1.5", &decimal);
    OwnedBson scope;
    bson_append_int32(scope.get(), "s", -1, 1);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>("0123456789abcdef");
    bson_append_double(bson, "double", -1, 1.5);
    bson_append_utf8(bson, "utf8", -1, "text", -1);
    bson_append_binary(bson, "binary", -1, BSON_SUBTYPE_BINARY, bytes, 3);
    bson_append_binary(bson, "old", -1, BSON_SUBTYPE_BINARY_DEPRECATED, bytes, 3);
    bson_append_undefined(bson, "undefined", -1);
    bson_append_oid(bson, "oid", -1, &id);
    bson_append_bool(bson, "bool", -1, true);
    bson_append_date_time(bson, "date", -1, 1500000000000LL);
    bson_append_null(bson, "null", -1);
    bson_append_regex(bson, "regex", -1, "^a", "i");
    bson_append_dbpointer(bson, "pointer", -1, "c", &id);
    bson_append_code(bson, "code", -1, "c");
    bson_append_symbol(bson, "symbol", -1, "sym", -1);
    bson_append_code_with_scope(bson, "scope", -1, "c", scope.get());
    bson_append_int32(bson, "int32", -1, 1);
    bson_append_timestamp(bson, "stamp", -1, 1, 2);
    bson_append_int64(bson, "int64", -1, 1);
    bson_append_decimal128(bson, "decimal", -1, &decimal);
    bson_append_minkey(bson, "min", -1);
    bson_append_maxkey(bson, "max", -1);
}

Bytes sampleBytes()
{
    OwnedBson bson;
    appendEveryType(bson.get());
    appendGroup(bson.get(), "group", [](bson_t* group) {
        appendArray(group, "list", [](bson_t* list) {
            bson_append_int32(list, "0", -1, 1);
            appendGroup(list, "1", [](bson_t* element) { bson_append_utf8(element, "k", -1, "v", -1); });
        });
        bson_append_utf8(group, "last", -1, "text", -1);
    });
    return BsonBytes(bson.get()).bytes();
}

TEST(CorruptBson, UnchangedIsReadInFull)
{
    const Bytes bytes = sampleBytes();
    const BorrowedBson bson(bytes);
    ASSERT_TRUE(bson.isValid());

    const ObjectProperties document = readBson(bson.get());

    EXPECT_EQ(document.childCount(), 12U);
    EXPECT_EQ(document.valueAsString("group/last", ""), "text");
    expectReadAsFarAsTheDriverGoes(bytes);
}

TEST(CorruptBson, CutAtEveryByteKeepsTheFieldsBeforeTheCut)
{
    const Bytes whole = sampleBytes();
    for (std::size_t length = 5; length < whole.size(); ++length)
    {
        Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(BorrowedBson(cut).isValid()) << length;
        putInt32(cut.data(), static_cast<std::int32_t>(length));
        cut.back() = 0;
        expectReadAsFarAsTheDriverGoes(cut);
    }
}

TEST(CorruptBson, WithAnyBitFlippedIsReadAsFarAsTheDriverGoes)
{
    const Bytes whole = sampleBytes();
    for (std::size_t position = 0; position < whole.size(); ++position)
    {
        for (unsigned bit = 0; bit < 8; ++bit)
        {
            Bytes flipped = whole;
            flipped[position] = static_cast<std::uint8_t>(flipped[position] ^ (1U << bit));
            expectReadAsFarAsTheDriverGoes(flipped);
        }
    }
}

TEST(CorruptBson, WithAnyByteReplacedIsReadAsFarAsTheDriverGoes)
{
    const Bytes whole = sampleBytes();
    for (std::size_t position = 0; position < whole.size(); ++position)
    {
        for (const unsigned value :
             {0x00U, 0x01U, 0x02U, 0x03U, 0x04U, 0x05U, 0x0bU, 0x0eU, 0x13U, 0x2fU, 0x7fU, 0xffU})
        {
            Bytes replaced = whole;
            replaced[position] = static_cast<std::uint8_t>(value);
            expectReadAsFarAsTheDriverGoes(replaced);
        }
    }
}

TEST(CorruptBson, WithAWrongLengthAnywhereIsReadAsFarAsTheDriverGoes)
{
    const Bytes whole = sampleBytes();
    const auto size = static_cast<std::int32_t>(whole.size());
    for (std::size_t position = 4; position + 4 <= whole.size(); ++position)
    {
        for (const std::int32_t length : {INT32_MIN, -1, 0, 1, 4, 5, 6, 100, size - 1, size, size + 1, INT32_MAX})
        {
            Bytes wrong = whole;
            putInt32(wrong.data() + position, length);
            expectReadAsFarAsTheDriverGoes(wrong);
        }
    }
}

TEST(CorruptBson, WithEveryTypeCodeInTurnIsReadAsFarAsTheDriverGoes)
{
    for (unsigned code = 0; code <= 0xff; ++code)
    {
        OwnedBson bson;
        bson_append_int32(bson.get(), "a", -1, 1);
        bson_append_int64(bson.get(), "k", -1, 5);
        Bytes bytes = BsonBytes(bson.get()).bytes();
        bytes[4 + 7] = static_cast<std::uint8_t>(code);
        expectReadAsFarAsTheDriverGoes(bytes);
    }
}

TEST(CorruptBson, WithAnUnterminatedKeyStopsTheReading)
{
    OwnedBson bson;
    bson_append_int32(bson.get(), "a", -1, 1);
    bson_append_null(bson.get(), "key", -1);
    Bytes bytes = BsonBytes(bson.get()).bytes();
    bytes[bytes.size() - 2] = 'x';

    expectReadAsFarAsTheDriverGoes(bytes);
    const BorrowedBson borrowed(bytes);
    EXPECT_EQ(treeText(readBson(borrowed.get())), "Group{\"a\":Int32=1}");
}

TEST(CorruptBson, InsideAGroupStopsThatGroupAndTheRestIsRead)
{
    OwnedBson bson;
    appendGroup(bson.get(), "g", [](bson_t* g) {
        bson_append_int32(g, "a", -1, 1);
        bson_append_utf8(g, "b", -1, "text", -1);
    });
    bson_append_int32(bson.get(), "z", -1, 26);
    Bytes bytes = BsonBytes(bson.get()).bytes();
    // The length of the text b: four bytes of the document, type, key and length of g, the field a, type and key of b.
    putInt32(bytes.data() + 4 + 3 + 4 + 7 + 3, 1000);

    const BorrowedBson borrowed(bytes);
    ASSERT_TRUE(borrowed.isValid());
    EXPECT_EQ(treeText(readBson(borrowed.get())), "Group{\"g\":Group{\"a\":Int32=1},\"z\":Int32=26}");
    expectReadAsFarAsTheDriverGoes(bytes);
}

} // namespace
