// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "bson_bytes.h"
#include "bson_handles.h"
#include "driver_texts.h"
#include "every_type.h"
#include "little_endian.h"
#include "row_name.h"
#include "thrown_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using dbc::FormatError;
using dbc::Value;
using test_support::BorrowedBson;
using test_support::BsonBytes;
using test_support::inWordsOf123;
using Bytes = std::vector<std::uint8_t>;

/// Bytes of hexadecimal digits; blanks are ignored.
Bytes bytesOf(const std::string& hex)
{
    Bytes bytes;
    std::string digits;
    for (const char character : hex)
    {
        if (character != ' ')
            digits += character;
    }
    for (std::size_t index = 0; index < digits.size(); index += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(index, 2), nullptr, 16)));
    return bytes;
}

/// A document around one element, with its length.
Bytes documentOf(const std::string& element)
{
    Bytes bytes = bytesOf("00000000" + element + "00");
    test_support::putInt32(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return bytes;
}

/// Read from storage of exactly this size: a sanitizer sees every byte read behind it.
Value read(const Bytes& bytes)
{
    const std::unique_ptr<std::uint8_t[]> storage(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), storage.get());
    return Value::fromBson(storage.get(), bytes.size());
}

struct Element
{
    const char* name;
    const char* hex;  // type, key "a" and value
    const char* json; // canonical
};

void PrintTo(const Element& element, std::ostream* stream)
{
    *stream << element.name;
}

class ValueBsonElement : public testing::TestWithParam<Element>
{};

TEST_P(ValueBsonElement, IsReadAndWrittenByteForByte)
{
    const Bytes bytes = documentOf(GetParam().hex);
    const Value value = read(bytes);
    EXPECT_EQ(BsonBytes(value.toBson()), BsonBytes(bytes));
    EXPECT_EQ(inWordsOf123(value.toJson(dbc::JsonFormat::Canonical)),
              inWordsOf123("{ \"a\" : " + std::string(GetParam().json) + " }"));
    EXPECT_EQ(BsonBytes(Value(value).toBson()), BsonBytes(bytes)) << "a copy";
    EXPECT_EQ(value, read(bytes));
}

TEST_P(ValueBsonElement, IsRefusedWhenItIsCutShort)
{
    const Bytes bytes = documentOf(GetParam().hex);
    for (std::size_t size = 0; size < bytes.size(); ++size)
    {
        Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THROW(read(cut), FormatError) << size;
        if (size < 7)
            continue;
        // The same with a length that says so.
        cut.back() = 0;
        test_support::putInt32(cut.data(), static_cast<std::int32_t>(size));
        try
        {
            const Value value = read(cut);
            EXPECT_EQ(BsonBytes(value.toBson()), BsonBytes(cut)) << size;
        }
        catch (const FormatError& error)
        {
            EXPECT_LE(error.position(), size);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    OfEveryType, ValueBsonElement,
    testing::Values(
        Element{"double", "01 6100 000000000000F83F", R"({ "$numberDouble" : "1.5" })"},
        Element{"doubleNegativeZero", "01 6100 0000000000000080", R"({ "$numberDouble" : "-0.0" })"},
        Element{"doubleInfinity", "01 6100 000000000000F07F", R"({ "$numberDouble" : "Infinity" })"},
        Element{"string", "02 6100 03000000 686900", R"("hi")"}, Element{"stringEmpty", "02 6100 01000000 00", R"("")"},
        Element{"stringWithZero", "02 6100 04000000 61006200", R"("a\u0000b")"},
        Element{"stringLong", "02 6100 10000000 616263646566676869 6A6B6C6D6E6F00", R"("abcdefghijklmno")"},
        Element{"object", "03 6100 0C000000 10 6200 01000000 00", R"({ "b" : { "$numberInt" : "1" } })"},
        Element{"objectEmpty", "03 6100 05000000 00", "{ }"},
        Element{"array", "04 6100 13000000 10 3000 01000000 10 3100 02000000 00",
                R"([ { "$numberInt" : "1" }, { "$numberInt" : "2" } ])"},
        Element{"binary", "05 6100 02000000 00 FFEE", R"({ "$binary" : { "base64" : "/+4=", "subType" : "00" } })"},
        Element{"binaryEmpty", "05 6100 00000000 80", R"({ "$binary" : { "base64" : "", "subType" : "80" } })"},
        Element{"binaryOld", "05 6100 06000000 02 02000000 FFEE",
                R"({ "$binary" : { "base64" : "/+4=", "subType" : "02" } })"},
        Element{"undefined", "06 6100", R"({ "$undefined" : true })"},
        Element{"objectId", "07 6100 0102030405060708090A0B0C", R"({ "$oid" : "0102030405060708090a0b0c" })"},
        Element{"true", "08 6100 01", "true"}, Element{"false", "08 6100 00", "false"},
        Element{"time", "09 6100 00C0170C00000000", R"({ "$date" : { "$numberLong" : "202883072" } })"},
        Element{"timeBefore1970", "09 6100 FFFFFFFFFFFFFFFF", R"({ "$date" : { "$numberLong" : "-1" } })"},
        Element{"null", "0A 6100", "null"},
        Element{"regularExpression", "0B 6100 6200 6900",
                R"({ "$regularExpression" : { "pattern" : "b", "options" : "i" } })"},
        Element{"regularExpressionEmpty", "0B 6100 00 00",
                R"({ "$regularExpression" : { "pattern" : "", "options" : "" } })"},
        Element{"dbPointer", "0C 6100 02000000 6200 0102030405060708090A0B0C",
                R"({ "$dbPointer" : { "$ref" : "b", "$id" : { "$oid" : "0102030405060708090a0b0c" } } })"},
        Element{"code", "0D 6100 02000000 6200", R"({ "$code" : "b" })"},
        Element{"symbol", "0E 6100 02000000 6200", R"({ "$symbol" : "b" })"},
        Element{"codeWithScope", "0F 6100 16000000 02000000 6200 0C000000 10 6300 01000000 00",
                R"({ "$code" : "b", "$scope" : { "c" : { "$numberInt" : "1" } } })"},
        Element{"codeWithEmptyScope", "0F 6100 0F000000 02000000 6200 05000000 00",
                R"({ "$code" : "b", "$scope" : { } })"},
        Element{"int32", "10 6100 FFFFFFFF", R"({ "$numberInt" : "-1" })"},
        Element{"timestamp", "11 6100 01000000 FFFFFFFF", R"({ "$timestamp" : { "t" : 4294967295, "i" : 1 } })"},
        Element{"int64", "12 6100 0000000000000080", R"({ "$numberLong" : "-9223372036854775808" })"},
        Element{"decimal128", "13 6100 01000000000000000000000000003E30", R"({ "$numberDecimal" : "0.1" })"},
        Element{"maxKey", "7F 6100", R"({ "$maxKey" : 1 })"}, Element{"minKey", "FF 6100", R"({ "$minKey" : 1 })"},
        Element{"twoFieldsOfOneKey", "10 6100 01000000 10 6100 02000000",
                R"({ "$numberInt" : "1" }, "a" : { "$numberInt" : "2" })"}),
    RowName());

struct Wrong
{
    const char* name;
    const char* hex; // a whole document, or an element if it begins with a type
    const char* message;
};

void PrintTo(const Wrong& wrong, std::ostream* stream)
{
    *stream << wrong.name;
}

class ValueBsonFault : public testing::TestWithParam<Wrong>
{};

TEST_P(ValueBsonFault, IsRejectedWithItsPositionAndReason)
{
    const auto error = test_support::thrownError<FormatError>([] { read(documentOf(GetParam().hex)); });
    EXPECT_STREQ(error.what(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    OfEveryKind, ValueBsonFault,
    testing::Values(
        Wrong{"unknownType", "14 6100", "BSON: an unknown type, at byte 4"},
        Wrong{"typeZero", "00 6100", "BSON: an unknown type, at byte 4"},
        Wrong{"keyWithoutEnd", "0A 61", "BSON: a key without a zero byte at its end, at byte 5"},
        Wrong{"numberTooShort", "10 6100 0102", "BSON: a value that goes beyond its document, at byte 7"},
        Wrong{"stringOfLengthZero", "02 6100 00000000 00", "BSON: a string with a wrong length, at byte 7"},
        Wrong{"stringOfNegativeLength", "02 6100 FFFFFFFF 00", "BSON: a string with a wrong length, at byte 7"},
        Wrong{"stringTooLong", "02 6100 04000000 686900", "BSON: a string with a wrong length, at byte 7"},
        Wrong{"stringWithoutEnd", "02 6100 02000000 6869 00",
              "BSON: a string without a zero byte at its end, at byte 7"},
        Wrong{"boolOfTwo", "08 6100 02", "BSON: a truth value that is neither 0 nor 1, at byte 4"},
        Wrong{"objectTooShort", "03 6100 04000000 00", "BSON: a document with a wrong length, at byte 7"},
        Wrong{"objectTooLong", "03 6100 06000000 00", "BSON: a document with a wrong length, at byte 7"},
        Wrong{"objectOfNegativeLength", "03 6100 FFFFFFFF 00", "BSON: a document with a wrong length, at byte 7"},
        Wrong{"objectWithoutEnd", "03 6100 05000000 01", "BSON: a document without a zero byte at its end, at byte 11"},
        Wrong{"objectWithTextBehindItsEnd", "03 6100 06000000 00 00",
              "BSON: a key without a zero byte at its end, at byte 12"},
        Wrong{"binaryOfNegativeLength", "05 6100 FFFFFFFF 00", "BSON: a binary with a wrong length, at byte 4"},
        Wrong{"binaryTooLong", "05 6100 02000000 00 FF", "BSON: a value that goes beyond its document, at byte 12"},
        Wrong{"oldBinaryOfWrongLength", "05 6100 06000000 02 03000000 FFEE",
              "BSON: a binary of subtype 2 with a wrong length, at byte 4"},
        Wrong{"oldBinaryTooShort", "05 6100 03000000 02 FFFFFF",
              "BSON: a binary of subtype 2 with a wrong length, at byte 4"},
        Wrong{"expressionWithoutEnd", "0B 6100 62", "BSON: a key without a zero byte at its end, at byte 7"},
        Wrong{"codeOfWrongLength", "0F 6100 17000000 02000000 6200 0C000000 10 6300 01000000 00",
              "BSON: code with a scope and a wrong length, at byte 4"}),
    RowName());

TEST(ValueBson, IsReadAndWrittenByteForByteWithAFieldOfEveryType)
{
    const Value value = test_support::everyType();
    const Bytes bytes = value.toBson();
    bson_t driver;
    ASSERT_TRUE(bson_init_static(&driver, bytes.data(), bytes.size()));
    EXPECT_TRUE(bson_validate(&driver, BSON_VALIDATE_NONE, nullptr)) << "the driver's library reads it, too";
    const Value again = read(bytes);
    EXPECT_EQ(BsonBytes(again.toBson()), BsonBytes(bytes));
    EXPECT_EQ(again, value);
}

TEST(ValueBson, ReservesExactlyTheBytesThatItWrites)
{
    const Bytes bytes = test_support::everyType().toBson();
    EXPECT_EQ(bytes.capacity(), bytes.size());
    for (const std::size_t count : {0U, 1U, 10U, 11U, 100U, 101U, 1001U})
    {
        const Bytes list = Value(std::vector<int>(count, 1)).toBson();
        EXPECT_EQ(list.capacity(), list.size()) << count;
    }
}

TEST(ValueBson, IsReadOrRefusedWhateverByteIsChanged)
{
    const Bytes bytes = test_support::everyType().toBson();
    int readable = 0;
    for (std::size_t place = 0; place < bytes.size(); ++place)
    {
        for (const int change : {0x01, 0x02, 0x10, 0x7F, 0x80, 0xFF})
        {
            Bytes changed = bytes;
            changed[place] = static_cast<std::uint8_t>(changed[place] ^ change);
            try
            {
                const Value value = read(changed);
                EXPECT_EQ(read(value.toBson()), value);
                ++readable;
            }
            catch (const FormatError& error)
            {
                EXPECT_LE(error.position(), bytes.size());
            }
        }
    }
    EXPECT_GT(readable, 100);
}

TEST(ValueBson, IsRefusedWithBytesBehindTheDocument)
{
    Bytes bytes = Value({{"a", 1}}).toBson();
    bytes.push_back(0);
    EXPECT_THROW(read(bytes), FormatError);
    EXPECT_THROW(read({}), FormatError);
    EXPECT_EQ(read({5, 0, 0, 0, 0}), Value());
}

TEST(ValueBson, RenumbersTheElementsOfAnArray)
{
    const Bytes other = documentOf("04 6100 13000000 10 3700 01000000 10 7800 02000000 00");
    const Bytes numbered = documentOf("04 6100 13000000 10 3000 01000000 10 3100 02000000 00");
    EXPECT_EQ(BsonBytes(read(other).toBson()), BsonBytes(numbered));
}

TEST(ValueBson, NumbersMoreThanTenThousandElements)
{
    const Value list = std::vector<int>(10001, 1);
    OwnedBson driver;
    for (int index = 0; index < 10001; ++index)
    {
        const std::string key = std::to_string(index);
        BSON_APPEND_INT32(driver.get(), key.c_str(), 1);
    }
    EXPECT_EQ(BsonBytes(list.toBson()), BsonBytes(driver.get()));
}

TEST(ValueBson, WritesStringsAndBytesOfEverySize)
{
    for (std::size_t size = 0; size < 1300; ++size)
    {
        const std::string text(size, 'x');
        const Value value = {{"a", {{text, text}, {"b", dbc::Bytes(size, 'x')}}}, {"n", 1}};
        OwnedBson inner;
        bson_append_utf8(inner.get(), text.data(), static_cast<int>(size), text.data(), static_cast<int>(size));
        bson_append_binary(inner.get(), "b", 1, BSON_SUBTYPE_BINARY, reinterpret_cast<const std::uint8_t*>(text.data()),
                           static_cast<std::uint32_t>(size));
        OwnedBson driver;
        BSON_APPEND_DOCUMENT(driver.get(), "a", inner.get());
        BSON_APPEND_INT32(driver.get(), "n", 1);
        EXPECT_EQ(BsonBytes(value.toBson()), BsonBytes(driver.get())) << size;
    }
}

// Ends of documents, one behind the other, are written to the same place as their elements.
TEST(ValueBson, WritesDeepDocuments)
{
    for (const int depth : {1, 100, 900, 1000, 1100, 3000})
    {
        Value value = {{"v", 1}};
        for (int level = 0; level < depth; ++level)
        {
            Value outer;
            outer.append("d", std::move(value));
            value = std::move(outer);
        }
        const Bytes bytes = value.toBson();
        ASSERT_TRUE(BorrowedBson(bytes).isValid());
        EXPECT_EQ(read(bytes), value) << depth;
    }
}

TEST(ValueBson, IsAppendedToWhatABufferHolds)
{
    Bytes buffer{1, 2, 3};
    Value({{"a", 1}}).appendBson(buffer);
    Value().appendBson(buffer);
    EXPECT_EQ(BsonBytes(buffer), BsonBytes(bytesOf("010203 0C000000 10 6100 01000000 00 05000000 00")));
    EXPECT_THROW(Value(1).appendBson(buffer), std::logic_error);
    EXPECT_EQ(BsonBytes(dbc::array({1}).toBson()), BsonBytes(bytesOf("0C000000 10 3000 01000000 00")));
}

} // namespace
