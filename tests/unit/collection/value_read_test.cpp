// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "every_type.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using dbc::Value;

TEST(ValueRead, ReadsEveryType)
{
    const Value value = test_support::everyType();
    EXPECT_EQ(value.get<double>("double"), -1.5);
    EXPECT_EQ(value.get<std::string>("string of fifteen"), "fifteen  bytes.");
    EXPECT_EQ(value.get<std::string_view>("string"), "in place");
    EXPECT_EQ(value.get<dbc::Bytes>("binary"), (dbc::Bytes{1, 2, 3}));
    EXPECT_EQ(value.get<dbc::Binary>("binary of subtype 2")->bytes, (dbc::Bytes{4, 5}));
    EXPECT_EQ(value.get<dbc::Binary>("binary of subtype 4")->subtype, 4);
    EXPECT_EQ(value.get<dbc::ObjectId>("object id")->text, "507f1f77bcf86cd799439011");
    EXPECT_EQ(value.get<bool>("true"), true);
    EXPECT_EQ(value.get<dbc::Time>("time"), dbc::timeFromMilliseconds(-62135596800000));
    EXPECT_TRUE(value.get<std::nullptr_t>("null"));
    EXPECT_EQ(value.get<dbc::RegularExpression>("regular expression"), (dbc::RegularExpression{"^a.*b$", "im"}));
    EXPECT_EQ(value.get<dbc::DbPointer>("pointer")->collection, "shop.orders");
    EXPECT_EQ(value.get<dbc::DbPointer>("pointer")->id.text, "507f1f77bcf86cd799439011");
    EXPECT_EQ(value.get<dbc::Code>("code")->text, "function() { return 1; }");
    EXPECT_EQ(value.get<dbc::Symbol>("symbol")->text, "a symbol that is not in place");
    EXPECT_EQ(value.get<dbc::CodeWithScope>("code with scope")->text, "f()");
    EXPECT_EQ(value.get<dbc::CodeWithScope>("code with scope")->scope.get<std::string>("y/z"), "deep");
    EXPECT_EQ(value.get<int>("int32"), std::numeric_limits<int>::min());
    EXPECT_EQ(value.get<dbc::Timestamp>("timestamp")->seconds, 4000000000U);
    EXPECT_EQ(value.get<dbc::Timestamp>("timestamp")->increment, 4294967295U);
    EXPECT_EQ(value.get<long>("int64"), std::numeric_limits<long>::max());
    EXPECT_EQ(value.get<dbc::Decimal128>("decimal")->text(), "-1.2345678901234567890123456789E-50");
    EXPECT_EQ(value.get<Value>("object/inner"), Value({{"deep", 1}}));
    EXPECT_EQ(value.get<std::vector<int>>("long array"), std::vector<int>(12, 7));
    EXPECT_EQ((value.get<std::map<std::string, Value>>("object")->at("empty")), Value());
}

TEST(ValueRead, ReturnsNothingForAnotherType)
{
    const Value value = test_support::everyType();
    EXPECT_FALSE(value.get<std::string>("symbol"));
    EXPECT_FALSE(value.get<std::string>("null"));
    EXPECT_FALSE(value.get<int>("time"));
    EXPECT_FALSE(value.get<int>("true"));
    EXPECT_FALSE(value.get<bool>("int32"));
    EXPECT_FALSE(value.get<std::vector<int>>("array")) << "one element is no number";
    EXPECT_FALSE(value.get<std::nullptr_t>("undefined"));
}

TEST(ValueRead, ConvertsNumbersWhereTheResultIsExact)
{
    EXPECT_EQ(Value(7.0).get<int>(), 7);
    EXPECT_EQ(Value(7L).get<unsigned char>(), 7);
    EXPECT_EQ(Value(7).get<double>(), 7.0);
    EXPECT_FALSE(Value(1.5).get<int>());
    EXPECT_FALSE(Value(1L << 40).get<int>());
    EXPECT_FALSE(Value((1L << 53) + 1).get<double>());
    EXPECT_FALSE(Value(-1).get<unsigned>());
    EXPECT_EQ(Value({{"n", 3.0}}).getOr("n", 0), 3);
    EXPECT_EQ(Value({{"n", 3.5}}).getOr("n", 0), 0);
}

TEST(ValueRead, ReturnsATimeOnlyAsATypeThatHoldsIt)
{
    using std::chrono::milliseconds;
    using std::chrono::nanoseconds;
    using std::chrono::seconds;
    using std::chrono::system_clock;
    using std::chrono::time_point;
    using Nanoseconds = time_point<system_clock, nanoseconds>;
    using Seconds = time_point<system_clock, seconds>;
    EXPECT_EQ(Value(dbc::timeFromMilliseconds(1500)).get<Nanoseconds>(), Nanoseconds(milliseconds(1500)));
    EXPECT_FALSE(Value(dbc::timeFromMilliseconds(std::numeric_limits<long>::max())).get<Nanoseconds>());
    EXPECT_FALSE(Value(dbc::timeFromMilliseconds(std::numeric_limits<long>::min())).get<Nanoseconds>());
    EXPECT_FALSE(Value(dbc::timeFromMilliseconds(1500)).get<Seconds>());
    EXPECT_EQ(Value(dbc::timeFromMilliseconds(-2000)).get<Seconds>(), Seconds(seconds(-2)));
}

TEST(ValueRead, FollowsPathsThroughObjectsAndArrays)
{
    const Value value = test_support::everyType();
    EXPECT_EQ(value.get<int>("array/3/four"), 4);
    EXPECT_EQ(value.get<int>("/array//2/0/"), 3);
    EXPECT_EQ(value.findPath(""), &value);
    EXPECT_EQ(value.findPath("array/5"), nullptr);
    EXPECT_EQ(value.findPath("array/-1"), nullptr);
    EXPECT_EQ(value.findPath("array/0x"), nullptr);
    EXPECT_EQ(value.findPath("array/99999999999999999999999"), nullptr);
    EXPECT_EQ(value.findPath("double/x"), nullptr);
    EXPECT_EQ(value.findPath("missing/x"), nullptr);
    EXPECT_EQ(value.getOr("missing", "fallback"), "fallback");
}

TEST(ValueRead, TakesKeysLiterally)
{
    const Value value = {{"a/b", 1}, {"", 2}, {"a", 3}, {"a.b", 4}};
    EXPECT_EQ(value.find("a/b")->get<int>(), 1);
    EXPECT_EQ(value.find("")->get<int>(), 2);
    EXPECT_EQ(value.find("a.b")->get<int>(), 4);
    EXPECT_EQ(value.find("A"), nullptr);
    EXPECT_EQ(value.find(std::string_view("a\0", 2)), nullptr);
    EXPECT_EQ(Value(5).find("a"), nullptr);
}

TEST(ValueRead, ThrowsForAMissingItem)
{
    const Value value = {{"a", dbc::array({1})}};
    EXPECT_EQ(value.at("a").at(0), Value(1));
    EXPECT_EQ(value.at(0).size(), 1U);
    EXPECT_THROW(static_cast<void>(value.at("b")), std::out_of_range);
    EXPECT_THROW(static_cast<void>(value.at(1)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(Value("text").at(0)), std::out_of_range);
}

TEST(ValueRead, FindsEveryKeyOfALargeObjectHoweverOftenItIsAsked)
{
    Value value;
    for (int number = 0; number < 1000; ++number)
        value.append((number % 2 == 0 ? "k" : "a key that is not stored in place ") + std::to_string(number), number);
    value.append("k0", "second");
    const int lengths[] = {13, 14, 15}; // around the longest key that is stored in place
    for (const int length : lengths)
        value.append(std::string(static_cast<std::size_t>(length), 'x'), length);
    for (int round = 0; round < 3; ++round)
    {
        for (const int length : lengths)
            EXPECT_EQ(value.at(std::string(static_cast<std::size_t>(length), 'x')), Value(length));
        for (int number = 0; number < 1000; ++number)
        {
            const std::string suffix = std::to_string(number);
            EXPECT_EQ(
                value.find(number % 2 == 0 ? "k" + suffix : "a key that is not stored in place " + suffix)->get<int>(),
                number);
            EXPECT_EQ(value.find("missing" + suffix), nullptr);
            EXPECT_EQ(value.find("another missing key, a long one " + suffix), nullptr);
        }
    }
}

TEST(ValueRead, FindsKeysThatChangedAfterManySearches)
{
    Value value;
    for (int number = 0; number < 100; ++number)
        value.append("k" + std::to_string(number), number);
    const auto search = [&value] {
        for (int round = 0; round < 40; ++round)
            static_cast<void>(value.find("k99"));
    };
    search();
    value.append("new", 1);
    EXPECT_EQ(value.find("new")->get<int>(), 1);
    search();
    EXPECT_EQ(value.remove("k0"), 1U);
    EXPECT_EQ(value.find("k0"), nullptr);
    EXPECT_EQ(value.find("k1")->get<int>(), 1);
    search();
    value.removeAt(0);
    EXPECT_EQ(value.find("k1"), nullptr);
    EXPECT_EQ(value.find("k2")->get<int>(), 2);
    search();
    auto fields = value.fields();
    search();
    fields[0] = dbc::Field("renamed", 5);
    EXPECT_EQ(value.find("k2"), nullptr);
    EXPECT_EQ(value.find("renamed")->get<int>(), 5);
    search();
    const Value copied = value;
    value.clear();
    EXPECT_EQ(value.find("renamed"), nullptr);
    EXPECT_EQ(copied.find("renamed")->get<int>(), 5);
}

// Objects of many keys, whose first searches make an index, inside each other.
Value nestedObjects()
{
    Value value;
    for (int outer = 0; outer < 40; ++outer)
    {
        Value group;
        for (int inner = 0; inner < 40; ++inner)
            group.append("k" + std::to_string(inner), "a text that is not kept in place " + std::to_string(inner));
        value.append("g" + std::to_string(outer), std::move(group));
    }
    return value;
}

TEST(ValueRead, MayBeDoneInEveryWayBySeveralThreads)
{
    const Value shared = nestedObjects();
    const std::vector<std::uint8_t> bytes = shared.toBson();
    const std::string json = shared.toJson();
    const auto differences = [&](int thread) {
        int count = 0;
        for (int round = 0; round < 40; ++round)
        {
            const std::string path = "g" + std::to_string((thread + round) % 40) + "/k" + std::to_string(round);
            count += shared.findPath(path) ? 0 : 1;
        }
        Value copied = shared;
        count += copied == shared ? 0 : 1;
        copied.append("own", thread);
        count += copied.compare(shared) == 0 ? 1 : 0;
        count += shared.toBson() == bytes ? 0 : 1;
        count += shared.toJson() == json ? 0 : 1;
        std::vector<dbc::LossAt> losses;
        const ObjectProperties document = shared.toProperties(losses);
        count += losses.empty() && document.contains("g0/k0") ? 0 : 1;
        for (const auto& [key, value] : shared.fields())
            count += value.size() == 40 ? 0 : 1;
        return count;
    };
    std::vector<int> counts(4);
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < counts.size(); ++number)
        threads.emplace_back([&, number] { counts[number] = differences(static_cast<int>(number)); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counts, std::vector<int>(4));
}

template <typename T, typename = void>
struct HasFields : std::false_type
{};
template <typename T>
struct HasFields<T, std::void_t<decltype(std::declval<T>().fields())>> : std::true_type
{};
template <typename T, typename = void>
struct HasElements : std::false_type
{};
template <typename T>
struct HasElements<T, std::void_t<decltype(std::declval<T>().elements())>> : std::true_type
{};

// for (const auto& [key, value] : call().fields()) would read a value that is gone before the first step.
TEST(ValueRead, FieldsAndElementsOfATemporaryValueDoNotCompile)
{
    EXPECT_TRUE(HasFields<Value&>::value && HasFields<const Value&>::value);
    EXPECT_TRUE(HasElements<Value&>::value && HasElements<const Value&>::value);
    EXPECT_FALSE(HasFields<Value>::value || HasFields<const Value>::value);
    EXPECT_FALSE(HasElements<Value>::value || HasElements<const Value>::value);
}

template <typename V, typename = void>
struct TakesZeroAsKey : std::false_type
{};
template <typename V>
struct TakesZeroAsKey<V, std::void_t<decltype(std::declval<V&>().template get<int>(0))>> : std::true_type
{};
template <typename V, typename = void>
struct RemovesZero : std::false_type
{};
template <typename V>
struct RemovesZero<V, std::void_t<decltype(std::declval<V&>().remove(0))>> : std::true_type
{};

// 0 would be a null pointer to the key.
TEST(ValueRead, NumberInPlaceOfAKeyDoesNotCompile)
{
    EXPECT_FALSE(TakesZeroAsKey<Value>::value);
    EXPECT_FALSE(RemovesZero<Value>::value);
    EXPECT_EQ(dbc::array({5}).at(0), Value(5));
}

TEST(ValueRead, OfABareValueHasNoFieldsAndNoElements)
{
    const Value number(1);
    const Value string("x");
    const Value object{{"a", 1}};
    const Value array = dbc::array({1});
    EXPECT_TRUE(number.fields().empty());
    EXPECT_TRUE(string.elements().empty());
    EXPECT_TRUE(object.elements().empty());
    EXPECT_TRUE(array.fields().empty());
    EXPECT_EQ(number.size(), 0U);
}

TEST(Decimal128, ThrowsForAStringThatIsNotANumber)
{
    EXPECT_THROW(dbc::Decimal128::parse("1.5x"), std::invalid_argument);
    EXPECT_THROW(dbc::Decimal128::parse(""), std::invalid_argument);
    EXPECT_THROW(dbc::Decimal128::parse(std::string("1\0x", 3)), std::invalid_argument);
    EXPECT_EQ(dbc::Decimal128::parse("1E+6144").text(), "1.000000000000000000000000000000000E+6144");
    EXPECT_EQ(dbc::Decimal128().text(), "0");
}

TEST(TypeName, IsThatOfTheTypeOperator)
{
    const std::vector<std::pair<dbc::Type, std::string>> names = {
        {dbc::Type::Double, "double"},
        {dbc::Type::String, "string"},
        {dbc::Type::Object, "object"},
        {dbc::Type::Array, "array"},
        {dbc::Type::Binary, "binData"},
        {dbc::Type::Undefined, "undefined"},
        {dbc::Type::ObjectId, "objectId"},
        {dbc::Type::Bool, "bool"},
        {dbc::Type::Time, "date"},
        {dbc::Type::Null, "null"},
        {dbc::Type::RegularExpression, "regex"},
        {dbc::Type::DbPointer, "dbPointer"},
        {dbc::Type::Code, "javascript"},
        {dbc::Type::Symbol, "symbol"},
        {dbc::Type::CodeWithScope, "javascriptWithScope"},
        {dbc::Type::Int32, "int"},
        {dbc::Type::Timestamp, "timestamp"},
        {dbc::Type::Int64, "long"},
        {dbc::Type::Decimal128, "decimal"},
        {dbc::Type::MaxKey, "maxKey"},
        {dbc::Type::MinKey, "minKey"},
    };
    for (const auto& [type, name] : names)
        EXPECT_EQ(nameOf(type), name);
    EXPECT_STREQ(nameOf(static_cast<dbc::Type>(99)), "");
}

} // namespace
