// What several chapters use.
#include "tour.h"

#include <json_to_properties.h>
#include <properties_to_json.h>

#include <stdexcept>

namespace tour {

std::size_t count(Tour& tour, const std::string& collection, const ObjectProperties& query)
{
    companion::Results found;
    tour.client->find(tour.database, collection, query, companion::document({{"_id", 1}}), found, 0, 0);
    return found.size();
}

ObjectProperties fromJson(const std::string& json)
{
    ObjectProperties document;
    if (!JsonToProperties::convert(json, &document))
    {
        throw std::logic_error("not JSON: " + json);
    }
    return document;
}

std::string toJson(const ObjectProperties& document)
{
    std::string json;
    PropertiesToJson::convert(document, json);
    return json;
}

long long number(const ObjectProperties& document, const std::string& key)
{
    switch (document.type(key))
    {
    case PropertyType::Int32:
        return document.valueAsInt32(key, 0);
    case PropertyType::Int64:
        return document.valueAsLongLong(key, 0);
    case PropertyType::Double:
        return static_cast<long long>(document.valueAsDouble(key, 0));
    default:
        return 0;
    }
}

} // namespace tour
