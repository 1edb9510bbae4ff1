// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/access.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <vector>

namespace {

using dbc::get;
using dbc::getOr;

ObjectProperties sample()
{
    ObjectProperties document;
    document.setValueString("text", "t");
    document.setValueBool("flag", true);
    document.setValueInt("small", 7);
    document.setValueLongLong("large", 1LL << 40);
    document.setValueDouble("real", 0.5);
    document.setValueTime("time", 1500000000123LL);
    document.setValueId("id", "507f1f77bcf86cd799439011");
    document.setValueBinary("bytes", {1, 2});
    document.setValueRegex("regex", "^a", "i");
    document.setValueInt("group/inner", 1);
    return document;
}

TEST(Get, ReadsEveryType)
{
    const ObjectProperties document = sample();
    EXPECT_EQ(get<std::string>(document, "text"), "t");
    EXPECT_EQ(get<bool>(document, "flag"), true);
    EXPECT_EQ(get<int>(document, "small"), 7);
    EXPECT_EQ(get<long>(document, "large"), 1L << 40);
    EXPECT_EQ(get<long long>(document, "large"), 1LL << 40);
    EXPECT_EQ(get<double>(document, "real"), 0.5);
    EXPECT_EQ(get<dbc::Time>(document, "time"), dbc::timeFromMilliseconds(1500000000123LL));
    EXPECT_EQ(get<dbc::ObjectId>(document, "id"), dbc::ObjectId{"507f1f77bcf86cd799439011"});
    EXPECT_EQ(get<dbc::Bytes>(document, "bytes"), (dbc::Bytes{1, 2}));
    EXPECT_EQ(get<dbc::RegularExpression>(document, "regex"), (dbc::RegularExpression{"^a", "i"}));
    EXPECT_EQ(get<int>(document, "group/inner"), 1);
}

TEST(Get, ReturnsNothingForAnotherType)
{
    const ObjectProperties document = sample();
    EXPECT_FALSE(get<std::string>(document, "id"));
    EXPECT_FALSE(get<long>(document, "time"));
    EXPECT_FALSE(get<int>(document, "group"));
    EXPECT_FALSE(get<dbc::RegularExpression>(document, "text"));
}

TEST(Get, ConvertsNumbersWhereTheResultIsExact)
{
    ObjectProperties document;
    document.setValueInt32("small", 7);
    document.setValueInt64("wide", 7);
    document.setValueDouble("real", 7.0);
    for (const std::string key : {"small", "wide", "real"})
    {
        EXPECT_EQ(get<int>(document, key), 7) << key;
        EXPECT_EQ(get<long>(document, key), 7L) << key;
        EXPECT_EQ(get<long long>(document, key), 7LL) << key;
        EXPECT_EQ(get<double>(document, key), 7.0) << key;
        EXPECT_EQ(get<float>(document, key), 7.0F) << key;
        EXPECT_EQ(get<unsigned>(document, key), 7U) << key;
        EXPECT_EQ(get<unsigned long>(document, key), 7UL) << key;
        EXPECT_EQ(get<short>(document, key), 7) << key;
        EXPECT_EQ(get<unsigned char>(document, key), 7) << key;
        EXPECT_EQ(getOr(document, key, 0), 7) << key;
        EXPECT_EQ(getOr(document, key, 0.5), 7.0) << key;
    }
}

TEST(Get, ReturnsNothingForANumberThatTheTypeCannotHold)
{
    ObjectProperties document;
    document.setValueInt64("wide", 1L << 40);
    document.setValueInt64("odd", (1L << 53) + 1);
    document.setValueInt32("negative", -1);
    document.setValueDouble("half", 1.5);
    EXPECT_FALSE(get<int>(document, "wide"));
    EXPECT_EQ(get<double>(document, "wide"), 1099511627776.0);
    EXPECT_FALSE(get<double>(document, "odd"));
    EXPECT_FALSE(get<unsigned>(document, "negative"));
    EXPECT_FALSE(get<unsigned long>(document, "negative"));
    EXPECT_FALSE(get<int>(document, "half"));
    EXPECT_FALSE(get<long>(document, "half"));
    EXPECT_EQ(getOr(document, "wide", 3), 3);
}

TEST(ExactNumber, KeepsIntegersInTheRangeOfTheType)
{
    using dbc::exactNumber;
    constexpr long longMax = std::numeric_limits<long>::max();
    constexpr long longMin = std::numeric_limits<long>::min();
    EXPECT_EQ(exactNumber<int>(2147483647L), 2147483647);
    EXPECT_FALSE(exactNumber<int>(2147483648L));
    EXPECT_EQ(exactNumber<int>(-2147483648L), std::numeric_limits<int>::min());
    EXPECT_FALSE(exactNumber<int>(-2147483649L));
    EXPECT_EQ(exactNumber<unsigned>(4294967295L), 4294967295U);
    EXPECT_FALSE(exactNumber<unsigned>(4294967296L));
    EXPECT_FALSE(exactNumber<unsigned long>(-1));
    EXPECT_FALSE(exactNumber<unsigned long>(longMin));
    EXPECT_EQ(exactNumber<long>(9223372036854775807UL), longMax);
    EXPECT_FALSE(exactNumber<long>(9223372036854775808UL));
    EXPECT_EQ(exactNumber<signed char>(-128), -128);
    EXPECT_FALSE(exactNumber<signed char>(128));
    EXPECT_EQ(exactNumber<unsigned char>(255), 255);
    EXPECT_FALSE(exactNumber<unsigned char>(-1));
}

TEST(ExactNumber, TurnsIntegersIntoRealNumbersThatEqualThem)
{
    using dbc::exactNumber;
    constexpr long longMax = std::numeric_limits<long>::max();
    constexpr long longMin = std::numeric_limits<long>::min();
    EXPECT_EQ(exactNumber<double>(1L << 53), 9007199254740992.0);
    EXPECT_FALSE(exactNumber<double>((1L << 53) + 1));
    EXPECT_EQ(exactNumber<double>((1L << 53) + 2), 9007199254740994.0);
    EXPECT_FALSE(exactNumber<double>(longMax)) << "2^63 - 1 would become 2^63";
    EXPECT_EQ(exactNumber<double>(longMin), -9223372036854775808.0);
    EXPECT_EQ(exactNumber<float>(1 << 24), 16777216.0F);
    EXPECT_FALSE(exactNumber<float>((1 << 24) + 1));
    EXPECT_FALSE(exactNumber<float>(std::numeric_limits<int>::max()));
}

TEST(ExactNumber, TurnsWholeRealNumbersIntoIntegers)
{
    using dbc::exactNumber;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double two63 = 9223372036854775808.0;
    EXPECT_EQ(exactNumber<int>(-0.0), 0);
    EXPECT_EQ(exactNumber<unsigned>(-0.0), 0U);
    EXPECT_FALSE(exactNumber<int>(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(exactNumber<long>(infinity));
    EXPECT_FALSE(exactNumber<long>(-infinity));
    EXPECT_FALSE(exactNumber<int>(0.5));
    EXPECT_FALSE(exactNumber<unsigned>(-0.5));
    EXPECT_EQ(exactNumber<int>(2147483647.0), 2147483647);
    EXPECT_FALSE(exactNumber<int>(2147483648.0));
    EXPECT_FALSE(exactNumber<int>(2147483647.5));
    EXPECT_EQ(exactNumber<int>(-2147483648.0), std::numeric_limits<int>::min());
    EXPECT_FALSE(exactNumber<int>(-2147483648.5));
    EXPECT_FALSE(exactNumber<long>(two63));
    EXPECT_EQ(exactNumber<long>(-two63), std::numeric_limits<long>::min());
    EXPECT_EQ(exactNumber<long>(9223372036854774784.0), 9223372036854774784L);
    EXPECT_EQ(exactNumber<unsigned long>(two63), 9223372036854775808UL);
    EXPECT_FALSE(exactNumber<unsigned long>(two63 * 2));
    EXPECT_FALSE(exactNumber<unsigned long>(-1.0));
}

TEST(ExactNumber, NarrowsRealNumbersThatStayEqual)
{
    using dbc::exactNumber;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(exactNumber<float>(0.5), 0.5F);
    EXPECT_FALSE(exactNumber<float>(0.1));
    EXPECT_FALSE(exactNumber<float>(1e300));
    EXPECT_FALSE(exactNumber<float>(-1e300));
    EXPECT_EQ(exactNumber<float>(infinity), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(exactNumber<float>(std::numeric_limits<double>::quiet_NaN()));
}

TEST(Get, AddsNothingWhereTheDocumentsOwnGetterAddsTheKey)
{
    ObjectProperties document;
    document.valueAsInt("trap", 0);
    ASSERT_TRUE(document.contains("trap")) << "the trap: reading added the key";

    EXPECT_FALSE(get<int>(document, "a/b"));
    EXPECT_EQ(getOr(document, "a/b", 5), 5);
    EXPECT_FALSE(document.contains("a"));
    EXPECT_EQ(document.childCount(), 1U);
}

TEST(Get, AddsNothingWhileTheCursorIsOnAnArray)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt("0", 4);
    EXPECT_EQ(get<int>(document, "0"), 4);
    EXPECT_EQ(document.childCount(), 1U);
    EXPECT_EQ(document.valueAsInt("0", 9), 9) << "the trap: the document's own getter adds an element";
    EXPECT_EQ(document.childCount(), 2U);
}

TEST(Get, ResolvesKeysLikeTheDocument)
{
    ObjectProperties document = sample();
    document.beginGroup("group");
    EXPECT_EQ(get<int>(document, "inner"), 1);
    EXPECT_FALSE(get<int>(document, "small"));
    EXPECT_EQ(get<int>(document, "/small"), 7);
    EXPECT_EQ(dbc::findNode(document, ""), document.current());
    EXPECT_EQ(dbc::findNode(document, "/"), document.root());
}

TEST(GetOr, ReturnsTheFallbackOnlyIfThereIsNoValue)
{
    const ObjectProperties document = sample();
    EXPECT_EQ(getOr(document, "small", 1), 7);
    EXPECT_EQ(getOr(document, "text", "none"), "t");
    EXPECT_EQ(getOr(document, "missing", "none"), "none");
    EXPECT_EQ(getOr<std::string>(document, "missing", "none"), "none");
}

TEST(Times, GoThroughADocumentUnchanged)
{
    ObjectProperties document;
    for (const long long milliseconds : {0LL, -1LL, 1500000000123LL, std::numeric_limits<long long>::min()})
    {
        dbc::setTime(document, "t", dbc::timeFromMilliseconds(milliseconds));
        EXPECT_EQ(document.valueAsTime("t", 5), milliseconds);
        EXPECT_EQ(get<dbc::Time>(document, "t"), dbc::timeFromMilliseconds(milliseconds));
    }
}

TEST(Times, AreRoundedDownToMilliseconds)
{
    using std::chrono::nanoseconds;
    using NanosecondTime = std::chrono::time_point<std::chrono::system_clock, nanoseconds>;
    const auto before = NanosecondTime(nanoseconds(-1));
    EXPECT_EQ(dbc::millisecondsOf(dbc::toTime(before)), -1);
    const auto after = NanosecondTime(nanoseconds(1999999));
    EXPECT_EQ(dbc::millisecondsOf(dbc::toTime(after)), 1);
}

TEST(Children, AreVisitedInKeyOrder)
{
    ObjectProperties document;
    document.setValueInt("b", 2);
    document.setValueInt("a", 1);
    std::string keys;
    int sum = 0;
    for (const auto& [key, node] : dbc::children(document))
    {
        keys += key;
        sum += node->currentValueAsInt32(0);
    }
    EXPECT_EQ(keys, "ab");
    EXPECT_EQ(sum, 3);
}

TEST(Children, OfAMissingKeyAreEmpty)
{
    const ObjectProperties document;
    EXPECT_TRUE(dbc::children(document, "missing").empty());
    for (const auto& child : dbc::children(document, "missing"))
        FAIL() << child.first;
    EXPECT_TRUE(document.isEmpty());
}

TEST(Children, KeepTheirParentAlive)
{
    ObjectProperties document;
    document.setValueInt("group/x", 1);
    const auto range = dbc::children(document, "group");
    document.remove("group");
    EXPECT_EQ(range.size(), 1U);
    EXPECT_EQ(range.begin()->first, "x");
}

TEST(Elements, ComeInTheOrderOfTheirNumbersWhereTheDocumentHasTenBeforeTwo)
{
    ObjectProperties document;
    document.beginArray("list");
    for (int number = 0; number < 12; ++number)
        document.setValueInt(std::to_string(number), number);
    document.beginObject(2);
    ASSERT_EQ(document.key(), "10") << "the trap: children are in the order of their keys as texts";
    document.beginGroup("");

    EXPECT_EQ(dbc::elementsAs<int>(document, "list"), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

TEST(Elements, WithNumbersOfAnyLengthAreComparedByValue)
{
    ObjectProperties document;
    document.beginArray("list");
    for (const char* key : {"100000000000000000000000", "020", "3", "0", "99999999999999999999999"})
        document.setValueString(key, key);
    document.beginGroup("");
    EXPECT_EQ(dbc::elementsAs<std::string>(document, "list"),
              (std::vector<std::string>{"0", "3", "020", "99999999999999999999999", "100000000000000000000000"}));
}

TEST(Elements, WithOtherKeysKeepTheOrderOfTheDocument)
{
    ObjectProperties document;
    document.beginArray("list");
    for (int number = 0; number < 12; ++number)
        document.setValueInt("$and", number);
    document.beginGroup("");
    EXPECT_EQ(dbc::elementsAs<int>(document, "list").back(), 11);
    EXPECT_EQ(dbc::elementsAs<int>(document, "list").front(), 0);
}

TEST(Values, OmitElementsOfAnotherType)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt("0", 1);
    document.setValueString("1", "x");
    document.setValueInt("2", 3);
    document.beginGroup("");
    document.beginArray("list");
    document.setValueDouble("3", 4.0);
    document.setValueDouble("4", 4.5);
    document.setValueInt64("5", 5);
    document.beginGroup("");
    EXPECT_EQ(dbc::elementsAs<int>(document, "list"), (std::vector<int>{1, 3, 4, 5}));
    EXPECT_EQ(dbc::elementsAs<double>(document, "list"), (std::vector<double>{1, 3, 4, 4.5, 5}));
    EXPECT_TRUE(dbc::elementsAs<int>(document, "missing").empty());
    EXPECT_FALSE(document.contains("missing"));
}

} // namespace
