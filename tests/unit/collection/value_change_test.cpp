// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "every_type.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using dbc::Value;

TEST(ValueChange, SetReplacesTheFirstFieldOrAppends)
{
    Value value = {{"a", 1}, {"b", 2}, {"a", 3}};
    value.set("a", "x");
    value.set("c", 4);
    EXPECT_EQ(value, Value({{"a", "x"}, {"b", 2}, {"a", 3}, {"c", 4}}));
}

TEST(ValueChange, SetReturnsTheStoredValue)
{
    Value value;
    Value& inner = value.set("inner", Value());
    inner.set("x", 1);
    EXPECT_EQ(value, Value({{"inner", {{"x", 1}}}}));
}

TEST(ValueChange, AppendKeepsEqualKeys)
{
    Value value;
    value.append("a", 1);
    value.append("a", 2);
    EXPECT_EQ(value, Value({{"a", 1}, {"a", 2}}));
    EXPECT_EQ(value.remove("a"), 2U);
    EXPECT_TRUE(value.empty());
    EXPECT_EQ(value.remove("a"), 0U);
}

TEST(ValueChange, PushAppendsToAnArray)
{
    Value list = dbc::array();
    for (int number = 0; number < 100; ++number)
        list.push(number);
    EXPECT_EQ(list.size(), 100U);
    EXPECT_EQ(list.at(99), Value(99));
    list.removeAt(0);
    list.removeAt(98);
    EXPECT_EQ(list.at(0), Value(1));
    EXPECT_EQ(list.size(), 98U);
    EXPECT_THROW(list.removeAt(98), std::out_of_range);
}

TEST(ValueChange, RemoveTakesAKeyOfTheValueItself)
{
    const std::string longKey = "a key that is not stored in place";
    for (const std::string& key : {std::string("a"), longKey})
    {
        Value value = {{key, 1}, {"b", 2}, {key, 3}, {"b", 4}};
        EXPECT_EQ(value.remove(value.fields()[0].key()), 2U);
        EXPECT_EQ(value, Value({{"b", 2}, {"b", 4}}));
    }
}

TEST(ValueChange, TakesAPartOfTheValueItself)
{
    Value value = {{"a", {{"b", "a string that is not stored in place"}}}};
    value.set("a", value.at("a").at("b"));
    EXPECT_EQ(value.get<std::string>("a"), "a string that is not stored in place");
    for (int round = 0; round < 10; ++round)
        value.append("copy", value.at("a"));
    value.append(value.fields()[0].key(), value);
    EXPECT_EQ(value.size(), 12U);
    EXPECT_EQ(value.at(11).size(), 11U);
    value = value.at(11);
    EXPECT_EQ(value.size(), 11U);
}

TEST(ValueChange, ChangesElementsAndFieldsInPlace)
{
    Value value = {{"list", dbc::array({1, 2})}};
    for (Value& element : value.at("list").elements())
        element = *element.get<int>() * 10;
    for (auto& [key, field] : value.fields())
        field.push(30);
    EXPECT_EQ(value, Value({{"list", dbc::array({10, 20, 30})}}));
}

TEST(ValueChange, RefusesAValueOfAnotherType)
{
    Value number = 5;
    Value object;
    Value list = dbc::array();
    EXPECT_THROW(number.set("a", 1), std::logic_error);
    EXPECT_THROW(list.append("a", 1), std::logic_error);
    EXPECT_THROW(object.push(1), std::logic_error);
    EXPECT_THROW(list.remove("a"), std::logic_error);
    EXPECT_THROW(number.clear(), std::logic_error);
    EXPECT_THROW(number.reserve(1), std::logic_error);
    EXPECT_THROW(number.removeAt(0), std::logic_error);
    EXPECT_THROW(object.append(std::string("\0", 1), 1), std::invalid_argument);
    EXPECT_EQ(object, Value());
}

TEST(ValueChange, ReserveKeepsTheItems)
{
    Value value = test_support::everyType();
    value.reserve(1000);
    EXPECT_EQ(value, test_support::everyType());
    value.reserve(1);
    EXPECT_EQ(value, test_support::everyType());
    value.clear();
    EXPECT_EQ(value, Value());
}

TEST(ValueChange, ItemsStayWhereTheyAreUpToTheReservedNumber)
{
    for (Value list : {Value(), dbc::array()})
    {
        const auto add = [&list]() -> Value& { return list.isObject() ? list.append("a", 1) : list.push(1); };
        list.reserve(3);
        const Value* const first = &add();
        add();
        add();
        EXPECT_EQ(&list.at(std::size_t{0}), first);
        list.reserve(3);
        EXPECT_EQ(&list.at(std::size_t{0}), first);
    }
}

} // namespace
