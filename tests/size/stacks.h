// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "environment.h"
#include "row_name.h"
#include "small_stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

/// Number of levels, fields or elements in a test. scripts/soak sets it to a million.
inline int many()
{
    return static_cast<int>(test_support::environmentNumber("DATABASE_CLIENT_TEST_SIZE", 100000));
}

/// A stack size: 8 MiB is usual for threads of Linux programs, 256 KiB is soon exhausted by a recursion.
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
