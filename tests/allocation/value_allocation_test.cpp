// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Values if memory runs out.

#include "allocation_failure.h"
#include "dbc/build.h"
#include "row_name.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

using dbc::Value;

const std::string longText = "a text that is too long to be stored in place";

Value sample()
{
    return {{longText, longText},
            {"object", {{"inner", longText}, {"list", dbc::array({longText, 1, {{longText, 2}}})}}},
            {"bytes", dbc::Bytes(100, 7)},
            {"expression", dbc::RegularExpression{longText, longText}},
            {"scope", dbc::CodeWithScope{longText, {{longText, longText}}}},
            {"decimal", dbc::Decimal128()}};
}

struct Values
{
    Values() : value(sample()), other(sample()), bytes(other.toBson()), wide()
    {
        for (int number = 0; number < 40; ++number)
            wide.append(longText + std::to_string(number), number);
        losses.reserve(10);
    }

    void use()
    {
        value.set("used", longText);
        EXPECT_EQ(value.get<std::string>("used"), longText);
        EXPECT_EQ(Value(value), value);
        EXPECT_EQ(other, sample());
        EXPECT_EQ(wide.getOr(longText + "39", 0), 39);
    }

    Value value;
    Value other;
    std::vector<std::uint8_t> bytes;
    Value wide;
    std::vector<dbc::LossAt> losses;
};

class ValueOperationWithoutMemory : public testing::TestWithParam<test_support::AllocatingOperation<Values>>
{};

TEST_P(ValueOperationWithoutMemory, ThrowsAndLeavesItsObjectUsable)
{
    test_support::expectUsableAfterEveryFailure<Values>(GetParam().operate);
}

const test_support::AllocatingOperation<Values> operations[] = {
    {"building", [](Values&) { const Value made = sample(); }},
    {"buildingOfAVector", [](Values&) { const Value made = std::vector<std::string>(5, longText); }},
    {"copyConstruction", [](Values& v) { const Value made = v.other; }},
    {"copyAssignment", [](Values& v) { v.value = v.other; }},
    {"moveConstruction",
     [](Values& v) {
         Value made = std::move(v.value);
         v.value = std::move(made);
     }},
    {"setOfANewField", [](Values& v) { v.value.set(longText + longText, v.other); }},
    {"setOfAField", [](Values& v) { v.value.set(longText, v.other); }},
    {"appending",
     [](Values& v) {
         for (int number = 0; number < 20; ++number)
             v.value.append(longText, longText);
     }},
    {"reserving", [](Values& v) { v.value.reserve(100); }},
    {"removing", [](Values& v) { v.value.remove("object"); }},
    {"reading", [](Values& v) { v.value.get<dbc::RegularExpression>("expression"); }},
    {"readingAList", [](Values& v) { v.value.get<std::vector<Value>>("object/list"); }},
    {"comparing", [](Values& v) { EXPECT_EQ(v.value.compare(v.other), 0); }},
    {"decoding", [](Values& v) { v.value = Value::fromBson(v.bytes.data(), v.bytes.size()); }},
    {"encoding", [](Values& v) { v.other.appendBson(v.bytes); }},
    {"conversionToProperties", [](Values& v) { static_cast<void>(v.other.at("object").toProperties()); }},
    // Without an array, because std::stable_sort does not throw std::bad_alloc: it needs no buffer.
    {"conversionFromProperties",
     [](Values& v) {
         v.value = Value::fromProperties(Value({{"a", longText}, {"b", {{longText, longText}}}}).toProperties());
     }},
};

INSTANTIATE_TEST_SUITE_P(All, ValueOperationWithoutMemory, testing::ValuesIn(operations), RowName());

TEST(ValueSearch, NeedsNoMemory)
{
    const Values values;
    const std::string key = longText + "39";
    const test_support::FailingAllocation failure(1);
    bool isFound = true;
    for (int round = 0; round < 40; ++round)
        isFound = isFound && values.wide.find(key) != nullptr;
    EXPECT_TRUE(isFound);
    EXPECT_TRUE(failure.happened()) << "an index is made where there is memory for it";
}

} // namespace
