// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Converts the records: JSON to a tree, the tree to structs, the structs to
// typed documents.
#include "records.h"

#include <dbc/access.h>
#include <dbc/files.h>
#include <dbc/scopes.h>
#include <json_to_properties.h>

#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tour {

namespace {

// The elements of an array. dbc::elements() sorts them by their numbers. The
// tree itself sorts children by their keys as strings: 0, 1, 10, 11, 2 ...
std::vector<std::shared_ptr<Property>> recordsIn(const ObjectProperties& json,
                                                 const std::string& key)
{
    const auto list = dbc::findNode(json, key);
    if (!list || !list->isArray())
    {
        throw std::runtime_error("the data has no list of records \"" + key +
                                 "\"");
    }
    //! [elements]
    std::vector<std::shared_ptr<Property>> elements =
        dbc::elements(json, key);
    //! [elements]
    return elements;
}

// Adds nothing to the record; valueAsString() would add a missing field.
std::string text(Property& record, const std::string& field)
{
    const std::shared_ptr<Property> found = record.propertyBySingleKey(field);
    return found ? found->currentValueAsString("") : std::string();
}

} // namespace

ObjectProperties readJsonFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    if (!file || !(content << file.rdbuf()))
    {
        throw std::runtime_error(
            "cannot read " + path +
            " (Debian package iso-codes; --data names another folder)");
    }
    //! [read_json]
    ObjectProperties json;
    const bool valid = JsonToProperties::convert(content.str(), &json);
    //! [read_json]
    if (!valid)
        throw std::runtime_error(path + " is not JSON");
    return json;
}

std::vector<Country> countriesFrom(const ObjectProperties& json)
{
    std::vector<Country> countries;
    for (const std::shared_ptr<Property>& record : recordsIn(json, "3166-1"))
    {
        Country country;
        country.code = text(*record, "alpha_2");
        country.alpha3 = text(*record, "alpha_3");
        country.name = text(*record, "name");
        country.officialName = text(*record, "official_name");
        country.flag = text(*record, "flag");
        country.numeric = std::stoi(text(*record, "numeric"));
        countries.push_back(std::move(country));
    }
    return countries;
}

std::vector<Subdivision> subdivisionsFrom(const ObjectProperties& json)
{
    std::vector<Subdivision> subdivisions;
    for (const std::shared_ptr<Property>& record : recordsIn(json, "3166-2"))
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

void fillDocument(Subdivision& subdivision, const std::string& batch,
                  long long now)
{
    ObjectProperties& document = subdivision.document;
    document.setValueString("code", subdivision.code);
    document.setValueString("country", subdivision.country());
    document.setValueString("name", subdivision.name);
    document.setValueString("type", subdivision.type);
    if (!subdivision.parent.empty())
        document.setValueString("parent", subdivision.parent);
    document.setValueInt32("letters",
                           static_cast<int>(subdivision.name.size()));
    document.setValueTime("loaded", now);
    document.setValueId("batch", batch);
}

namespace {

// In an array every setter and every beginGroup() adds an element. With one
// key for all elements, they stay in the order of the calls. With the keys 0,
// 1, 2 ... the eleventh element would follow the second.
void fillArrays(Country& country)
{
    ObjectProperties& document = country.document;
    std::set<std::string> seen;
    {
        const dbc::ArrayScope types(document, "types"); // values
        for (const Subdivision* const part : country.subdivisions)
        {
            if (seen.insert(part->type).second)
                document.setValueString("element", part->type);
        }
    }
    const dbc::ArrayScope subdivisions(document, "subdivisions"); // documents
    for (const Subdivision* const part : country.subdivisions)
    {
        const dbc::GroupScope element(document, "element");
        document.setValueString("code", part->code);
        document.setValueString("name", part->name);
    }
}

} // namespace

void fillDocument(Country& country, std::size_t allSubdivisions,
                  const std::string& batch, long long now)
{
    ObjectProperties& document = country.document;

    document.setValueString("code", country.code);
    document.setValueString("name", country.name);
    //! [make_document]
    document.setValueInt32("numeric", country.numeric);
    document.setValueBool("divided", !country.subdivisions.empty());
    //! [make_document]
    document.setValueDouble("share",
                            static_cast<double>(country.subdivisions.size()) /
                                static_cast<double>(allSubdivisions));
    document.setValueTime("loaded", now);
    document.setValueId("batch", batch);
    document.setValueBinary(
        "flag",
        std::vector<unsigned char>(country.flag.begin(), country.flag.end()));
    document.setValueRegex("codes", "^" + country.code + "-", "");
    dbc::Crc32 checksum;
    checksum.add(country.name.data(), country.name.size());
    document.setValueLongLong("checksum",
                              checksum.value()); // too large for an Int32

    {
        // A nested document: keys are below it until the scope ends.
        //! [make_document]
        const dbc::GroupScope names(document, "names");
        document.setValueString("alpha3", country.alpha3);
        //! [make_document]
        if (!country.officialName.empty())
            document.setValueString("official", country.officialName);
    }
    fillArrays(country);
}

} // namespace tour
