#include "database_client/passing_document.h"

#include "bson_bytes.h"
#include "bson_rewrite.h"
#include "bson_walk.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using test_support::BorrowedBson;
using test_support::BsonBytes;
using test_support::bsonFromJson;
using test_support::Bytes;
using test_support::canBeEntered;
using test_support::putInt32;

// Whether the document is taken to its end when it comes in pieces of this size.
bool isTaken(const Bytes& bytes, std::size_t pieceSize)
{
    PassingDocument document;
    document.start(static_cast<std::uint32_t>(bytes.size()));
    for (std::size_t at = 0; at < bytes.size(); at += pieceSize)
        if (!document.take(bytes.data() + at, std::min(pieceSize, bytes.size() - at)))
            return false;
    return document.isWhole();
}

// The same, for every size of the pieces up to this one and for the whole.
void expectTaken(const Bytes& bytes, bool expected)
{
    for (std::size_t pieceSize = 1; pieceSize <= 24; ++pieceSize)
        ASSERT_EQ(isTaken(bytes, pieceSize), expected) << BsonBytes(bytes) << " in pieces of " << pieceSize;
    EXPECT_EQ(isTaken(bytes, bytes.size() + 1), expected) << BsonBytes(bytes);
}

using Append = void (*)(bson_t* bson);

Bytes bytesOf(Append append)
{
    bson_t bson = BSON_INITIALIZER;
    append(&bson);
    Bytes bytes(bson_get_data(&bson), bson_get_data(&bson) + bson.len);
    bson_destroy(&bson);
    return bytes;
}

// A document of these elements, its length and end around them.
Bytes documentOf(Bytes elements)
{
    elements.insert(elements.begin(), 4, 0);
    elements.push_back(0);
    putInt32(elements, 0, static_cast<std::int32_t>(elements.size()));
    return elements;
}

struct KindRow
{
    const char* name;
    Append append;
};

void PrintTo(const KindRow& row, std::ostream* out)
{
    *out << row.name;
}

const std::uint8_t blob[] = {1, 2, 3};

const KindRow kinds[] = {
    {"Double", [](bson_t* bson) { BSON_APPEND_DOUBLE(bson, "k", 1.5); }},
    {"Text", [](bson_t* bson) { BSON_APPEND_UTF8(bson, "k", "text"); }},
    {"EmptyText", [](bson_t* bson) { BSON_APPEND_UTF8(bson, "k", ""); }},
    {"TextWithZeroBytes", [](bson_t* bson) { bson_append_utf8(bson, "k", 1, "a\0b", 3); }},
    {"Binary", [](bson_t* bson) { BSON_APPEND_BINARY(bson, "k", BSON_SUBTYPE_BINARY, blob, sizeof blob); }},
    {"EmptyBinary", [](bson_t* bson) { BSON_APPEND_BINARY(bson, "k", BSON_SUBTYPE_BINARY, blob, 0); }},
    {"OldBinary",
     [](bson_t* bson) { BSON_APPEND_BINARY(bson, "k", BSON_SUBTYPE_BINARY_DEPRECATED, blob, sizeof blob); }},
    {"Undefined", [](bson_t* bson) { BSON_APPEND_UNDEFINED(bson, "k"); }},
    {"ObjectId",
     [](bson_t* bson) {
         bson_oid_t id;
         bson_oid_init(&id, nullptr);
         BSON_APPEND_OID(bson, "k", &id);
     }},
    {"Boolean", [](bson_t* bson) { BSON_APPEND_BOOL(bson, "k", true); }},
    {"DateTime", [](bson_t* bson) { BSON_APPEND_DATE_TIME(bson, "k", 1); }},
    {"Null", [](bson_t* bson) { BSON_APPEND_NULL(bson, "k"); }},
    {"RegularExpression", [](bson_t* bson) { BSON_APPEND_REGEX(bson, "k", "^a", "i"); }},
    {"EmptyRegularExpression", [](bson_t* bson) { BSON_APPEND_REGEX(bson, "k", "", ""); }},
    {"Pointer",
     [](bson_t* bson) {
         bson_oid_t id;
         bson_oid_init(&id, nullptr);
         BSON_APPEND_DBPOINTER(bson, "k", "d.c", &id);
     }},
    {"Code", [](bson_t* bson) { BSON_APPEND_CODE(bson, "k", "f()"); }},
    {"Symbol", [](bson_t* bson) { BSON_APPEND_SYMBOL(bson, "k", "s"); }},
    {"ScopedCode",
     [](bson_t* bson) {
         bson_t scope = BSON_INITIALIZER;
         BSON_APPEND_CODE_WITH_SCOPE(bson, "k", "", &scope);
     }},
    {"Int32", [](bson_t* bson) { BSON_APPEND_INT32(bson, "k", 1); }},
    {"Timestamp", [](bson_t* bson) { BSON_APPEND_TIMESTAMP(bson, "k", 1, 2); }},
    {"Int64", [](bson_t* bson) { BSON_APPEND_INT64(bson, "k", 1); }},
    {"Decimal",
     [](bson_t* bson) {
         bson_decimal128_t number;
         bson_decimal128_from_string("1.5", &number);
         BSON_APPEND_DECIMAL128(bson, "k", &number);
     }},
    {"MinKey", [](bson_t* bson) { BSON_APPEND_MINKEY(bson, "k"); }},
    {"MaxKey", [](bson_t* bson) { BSON_APPEND_MAXKEY(bson, "k"); }},
    {"Document",
     [](bson_t* bson) {
         bson_t inner = BSON_INITIALIZER;
         BSON_APPEND_DOCUMENT(bson, "k", &inner);
     }},
    {"Array",
     [](bson_t* bson) {
         bson_t inner = BSON_INITIALIZER;
         BSON_APPEND_ARRAY(bson, "k", &inner);
     }},
};

class PassingKind : public testing::TestWithParam<KindRow>
{};

TEST_P(PassingKind, IsWellFormed)
{
    expectTaken(bytesOf(GetParam().append), true);
}

TEST_P(PassingKind, IsWellFormedBetweenOthersAndInside)
{
    expectTaken(bytesOf([](bson_t* bson) {
                    BSON_APPEND_INT32(bson, "before", 1);
                    bson_t inner;
                    BSON_APPEND_ARRAY_BEGIN(bson, "inside", &inner);
                    GetParam().append(&inner);
                    bson_append_array_end(bson, &inner);
                    GetParam().append(bson);
                    BSON_APPEND_UTF8(bson, "", "after");
                }),
                true);
}

TEST_P(PassingKind, OfADocumentCutAnywhereIsNotWhole)
{
    const Bytes bytes = bytesOf(GetParam().append);
    for (std::size_t size = 0; size < bytes.size(); ++size)
    {
        // Cut alone, and cut with the length set right: the second ends amid something, or without an end.
        Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(isTaken(cut, 1)) << size;
        if (size < sizeof(std::int32_t))
            continue;
        putInt32(cut, 0, static_cast<std::int32_t>(size));
        EXPECT_FALSE(isTaken(cut, 1)) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, PassingKind, testing::ValuesIn(kinds), RowName());

struct MalformedRow
{
    const char* name;
    Bytes elements; ///< of a document whose own length and end are right
};

void PrintTo(const MalformedRow& row, std::ostream* out)
{
    *out << row.name;
}

const MalformedRow malformed[] = {
    {"UnknownKind", {0x14, 'k', 0}},
    {"EndAmidTheElements", {0x0A, 'k', 0, 0, 0x0A, 'k', 0}},
    {"KeyWithoutEnd", {0x0A, 'k'}},
    {"TextOfNoBytes", {0x02, 'k', 0, 0, 0, 0, 0}},
    {"TextOfNegativeLength", {0x02, 'k', 0, 0xFF, 0xFF, 0xFF, 0xFF, 'a', 0}},
    {"TextLongerThanTheDocument", {0x02, 'k', 0, 9, 0, 0, 0, 'a', 0}},
    {"TextWithoutItsZero", {0x02, 'k', 0, 2, 0, 0, 0, 'a', 'b'}},
    {"BinaryLongerThanTheDocument", {0x05, 'k', 0, 3, 0, 0, 0, 0, 'a'}},
    {"BinaryOfNegativeLength", {0x05, 'k', 0, 0xFF, 0xFF, 0xFF, 0xFF, 0}},
    {"PatternWithoutOptions", {0x0B, 'k', 0, 'a', 0}},
    {"PointerWithoutItsId", {0x0C, 'k', 0, 1, 0, 0, 0, 0}},
    {"ScopedCodeShorterThanItsParts", {0x0F, 'k', 0, 13, 0, 0, 0, 1, 0, 0, 0, 0, 5, 0, 0, 0}},
    {"InnerDocumentShorterThanAny", {0x03, 'k', 0, 4, 0, 0, 0, 0}},
    {"InnerDocumentLongerThanTheOuter", {0x03, 'k', 0, 7, 0, 0, 0, 0}},
    {"InnerDocumentThatTakesTheOuterEnd", {0x03, 'k', 0, 6, 0, 0, 0, 0}},
    {"InnerDocumentOfNegativeLength", {0x03, 'k', 0, 0xFF, 0xFF, 0xFF, 0xFF, 0}},
    {"InnerDocumentWithoutItsZero", {0x03, 'k', 0, 5, 0, 0, 0, 0x0A}},
    {"InnerDocumentThatGoesOnAfterItsZero", {0x03, 'k', 0, 6, 0, 0, 0, 0, 0}},
    {"FixedValueCutByTheEnd", {0x12, 'k', 0, 1, 2, 3}},
};

class MalformedDocument : public testing::TestWithParam<MalformedRow>
{};

TEST_P(MalformedDocument, IsRefused)
{
    expectTaken(documentOf(GetParam().elements), false);
}

INSTANTIATE_TEST_SUITE_P(Forms, MalformedDocument, testing::ValuesIn(malformed), RowName());

TEST(PassingDocument, OfAnotherLengthThanItHasIsRefused)
{
    for (const std::int32_t length : {-1, 0, 4, 7, 9, 100})
    {
        Bytes bytes = documentOf({0x0A, 'k', 0});
        ASSERT_EQ(bytes.size(), 8U);
        putInt32(bytes, 0, length);
        expectTaken(bytes, false);
    }
}

TEST(PassingDocument, EndsWithItsLastByte)
{
    Bytes bytes = bsonFromJson(R"({"a": 1})");
    PassingDocument document;
    document.start(static_cast<std::uint32_t>(bytes.size()));
    ASSERT_TRUE(document.take(bytes.data(), bytes.size() - 1));
    EXPECT_FALSE(document.isWhole());
    ASSERT_TRUE(document.take(bytes.data() + bytes.size() - 1, 1));
    EXPECT_TRUE(document.isWhole());
    EXPECT_FALSE(document.take(bytes.data(), 1));
}

TEST(PassingDocument, FollowsAnother)
{
    const Bytes bytes = bsonFromJson(R"({"a": {"b": [1, "two"]}})");
    PassingDocument document;
    document.start(100);
    EXPECT_FALSE(document.take(bytes.data(), bytes.size()));
    for (int round = 0; round < 3; ++round)
    {
        document.start(static_cast<std::uint32_t>(bytes.size()));
        EXPECT_TRUE(document.take(bytes.data(), bytes.size()));
        EXPECT_TRUE(document.isWhole());
    }
}

TEST(PassingDocument, IsFollowedAsDeepAsItMayBeAndNoDeeper)
{
    Bytes bytes = documentOf({});
    for (std::size_t depth = 1; depth < PassingDocument::deepest; ++depth)
    {
        bytes.insert(bytes.begin(), {0x03, 'k', 0});
        bytes = documentOf(bytes);
    }
    EXPECT_TRUE(isTaken(bytes, bytes.size()));
    EXPECT_TRUE(isTaken(bytes, 5));
    bytes.insert(bytes.begin(), {0x03, 'k', 0});
    EXPECT_FALSE(isTaken(documentOf(bytes), bytes.size() + 5));
}

TEST(PassingDocument, ThatIsTakenCanBeWalkedByTheDriver)
{
    const Bytes whole = bsonFromJson(
        R"({"cursor": {"id": 0, "ns": "d.c", "firstBatch": [{"_id": 1, "a": [true, {"b": null}], "t": "text"},
            {"r": {"$regularExpression": {"pattern": "a", "options": "i"}}, "d": {}}]}, "ok": 1.0})");
    std::mt19937_64 random(20261122);
    int taken = 0;
    for (int round = 0; round < 50000; ++round)
    {
        Bytes changed = whole;
        for (std::size_t count = 1 + random() % 2; count > 0; --count)
            changed[random() % changed.size()] = static_cast<std::uint8_t>(random() % 24);
        const bool isWhole = isTaken(changed, changed.size());
        ASSERT_EQ(isTaken(changed, 3), isWhole) << BsonBytes(changed);
        if (!isWhole)
            continue;
        ++taken;
        const BorrowedBson bson(changed);
        ASSERT_TRUE(bson.isValid() && canBeEntered(bson.get())) << BsonBytes(changed);
    }
    EXPECT_GT(taken, 1000);
}

} // namespace
