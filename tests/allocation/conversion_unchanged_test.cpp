// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Each allocation of a conversion fails, one per run. Nothing leaks, and the fields that were converted before stay.

#include "allocation_failure.h"
#include "conversions.h"
#include "json_to_properties.h"
#include "properties_to_json.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using test_support::failEveryAllocation;

const std::string longText = "a text that is long enough for the heap";

ObjectProperties nested(int depth)
{
    ObjectProperties document;
    for (int level = 0; level < depth; ++level)
    {
        document.beginGroup("group " + longText);
        document.setValueString("s " + longText, longText);
        document.setValueRegex("r", longText, "i");
        document.setValueBinary("b", std::vector<unsigned char>(50, 7));
        document.setValueId("i", "507f1f77bcf86cd799439011");
    }
    return document;
}

TEST(WritingWithoutMemory, LeavesATargetThatCanBeDestroyed)
{
    const ObjectProperties document = nested(130);
    const std::string before = treeText(document);

    const std::size_t failures = failEveryAllocation(
        [] { return std::make_unique<OwnedBson>(); },
        [&](const std::unique_ptr<OwnedBson>& bson) { PropertiesToBson::convert(document, bson->get()); },
        [&](const std::unique_ptr<OwnedBson>&) { EXPECT_EQ(treeText(document), before); });

    EXPECT_GT(failures, 0U);
}

TEST(WritingWithoutMemory, NeedsNoMemoryForADepthThatServersAccept)
{
    const ObjectProperties document = nested(100);

    const std::size_t failures = failEveryAllocation(
        [] { return std::make_unique<OwnedBson>(); },
        [&](const std::unique_ptr<OwnedBson>& bson) { PropertiesToBson::convert(document, bson->get()); },
        [](const std::unique_ptr<OwnedBson>&) {});

    EXPECT_EQ(failures, 0U);
}

TEST(WritingWithoutMemory, OfJsonKeepsTheStringOfTheCaller)
{
    const ObjectProperties document = nested(20);

    const std::size_t failures = failEveryAllocation(
        [] { return std::string("before"); }, [&](std::string& json) { PropertiesToJson::convert(document, json); },
        [](const std::string& json) { EXPECT_EQ(json, "before"); });

    EXPECT_GT(failures, 0U);
}

TEST(ReadingWithoutMemory, KeepsWhatWasReadBefore)
{
    OwnedBson bson;
    ASSERT_TRUE(PropertiesToBson::convert(nested(20), bson.get()));

    const std::size_t failures = failEveryAllocation(
        [] {
            ObjectProperties document;
            document.setValueString("kept", longText);
            return document;
        },
        [&](ObjectProperties& document) { BsonToProperties::convert(bson.get(), &document); },
        [](const ObjectProperties& document) {
            EXPECT_EQ(document.valueAsString("/kept", ""), longText);
            EXPECT_LE(document.root()->childCount(), 2U);
        });

    EXPECT_GT(failures, 100U);
}

TEST(ReadingWithoutMemory, OfJsonReleasesTheObjectsOfTheDriver)
{
    std::string json;
    ASSERT_TRUE(PropertiesToJson::convert(nested(5), json));

    const std::size_t failures =
        failEveryAllocation([] { return ObjectProperties(); },
                            [&](ObjectProperties& document) { JsonToProperties::convert(json, &document); },
                            [](const ObjectProperties&) {});

    EXPECT_GT(failures, 20U);
}

} // namespace
