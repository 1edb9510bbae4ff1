// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "mongoc_handles.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace test_support {

/// Appends the fields of @p source in alphabetical order, but the first @p kept fields in their own order.
inline void appendSorted(const bson_t* source, std::size_t kept, bson_t* target)
{
    std::vector<std::string> keys;
    bson_iter_t iter;
    for (bson_iter_init(&iter, source); bson_iter_next(&iter);)
        keys.emplace_back(bson_iter_key(&iter));
    std::sort(keys.begin() + static_cast<std::ptrdiff_t>(std::min(kept, keys.size())), keys.end());
    for (const std::string& key : keys)
    {
        if (!bson_iter_init_find(&iter, source, key.c_str()))
            continue;
        const bool isList = (key == "updates" || key == "deletes") && BSON_ITER_HOLDS_ARRAY(&iter);
        if (!isList)
        {
            bson_append_iter(target, key.c_str(), -1, &iter);
            continue;
        }
        OwnedBson list;
        bson_iter_t statement;
        for (bson_iter_recurse(&iter, &statement); bson_iter_next(&statement);)
        {
            const std::uint8_t* data = nullptr;
            std::uint32_t size = 0;
            bson_t view;
            OwnedBson sorted;
            bson_iter_document(&statement, &size, &data);
            if (bson_init_static(&view, data, size))
                appendSorted(&view, 0, sorted.get());
            BSON_APPEND_DOCUMENT(list.get(), bson_iter_key(&statement), sorted.get());
        }
        BSON_APPEND_ARRAY(target, key.c_str(), list.get());
    }
}

inline std::string withSortedOptions(const std::string& command)
{
    OwnedBson parsed;
    if (!bson_init_from_json(parsed.get(), command.c_str(), static_cast<ssize_t>(command.size()), nullptr))
        return command;
    OwnedBson sorted;
    appendSorted(parsed.get(), 1, sorted.get());
    return BsonText(bson_as_relaxed_extended_json(sorted.get(), nullptr)).get();
}

/// True if two results of RecordedCommand::json() are equal, or differ only in the order of the options of the command
/// or of the statements of an update or a delete. The driver chooses this order, and it depends on the version. The
/// order inside an option must be equal, such as the keys of a sort and the fields of a document.
inline bool isSameCommand(const std::string& left, const std::string& right)
{
    return withSortedOptions(left) == withSortedOptions(right);
}

} // namespace test_support
