// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "conversions.h"
#include "little_endian.h"
#include "property_internals.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace {

using FillDocument = std::function<void(ObjectProperties&)>;
using Document = ObjectProperties;
using Limits = std::numeric_limits<double>;

struct WriterRow
{
    std::string name;
    FillDocument fill;
    BuildBson build;
};

std::ostream& operator<<(std::ostream& stream, const WriterRow& row)
{
    return stream << row.name;
}

class WrittenDocument : public testing::TestWithParam<WriterRow>
{};

std::string withZero(const char* before, const char* behind)
{
    return before + std::string(1, '\0') + behind;
}

void setKind(ObjectProperties& document, const char* key, int kind)
{
    storedKind(itemOf(*document.root()->createSingleProperty(key))) = static_cast<PropertyType>(kind);
}

void appendOid(bson_t* bson, const char* key, const char* digits)
{
    bson_oid_t id;
    bson_oid_init_from_string(&id, digits);
    bson_append_oid(bson, key, -1, &id);
}

const std::uint8_t threeBytes[] = {0, 1, 255};

// clang-format off
const WriterRow writerRows[] = {
    {"Empty", [](Document&) {}, appendNothing},
    {"KindNone", [](Document& d) { setKind(d, "k", 0); }, appendNothing},
    {"KindBelowTheEnumeration", [](Document& d) { setKind(d, "k", -1); }, appendNothing},
    {"KindAboveTheEnumeration", [](Document& d) { setKind(d, "k", 13); }, appendNothing},
    {"Undefined", [](Document& d) { d.root()->setValueUndefined("k"); },
     [](bson_t* b) { bson_append_undefined(b, "k", -1); }},
    {"UndefinedLeftByAReader", [](Document& d) { d.valueAsInt32("k", 7); },
     [](bson_t* b) { bson_append_undefined(b, "k", -1); }},
    {"EmptyGroup", [](Document& d) { d.beginGroup("k"); },
     [](bson_t* b) { appendGroup(b, "k", appendNothing); }},
    {"EmptyArray", [](Document& d) { d.beginArray("k"); },
     [](bson_t* b) { appendArray(b, "k", appendNothing); }},
    {"Group", [](Document& d) { d.setValueInt32("k/v", 1); },
     [](bson_t* b) { appendGroup(b, "k", [](bson_t* k) { bson_append_int32(k, "v", -1, 1); }); }},
    {"Array", [](Document& d) { d.beginArray("k"); d.setValueInt32("0", 1); d.setValueString("1", "s"); },
     [](bson_t* b) { appendArray(b, "k", [](bson_t* k) {
         bson_append_int32(k, "0", -1, 1);
         bson_append_utf8(k, "1", -1, "s", -1); }); }},
    {"ArrayKeepsItsOwnKeys", [](Document& d) { d.beginArray("k"); d.setValueInt32("x", 1); },
     [](bson_t* b) { appendArray(b, "k", [](bson_t* k) { bson_append_int32(k, "x", -1, 1); }); }},
    {"String", [](Document& d) { d.setValueString("k", "text"); },
     [](bson_t* b) { bson_append_utf8(b, "k", -1, "text", -1); }},
    {"StringEmpty", [](Document& d) { d.setValueString("k", ""); },
     [](bson_t* b) { bson_append_utf8(b, "k", -1, "", 0); }},
    {"StringUtf8", [](Document& d) { d.setValueString("k", "\xc3\xa9\xe2\x82\xac"); },
     [](bson_t* b) { bson_append_utf8(b, "k", -1, "\xc3\xa9\xe2\x82\xac", -1); }},
    {"StringNotUtf8", [](Document& d) { d.setValueString("k", "\xff\xfe"); },
     [](bson_t* b) { bson_append_utf8(b, "k", -1, "\xff\xfe", -1); }},
    {"StringIsCutAtAZeroByte", [](Document& d) { d.setValueString("k", withZero("ab", "cd")); },
     [](bson_t* b) { bson_append_utf8(b, "k", -1, "ab", 2); }},
    {"True", [](Document& d) { d.setValueBool("k", true); }, [](bson_t* b) { bson_append_bool(b, "k", -1, true); }},
    {"False", [](Document& d) { d.setValueBool("k", false); }, [](bson_t* b) { bson_append_bool(b, "k", -1, false); }},
    {"Int32", [](Document& d) { d.setValueInt32("k", -5); }, [](bson_t* b) { bson_append_int32(b, "k", -1, -5); }},
    {"Int32Smallest", [](Document& d) { d.setValueInt32("k", INT_MIN); },
     [](bson_t* b) { bson_append_int32(b, "k", -1, INT_MIN); }},
    {"Int64", [](Document& d) { d.setValueInt64("k", 5); }, [](bson_t* b) { bson_append_int64(b, "k", -1, 5); }},
    {"Int64Smallest", [](Document& d) { d.setValueInt64("k", LONG_MIN); },
     [](bson_t* b) { bson_append_int64(b, "k", -1, LONG_MIN); }},
    {"Int64Greatest", [](Document& d) { d.setValueLongLong("k", LLONG_MAX); },
     [](bson_t* b) { bson_append_int64(b, "k", -1, LLONG_MAX); }},
    {"Double", [](Document& d) { d.setValueDouble("k", 1.5); },
     [](bson_t* b) { bson_append_double(b, "k", -1, 1.5); }},
    {"DoubleNegativeZero", [](Document& d) { d.setValueDouble("k", -0.0); },
     [](bson_t* b) { bson_append_double(b, "k", -1, -0.0); }},
    {"DoubleNotANumber", [](Document& d) { d.setValueDouble("k", Limits::quiet_NaN()); },
     [](bson_t* b) { bson_append_double(b, "k", -1, Limits::quiet_NaN()); }},
    {"DoubleInfinity", [](Document& d) { d.setValueDouble("k", -Limits::infinity()); },
     [](bson_t* b) { bson_append_double(b, "k", -1, -Limits::infinity()); }},
    {"TimeInMilliseconds", [](Document& d) { d.setValueTime("k", 1500000000000LL); },
     [](bson_t* b) { bson_append_date_time(b, "k", -1, 1500000000000LL); }},
    {"TimeBeforeTheEpoch", [](Document& d) { d.setValueTime("k", -1LL); },
     [](bson_t* b) { bson_append_date_time(b, "k", -1, -1); }},
    {"TimeSmallest", [](Document& d) { d.setValueTime("k", LLONG_MIN); },
     [](bson_t* b) { bson_append_date_time(b, "k", -1, LLONG_MIN); }},
    {"Id", [](Document& d) { d.setValueId("k", "507f1f77bcf86cd799439011"); },
     [](bson_t* b) { appendOid(b, "k", "507f1f77bcf86cd799439011"); }},
    {"IdUpperCase", [](Document& d) { d.setValueId("k", "507F1F77BCF86CD799439011"); },
     [](bson_t* b) { appendOid(b, "k", "507f1f77bcf86cd799439011"); }},
    {"BinaryOneByte", [](Document& d) { d.setValueBinary("k", {9}); },
     [](bson_t* b) { const std::uint8_t byte = 9; bson_append_binary(b, "k", -1, BSON_SUBTYPE_BINARY, &byte, 1); }},
    {"Binary", [](Document& d) { d.setValueBinary("k", {0, 1, 255}); },
     [](bson_t* b) { bson_append_binary(b, "k", -1, BSON_SUBTYPE_BINARY, threeBytes, 3); }},
    {"BinaryWithoutBytesIsLeftOut", [](Document& d) { d.setValueBinary("k", {}); d.setValueInt32("l", 1); },
     [](bson_t* b) { bson_append_int32(b, "l", -1, 1); }},
    {"Regex", [](Document& d) { d.setValueRegex("k", "^a", "i"); },
     [](bson_t* b) { bson_append_regex(b, "k", -1, "^a", "i"); }},
    {"RegexEmpty", [](Document& d) { d.setValueRegex("k", "", ""); },
     [](bson_t* b) { bson_append_regex(b, "k", -1, "", ""); }},
    {"RegexOptionsAsTheDriverTakesThem", [](Document& d) { d.setValueRegex("k", "a", "zxsmi"); },
     [](bson_t* b) { bson_append_regex(b, "k", -1, "a", "zxsmi"); }},
    {"RegexIsCutAtAZeroByte", [](Document& d) { d.setValueRegex("k", withZero("a", "b"), withZero("i", "m")); },
     [](bson_t* b) { bson_append_regex(b, "k", -1, "a", "i"); }},
    {"FieldsComeSortedByKey", [](Document& d) { d.setValueInt32("b", 1); d.setValueInt32("a", 2); },
     [](bson_t* b) { bson_append_int32(b, "a", -1, 2); bson_append_int32(b, "b", -1, 1); }},
    {"KeyTenComesBeforeKeyNine", [](Document& d) { d.setValueInt32("9", 1); d.setValueInt32("10", 2); },
     [](bson_t* b) { bson_append_int32(b, "10", -1, 2); bson_append_int32(b, "9", -1, 1); }},
    {"ElementsComeInTheOrderOfTheirKeysAsText",
     [](Document& d) { d.beginArray("k"); for (int i = 0; i <= 10; ++i) d.setValueInt32(std::to_string(i), i); },
     [](bson_t* b) { appendArray(b, "k", [](bson_t* k) {
         for (const int i : {0, 1, 10, 2, 3, 4, 5, 6, 7, 8, 9})
             bson_append_int32(k, std::to_string(i).c_str(), -1, i); }); }},
    {"ElementsWithOneKeyKeepTheirOrder",
     [](Document& d) { d.beginArray("k"); for (const int i : {3, 1, 2}) d.setValueInt32("e", i); },
     [](bson_t* b) { appendArray(b, "k", [](bson_t* k) {
         for (const int i : {3, 1, 2})
             bson_append_int32(k, "e", -1, i); }); }},
    {"KeysMayBeEmptyOrHoldAnyCharacter",
     [](Document& d) {
         for (const char* key : {"", "a.b", "$set", "a/b", "\xff"})
             d.root()->createSingleProperty(key)->setValueBool(true); },
     [](bson_t* b) {
         for (const char* key : {"", "$set", "a.b", "a/b", "\xff"})
             bson_append_bool(b, key, -1, true); }},
    {"TheKeyIsTheNodesOwnAlsoUnderAnEntryWithAnother",
     [](Document& d) { d.root()->createGroup("entry")->copy(*Property::create()->createSingleGroup("own")); },
     [](bson_t* b) { appendGroup(b, "own", appendNothing); }},
    {"ChildrenOfAValueAreNotWritten",
     [](Document& d) { d.setValueString("s", "x"); d.setValueInt32("s/t", 1); },
     [](bson_t* b) { bson_append_utf8(b, "s", -1, "x", -1); }},
    {"ARootThatIsAValueHasNoField", [](Document& d) { d.setValueInt32("", 5); }, appendNothing},
    {"ARootThatIsAValueWithChildrenHasTheirFields",
     [](Document& d) { d.setValueInt32("", 5); d.setValueInt32("a", 1); },
     [](bson_t* b) { bson_append_int32(b, "a", -1, 1); }},
    {"NestedTwice",
     [](Document& d) {
         d.beginArray("list");
         for (int i = 0; i < 2; ++i) { d.beginGroup("e"); d.setValueInt32("in/v", i); d.endGroup(); } },
     [](bson_t* b) { appendArray(b, "list", [](bson_t* list) {
         for (int i = 0; i < 2; ++i)
             appendGroup(list, "e", [i](bson_t* e) {
                 appendGroup(e, "in", [i](bson_t* in) { bson_append_int32(in, "v", -1, i); }); }); }); }},
};
// clang-format on

TEST_P(WrittenDocument, EqualsTheBsonOfTheDriverByteForByte)
{
    ObjectProperties document;
    GetParam().fill(document);

    EXPECT_EQ(written(document), built(GetParam().build));
}

INSTANTIATE_TEST_SUITE_P(Rows, WrittenDocument, testing::ValuesIn(writerRows), RowName());

TEST(BsonWriter, AnEmptyDocumentIsFiveBytes)
{
    EXPECT_EQ(written(ObjectProperties()).bytes(), (std::vector<std::uint8_t>{5, 0, 0, 0, 0}));
}

TEST(BsonWriter, RejectsANullTarget)
{
    EXPECT_FALSE(PropertiesToBson::convert(ObjectProperties(), nullptr));
}

TEST(BsonWriter, StartsAtTheRootWhereverTheCursorIs)
{
    ObjectProperties document;
    document.setValueInt32("a/b", 1);
    document.setValueInt32("c", 2);
    const BsonBytes atRoot = written(document);
    document.beginGroup("a");

    EXPECT_EQ(written(document), atRoot);
    EXPECT_EQ(document.group(), "a");
}

TEST(BsonWriter, InitialisesUninitialisedStorage)
{
    ObjectProperties document;
    document.setValueInt32("a", 1);
    bson_t bson;
    std::memset(&bson, 0xa5, sizeof(bson));

    ASSERT_TRUE(PropertiesToBson::convert(document, &bson));

    EXPECT_EQ(BsonBytes(&bson), written(document));
    bson_destroy(&bson);
}

TEST(BsonWriter, ParseAppendsTheChildrenOfANodeToAnExistingDocument)
{
    ObjectProperties document;
    document.setValueInt32("g/a", 1);
    document.setValueInt32("outside", 2);
    OwnedBson bson;
    bson_append_int32(bson.get(), "first", -1, 0);

    EXPECT_TRUE(PropertiesToBson::parse(document.root()->propertyByKey("g"), bson.get()));

    EXPECT_EQ(BsonBytes(bson.get()), built([](bson_t* b) {
                  bson_append_int32(b, "first", -1, 0);
                  bson_append_int32(b, "a", -1, 1);
              }));
}

TEST(BsonWriter, ParseOfANodeWithoutChildrenAppendsNothing)
{
    OwnedBson bson;

    EXPECT_TRUE(PropertiesToBson::parse(Property::create(), bson.get()));

    EXPECT_EQ(BsonBytes(bson.get()), built(appendNothing));
}

TEST(BsonWriter, ParseOfANullNodeAppendsNothing)
{
    OwnedBson bson;

    EXPECT_TRUE(PropertiesToBson::parse(nullptr, bson.get()));

    EXPECT_EQ(BsonBytes(bson.get()), built(appendNothing));
}

TEST(BsonWriter, ParseKeepsANodeAliveThatNothingElseOwns)
{
    OwnedBson bson;
    auto node = Property::create();
    node->setValueString("a/b", "a text that is long enough for the heap");

    EXPECT_TRUE(PropertiesToBson::parse(std::move(node), bson.get()));

    EXPECT_EQ(BsonBytes(bson.get()), built([](bson_t* b) {
                  appendGroup(b, "a", [](bson_t* a) {
                      bson_append_utf8(a, "b", -1, "a text that is long enough for the heap", -1);
                  });
              }));
}

TEST(BsonWriter, DoesNotChangeTheDocument)
{
    ObjectProperties document;
    document.setValueString("a/b", "x");
    document.valueAsInt32("u", 0);
    const std::string before = treeText(document);

    written(document);

    EXPECT_EQ(treeText(document), before);
}

TEST(BsonWriter, CutsKeysAtAZeroByteButOmitsSuchBinaryAndRegexFields)
{
    ObjectProperties document;
    const std::string key = withZero("key", "behind");
    using Fill = std::function<void(Property&)>;
    const std::pair<Fill, BuildBson> cut[] = {
        {[](Property& n) { n.setValueUndefined(); }, [](bson_t* b) { bson_append_undefined(b, "key", -1); }},
        {[](Property& n) { n.setValueString("s"); }, [](bson_t* b) { bson_append_utf8(b, "key", -1, "s", -1); }},
        {[](Property& n) { n.setValueBool(true); }, [](bson_t* b) { bson_append_bool(b, "key", -1, true); }},
        {[](Property& n) { n.setValueInt32(1); }, [](bson_t* b) { bson_append_int32(b, "key", -1, 1); }},
        {[](Property& n) { n.setValueInt64(1); }, [](bson_t* b) { bson_append_int64(b, "key", -1, 1); }},
        {[](Property& n) { n.setValueDouble(1); }, [](bson_t* b) { bson_append_double(b, "key", -1, 1); }},
        {[](Property& n) { n.setValueTime(1); }, [](bson_t* b) { bson_append_date_time(b, "key", -1, 1); }},
        {[](Property& n) { n.setValueId("507f1f77bcf86cd799439011"); },
         [](bson_t* b) { appendOid(b, "key", "507f1f77bcf86cd799439011"); }},
        {[](Property& n) { n.setValueBinary({1}); }, appendNothing},
        {[](Property& n) { n.setValueRegex("p", "i"); }, appendNothing},
    };
    for (const auto& [fill, build] : cut)
    {
        document.setValueInt32("z", 26);
        fill(*document.root()->createSingleProperty(key));
        const BuildBson& buildField = build;
        EXPECT_EQ(written(document), built([&](bson_t* b) {
                      buildField(b);
                      bson_append_int32(b, "z", -1, 26);
                  }));
        document.root()->clearChilds();
    }
}

TEST(BsonWriter, AGroupAndAnArrayHaveTheirKeyCutAtAZeroByte)
{
    ObjectProperties document;
    document.root()->createSingleGroup(withZero("g", "x"))->setValueInt32("v", 1);
    document.root()->createSingleArray(withZero("a", "x"));

    EXPECT_EQ(written(document), built([](bson_t* b) {
                  appendArray(b, "a", appendNothing);
                  appendGroup(b, "g", [](bson_t* g) { bson_append_int32(g, "v", -1, 1); });
              }));
}

TEST(BsonWriter, ReadsAnIdOfAnyLengthAs24CharactersPaddedWithZeros)
{
    const std::string digits = "0123456789abcdefABCDEF0123456789";
    for (std::size_t length = 0; length <= 30; ++length)
    {
        for (const std::string& text : {digits.substr(0, length), std::string(length, 'g'), std::string(length, '\xff'),
                                        digits.substr(0, length / 2) + std::string(length - length / 2, 'z')})
        {
            ObjectProperties document;
            document.setValueId("k", text);
            std::string padded = text.substr(0, 24);
            padded.resize(24);

            EXPECT_EQ(written(document), built([&](bson_t* b) { appendOid(b, "k", padded.c_str()); })) << text;
        }
    }
}

TEST(BsonWriter, ATextOfAMebibyteAndBytesOfAMebibyteAreWrittenInFull)
{
    ObjectProperties document;
    const std::string text(1U << 20U, 'x');
    const std::vector<unsigned char> bytes(1U << 20U, 7);
    document.setValueString("s", text);
    document.setValueBinary("b", bytes);

    EXPECT_EQ(written(document), built([&](bson_t* b) {
                  bson_append_binary(b, "b", -1, BSON_SUBTYPE_BINARY, bytes.data(),
                                     static_cast<std::uint32_t>(bytes.size()));
                  bson_append_utf8(b, "s", -1, text.data(), static_cast<int>(text.size()));
              }));
}

TEST(BsonWriter, EveryDepthUpToMoreThanServersAcceptIsWritten)
{
    for (int depth = 1; depth <= 130; ++depth)
    {
        ObjectProperties document;
        BuildBson build = [](bson_t* b) { bson_append_int32(b, "v", -1, 1); };
        for (int level = 0; level < depth; ++level)
        {
            document.beginGroup("g");
            const BuildBson inner = build;
            build = [inner](bson_t* b) { appendGroup(b, "g", inner); };
        }
        document.setValueInt32("v", 1);

        EXPECT_EQ(written(document), built(build)) << depth;
    }
}

// A document that has almost reached the driver's greatest size. Its bytes are never touched but at the end.
class AlmostFullBson
{
public:
    explicit AlmostFullBson(std::size_t space)
        : m_memory(mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)),
          m_buffer(static_cast<std::uint8_t*>(m_memory))
    {
        test_support::putInt32(m_buffer, static_cast<std::int32_t>(BSON_MAX_SIZE - space));
        m_bson.reset(bson_new_from_buffer(&m_buffer, &m_length, nullptr, nullptr));
    }

    ~AlmostFullBson()
    {
        m_bson.reset();
        munmap(m_memory, capacity);
    }

    AlmostFullBson(const AlmostFullBson&) = delete;
    AlmostFullBson& operator=(const AlmostFullBson&) = delete;

    bson_t* get() const noexcept { return m_bson.get(); }
    std::uint32_t length() const noexcept { return m_bson.get()->len; }

private:
    static constexpr std::size_t capacity = BSON_MAX_SIZE;

    void* m_memory;
    std::uint8_t* m_buffer;
    std::size_t m_length = capacity;
    BsonPointer m_bson;
};

TEST(BsonWriter, WritesWhatFitsAndReturnsTrueIfADocumentIsTooLarge)
{
    ObjectProperties document;
    document.setValueString("a too long", std::string(1000, 'x'));
    document.setValueInt32("b", 1);
    document.setValueInt32("c group that does not even begin, for its long key/inside", 1);
    document.setValueInt32("d/inside", 1);
    document.beginArray("d/list");
    document.beginGroup("/e");
    // Seven bytes for b, then eight for each of the groups d and e: nothing fits inside them.
    const AlmostFullBson bson(7 + 8 + 8);
    const std::uint32_t before = bson.length();

    EXPECT_TRUE(PropertiesToBson::parse(document.root(), bson.get()));

    EXPECT_EQ(bson.length(), before + 7 + 8 + 8);
}

} // namespace
