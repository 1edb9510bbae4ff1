// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "allocation_failure.h"
#include "conversion/document_refill.h"
#include "conversions.h"
#include "dbc/value.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using test_support::BorrowedBson;

/// A document that is converted into again and again.
class RefilledDocument
{
public:
    /// The tree after the conversion.
    std::string operator()(const BorrowedBson& bson)
    {
        EXPECT_TRUE(m_refill.convert(bson.get(), document));
        return treeText(document);
    }
    std::string operator()(const std::string& json) { return (*this)(BorrowedBson(bsonOf(json))); }

    static std::vector<std::uint8_t> bsonOf(const std::string& json) { return dbc::Value::fromJson(json).toBson(); }

    std::shared_ptr<Property> node(const std::string& key) { return document.root()->propertyBySingleKey(key); }

    ObjectProperties document;

private:
    DocumentRefill m_refill;
};

std::string freshlyConverted(const std::string& json)
{
    const BorrowedBson bson(RefilledDocument::bsonOf(json));
    return treeText(readBson(bson.get()));
}

const std::vector<std::string>& documents()
{
    static const std::vector<std::string> all{
        R"({})",
        R"({"a": 1})",
        R"({"a": 2})",
        R"({"a": "text"})",
        R"({"a": ""})",
        R"({"a": null})",
        R"({"a": {}})",
        R"({"a": []})",
        R"({"a": {"a": 1}})",
        R"({"a": [1]})",
        R"({"a": [1, 2]})",
        R"({"a": [2, null, 1]})",
        R"({"b": 1})",
        R"({"a": 1, "b": 1})",
        R"({"b": 2, "a": 2})",
        R"({"a": 1, "a": 2})",
        R"({"a": 1, "a": {"a": 1}})",
        R"({"a": 1, "n": null, "b": 1})",
        R"({"a": 1, "b": 1, "c": 1})",
        R"({"a": 1, "b": 2, "a": 3})",
        R"({"a": {"b": 1}, "c": 1})",
        R"({"a": {"b": 2}, "c": {}})",
        R"({"a": {}, "b": 1, "c": 1})",
        R"({"a": {"b": 1, "c": 1}})",
        R"({"a": {"b": 1}, "c": {"b": 1}})",
        R"({"a": {"c": 1}, "c": {"b": 1}})",
        R"({"a": [{"b": 1}, {"b": 2}]})",
        R"({"a": [{"b": 1}, {"c": 2}]})",
        R"({"a/b": 1})",
        R"({"a/b": 1, "a": 2})",
        R"({"a": {"a": 1}, "a/a": 3})",
        R"({"/": 1, "b": 2})",
        R"({"": 1})",
        R"({"a": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11]})",
        R"({"a": [1, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12]})",
        R"({"s": "s", "b": true, "i": 1, "l": {"$numberLong": "1"}, "d": 0.5, "t": {"$date": 1},
            "o": {"$oid": "507f1f77bcf86cd799439011"}, "r": {"$regularExpression": {"pattern": "p", "options": "i"}},
            "x": {"$binary": {"base64": "AAEC", "subType": "00"}}})",
        R"({"s": "t", "b": false, "i": 2, "l": {"$numberLong": "2"}, "d": 1.5, "t": {"$date": 2},
            "o": {"$oid": "507f1f77bcf86cd799439012"}, "r": {"$regularExpression": {"pattern": "q", "options": ""}},
            "x": {"$binary": {"base64": "", "subType": "00"}}})",
        R"({"s": {"$binary": {"base64": "AAEC", "subType": "00"}}, "b": "t", "i": true, "l": 1, "d": {"$numberLong": "3"},
            "t": 2.5, "o": {"$date": 3}, "r": {"$oid": "507f1f77bcf86cd799439013"},
            "x": {"$regularExpression": {"pattern": "s", "options": "m"}}})",
    };
    return all;
}

TEST(DocumentRefill, EqualsANewConversionForEveryPairOfDocuments)
{
    for (const std::string& first : documents())
    {
        for (const std::string& second : documents())
        {
            RefilledDocument refilled;
            EXPECT_EQ(refilled(first), freshlyConverted(first));
            EXPECT_EQ(refilled(second), freshlyConverted(second)) << first << " before " << second;
            EXPECT_EQ(refilled(second), freshlyConverted(second)) << first << " before twice " << second;
            EXPECT_EQ(refilled(first), freshlyConverted(first)) << second << " before " << first;
        }
    }
}

TEST(DocumentRefill, WorksIfManyDocumentsDiffer)
{
    RefilledDocument refilled;
    for (int round = 0; round < 3; ++round)
    {
        for (const std::string& json : documents())
            EXPECT_EQ(refilled(json), freshlyConverted(json));
    }
}

TEST(DocumentRefill, UsesTheNodesOfTheSameFieldsAgain)
{
    RefilledDocument refilled;
    refilled(R"({"a": 1, "n": null, "g": {"b": "text", "l": [1, 2]}})");
    const std::weak_ptr<Property> number = refilled.node("a");
    const std::weak_ptr<Property> text = refilled.node("g")->propertyBySingleKey("b");
    const std::weak_ptr<Property> element = refilled.node("g")->propertyBySingleKey("l")->childByIndex(1);

    refilled(R"({"a": "other", "n": null, "g": {"b": 2, "l": [3, 4]}})");

    EXPECT_FALSE(number.expired());
    EXPECT_FALSE(text.expired());
    EXPECT_FALSE(element.expired());
    EXPECT_EQ(treeText(*element.lock()), "Int32=4");
}

TEST(DocumentRefill, UsesNodesAgainAfterADocumentWithOtherFields)
{
    RefilledDocument refilled;
    refilled(R"({"a": 1})");
    refilled(R"({"b": 1})");
    const std::weak_ptr<Property> node = refilled.node("b");

    refilled(R"({"b": 2})");

    EXPECT_FALSE(node.expired());
}

TEST(DocumentRefill, DoesNotChangeANodeThatTheCallerOwns)
{
    RefilledDocument refilled;
    refilled(R"({"a": 1, "g": {"b": 1}})");
    const std::shared_ptr<Property> number = refilled.node("a");

    EXPECT_EQ(refilled(R"({"a": 2, "g": {"b": 2}})"), "Group{\"a\":Int32=2,\"g\":Group{\"b\":Int32=2}}");
    EXPECT_EQ(treeText(*number), "Int32=1");

    const std::shared_ptr<Property> group = refilled.node("g");
    refilled(R"({"a": 3, "g": {"b": 3}})");
    EXPECT_EQ(treeText(*group), "Group{\"b\":Int32=2}");
}

TEST(DocumentRefill, MovesTheCursorToTheRoot)
{
    RefilledDocument refilled;
    refilled(R"({"g": {"b": 1}})");
    refilled.document.beginGroup("g");

    refilled(R"({"g": {"b": 2}})");

    EXPECT_EQ(refilled.document.group(), "");
    EXPECT_EQ(refilled.document.valueAsInt32("g/b", 0), 2);
}

TEST(DocumentRefill, UndoesWhatTheCallerChanged)
{
    const std::string first = R"({"a": 1, "b": {"c": 1}, "l": [1]})";
    const std::string second = R"({"a": 2, "b": {"c": 2}, "l": [2]})";
    using Change = void (*)(ObjectProperties & document);
    const Change changes[] = {
        [](ObjectProperties& document) { document.valueAsInt32("missing", 0); },
        [](ObjectProperties& document) { document.valueAsInt32("b/missing", 0); },
        [](ObjectProperties& document) { document.remove("a"); },
        [](ObjectProperties& document) { document.remove("a"), document.setValueInt32("z", 1); },
        [](ObjectProperties& document) { document.root()->clearChilds(); },
        [](ObjectProperties& document) { document.setValueInt32("b", 1); },
        [](ObjectProperties& document) { document.setValueInt32("a/below", 1); },
        [](ObjectProperties& document) { document.root()->childByIndex(0)->copy(*document.root()->childByIndex(1)); },
        [](ObjectProperties& document) { document.root()->childByIndex(0)->copy(*Property::create()); },
        [](ObjectProperties& document) { document.beginArray("l"), document.setValueInt32("0", 5); },
    };
    for (std::size_t index = 0; index < std::size(changes); ++index)
    {
        RefilledDocument refilled;
        refilled(first);
        changes[index](refilled.document);
        EXPECT_EQ(refilled(second), freshlyConverted(second)) << "change " << index;
    }
}

TEST(DocumentRefill, FailsForMalformedBson)
{
    RefilledDocument refilled;
    refilled(R"({"a": 1})");
    DocumentRefill refill;
    ObjectProperties document;
    bson_t cut = BSON_INITIALIZER;
    cut.len = 4;
    EXPECT_FALSE(refill.convert(&cut, document));
}

TEST(DocumentRefill, IsUsableAfterAFailedAllocation)
{
    const std::string longText(100, 'x');
    const BorrowedBson first(RefilledDocument::bsonOf(R"({"a": 1, "g": {"b": ")" + longText + R"("}})"));
    const BorrowedBson second(RefilledDocument::bsonOf(R"({"a": 2, "g": {"b": "y)" + longText + R"("}})"));
    const BorrowedBson other(RefilledDocument::bsonOf(R"({"b": 2})"));
    for (const BorrowedBson* const next : {&second, &other})
    {
        const std::string expected = treeText(readBson(next->get()));
        const std::size_t failures = test_support::failEveryAllocation(
            [&] {
                auto refilled = std::make_unique<RefilledDocument>();
                (*refilled)(first);
                return refilled;
            },
            [&](const std::unique_ptr<RefilledDocument>& refilled) { (*refilled)(*next); },
            [&](const std::unique_ptr<RefilledDocument>& refilled) { EXPECT_EQ((*refilled)(*next), expected); });
        EXPECT_GT(failures, 0U);
    }
}

} // namespace
