// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "conversions.h"
#include "json_to_properties.h"
#include "little_endian.h"
#include "properties_to_json.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

const int depth = many();

// Returns BSON of alternating groups and arrays. Each is a field of eight bytes: type, key, length and final zero byte.
std::vector<std::uint8_t> nestedBytes(int levels)
{
    constexpr int perLevel = 8;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(static_cast<std::size_t>(perLevel) * static_cast<std::size_t>(levels) + 5);
    for (int level = 0; level <= levels; ++level)
    {
        test_support::appendInt32(bytes, (levels - level) * perLevel + 5);
        if (level == levels)
            break;
        const bool isArray = level % 2 == 1;
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(isArray ? BSON_TYPE_ARRAY : BSON_TYPE_DOCUMENT),
                                   static_cast<std::uint8_t>(isArray ? 'a' : 'g'), 0});
    }
    bytes.resize(bytes.size() + static_cast<std::size_t>(levels) + 1);
    return bytes;
}

TEST(DeepConversion, FromBsonAndBackReturnsTheSameBytes)
{
    runOnSmallStack([] {
        const std::vector<std::uint8_t> bytes = nestedBytes(depth);
        const test_support::BorrowedBson bson(bytes);
        ASSERT_TRUE(bson.isValid());

        const ObjectProperties document = readBson(bson.get());

        EXPECT_EQ(document.key(), "");
        EXPECT_EQ(written(document).bytes(), bytes);
    });
}

TEST(DeepConversion, ToJsonEndsWhereTheDriverDoes)
{
    runOnSmallStack([] {
        const ObjectProperties document = readBson(test_support::BorrowedBson(nestedBytes(depth)).get());
        std::string json;

        EXPECT_TRUE(PropertiesToJson::convert(document, json));

        EXPECT_NE(json.find("..."), std::string::npos);
    });
}

TEST(DeepConversion, FromJsonDeeperThanTheDriverReadsIsRefused)
{
    runOnSmallStack([] {
        const auto levels = static_cast<std::size_t>(depth);
        std::string groups;
        for (std::size_t level = 0; level < levels; ++level)
            groups += "{\"g\":";
        groups += "1" + std::string(levels, '}');
        for (const std::string& json : {groups, std::string(levels, '[') + std::string(levels, ']')})
        {
            ObjectProperties document;
            EXPECT_FALSE(JsonToProperties::convert(json, &document));
            EXPECT_TRUE(document.isEmpty());
        }
    });
}

TEST(WideConversion, OfAMillionFieldsGoesBothWays)
{
    OwnedBson bson;
    for (int number = 1000000; number < 2000000; ++number)
        bson_append_int32(bson.get(), std::to_string(number).c_str(), -1, number);

    const ObjectProperties document = readBson(bson.get());

    ASSERT_EQ(document.childCount(), 1000000U);
    EXPECT_EQ(written(document), BsonBytes(bson.get()));
}

TEST(WideConversion, OfAMillionElementsGoesBothWays)
{
    OwnedBson bson;
    appendArray(bson.get(), "list", [](bson_t* list) {
        for (int number = 1000000; number < 2000000; ++number)
            bson_append_int32(list, std::to_string(number).c_str(), -1, number);
    });

    const ObjectProperties document = readBson(bson.get());

    document.beginArray("list");
    ASSERT_EQ(document.childCount(), 1000000U);
    EXPECT_EQ(written(document), BsonBytes(bson.get()));
}

} // namespace
