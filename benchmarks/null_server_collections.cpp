// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How much CPU time do collections and cursors add to the driver? Instead of a real server, which would use the same
// processors, a server in this process sends prepared replies.
// - inserts: insertMany() of 10,000 documents, compared with the driver's bulk write of the same documents as BSON
// - cursors: a cursor over 100,000 documents in each form, compared with a cursor of the driver
// Prints the medians of alternating rounds. With the name of a form, runs only this form, twice: callgrind counts the
// second time.
//
// usage: null_server_collections inserts|cursors [ROUNDS]
//        valgrind --tool=callgrind --collect-atstart=no null_server_collections inserts|cursors FORM

#include "database_client.h"
#include "dbc/collection.h"
#include "driver/mongoc_handles.h"
#include "support/measure.h"
#include "support/null_server.h"
#include "support/server.h"
#include "support/shapes.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const char* const databaseName = "benchmark";
const char* const collectionName = "records";

/// One of the operations to compare. Its preparation is not measured.
struct Work
{
    const char* name;
    std::function<void()> prepare;
    std::function<void()> run;
};

/// A client of the library and a client of the driver, connected to the same server.
class Clients
{
public:
    Clients()
        : m_plain(startDriver()),
          m_collection(mongoc_client_get_collection(m_plain.get(), databaseName, collectionName))
    {
        m_library.connect(server.uri());
    }

    mongoc_collection_t* plain() const { return m_collection.get(); }
    dbc::Collection collection() { return {m_library, databaseName, collectionName}; }

    NullServer server;

private:
    // The first client of a process initialises the driver.
    mongoc_client_t* startDriver()
    {
        m_library.isConnected();
        return mongoc_client_new(server.uri().c_str());
    }

    DataBaseClient m_library;
    ClientHandle m_plain;
    CollectionHandle m_collection;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Measures the CPU time per document of each operation, in alternating rounds, so that a slow moment affects all of
// them.
std::vector<double> microseconds(std::size_t rounds, std::size_t documents, const std::vector<Work>& works)
{
    std::vector<std::vector<double>> times(works.size());
    for (std::size_t round = 0; round < rounds; ++round)
    {
        for (std::size_t index = 0; index < works.size(); ++index)
        {
            works[index].prepare();
            const double begin = threadSeconds();
            works[index].run();
            times[index].push_back(1e6 * (threadSeconds() - begin) / static_cast<double>(documents));
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& each : times)
        medians.push_back(median(each));
    return medians;
}

// The first operation is that of the driver alone.
void report(const char* what, std::size_t documents, const std::vector<Work>& works, const std::string& argument)
{
    for (const Work& work : works)
    {
        if (argument != work.name)
            continue;
        work.prepare();
        work.run(); // the first one, which connects, is not counted
        work.prepare();
        CALLGRIND_TOGGLE_COLLECT;
        work.run();
        CALLGRIND_TOGGLE_COLLECT;
        return;
    }
    const std::size_t rounds = argument.empty() ? 21 : std::strtoul(argument.c_str(), nullptr, 10);
    check(rounds > 0, "a number of rounds, or a form");
    const std::vector<double> times = microseconds(rounds, documents, works);
    for (std::size_t index = 0; index < works.size(); ++index)
    {
        std::printf("%s %zu documents of 12 fields, %s: %.2f us CPU per document, own %.2f, ratio %.2f\n", what,
                    documents, works[index].name, times[index], times[index] - times[0], times[index] / times[0]);
    }
}

using Bytes = std::vector<std::uint8_t>;

void insertPlain(mongoc_collection_t* collection, const std::vector<Bytes>& documents)
{
    const BulkHandle bulk(mongoc_collection_create_bulk_operation_with_opts(collection, nullptr));
    for (const Bytes& bytes : documents)
    {
        bson_t document;
        bson_init_static(&document, bytes.data(), bytes.size());
        mongoc_bulk_operation_insert_with_opts(bulk.get(), &document, nullptr, nullptr);
    }
    bson_error_t error;
    check(mongoc_bulk_operation_execute(bulk.get(), nullptr, &error) != 0, error.message);
}

template <typename Documents>
void insertMany(dbc::Collection& collection, const Documents& documents)
{
    const dbc::InsertManyResult result = collection.insertMany(documents);
    check(result.inserted == static_cast<std::int64_t>(documents.size()), "insertMany");
}

void measureInserts(const std::string& argument)
{
    constexpr std::size_t documents = 10000;
    const Shape& shape = flatRecord();
    ObjectProperties properties;
    build(shape.steps, properties);
    // Each document has its own memory, as in a program.
    const std::vector<Bytes> bytes(documents, shape.canonicalBytes);
    const std::vector<dbc::Value> values(
        documents, dbc::Value::fromBson(shape.canonicalBytes.data(), shape.canonicalBytes.size()));
    const std::vector<ObjectProperties> trees(documents, properties);
    std::vector<dbc::BsonView> views;
    for (const Bytes& each : bytes)
        views.push_back({each.data(), each.size()});

    Clients clients;
    clients.server.answerInserts(documents);
    dbc::Collection collection = clients.collection();
    const auto nothing = [] {};
    report("insertMany of", documents,
           {{"driver", nothing, [&] { insertPlain(clients.plain(), bytes); }},
            {"Value", nothing, [&] { insertMany(collection, values); }},
            {"ObjectProperties", nothing, [&] { insertMany(collection, trees); }},
            {"BsonView", nothing, [&] { insertMany(collection, views); }}},
           argument);
}

std::size_t findPlain(mongoc_collection_t* collection)
{
    const OwnedBson everything;
    const CursorHandle cursor(mongoc_collection_find_with_opts(collection, everything.get(), nullptr, nullptr));
    std::size_t found = 0;
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor.get(), &document))
        ++found;
    return found;
}

template <typename Form>
std::size_t findAs(dbc::Collection&& collection)
{
    std::size_t found = 0;
    for (Form document : collection.find({}))
    {
        benchmark::DoNotOptimize(document);
        ++found;
    }
    return found;
}

void measureCursors(const std::string& argument)
{
    constexpr std::size_t batches = 100;
    constexpr std::size_t perBatch = 1000;
    Clients clients;
    const auto prepare = [&] { clients.server.answerFind(flatRecord().canonicalBytes, batches, perBatch); };
    const auto all = [](std::size_t found) { check(found == batches * perBatch, "find"); };
    report("cursor over", batches * perBatch,
           {{"driver", prepare, [&] { all(findPlain(clients.plain())); }},
            {"ObjectProperties", prepare, [&] { all(findAs<const ObjectProperties&>(clients.collection())); }},
            {"Value", prepare, [&] { all(findAs<const dbc::Value&>(clients.collection())); }},
            {"BsonView", prepare, [&] { all(findAs<dbc::BsonView>(clients.collection())); }}},
           argument);
}

} // namespace

int main(int argc, char** argv)
try
{
    const std::string action = argc > 1 ? argv[1] : "";
    const std::string argument = argc > 2 ? argv[2] : "";
    if (action == "inserts")
        measureInserts(argument);
    else if (action == "cursors")
        measureCursors(argument);
    else
        throw std::runtime_error("usage: null_server_collections inserts|cursors [ROUNDS|FORM]");
    return 0;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "null_server_collections: %s\n", error.what());
    return 1;
}
