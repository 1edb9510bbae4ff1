// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Bytes from outside as BSON: read, written, read again.

#include "properties_to_json.h"
#include "round_trip.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

bool isUtf8(const std::string& text)
{
    return bson_utf8_validate(text.c_str(), text.size(), false);
}

bool holdsOnlyUtf8(Property& node)
{
    const auto [pattern, options] = node.currentValueAsRegex("", "");
    if (!isUtf8(node.currentValueAsString("")) || !isUtf8(pattern) || !isUtf8(options))
        return false;
    for (const auto& [key, child] : node)
    {
        if (!isUtf8(key) || !holdsOnlyUtf8(*child))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    bson_t bson;
    ObjectProperties document;
    if (!bson_init_static(&bson, data, size))
        return 0;
    if (!BsonToProperties::convert(&bson, &document))
    {
        require(document.isEmpty(), "what is refused leaves the target alone");
        return 0;
    }
    OwnedBson written;
    requireFixedPoint(document, written);

    std::string json = "replaced";
    require(PropertiesToJson::convert(document, json), "a document has a JSON form");
    if (holdsOnlyUtf8(*document.root()))
        require(!json.empty() && json.front() == '{', "a document of UTF-8 texts has a JSON form that is not empty");
    return 0;
}
