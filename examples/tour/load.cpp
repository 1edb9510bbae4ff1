// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "load": converts JSON to documents with JsonToProperties and with
// the setters of ObjectProperties.
#include "tour.h"

#include <dbc/values.h>

#include <chrono>
#include <map>

namespace tour {

namespace {

void giveCountriesTheirParts(Tour& tour)
{
    std::map<std::string, Country*> byCode;
    for (Country& country : tour.countries)
        byCode[country.code] = &country;
    for (const Subdivision& subdivision : tour.subdivisions)
    {
        const auto owner = byCode.find(subdivision.country());
        if (owner != byCode.end())
            owner->second->subdivisions.push_back(&subdivision);
    }
}

void fillDocuments(Tour& tour)
{
    const long now =
        dbc::millisecondsOf(dbc::toTime(std::chrono::system_clock::now()));
    for (Subdivision& subdivision : tour.subdivisions)
        fillDocument(subdivision, tour.batch, now);
    for (Country& country : tour.countries)
        fillDocument(country, tour.subdivisions.size(), tour.batch, now);
}

void showFieldsOf(const ObjectProperties& document)
{
    std::string keys;
    for (const std::string& key : document.childKeys())
        keys += ' ' + key;
    show("one of them, " + dbc::getOr(document, "name", "") + ": values" +
         keys);
    show("groups: " + document.childGroups().front() +
         "; arrays: " + document.childArrays().front() + ", " +
         document.childArrays().back());
}

} // namespace

void load(Tour& tour)
{
    title("load");
    tour.countries.clear();
    tour.subdivisions.clear();

    Step countries("read iso_3166-1.json", "read_json");
    tour.countries =
        countriesFrom(readJsonFile(tour.options.data + "/iso_3166-1.json"));
    countries.done(tour.countries.size(), "records", 0);

    Step subdivisions(
        "read iso_3166-2.json, elements in the order of their numbers",
        "elements");
    tour.subdivisions = subdivisionsFrom(
        readJsonFile(tour.options.data + "/iso_3166-2.json"));
    subdivisions.done(tour.subdivisions.size(), "records", 0);
    if (tour.countries.empty() || tour.subdivisions.empty())
        throw std::runtime_error("no records in " + tour.options.data);

    Step documents("make typed documents of the records", "make_document");
    giveCountriesTheirParts(tour);
    fillDocuments(tour);
    documents.done(tour.countries.size() + tour.subdivisions.size(),
                   "documents", 0);
    showFieldsOf(tour.countries.front().document);
}

void needRecords(Tour& tour)
{
    if (tour.countries.empty())
        load(tour);
}

} // namespace tour
