// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "write": inserts the documents one by one.
#include "tour.h"

namespace tour {

namespace {

template <typename Records>
void writeAll(Tour& tour, const char* collection, Records& records)
{
    Step step(std::string("write ") + collection, "write");
    std::size_t done = 0;
    for (auto& record : records)
    {
        //! [write]
        tour.client->write(tour.database, collection, record.document,
                           record.id);
        //! [write]
        step.progress(++done, records.size());
    }
    step.done(done, "documents", done);
    show("id of the last document, made by write(): " + records.back().id);
}

// write() always appends a new "_id". To store a document that was read, use
// update(), or remove its "_id" first.
void showTheIdTrap(Tour& tour)
{
    //! [write_with_id]
    const dbc::ObjectId id{tour.client->createId()};
    const ObjectProperties document = dbc::document({{"_id", id}});
    //! [write_with_id]
    Step step("write a document that already has an \"_id\"",
              "write_with_id");
    const std::string said = answer([&] {
        //! [write_with_id]
        tour.client->write(tour.database, "odd", document);
        //! [write_with_id]
    });
    step.done(said == "accepted" ? 1 : 0);
    showShort(said);
    note("write() always adds an \"_id\"; to choose it yourself, use "
         "update() with UpdateFlagUpsert, as in the chapter update");
}

} // namespace

void write(Tour& tour)
{
    needRecords(tour);
    title("write");
    writeAll(tour, countriesCollection, tour.countries);
    writeAll(tour, subdivisionsCollection, tour.subdivisions);
    tour.stored = true;

    const ObjectProperties all;
    agree("countries", count(tour, countriesCollection, all),
          tour.countries.size());
    agree("subdivisions", count(tour, subdivisionsCollection, all),
          tour.subdivisions.size());
    showTheIdTrap(tour);
}

void needStored(Tour& tour)
{
    if (!tour.stored)
        write(tour);
}

} // namespace tour
