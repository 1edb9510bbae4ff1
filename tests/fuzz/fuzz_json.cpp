// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Text from outside as JSON: read, written, read again.

#include "json_to_properties.h"
#include "properties_to_json.h"
#include "round_trip.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

// Arrays are written in the order of their keys as texts, 10 before 2, and numbered anew when they are read.
bool holdsLongArray(const Property& node)
{
    if (node.isArray() && node.childCount() > 10)
        return true;
    for (const auto& entry : node)
    {
        if (holdsLongArray(*entry.second))
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ObjectProperties document;
    if (!JsonToProperties::convert(std::string(data, data + size), &document))
    {
        require(document.isEmpty(), "what is refused leaves the target alone");
        return 0;
    }
    OwnedBson bson;
    requireFixedPoint(document, bson);

    std::string first;
    require(PropertiesToJson::convert(document, first), "a document has a JSON form");
    // The text of some numbers and of some keys is no JSON, or means something else to the reader: infinities, "$oid".
    ObjectProperties again;
    if (!JsonToProperties::convert(first, &again) || holdsLongArray(*again.root()))
        return 0;
    std::string second;
    require(PropertiesToJson::convert(again, second), "what was read has a JSON form");
    ObjectProperties third;
    if (!JsonToProperties::convert(second, &third))
        return 0;
    std::string last;
    require(PropertiesToJson::convert(third, last), "what was read again has a JSON form");
    require(last == second, "text that was read and written once stays the same");
    return 0;
}
