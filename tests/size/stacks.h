// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "environment_number.h"
#include "row_name.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

/// Levels, fields or elements. scripts/soak asks for a million.
inline int many()
{
    return static_cast<int>(test_support::environmentNumber("DATABASE_CLIENT_TEST_SIZE", 100000));
}

/// A size of the stack: the one that threads of Linux programs usually have, and one that a recursion soon exhausts.
struct StackRow
{
    std::string name;
    std::size_t bytes;
};

inline std::ostream& operator<<(std::ostream& stream, const StackRow& row)
{
    return stream << row.bytes << " bytes";
}

inline auto stackRows()
{
    return testing::Values(StackRow{"Of8MiB", 8U << 20U}, StackRow{"Of256KiB", 256U << 10U});
}
