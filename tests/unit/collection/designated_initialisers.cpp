// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Compiled as C++20: the options of the operations are set by name.
#include "dbc/collection.h"

namespace {

[[maybe_unused]] void callsCompile(dbc::Collection& orders)
{
    using namespace std::chrono_literals;
    orders.insertOne({{"a", 1}}, {.comment = "import", .writeConcern = dbc::WriteConcern{.tag = "majority"}});
    orders.insertMany({{{"a", 1}}, {{"a", 2}}}, {.ordered = false});
    orders.updateOne({{"a", 1}}, {{"$set", {{"l.$[e]", 2}}}},
                     {.upsert = true, .arrayFilters = {{{"e", 1}}}, .hint = "index", .let = {{"v", 1}}});
    orders.replaceOne({}, {}, {.upsert = true, .collation = {{"locale", "de"}}});
    orders.removeMany({}, {.writeConcern = dbc::WriteConcern{.nodes = 2, .journal = true, .timeout = 5s}});
    orders.bulkWrite(dbc::Bulk().insertOne({{"a", 1}}), {.ordered = false});
    dbc::Bulk().updateMany({}, {{"$unset", {{"a", ""}}}}, {.upsert = true});
}

} // namespace
