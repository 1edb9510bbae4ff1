// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "bson_rewrite.h"
#include "row_name.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

namespace test_support {
namespace {

// The documents are built byte by byte, because no driver writes array keys out of order.

std::string length(std::size_t size)
{
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(size >> shift);
    return bytes;
}

std::string element(char type, const std::string& key, const std::string& value)
{
    return type + key + '\0' + value;
}

std::string document(const std::string& elements)
{
    return length(elements.size() + 5) + elements + '\0';
}

std::string number(const std::string& key, std::size_t value)
{
    return element('\x10', key, length(value));
}

std::string undefined(const std::string& key)
{
    return element('\x06', key, "");
}

std::string array(const std::string& key, const std::string& elements)
{
    return element('\x04', key, document(elements));
}

std::string group(const std::string& key, const std::string& elements)
{
    return element('\x03', key, document(elements));
}

/// Returns the document that a server receives: the rewritten one, or the original if it needs no change.
std::string forwarded(const std::string& original, BsonRewrite rewrite = BsonRewrite::Arrays)
{
    const auto result = rewriteBson(reinterpret_cast<const std::uint8_t*>(original.data()), original.size(), rewrite);
    return result ? std::string(result->begin(), result->end()) : original;
}

bool needsRewriting(const std::string& original, BsonRewrite rewrite = BsonRewrite::Arrays)
{
    const auto* data = reinterpret_cast<const std::uint8_t*>(original.data());
    return rewriteBson(data, original.size(), rewrite).has_value();
}

struct Row
{
    std::string name;
    std::string before;
    std::string after;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

class BsonRewriteOf : public testing::TestWithParam<Row>
{};

TEST_P(BsonRewriteOf, ReturnsADocumentThatTheServerAccepts)
{
    EXPECT_EQ(forwarded(GetParam().before), GetParam().after);
}

std::string elevenNumbers(bool sortedAsText)
{
    const std::vector<std::string> asText{"0", "1", "10", "2", "3", "4", "5", "6", "7", "8", "9"};
    std::string elements;
    for (std::size_t place = 0; place < asText.size(); ++place)
        elements += number(sortedAsText ? asText[place] : std::to_string(place), place);
    return elements;
}

INSTANTIATE_TEST_SUITE_P(
    Documents, BsonRewriteOf,
    testing::Values(
        Row{"ArrayKeysSortedAsText", document(array("a", elevenNumbers(true))),
            document(array("a", elevenNumbers(false)))},
        Row{"ArrayKeysThatAreNoNumbers", document(array("a", number("", 1) + number("name", 2) + number("name", 3))),
            document(array("a", number("0", 1) + number("1", 2) + number("2", 3)))},
        Row{"UndefinedInADocument", document(number("a", 1) + undefined("u") + number("b", 2)),
            document(number("a", 1) + number("b", 2))},
        Row{"UndefinedAlone", document(undefined("u")), document("")},
        Row{"UndefinedInAnArray", document(array("a", number("0", 7) + undefined("1") + number("2", 8))),
            document(array("a", number("0", 7) + number("1", 8)))},
        Row{"ArrayInAnArray", document(array("a", array("5", number("9", 1)) + group("3", number("k", 2)))),
            document(array("a", array("0", number("0", 1)) + group("1", number("k", 2))))},
        Row{"ArrayInAGroupAfterOtherValues",
            document(element('\x02', "t", length(2) + std::string("x\0", 2)) +
                     group("g", group("h", array("a", number("1", 1))) + number("z", 3)) + number("end", 4)),
            document(element('\x02', "t", length(2) + std::string("x\0", 2)) +
                     group("g", group("h", array("a", number("0", 1))) + number("z", 3)) + number("end", 4))},
        Row{"KeysOfGroupsThatLookLikeNumbers", document(group("g", number("1", 1) + number("0", 2)) + undefined("u")),
            document(group("g", number("1", 1) + number("0", 2)))}),
    RowName());

TEST(BsonRewrite, LeavesValuesOfEveryOtherTypeUnchanged)
{
    const std::string eight(8, '\x01');
    const std::string values =
        element('\x01', "double", eight) + element('\x02', "text", length(3) + std::string("ab\0", 3)) +
        group("group", "") + array("array", "") + element('\x05', "binary", length(2) + std::string("\0\4\5", 3)) +
        element('\x07', "id", std::string(12, '\x04')) + element('\x08', "bool", "\x01") +
        element('\x09', "time", eight) + element('\x0A', "null", "") +
        element('\x0B', "regex", std::string("a\0i\0", 4)) +
        element('\x0C', "pointer", length(2) + std::string("c\0", 2) + std::string(12, '\x05')) +
        element('\x0D', "code", length(2) + std::string("c\0", 2)) +
        element('\x0E', "symbol", length(2) + std::string("s\0", 2)) +
        element('\x0F', "scope", length(15) + length(2) + std::string("c\0", 2) + document("")) + number("int32", 1) +
        element('\x11', "timestamp", eight) + element('\x12', "int64", eight) +
        element('\x13', "decimal", std::string(16, '\x06')) + element('\x7F', "max", "") + element('\xFF', "min", "");

    EXPECT_FALSE(needsRewriting(document(values)));
    EXPECT_EQ(forwarded(document(undefined("first") + values + undefined("last"))), document(values));
}

TEST(BsonRewrite, LeavesADocumentWithoutArraysOrUndefinedUntouched)
{
    EXPECT_FALSE(needsRewriting(document("")));
    EXPECT_FALSE(needsRewriting(document(array("a", elevenNumbers(false)))));
}

TEST(BsonRewrite, EmptiesRolesAndCustomDataOfUserCommandsAtTheTopOnly)
{
    const std::string inner = group("other", array("roles", number("0", 1)) + group("customData", number("k", 1)));
    const std::string command = document(number("createUser", 1) + group("customData", number("k", 1)) +
                                         array("roles", number("0", 1) + undefined("1")) + inner);

    EXPECT_EQ(forwarded(command, BsonRewrite::ArraysAndUserData),
              document(number("createUser", 1) + group("customData", "") + array("roles", "") + inner));
    EXPECT_EQ(forwarded(document(array("roles", "")), BsonRewrite::ArraysAndUserData), document(array("roles", "")));
}

TEST(BsonRewrite, OfUserDataAloneLeavesArraysAndUndefinedUntouched)
{
    const std::string rest = array("a", number("7", 1)) + undefined("u");

    EXPECT_EQ(forwarded(document(array("roles", number("0", 1)) + rest), BsonRewrite::UserData),
              document(array("roles", "") + rest));
    EXPECT_FALSE(needsRewriting(document(rest), BsonRewrite::UserData));
}

TEST(BsonRewrite, LeavesBytesThatAreNotADocumentUnchanged)
{
    const std::string good = document(undefined("u") + array("a", number("1", 1)));
    ASSERT_TRUE(needsRewriting(good));
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(needsRewriting(good.substr(0, size))) << size << " bytes";
    EXPECT_FALSE(needsRewriting(good + '\0')) << "a byte too many";
    EXPECT_FALSE(needsRewriting(document(undefined("u") + element('\x20', "kind", "")))) << "a kind that is none";
    EXPECT_FALSE(needsRewriting(document(undefined("u") + element('\x04', "a", length(100))))) << "a length too long";
    EXPECT_FALSE(needsRewriting(document(undefined("u") + element('\x02', "t", length(0xFFFFFFFF)))));
    EXPECT_FALSE(needsRewriting(document(undefined("u") + element('\x0B', "r", "a")))) << "a text without an end";
}

TEST(BsonRewrite, RewritesAtADepthThatWouldEndARecursion)
{
    constexpr std::size_t depth = 400'000;
    // Built from the innermost level outwards: the headers in reverse order, then the final zero bytes.
    const auto nested = [&](char key) {
        std::string beginnings;
        const std::string innermost = document(number(std::string(1, key), 1));
        beginnings.reserve(depth * 7);
        for (std::size_t level = depth; level > 0; --level)
        {
            const std::size_t inside = innermost.size() + (level - 1) * 8;
            beginnings += length(inside + 8) + "\x04" + '0' + '\0';
        }
        return beginnings + innermost + std::string(depth, '\0');
    };

    EXPECT_TRUE(forwarded(nested('9')) == nested('0'));
}

} // namespace
} // namespace test_support
