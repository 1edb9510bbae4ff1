#pragma once

/// @file
/// Options that several operations share. Programs in C++20 name them: find({}, {.sort = {{"age"}}, .limit = 10}).

#include "dbc/value.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace dbc {
inline namespace v1 {

/// When the server acknowledges a write. What is not set is taken from the connection string.
struct WriteConcern
{
    std::optional<int> nodes{};                         ///< "w": number of servers; 0: the write is not acknowledged.
    std::string tag{};                                  ///< "w": "majority" or a custom name; takes precedence.
    std::optional<bool> journal{};                      ///< "j": after the write is in the journal.
    std::optional<std::chrono::milliseconds> timeout{}; ///< "wtimeout": how long the server waits for the others.
};

/// Which servers of a replica set a read uses.
enum class ReadPreference
{
    Primary,            ///< The primary.
    PrimaryPreferred,   ///< The primary; a secondary if it cannot be reached.
    Secondary,          ///< A secondary.
    SecondaryPreferred, ///< A secondary; the primary if no secondary can be reached.
    Nearest             ///< The one with the shortest way.
};

/// Direction of a sort, or type of a field in an index.
enum class Order
{
    Ascending = 1,  ///< Smallest first.
    Descending = -1 ///< Greatest first.
};

/// One field of a sort.
struct SortField
{
    std::string field;              ///< The dotted path of the field.
    Order order = Order::Ascending; ///< Its direction.
};

/// Fields of a sort, the most significant first.
using Sort = std::vector<SortField>;

} // namespace v1
} // namespace dbc
