// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/loss_guard.h"

#include "bson_handles.h"
#include "bson_to_properties.h"
#include "driver.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using dbc::findLosses;
using dbc::Loss;

std::string textOf(const std::vector<dbc::LossAt>& losses)
{
    std::string text;
    for (const auto& loss : losses)
        text += loss.path + ": " + nameOf(loss.loss) + "\n";
    return text;
}

bool comesBackAsItWas(bson_t* bson)
{
    ObjectProperties document;
    OwnedBson back;
    return BsonToProperties::convert(bson, &document) && PropertiesToBson::convert(document, back.get()) &&
           bson_equal(bson, back.get());
}

struct Row
{
    const char* name;
    void (*append)(bson_t*);
    const char* expected; // empty where the field comes back as it was
};

class EveryType : public testing::TestWithParam<Row>
{};

TEST_P(EveryType, IsReportedAsALossIfAndOnlyIfItDoesNotComeBack)
{
    OwnedBson bson;
    GetParam().append(bson.get());
    EXPECT_EQ(textOf(findLosses(*bson.get())), GetParam().expected);
    EXPECT_EQ(comesBackAsItWas(bson.get()), std::string(GetParam().expected).empty());
}

void appendDecimal(bson_t* bson)
{
    bson_decimal128_t value;
    bson_decimal128_from_string("1.5", &value);
    BSON_APPEND_DECIMAL128(bson, "f", &value);
}

void appendOid(bson_t* bson)
{
    bson_oid_t id;
    bson_oid_init_from_string(&id, "507f1f77bcf86cd799439011");
    BSON_APPEND_OID(bson, "f", &id);
}

void appendDbPointer(bson_t* bson)
{
    bson_oid_t id;
    bson_oid_init_from_string(&id, "507f1f77bcf86cd799439011");
    BSON_APPEND_DBPOINTER(bson, "f", "a.b", &id);
}

void appendScope(bson_t* bson)
{
    OwnedBson scope;
    BSON_APPEND_INT32(scope.get(), "x", 1);
    BSON_APPEND_CODE_WITH_SCOPE(bson, "f", "x", scope.get());
}

void appendArray(bson_t* bson, int count)
{
    bson_t child;
    beginArray(bson, "f", -1, &child);
    for (int number = 0; number < count; ++number)
        BSON_APPEND_INT32(&child, std::to_string(number).c_str(), number);
    bson_append_array_end(bson, &child);
}

void appendGroup(bson_t* bson)
{
    bson_t child;
    BSON_APPEND_DOCUMENT_BEGIN(bson, "f", &child);
    BSON_APPEND_NULL(&child, "n");
    bson_append_document_end(bson, &child);
}

const std::uint8_t twoBytes[] = {1, 2};

INSTANTIATE_TEST_SUITE_P(
    Types, EveryType,
    testing::Values(
        Row{"Double", [](bson_t* bson) { BSON_APPEND_DOUBLE(bson, "f", 0.5); }, ""},
        Row{"String", [](bson_t* bson) { BSON_APPEND_UTF8(bson, "f", "x"); }, ""},
        Row{"StringWithZero", [](bson_t* bson) { bson_append_utf8(bson, "f", -1, "a\0b", 3); },
            "f: string is cut at its zero byte\n"},
        Row{"Document", [](bson_t* bson) { appendGroup(bson); }, "f.n: null is dropped\n"},
        Row{"Array", [](bson_t* bson) { appendArray(bson, 10); }, ""},
        Row{"LongArray", [](bson_t* bson) { appendArray(bson, 11); },
            "f: array of more than ten elements changes its order\n"},
        Row{"Binary", [](bson_t* bson) { BSON_APPEND_BINARY(bson, "f", BSON_SUBTYPE_BINARY, twoBytes, 2); }, ""},
        Row{"Uuid", [](bson_t* bson) { BSON_APPEND_BINARY(bson, "f", BSON_SUBTYPE_UUID, twoBytes, 2); },
            "f: binary loses its subtype\n"},
        Row{"EmptyBinary", [](bson_t* bson) { BSON_APPEND_BINARY(bson, "f", BSON_SUBTYPE_BINARY, twoBytes, 0); },
            "f: binary without bytes is dropped\n"},
        Row{"Undefined", [](bson_t* bson) { BSON_APPEND_UNDEFINED(bson, "f"); }, "f: undefined is dropped\n"},
        Row{"ObjectId", [](bson_t* bson) { appendOid(bson); }, ""},
        Row{"Bool", [](bson_t* bson) { BSON_APPEND_BOOL(bson, "f", true); }, ""},
        Row{"DateTime", [](bson_t* bson) { BSON_APPEND_DATE_TIME(bson, "f", -1); }, ""},
        Row{"Null", [](bson_t* bson) { BSON_APPEND_NULL(bson, "f"); }, "f: null is dropped\n"},
        Row{"Regex", [](bson_t* bson) { BSON_APPEND_REGEX(bson, "f", "^a", "i"); }, ""},
        Row{"DbPointer", [](bson_t* bson) { appendDbPointer(bson); }, "f: DBPointer is dropped\n"},
        Row{"Code", [](bson_t* bson) { BSON_APPEND_CODE(bson, "f", "x"); }, "f: code is dropped\n"},
        Row{"Symbol", [](bson_t* bson) { BSON_APPEND_SYMBOL(bson, "f", "x"); }, "f: symbol becomes a string\n"},
        Row{"SymbolWithZero", [](bson_t* bson) { bson_append_symbol(bson, "f", -1, "a\0b", 3); },
            "f: symbol becomes a string\nf: string is cut at its zero byte\n"},
        Row{"SymbolThatEndsInZero", [](bson_t* bson) { bson_append_symbol(bson, "f", -1, "a\0", 2); },
            "f: symbol becomes a string\nf: string is cut at its zero byte\n"},
        Row{"CodeWithScope", [](bson_t* bson) { appendScope(bson); }, "f: code with scope is dropped\n"},
        Row{"Int32", [](bson_t* bson) { BSON_APPEND_INT32(bson, "f", 1); }, ""},
        Row{"Timestamp", [](bson_t* bson) { BSON_APPEND_TIMESTAMP(bson, "f", 1, 2); }, "f: timestamp is dropped\n"},
        Row{"Int64", [](bson_t* bson) { BSON_APPEND_INT64(bson, "f", 1); }, ""},
        Row{"Decimal128", [](bson_t* bson) { appendDecimal(bson); }, "f: decimal128 is dropped\n"},
        Row{"MinKey", [](bson_t* bson) { BSON_APPEND_MINKEY(bson, "f"); }, "f: min key is dropped\n"},
        Row{"MaxKey", [](bson_t* bson) { BSON_APPEND_MAXKEY(bson, "f"); }, "f: max key is dropped\n"},
        Row{"EmptyKey", [](bson_t* bson) { BSON_APPEND_INT32(bson, "", 1); },
            ": empty key is read as the whole document\n"},
        Row{"KeyWithSlash", [](bson_t* bson) { BSON_APPEND_INT32(bson, "a/b", 1); },
            "a/b: key with \"/\" is read as a path\n"},
        Row{"DuplicateKey",
            [](bson_t* bson) {
                BSON_APPEND_INT32(bson, "f", 1);
                BSON_APPEND_INT32(bson, "f", 2);
            },
            "f: duplicate key\n"}),
    RowName());

TEST(LossGuard, JoinsThePathOfANestedField)
{
    OwnedBson bson;
    bson_t outer;
    bson_t inner;
    BSON_APPEND_DOCUMENT_BEGIN(bson.get(), "a", &outer);
    beginArray(&outer, "b", -1, &inner);
    BSON_APPEND_NULL(&inner, "0");
    BSON_APPEND_INT32(&inner, "1", 1);
    bson_append_array_end(&outer, &inner);
    bson_append_document_end(bson.get(), &outer);
    EXPECT_EQ(textOf(findLosses(*bson.get())), "a.b.0: null is dropped\n");
}

TEST(LossGuard, ReportsMalformedBson)
{
    OwnedBson bson;
    BSON_APPEND_INT32(bson.get(), "a", 1);
    BSON_APPEND_UTF8(bson.get(), "b", "text");
    std::vector<std::uint8_t> bytes(bson_get_data(bson.get()), bson_get_data(bson.get()) + bson.get()->len);
    bytes[15] = 0xff; // the length of the text
    bson_t corrupt;
    ASSERT_TRUE(bson_init_static(&corrupt, bytes.data(), bytes.size()));
    EXPECT_EQ(textOf(findLosses(corrupt)), ": bytes are not valid BSON\n");
}

TEST(LossGuard, ReportsADocumentWithoutBytesAsMalformed)
{
    const bson_t nothing = {};
    EXPECT_EQ(textOf(findLosses(nothing)), ": bytes are not valid BSON\n");
}

TEST(LossGuard, SurvivesAnyDepth)
{
    constexpr std::uint32_t depth = 100000;
    // {"a": {"a": ... {"a": null}}}, written from the inside out: every level adds 8 bytes.
    std::vector<std::uint8_t> bytes;
    const auto appendLength = [&bytes](std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    };
    for (std::uint32_t level = depth; level > 0; --level)
    {
        appendLength(level * 8 + 8);
        bytes.insert(bytes.end(), {0x03, 'a', 0});
    }
    appendLength(8);
    bytes.insert(bytes.end(), {0x0a, 'a', 0, 0});
    bytes.insert(bytes.end(), depth, 0);
    bson_t deep;
    ASSERT_TRUE(bson_init_static(&deep, bytes.data(), bytes.size()));
    const auto losses = findLosses(deep);
    ASSERT_EQ(losses.size(), 1U);
    EXPECT_EQ(losses[0].loss, Loss::Null);
    EXPECT_EQ(losses[0].path.size(), 2 * depth + 1);
}

} // namespace
