// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "conversions.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

ObjectProperties roundTrip(const ObjectProperties& document)
{
    OwnedBson bson;
    EXPECT_TRUE(PropertiesToBson::convert(document, bson.get()));
    return readBson(bson.get());
}

void addField(ObjectProperties& document, std::mt19937& numbers, const std::string& key)
{
    const auto number = static_cast<int>(numbers() % 1000);
    switch (numbers() % 9)
    {
    case 0:
        return document.setValueString(key, std::string(numbers() % 40, 'x'));
    case 1:
        return document.setValueBool(key, number % 2 == 0);
    case 2:
        return document.setValueInt32(key, -number);
    case 3:
        return document.setValueInt64(key, number * 10000000000L);
    case 4:
        return document.setValueDouble(key, number / 7.0);
    case 5:
        return document.setValueTime(key, number * 1000000000LL);
    case 6:
        return document.setValueId(key, "507f1f77bcf86cd799439011");
    case 7:
        return document.setValueBinary(key, std::vector<unsigned char>(1 + numbers() % 30, 7));
    default:
        return document.setValueRegex(key, "^a" + std::to_string(number), "i");
    }
}

void fill(ObjectProperties& document, std::mt19937& numbers, int depth)
{
    for (unsigned count = static_cast<unsigned>(numbers() % 8); count > 0; --count)
    {
        const std::string key = std::to_string(numbers() % 100);
        switch (depth > 0 ? numbers() % 4 : 2)
        {
        case 0:
            document.beginGroup("g" + key);
            fill(document, numbers, depth - 1);
            document.endGroup();
            break;
        case 1:
            document.beginArray("a" + key);
            fill(document, numbers, depth - 1);
            document.endArray();
            break;
        default:
            addField(document, numbers, "v" + key);
        }
    }
}

TEST(BsonRoundTrip, ADocumentComesBackUnchanged)
{
    for (unsigned seed = 1; seed <= 300; ++seed)
    {
        std::mt19937 numbers(seed);
        ObjectProperties document;
        fill(document, numbers, 5);

        const ObjectProperties copy = roundTrip(document);

        ASSERT_EQ(treeText(copy), treeText(document)) << "seed " << seed;
        ASSERT_EQ(written(copy), written(document)) << "seed " << seed;
    }
}

TEST(BsonRoundTrip, IntegersKeepTheirWidthAndTimesTheirMilliseconds)
{
    ObjectProperties document;
    document.setValueInt32("i", 5);
    document.setValueInt64("l", 5);
    document.setValueTime("t", 5LL);

    EXPECT_EQ(treeText(roundTrip(document)), "Group{\"i\":Int32=5,\"l\":Int64=5,\"t\":Time=5}");
}

TEST(BsonRoundTrip, AnUndefinedFieldIsWrittenAndNotReadBack)
{
    ObjectProperties document;
    document.valueAsInt32("u", 0);
    document.setValueInt32("v", 1);

    EXPECT_EQ(treeText(roundTrip(document)), "Group{\"v\":Int32=1}");
}

TEST(BsonRoundTrip, ABinaryWithoutBytesIsLost)
{
    ObjectProperties document;
    document.setValueBinary("b", {});

    EXPECT_TRUE(roundTrip(document).isEmpty());
}

TEST(BsonRoundTrip, AShortIdComesBackAs24Digits)
{
    ObjectProperties document;
    document.setValueId("i", "12ab");

    EXPECT_EQ(treeText(roundTrip(document)), "Group{\"i\":Id=\"12ab00000000000000000000\"}");
}

TEST(BsonRoundTrip, AnArrayOfElevenElementsComesBackInTheOrderOfItsKeysAsText)
{
    const BuildBson build = [](bson_t* b) {
        appendArray(b, "list", [](bson_t* list) {
            for (int index = 0; index <= 10; ++index)
                bson_append_int32(list, std::to_string(index).c_str(), -1, index);
        });
    };

    EXPECT_EQ(written(readBuilt(build)), built([](bson_t* b) {
                  appendArray(b, "list", [](bson_t* list) {
                      for (const int index : {0, 1, 10, 2, 3, 4, 5, 6, 7, 8, 9})
                          bson_append_int32(list, std::to_string(index).c_str(), -1, index);
                  });
              }));
}

TEST(BsonRoundTrip, ASymbolIsWrittenBackAsAString)
{
    const BuildBson build = [](bson_t* b) { bson_append_symbol(b, "s", -1, "sym", -1); };

    EXPECT_EQ(written(readBuilt(build)), built([](bson_t* b) { bson_append_utf8(b, "s", -1, "sym", -1); }));
}

TEST(BsonRoundTrip, AUuidIsWrittenBackWithSubtypeZero)
{
    const std::uint8_t bytes[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const BuildBson build = [&](bson_t* b) { bson_append_binary(b, "u", -1, BSON_SUBTYPE_UUID, bytes, 16); };

    EXPECT_EQ(written(readBuilt(build)),
              built([&](bson_t* b) { bson_append_binary(b, "u", -1, BSON_SUBTYPE_BINARY, bytes, 16); }));
}

TEST(BsonRoundTrip, ElementsWithOneKeyComeBackInTheirOrder)
{
    ObjectProperties document;
    document.beginArray("list");
    for (const int value : {3, 1, 2})
    {
        document.beginGroup("e");
        document.setValueInt32("v", value);
        document.endGroup();
    }

    EXPECT_EQ(treeText(roundTrip(document)), treeText(document));
}

} // namespace
