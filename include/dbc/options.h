// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

/// @file
/// Options of several operations. In C++20, use designated initializers: find({}, {.sort = {{"age"}}, .limit = 10}).
/// @since 1.0

#include "dbc/value.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace dbc {
inline namespace v1 {

/// When the server acknowledges a write. Members that are not set have the value of the connection string.
struct WriteConcern
{
    std::optional<int> nodes{};    ///< "w": number of servers; 0 means that the write is not acknowledged.
    std::string tag{};             ///< "w": "majority" or a custom name; overrides nodes.
    std::optional<bool> journal{}; ///< "j": acknowledge after the write is in the journal.
    std::optional<std::chrono::milliseconds> timeout{}; ///< "wtimeout": maximum wait for the other servers.
};

/// Which servers of a replica set are read from.
enum class ReadPreference
{
    Primary,            ///< The primary.
    PrimaryPreferred,   ///< The primary, or a secondary if the primary is unreachable.
    Secondary,          ///< A secondary.
    SecondaryPreferred, ///< A secondary, or the primary if no secondary is reachable.
    Nearest             ///< The server with the lowest latency.
};

/// Direction of a sort.
enum class Order
{
    Ascending = 1,  ///< Smallest first.
    Descending = -1 ///< Greatest first.
};

/// One field of a sort.
struct SortField
{
    std::string field;              ///< The dotted path of the field.
    Order order = Order::Ascending; ///< Direction of the sort.
};

/// Fields of a sort, the most significant first.
using Sort = std::vector<SortField>;

} // namespace v1
} // namespace dbc
