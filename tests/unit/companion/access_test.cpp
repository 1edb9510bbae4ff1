#include "companion/access.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <vector>

namespace {

using companion::get;
using companion::getOr;

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

TEST(Get, ReadsEveryKind)
{
    const ObjectProperties document = sample();
    EXPECT_EQ(get<std::string>(document, "text"), "t");
    EXPECT_EQ(get<bool>(document, "flag"), true);
    EXPECT_EQ(get<int>(document, "small"), 7);
    EXPECT_EQ(get<long>(document, "large"), 1L << 40);
    EXPECT_EQ(get<long long>(document, "large"), 1LL << 40);
    EXPECT_EQ(get<double>(document, "real"), 0.5);
    EXPECT_EQ(get<companion::Time>(document, "time"), companion::timeFromMilliseconds(1500000000123LL));
    EXPECT_EQ(get<companion::ObjectId>(document, "id"), companion::ObjectId{"507f1f77bcf86cd799439011"});
    EXPECT_EQ(get<companion::Bytes>(document, "bytes"), (companion::Bytes{1, 2}));
    EXPECT_EQ(get<companion::RegularExpression>(document, "regex"), (companion::RegularExpression{"^a", "i"}));
    EXPECT_EQ(get<int>(document, "group/inner"), 1);
}

TEST(Get, GivesNothingForAnotherKind)
{
    const ObjectProperties document = sample();
    EXPECT_FALSE(get<long>(document, "small"));
    EXPECT_FALSE(get<int>(document, "large"));
    EXPECT_FALSE(get<std::string>(document, "id"));
    EXPECT_FALSE(get<long>(document, "time"));
    EXPECT_FALSE(get<int>(document, "group"));
    EXPECT_FALSE(get<companion::RegularExpression>(document, "text"));
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

TEST(Get, AddsNothingWhileTheCursorStandsOnAnArray)
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
    EXPECT_EQ(companion::find(document, ""), document.current());
    EXPECT_EQ(companion::find(document, "/"), document.root());
}

TEST(GetOr, GivesTheFallbackOnlyWhereThereIsNoValue)
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
        companion::setTime(document, "t", companion::timeFromMilliseconds(milliseconds));
        EXPECT_EQ(document.valueAsTime("t", 5), milliseconds);
        EXPECT_EQ(get<companion::Time>(document, "t"), companion::timeFromMilliseconds(milliseconds));
    }
}

TEST(Times, AreRoundedDownToMilliseconds)
{
    using std::chrono::nanoseconds;
    using NanosecondTime = std::chrono::time_point<std::chrono::system_clock, nanoseconds>;
    const auto before = NanosecondTime(nanoseconds(-1));
    EXPECT_EQ(companion::millisecondsOf(companion::toTime(before)), -1);
    const auto after = NanosecondTime(nanoseconds(1999999));
    EXPECT_EQ(companion::millisecondsOf(companion::toTime(after)), 1);
}

TEST(Children, AreVisitedInKeyOrder)
{
    ObjectProperties document;
    document.setValueInt("b", 2);
    document.setValueInt("a", 1);
    std::string keys;
    int sum = 0;
    for (const auto& [key, node] : companion::children(document))
    {
        keys += key;
        sum += node->currentValueAsInt32(0);
    }
    EXPECT_EQ(keys, "ab");
    EXPECT_EQ(sum, 3);
}

TEST(Children, OfAMissingKeyAreNone)
{
    const ObjectProperties document;
    EXPECT_TRUE(companion::children(document, "missing").empty());
    for (const auto& child : companion::children(document, "missing"))
        FAIL() << child.first;
    EXPECT_TRUE(document.isEmpty());
}

TEST(Children, KeepTheirParentAlive)
{
    ObjectProperties document;
    document.setValueInt("group/x", 1);
    const auto range = companion::children(document, "group");
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

    EXPECT_EQ(companion::values<int>(document, "list"), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

TEST(Elements, WithNumbersOfAnyLengthAreComparedByValue)
{
    ObjectProperties document;
    document.beginArray("list");
    for (const char* key : {"100000000000000000000000", "020", "3", "0", "99999999999999999999999"})
        document.setValueString(key, key);
    document.beginGroup("");
    EXPECT_EQ(companion::values<std::string>(document, "list"),
              (std::vector<std::string>{"0", "3", "020", "99999999999999999999999", "100000000000000000000000"}));
}

TEST(Elements, WithOtherKeysKeepTheOrderOfTheDocument)
{
    ObjectProperties document;
    document.beginArray("list");
    for (int number = 0; number < 12; ++number)
        document.setValueInt("$and", number);
    document.beginGroup("");
    EXPECT_EQ(companion::values<int>(document, "list").back(), 11);
    EXPECT_EQ(companion::values<int>(document, "list").front(), 0);
}

TEST(Values, LeaveOutElementsOfAnotherKind)
{
    ObjectProperties document;
    document.beginArray("list");
    document.setValueInt("0", 1);
    document.setValueString("1", "x");
    document.setValueInt("2", 3);
    document.beginGroup("");
    EXPECT_EQ(companion::values<int>(document, "list"), (std::vector<int>{1, 3}));
    EXPECT_TRUE(companion::values<int>(document, "missing").empty());
    EXPECT_FALSE(document.contains("missing"));
}

} // namespace
