// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "import": inserts the same records twice, with one command for each
// document, and with many documents in one command.
#include "tour.h"

#include <dbc/collection.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace tour {

namespace {

double importOneByOne(Tour& tour,
                      const std::vector<ObjectProperties>& documents)
{
    Step step("a loop over write(): one command for each document",
              "import_loop");
    std::size_t done = 0;
    for (const ObjectProperties& document : documents)
    {
        //! [import_loop]
        tour.client->write(tour.database, "one_by_one", document);
        //! [import_loop]
        step.progress(++done, documents.size());
    }
    return step.done(done, "documents", done);
}

double importTogether(Tour& tour,
                      const std::vector<ObjectProperties>& documents)
{
    Step step("insertMany(): thousands of documents in one command",
              "import_many");
    //! [import_many]
    dbc::Collection together(*tour.client, tour.database, "together");
    const dbc::InsertManyResult result = together.insertMany(documents);
    //! [import_many]
    const auto inserted = static_cast<std::size_t>(result.inserted);
    const double seconds = step.done(inserted);
    agree("documents of insertMany()", inserted, documents.size());
    return seconds;
}

std::size_t countOf(Tour& tour, const char* collection)
{
    dbc::Collection imported(*tour.client, tour.database, collection);
    return static_cast<std::size_t>(imported.count({}));
}

} // namespace

void importRecords(Tour& tour)
{
    needRecords(tour);
    title("import");
    std::vector<ObjectProperties> documents;
    std::transform(tour.subdivisions.begin(), tour.subdivisions.end(),
                   std::back_inserter(documents),
                   [](const Subdivision& s) { return s.document; });

    const double loop = importOneByOne(tour, documents);
    const double many = importTogether(tour, documents);
    agree("one by one", countOf(tour, "one_by_one"), documents.size());
    agree("together", countOf(tour, "together"), documents.size());

    char line[80];
    std::snprintf(line, sizeof line,
                  "write(): %.3f s; insertMany(): %.3f s; ratio %.1f", loop,
                  many, loop / many);
    show(line);
    note("to import a file, pass a function to insertMany() that returns the "
         "next document: then only one batch is in memory");
}

} // namespace tour
