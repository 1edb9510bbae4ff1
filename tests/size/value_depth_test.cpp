// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Documents of a million levels, with a stack that is too small for a recursion.

#include "every_type.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

using dbc::Value;

constexpr int levels = 1000001; // an odd number: the outermost is an object

Value deep(int depth)
{
    Value value = 1;
    for (int level = 0; level < depth; ++level)
    {
        Value outer;
        if (level % 2 == 0)
            outer.append("a", std::move(value));
        else
        {
            outer = dbc::array();
            outer.push(std::move(value));
        }
        value = std::move(outer);
    }
    return value;
}

TEST(ValueDepth, IsLimitedByMemoryOnly)
{
    runOnSmallStack([] {
        const Value value = deep(levels);
        Value copied;
        copied = value;
        EXPECT_TRUE(copied == value);
        EXPECT_NE(copied.findPath("a/0"), nullptr);
        const std::vector<std::uint8_t> bytes = value.toBson();
        EXPECT_TRUE(Value::fromBson(bytes.data(), bytes.size()) == value);
        EXPECT_THROW(static_cast<void>(value.toJson()), std::invalid_argument);
    });
}

TEST(ValueDepth, OfDocumentsIsLimitedByMemoryOnly)
{
    runOnSmallStack([] {
        const Value value = {{"root", deep(100000)}};
        EXPECT_TRUE(Value::fromProperties(value.toProperties()) == value);
    });
}

TEST(ValueDepth, OfScopesIsLimitedByMemoryOnly)
{
    runOnSmallStack([] {
        Value value;
        for (int level = 0; level < 300; ++level)
            value = Value({{"code", dbc::CodeWithScope{"f()", std::move(value)}}});
        const std::vector<std::uint8_t> bytes = value.toBson();
        EXPECT_TRUE(Value::fromBson(bytes.data(), bytes.size()) == value);
    });
}

TEST(ValueDepth, OfMalformedBytesNeedsNoStack)
{
    runOnSmallStack([] {
        std::vector<std::uint8_t> bytes = deep(100001).toBson();
        bytes[bytes.size() / 2 - 4] = 0x55;
        EXPECT_THROW(static_cast<void>(Value::fromBson(bytes.data(), bytes.size())), dbc::FormatError);
    });
}

} // namespace
