// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "records.h"
#include "report.h"

#include <database_client.h>
#include <dbc/access.h>
#include <dbc/build.h>
#include <dbc/results.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tour {

/// Options of the command line.
struct Options
{
    std::string uri;
    std::string authUri; ///< connection string of an administrator on a
                         ///< server with authentication; empty if not given
    std::string data;    ///< folder with iso_3166-1.json and iso_3166-2.json
};

/// Data that the chapters share: the client, the database that the tour
/// creates and drops, and the records.
struct Tour
{
    Options options;
    std::unique_ptr<DataBaseClient>
        client; ///< connected before the first chapter that needs a server
    std::string database; ///< a unique name for each run
    std::string batch;    ///< an id that marks the documents of this run
    std::vector<Country> countries; ///< as read from the files, each with its
                                    ///< document
    std::vector<Subdivision> subdivisions;
    bool stored = false; ///< whether the documents are on the server
};

constexpr const char* countriesCollection = "countries";
constexpr const char* subdivisionsCollection = "subdivisions";

/// Prints the number, the name and the subject of a chapter.
void title(const std::string& name);

// One function for each chapter, in the order of the tour.
void load(Tour& tour);
void write(Tour& tour);
void importRecords(Tour& tour);
void find(Tour& tour);
void filter(Tour& tour);
void update(Tour& tour);
void aggregate(Tour& tour);
void compare(Tour& tour);
void remove(Tour& tour);
void files(Tour& tour);
void users(Tour& tour);

/// Run the earlier chapters that a chapter needs, if they have not run.
void needRecords(Tour& tour);
void needStored(Tour& tour);

/// Counts the matching documents of the collection by reading their ids.
std::size_t count(Tour& tour, const std::string& collection,
                  const ObjectProperties& query);

/// A document from valid JSON. @throws std::logic_error if it is not valid
ObjectProperties fromJson(const std::string& json);
/// A document as JSON.
std::string toJson(const ObjectProperties& document);

} // namespace tour
