// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Functions that several chapters use.
#include "tour.h"

#include <json_to_properties.h>
#include <properties_to_json.h>

#include <stdexcept>

namespace tour {

std::size_t count(Tour& tour, const std::string& collection,
                  const ObjectProperties& query)
{
    dbc::Results found;
    tour.client->find(tour.database, collection, query,
                      dbc::document({{"_id", 1}}), found, 0, 0);
    return found.size();
}

ObjectProperties fromJson(const std::string& json)
{
    ObjectProperties document;
    if (!JsonToProperties::convert(json, &document))
        throw std::logic_error("not JSON: " + json);
    return document;
}

std::string toJson(const ObjectProperties& document)
{
    //! [to_json]
    std::string json;
    PropertiesToJson::convert(document, json);
    //! [to_json]
    return json;
}

} // namespace tour
