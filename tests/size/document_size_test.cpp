// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Very wide documents and filters.

#include "bson_handles.h"
#include "bson_to_properties.h"
#include "captured_output.h"
#include "object_filter.h"
#include "object_properties.h"
#include "properties_to_bson.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(WideDocument, KeepsEveryFieldThroughBsonAndCopy)
{
    ObjectProperties document;
    for (int i = 0; i < many(); ++i)
        document.setValueInt32(std::to_string(i), i);
    EXPECT_EQ(document.childCount(), static_cast<std::size_t>(many()));
    OwnedBson bson;
    ASSERT_TRUE(PropertiesToBson::convert(document, bson.get()));
    ObjectProperties again;
    ASSERT_TRUE(BsonToProperties::convert(bson.get(), &again));
    const ObjectProperties copy(again);
    long long sum = 0;
    for (const auto& entry : *copy.root())
        sum += entry.second->currentValueAsInt32(0);
    EXPECT_EQ(sum, static_cast<long long>(many()) * (many() - 1) / 2);
    const test_support::CapturedOutput output;
    copy.printAsJson();
}

TEST(WideFilter, KeepsEveryConditionOfAList)
{
    ObjectFilter filter;
    filter.start_or();
    for (int i = 0; i < many(); ++i)
        filter.setFilterInt(OperationTypeGreater, "n", i);
    filter.finish_or();
    const ObjectProperties query = filter.toObjectProeprties();
    query.beginArray("$or");
    EXPECT_EQ(query.childCount(), static_cast<std::size_t>(many()));
}

} // namespace
