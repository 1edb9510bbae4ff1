// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "properties_to_json.h"

#include "driver/bson_handles.h"
#include "driver/driver.h"
#include "object_properties.h"
#include "properties_to_bson.h"

#include <cstddef>
#include <string>

bool PropertiesToJson::convert(const ObjectProperties& properties, std::string& json)
{
    return properties_to_json(properties, json);
}

bool PropertiesToJson::properties_to_json(const ObjectProperties& properties, std::string& json)
{
    OwnedBson bson;
    const bool converted = PropertiesToBson::convert(properties, bson.get());
    std::size_t length = 0;
    const BsonText text(legacyJson(bson.get(), &length));
    if (text)
        json.assign(text.get(), length);
    else
        json.clear(); // a string that is not valid UTF-8 cannot be written as JSON
    return converted;
}
