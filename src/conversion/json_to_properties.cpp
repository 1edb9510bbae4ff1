// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "json_to_properties.h"

#include "bson_to_properties.h"
#include "driver/bson_handles.h"

#include <cstdint>
#include <string>

bool JsonToProperties::convert(const std::string& json, ObjectProperties* properties)
{
    return properties && json_to_properties(json, properties);
}

bool JsonToProperties::json_to_properties(const std::string& json, ObjectProperties* properties)
{
    bson_error_t error{};
    const BsonPointer bson(bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json.c_str()), -1, &error));
    return bson && BsonToProperties::convert(bson.get(), properties);
}
