// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace test_support {

/// A virtual operation and its place in the table of its class, from 0.
struct VirtualOperation
{
    std::string name;
    std::ptrdiff_t slot;
};

/// On x86-64 a pointer to a virtual member holds 1 + 8 * slot. Give the Signature where the name is overloaded: a
/// pointer of any other type does not compile.
template <typename Signature, typename Class>
VirtualOperation operation(const char* name, Signature Class::*member)
{
    struct
    {
        std::ptrdiff_t pointer;
        std::ptrdiff_t adjustment;
    } layout;
    static_assert(sizeof(member) == sizeof(layout), "the layout of the common C++ ABI");
    std::memcpy(&layout, &member, sizeof(layout));
    EXPECT_EQ(layout.adjustment, 0) << name;
    EXPECT_EQ(layout.pointer % 8, 1) << name << " is not virtual";
    return {name, layout.pointer / 8};
}

/// The destructor has two entries: that of a complete object, and that which also frees its memory.
constexpr std::ptrdiff_t behindTheDestructor = 2;

/// Requires one operation after the other. @return the slot behind the last
inline std::ptrdiff_t expectSlotsInOrder(const std::vector<VirtualOperation>& operations, std::ptrdiff_t first)
{
    std::ptrdiff_t slot = first;
    for (const VirtualOperation& row : operations)
        EXPECT_EQ(row.slot, slot++) << row.name;
    return slot;
}

} // namespace test_support
