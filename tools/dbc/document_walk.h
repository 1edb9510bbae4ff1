// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/collection.h"
#include "interrupt.h"

#include <cstdint>

/// Number of matches, for the total of a progress line.
inline std::uint64_t documentCount(dbc::Collection& collection, const dbc::Value& query)
{
    return static_cast<std::uint64_t>(collection.count(query));
}

/// Opens a cursor and calls visit(cursor) on each of its documents until Ctrl-C is pressed.
/// @param open  returns the cursor; a function, because opening a cursor already receives documents
/// @return number of documents
template <typename Open, typename Visit>
std::uint64_t forEachDocument(const Open& open, const Visit& visit)
{
    const InterruptWatch watch;
    dbc::Cursor cursor = open();
    std::uint64_t count = 0;
    while (cursor.next())
    {
        throwIfInterrupted();
        visit(cursor);
        ++count;
    }
    return count;
}
