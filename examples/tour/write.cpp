// Chapter "write": documents go to the server, one insert each.
#include "tour.h"

namespace tour {

namespace {

template <typename Records>
void writeAll(Tour& tour, const char* collection, Records& records)
{
    Step step(std::string("write ") + collection);
    std::size_t done = 0;
    for (auto& record : records)
    {
        tour.client->write(tour.database, collection, record.document, record.id);
        step.progress(++done, records.size());
    }
    step.done(done);
    show("the id of the last one, made by write(): " + records.back().id);
}

// write() appends a new "_id" whatever the document holds: a document that was read goes back with update(), or without
// its own "_id".
void showTheIdTrap(Tour& tour)
{
    const ObjectProperties document =
        companion::document({{"_id", companion::ObjectId{tour.client->createId()}}, {"name", "has an id already"}});
    Step step("write a document that has an \"_id\" of its own");
    const std::string said = answer([&] { tour.client->write(tour.database, "odd", document); });
    step.done(said == "accepted" ? 1 : 0);
    showShort(said);
    note("write() always adds an \"_id\"; to choose it yourself: update() with UpdateFlagUpsert, as in chapter update");
}

} // namespace

void write(Tour& tour)
{
    needRecords(tour);
    title("write", "every document is inserted and gets an id");
    writeAll(tour, countriesCollection, tour.countries);
    writeAll(tour, subdivisionsCollection, tour.subdivisions);
    tour.stored = true;

    const ObjectProperties all;
    agree("countries", count(tour, countriesCollection, all), tour.countries.size());
    agree("subdivisions", count(tour, subdivisionsCollection, all), tour.subdivisions.size());
    showTheIdTrap(tour);
}

void needStored(Tour& tour)
{
    if (!tour.stored)
    {
        write(tour);
    }
}

} // namespace tour
