// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <object_properties.h>

#include <memory>
#include <string>
#include <vector>

namespace tour {

/// A record of iso_3166-2.json.
struct Subdivision
{
    std::string code; ///< "DE-BY"
    std::string name;
    std::string type;   ///< "Land"
    std::string parent; ///< code of the subdivision that contains this one;
                        ///< mostly empty
    ObjectProperties document;
    std::string id; ///< "_id" on the server; empty before it is written

    std::string country() const { return code.substr(0, 2); }
};

/// A record of iso_3166-1.json, with its subdivisions.
struct Country
{
    std::string code;   ///< "DE"
    std::string alpha3; ///< "DEU"
    std::string name;
    std::string officialName; ///< empty if the record has no such field
    std::string flag;         ///< two Unicode characters, shown as a flag
    int numeric = 0;
    std::vector<const Subdivision*> subdivisions;
    ObjectProperties document;
    std::string id;
};

/// Reads a JSON file into a document. @throws std::runtime_error with the
/// name of the file
ObjectProperties readJsonFile(const std::string& path);

std::vector<Country> countriesFrom(const ObjectProperties& json);
std::vector<Subdivision> subdivisionsFrom(const ObjectProperties& json);

/// Fills the documents for the server, with values of every type.
/// @param batch  an object id, the same in all documents
/// @param now    milliseconds since 1970-01-01 UTC
void fillDocument(Subdivision& subdivision, const std::string& batch,
                  long long now);
void fillDocument(Country& country, std::size_t allSubdivisions,
                  const std::string& batch, long long now);

} // namespace tour
