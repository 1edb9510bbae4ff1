// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "conversions.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <limits>
#include <list>
#include <string>
#include <vector>

namespace {

struct ReaderRow
{
    std::string name;
    BuildBson build;
    std::string expected;
};

std::ostream& operator<<(std::ostream& stream, const ReaderRow& row)
{
    return stream << row.expected;
}

class ReadDocument : public testing::TestWithParam<ReaderRow>
{};

void appendOid(bson_t* bson, const char* key, const char* digits)
{
    bson_oid_t id;
    bson_oid_init_from_string(&id, digits);
    bson_append_oid(bson, key, -1, &id);
}

void appendBinary(bson_t* bson, const char* key, bson_subtype_t subtype, const std::string& bytes)
{
    bson_append_binary(bson, key, -1, subtype, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                       static_cast<std::uint32_t>(bytes.size()));
}

void appendDecimal(bson_t* bson, const char* key)
{
    bson_decimal128_t decimal;
    bson_decimal128_from_string("1.5", &decimal);
    bson_append_decimal128(bson, key, -1, &decimal);
}

void appendDbPointer(bson_t* bson, const char* key)
{
    bson_oid_t id;
    bson_oid_init_from_string(&id, "507f1f77bcf86cd799439011");
    bson_append_dbpointer(bson, key, -1, "collection", &id);
}

void appendCodeWithScope(bson_t* bson, const char* key)
{
    OwnedBson scope;
    bson_append_int32(scope.get(), "inside", -1, 1);
    bson_append_code_with_scope(bson, key, -1, "code", scope.get());
}

// The element in question stands between two others, which must be read whatever becomes of it.
BuildBson between(const BuildBson& build)
{
    return [=](bson_t* bson) {
        bson_append_int32(bson, "a", -1, 1);
        build(bson);
        bson_append_int32(bson, "z", -1, 26);
    };
}

const std::string sixteenBytes("0123456789abcde\0", 16);

// clang-format off
const ReaderRow readerRows[] = {
    {"Double", [](bson_t* b) { bson_append_double(b, "k", -1, 1.5); }, "\"k\":Double=0x1.8p+0,"},
    {"DoubleNegativeZero", [](bson_t* b) { bson_append_double(b, "k", -1, -0.0); }, "\"k\":Double=-0x0p+0,"},
    {"DoubleInfinity", [](bson_t* b) { bson_append_double(b, "k", -1, std::numeric_limits<double>::infinity()); },
     "\"k\":Double=inf,"},
    {"String", [](bson_t* b) { bson_append_utf8(b, "k", -1, "text", -1); }, "\"k\":String=\"text\","},
    {"StringEmpty", [](bson_t* b) { bson_append_utf8(b, "k", -1, "", 0); }, "\"k\":String=\"\","},
    {"StringUtf8", [](bson_t* b) { bson_append_utf8(b, "k", -1, "\xc3\xa9", -1); }, "\"k\":String=\"\\xc3\\xa9\","},
    {"StringNotUtf8", [](bson_t* b) { bson_append_utf8(b, "k", -1, "\xff", 1); }, "\"k\":String=\"\\xff\","},
    {"StringIsCutAtAZeroByte", [](bson_t* b) { bson_append_utf8(b, "k", -1, "ab\0cd", 5); }, "\"k\":String=\"ab\","},
    {"StringOfAZeroByteIsEmpty", [](bson_t* b) { bson_append_utf8(b, "k", -1, "\0", 1); }, "\"k\":String=\"\","},
    {"Document", [](bson_t* b) { appendGroup(b, "k", [](bson_t* k) { bson_append_int32(k, "v", -1, 1); }); },
     "\"k\":Group{\"v\":Int32=1},"},
    {"DocumentEmpty", [](bson_t* b) { appendGroup(b, "k", appendNothing); }, "\"k\":Group,"},
    {"Array", [](bson_t* b) { appendArray(b, "k", [](bson_t* k) {
         bson_append_int32(k, "0", -1, 5);
         bson_append_utf8(k, "1", -1, "s", -1); }); },
     "\"k\":Array{\"0\":Int32=5,\"1\":String=\"s\"},"},
    {"ArrayEmpty", [](bson_t* b) { appendArray(b, "k", appendNothing); }, "\"k\":Array,"},
    {"ArrayOfDocuments", [](bson_t* b) { appendArray(b, "k", [](bson_t* k) {
         appendGroup(k, "0", [](bson_t* e) { bson_append_int32(e, "v", -1, 1); });
         appendGroup(k, "1", [](bson_t* e) { bson_append_int32(e, "v", -1, 2); }); }); },
     "\"k\":Array{\"0\":Group{\"v\":Int32=1},\"1\":Group{\"v\":Int32=2}},"},
    {"ArrayOfArrays", [](bson_t* b) { appendArray(b, "k", [](bson_t* k) {
         appendArray(k, "0", [](bson_t* e) { bson_append_int32(e, "0", -1, 1); });
         appendArray(k, "1", appendNothing); }); },
     "\"k\":Array{\"0\":Array{\"0\":Int32=1},\"1\":Array},"},
    {"ArrayInADocument", [](bson_t* b) { appendGroup(b, "k", [](bson_t* k) { appendArray(k, "y", [](bson_t* y) {
         bson_append_int32(y, "0", -1, 1);
         bson_append_utf8(y, "1", -1, "s", -1); }); }); },
     "\"k\":Group{\"y\":Array{\"0\":Int32=1,\"1\":String=\"s\"}},"},
    {"Binary", [](bson_t* b) { appendBinary(b, "k", BSON_SUBTYPE_BINARY, std::string("\0\x01\xff", 3)); },
     "\"k\":Binary=\"\\x00\\x01\\xff\","},
    {"BinaryEmpty", [](bson_t* b) { appendBinary(b, "k", BSON_SUBTYPE_BINARY, ""); }, "\"k\":Binary=\"\","},
    {"BinaryFunction", [](bson_t* b) { appendBinary(b, "k", BSON_SUBTYPE_FUNCTION, "f"); }, "\"k\":Binary=\"f\","},
    {"BinaryDeprecated", [](bson_t* b) { appendBinary(b, "k", BSON_SUBTYPE_BINARY_DEPRECATED, "old"); },
     "\"k\":Binary=\"old\","},
    {"BinaryUuid", [](bson_t* b) { appendBinary(b, "k", BSON_SUBTYPE_UUID, sixteenBytes); },
     "\"k\":Binary=\"0123456789abcde\\x00\","},
    {"BinaryOfAUser", [](bson_t* b) { appendBinary(b, "k", BSON_SUBTYPE_USER, "u"); }, "\"k\":Binary=\"u\","},
    {"UndefinedIsSkipped", [](bson_t* b) { bson_append_undefined(b, "k", -1); }, ""},
    {"ObjectIdInLowerCase", [](bson_t* b) { appendOid(b, "k", "507F1F77BCF86CD799439011"); },
     "\"k\":Id=\"507f1f77bcf86cd799439011\","},
    {"True", [](bson_t* b) { bson_append_bool(b, "k", -1, true); }, "\"k\":Bool=true,"},
    {"False", [](bson_t* b) { bson_append_bool(b, "k", -1, false); }, "\"k\":Bool=false,"},
    {"DateZero", [](bson_t* b) { bson_append_date_time(b, "k", -1, 0); }, "\"k\":Time=0,"},
    {"DateBeforeTheEpoch", [](bson_t* b) { bson_append_date_time(b, "k", -1, LLONG_MIN); },
     "\"k\":Time=-9223372036854775808,"},
    {"NullIsSkipped", [](bson_t* b) { bson_append_null(b, "k", -1); }, ""},
    {"Regex", [](bson_t* b) { bson_append_regex(b, "k", -1, "^a", "im"); }, "\"k\":Regex=\"^a\"\"im\","},
    {"RegexEmpty", [](bson_t* b) { bson_append_regex(b, "k", -1, "", ""); }, "\"k\":Regex=\"\"\"\","},
    {"DbPointerIsSkipped", [](bson_t* b) { appendDbPointer(b, "k"); }, ""},
    {"CodeIsSkipped", [](bson_t* b) { bson_append_code(b, "k", -1, "code"); }, ""},
    {"SymbolIsAString", [](bson_t* b) { bson_append_symbol(b, "k", -1, "sym", -1); }, "\"k\":String=\"sym\","},
    {"SymbolIsCutAtAZeroByte", [](bson_t* b) { bson_append_symbol(b, "k", -1, "s\0m", 3); }, "\"k\":String=\"s\","},
    {"CodeWithScopeIsSkipped", [](bson_t* b) { appendCodeWithScope(b, "k"); }, ""},
    {"Int32", [](bson_t* b) { bson_append_int32(b, "k", -1, INT_MIN); }, "\"k\":Int32=-2147483648,"},
    {"TimestampIsSkipped", [](bson_t* b) { bson_append_timestamp(b, "k", -1, 1, 2); }, ""},
    {"Int64", [](bson_t* b) { bson_append_int64(b, "k", -1, 5); }, "\"k\":Int64=5,"},
    {"Int64Greatest", [](bson_t* b) { bson_append_int64(b, "k", -1, LLONG_MAX); }, "\"k\":Int64=9223372036854775807,"},
    {"Decimal128IsSkipped", [](bson_t* b) { appendDecimal(b, "k"); }, ""},
    {"MaxKeyIsSkipped", [](bson_t* b) { bson_append_maxkey(b, "k", -1); }, ""},
    {"MinKeyIsSkipped", [](bson_t* b) { bson_append_minkey(b, "k", -1); }, ""},
};
// clang-format on

const BuildBson allSkipped = [](bson_t* b) {
    for (const ReaderRow& row : readerRows)
    {
        if (row.expected.empty())
            row.build(b);
    }
};

TEST_P(ReadDocument, HasTheElementsOfTheBson)
{
    const ObjectProperties document = readBuilt(between(GetParam().build));

    EXPECT_EQ(treeText(document), "Group{\"a\":Int32=1," + GetParam().expected + "\"z\":Int32=26}");
}

TEST_P(ReadDocument, HasTheElementsOfANestedDocument)
{
    const ObjectProperties document = readBuilt([](bson_t* b) { appendGroup(b, "g", between(GetParam().build)); });

    EXPECT_EQ(treeText(document), "Group{\"g\":Group{\"a\":Int32=1," + GetParam().expected + "\"z\":Int32=26}}");
}

TEST_P(ReadDocument, HasTheElementsOfAnArray)
{
    const ObjectProperties document = readBuilt([](bson_t* b) { appendArray(b, "list", between(GetParam().build)); });

    EXPECT_EQ(treeText(document), "Group{\"list\":Array{\"a\":Int32=1," + GetParam().expected + "\"z\":Int32=26}}");
}

INSTANTIATE_TEST_SUITE_P(Types, ReadDocument, testing::ValuesIn(readerRows), RowName());

TEST(BsonReader, AnEmptyBsonLeavesTheTargetUnchanged)
{
    OwnedBson bson;
    ObjectProperties document;
    document.setValueInt32("g/a", 1);
    document.beginGroup("g");

    EXPECT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(treeText(document), "Group{\"g\":Group{\"a\":Int32=1}}");
    EXPECT_EQ(document.group(), "g");
}

TEST(BsonReader, RejectsNullPointers)
{
    OwnedBson bson;
    bson_append_int32(bson.get(), "a", -1, 1);
    ObjectProperties document;

    EXPECT_FALSE(BsonToProperties::convert(nullptr, &document));
    EXPECT_FALSE(BsonToProperties::convert(bson.get(), nullptr));
    EXPECT_FALSE(BsonToProperties::convert(nullptr, nullptr));

    EXPECT_TRUE(document.isEmpty());
}

TEST(BsonReader, RejectsATooShortHeaderAndLeavesTheTargetUnchanged)
{
    bson_t bson = BSON_INITIALIZER;
    ObjectProperties document;
    document.setValueInt32("a", 1);
    document.beginGroup("a");

    for (const std::uint32_t length : {0U, 1U, 4U})
    {
        bson.len = length;
        EXPECT_FALSE(BsonToProperties::convert(&bson, &document)) << length;
    }

    EXPECT_EQ(treeText(document), "Group{\"a\":Int32=1}");
    EXPECT_EQ(document.group(), "a");
}

TEST(BsonReader, OnlySkippedElementsAddNothing)
{
    EXPECT_TRUE(readBuilt(allSkipped).isEmpty());
}

TEST(BsonReader, SkipsNullBesideAnInt32)
{
    const ObjectProperties document = readBuilt([](bson_t* b) {
        bson_append_null(b, "a", -1);
        bson_append_int32(b, "b", -1, 1);
    });

    EXPECT_EQ(document.childKeys(), std::list<std::string>{"b"});
    EXPECT_EQ(document.type("b"), static_cast<int>(Int32));
}

TEST(BsonReader, AddsFieldsAtTheCursorWithoutMovingIt)
{
    ObjectProperties document;
    document.setValueInt32("g/old", 1);
    document.beginGroup("g");
    OwnedBson bson;
    bson_append_int32(bson.get(), "new", -1, 2);
    appendGroup(bson.get(), "h", [](bson_t* h) { appendArray(h, "i", appendNothing); });

    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(treeText(document), "Group{\"g\":Group{\"h\":Group{\"i\":Array},\"new\":Int32=2,\"old\":Int32=1}}");
    EXPECT_EQ(document.group(), "g");
}

TEST(BsonReader, ReplacesAnExistingFieldAndAddsToAnExistingGroup)
{
    ObjectProperties document;
    document.setValueString("v", "old");
    document.setValueInt32("g/old", 1);
    OwnedBson bson;
    bson_append_int32(bson.get(), "v", -1, 2);
    appendGroup(bson.get(), "g", [](bson_t* g) { bson_append_int32(g, "new", -1, 3); });

    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(treeText(document), "Group{\"g\":Group{\"new\":Int32=3,\"old\":Int32=1},\"v\":Int32=2}");
}

TEST(BsonReader, AddsElementsToAnExistingArray)
{
    ObjectProperties document;
    OwnedBson bson;
    appendArray(bson.get(), "list", [](bson_t* list) { bson_append_int32(list, "0", -1, 1); });

    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &document));
    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(treeText(document), "Group{\"list\":Array{\"0\":Int32=1,\"0\":Int32=1}}");
}

TEST(BsonReader, AddsEveryFieldToAnArrayAsANewElement)
{
    ObjectProperties document;
    document.beginArray("list");
    OwnedBson bson;
    bson_append_int32(bson.get(), "e", -1, 1);
    appendGroup(bson.get(), "e", [](bson_t* e) { bson_append_int32(e, "v", -1, 2); });

    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(treeText(document), "Group{\"list\":Array{\"e\":Int32=1,\"e\":Group{\"v\":Int32=2}}}");
    EXPECT_EQ(document.group(), "list");
}

TEST(BsonReader, ARepeatedKeyKeepsTheLastValue)
{
    const ObjectProperties document = readBuilt([](bson_t* b) {
        bson_append_int32(b, "k", -1, 1);
        bson_append_utf8(b, "k", -1, "last", -1);
    });

    EXPECT_EQ(treeText(document), "Group{\"k\":String=\"last\"}");
}

TEST(BsonReader, ASlashInAKeyIsAPath)
{
    const ObjectProperties document = readBuilt([](bson_t* b) {
        bson_append_int32(b, "a/b", -1, 1);
        appendGroup(b, "g", [](bson_t* g) {
            bson_append_int32(g, "/top", -1, 2);
            appendGroup(g, "c/d", [](bson_t* d) { bson_append_int32(d, "v", -1, 3); });
        });
    });

    EXPECT_EQ(document.valueAsInt32("/a/b", 0), 1);
    EXPECT_EQ(document.valueAsInt32("/top", 0), 2);
    EXPECT_EQ(document.valueAsInt32("/g/c/d/v", 0), 3);
}

TEST(BsonReader, AGroupWithTheEmptyKeyIsTheRoot)
{
    const ObjectProperties document = readBuilt([](bson_t* b) {
        appendGroup(b, "g",
                    [](bson_t* g) { appendGroup(g, "", [](bson_t* root) { bson_append_int32(root, "v", -1, 1); }); });
    });

    EXPECT_EQ(treeText(document), "Group{\"g\":Group,\"v\":Int32=1}");
}

TEST(BsonReader, AValueWithTheEmptyKeyIsTheValueOfTheRoot)
{
    const ObjectProperties document = readBuilt([](bson_t* b) {
        bson_append_int32(b, "lost", -1, 1);
        appendGroup(b, "g", [](bson_t* g) { bson_append_int32(g, "", -1, 5); });
    });

    EXPECT_EQ(treeText(document), "Int32=5");
}

TEST(BsonReader, AnArrayUnderTheKeyOfAValueLeavesTheValue)
{
    ObjectProperties document;
    document.setValueInt32("v", 1);
    OwnedBson bson;
    appendArray(bson.get(), "v", [](bson_t* list) { bson_append_int32(list, "0", -1, 2); });

    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &document));

    EXPECT_EQ(document.valueAsInt32("v", 0), 1);
    EXPECT_EQ(document.group(), "");
}

TEST(BsonReader, ParseReadsFromTheCurrentElementOfTheIterator)
{
    OwnedBson bson;
    bson_append_int32(bson.get(), "a", -1, 1);
    bson_append_int32(bson.get(), "b", -1, 2);
    bson_append_int32(bson.get(), "c", -1, 3);
    bson_iter_t iter;
    ASSERT_TRUE(bson_iter_init_find(&iter, bson.get(), "a"));
    ObjectProperties document;

    EXPECT_TRUE(BsonToProperties::parse(iter, &document));

    EXPECT_EQ(treeText(document), "Group{\"b\":Int32=2,\"c\":Int32=3}");
    EXPECT_FALSE(bson_iter_next(&iter));
}

TEST(BsonReader, DrivesADocumentThroughItsVirtualOperations)
{
    class Recorder : public ObjectProperties
    {
    public:
        using ObjectProperties::beginGroup;
        using ObjectProperties::setValueInt32;
        using ObjectProperties::operator=;
        void beginGroup(const std::string& key) override { note("begin " + key); }
        void endGroup() const override { note("end"); }
        void beginArray(const std::string& key) const override { note("array " + key); }
        void endArray() const override { note("end array"); }
        void setValueInt32(const std::string& key, const int& value) override
        {
            note(key + "=" + std::to_string(value));
        }
        void note(const std::string& call) const { calls.push_back(call); }
        mutable std::list<std::string> calls;
    };
    OwnedBson bson;
    bson_append_int32(bson.get(), "a", -1, 1);
    appendGroup(bson.get(), "g",
                [](bson_t* g) { appendArray(g, "l", [](bson_t* l) { bson_append_int32(l, "0", -1, 2); }); });
    Recorder recorder;

    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &recorder));

    EXPECT_EQ(recorder.calls, (std::list<std::string>{"a=1", "begin g", "array l", "0=2", "end array", "end"}));
}

} // namespace
