// Records become documents: JSON text to a tree, a tree to plain structs, plain structs to typed documents.
#include "records.h"

#include <json_to_properties.h>

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tour {

namespace {

// A getter with a key would add the missing field to the record that is being read; this look-up adds nothing.
std::string text(Property& record, const std::string& field)
{
    const std::shared_ptr<Property> found = record.propertyBySingleKey(field);
    return found ? found->currentValueAsString("") : std::string();
}

std::shared_ptr<Property> arrayOf(const ObjectProperties& json, const std::string& key)
{
    const std::shared_ptr<Property> array = json.root()->propertyBySingleKey(key);
    if (!array || !array->isArray())
    {
        throw std::runtime_error("the data has no list of records \"" + key + "\"");
    }
    return array;
}

// 0, 1, 10, 2 as numbers; elements that share one key, which is no number, stay as they are.
long position(const std::string& key)
{
    return std::strtol(key.c_str(), nullptr, 10);
}

} // namespace

ObjectProperties readJsonFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    if (!file || !(content << file.rdbuf()))
    {
        throw std::runtime_error("cannot read " + path + " (Debian package iso-codes; --data names another folder)");
    }
    ObjectProperties json;
    if (!JsonToProperties::convert(content.str(), &json))
    {
        throw std::runtime_error(path + " is not JSON");
    }
    return json;
}

std::vector<std::shared_ptr<Property>> members(const Property& node)
{
    std::vector<std::shared_ptr<Property>> found;
    found.reserve(node.childCount());
    // With iterators: childByIndex(i) starts at the first child every time.
    std::transform(node.begin(), node.end(), std::back_inserter(found), [](const auto& entry) { return entry.second; });
    return found;
}

std::vector<std::shared_ptr<Property>> elementsInOrder(const Property& array)
{
    std::vector<std::shared_ptr<Property>> elements = members(array);
    std::stable_sort(elements.begin(), elements.end(),
                     [](const auto& a, const auto& b) { return position(a->keyView()) < position(b->keyView()); });
    return elements;
}

std::vector<Country> countriesFrom(const ObjectProperties& json)
{
    std::vector<Country> countries;
    for (const std::shared_ptr<Property>& record : elementsInOrder(*arrayOf(json, "3166-1")))
    {
        Country country;
        country.code = text(*record, "alpha_2");
        country.alpha3 = text(*record, "alpha_3");
        country.name = text(*record, "name");
        country.officialName = text(*record, "official_name");
        country.flag = text(*record, "flag");
        country.numeric = static_cast<int>(position(text(*record, "numeric")));
        countries.push_back(std::move(country));
    }
    return countries;
}

std::vector<Subdivision> subdivisionsFrom(const ObjectProperties& json)
{
    std::vector<Subdivision> subdivisions;
    for (const std::shared_ptr<Property>& record : elementsInOrder(*arrayOf(json, "3166-2")))
    {
        Subdivision subdivision;
        subdivision.code = text(*record, "code");
        subdivision.name = text(*record, "name");
        subdivision.type = text(*record, "type");
        subdivision.parent = text(*record, "parent");
        subdivisions.push_back(std::move(subdivision));
    }
    return subdivisions;
}

void fillDocument(Subdivision& subdivision, const std::string& batch, long long now)
{
    ObjectProperties& document = subdivision.document;
    document.setValueString("code", subdivision.code);
    document.setValueString("country", subdivision.country());
    document.setValueString("name", subdivision.name);
    document.setValueString("type", subdivision.type);
    if (!subdivision.parent.empty())
    {
        document.setValueString("parent", subdivision.parent);
    }
    document.setValueInt32("letters", static_cast<int>(subdivision.name.size()));
    document.setValueTime("loaded", now);
    document.setValueId("batch", batch);
}

void fillDocument(Country& country, std::size_t allSubdivisions, const std::string& batch, long long now)
{
    ObjectProperties& document = country.document;
    const std::vector<const Subdivision*>& parts = country.subdivisions;

    document.setValueString("code", country.code);
    document.setValueString("name", country.name);
    document.setValueInt32("numeric", country.numeric);
    document.setValueBool("divided", !parts.empty());
    document.setValueDouble("share", static_cast<double>(parts.size()) / static_cast<double>(allSubdivisions));
    document.setValueTime("loaded", now);
    document.setValueId("batch", batch);
    document.setValueBinary("flag", std::vector<unsigned char>(country.flag.begin(), country.flag.end()));
    document.setValueRegex("codes", "^" + country.code + "-", "");
    // Beyond the reach of int32.
    const auto* const bytes = reinterpret_cast<const Bytef*>(country.name.data());
    document.setValueLongLong("checksum",
                              static_cast<long long>(crc32(0, bytes, static_cast<uInt>(country.name.size()))));

    document.beginGroup("names"); // a nested document; until endGroup() keys are below it
    document.setValueString("alpha3", country.alpha3);
    if (!country.officialName.empty())
    {
        document.setValueString("official", country.officialName);
    }
    document.endGroup();

    // An array of values: in an array every setter adds an element. One key for all of them keeps the order of the
    // calls; with keys 0, 1, 2 ... of one's own the eleventh element would stand behind the second.
    std::set<std::string> types;
    document.beginArray("types");
    for (const Subdivision* const part : parts)
    {
        if (types.insert(part->type).second)
        {
            document.setValueString("element", part->type);
        }
    }
    document.endArray();

    // An array of documents: in an array every beginGroup() adds an element.
    document.beginArray("subdivisions");
    for (const Subdivision* const part : parts)
    {
        document.beginGroup("element");
        document.setValueString("code", part->code);
        document.setValueString("name", part->name);
        document.endGroup();
    }
    document.endArray();
}

} // namespace tour
