// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How much time and memory does the library add to the driver, with a real server?
// - finds DOCUMENTS: CPU time per document that find() takes in addition to a cursor of the driver; the median of
//   alternating rounds
// - inserts DOCUMENTS: the same for write() in addition to an insert of the driver
// - results DOCUMENTS: peak memory while a result list is built
//
// usage: scripts/with-server server_operations finds|inserts|results NUMBER

#include "database_client.h"
#include "driver/mongoc_handles.h"
#include "object_properties.h"
#include "support/measure.h"
#include "support/memory.h"
#include "support/server.h"
#include "support/shapes.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <list>
#include <memory>
#include <stdexcept>
#include <streambuf>

namespace {

const char* const collectionName = "records";

/// A database with a unique name on the server of scripts/with-server, for the library and the driver. Dropped at the
/// end.
class Server
{
public:
    Server()
        : m_database("benchmark_" + std::to_string(getpid())), m_plain(mongoc_client_new(serverUri())),
          m_collection(mongoc_client_get_collection(m_plain.get(), name().c_str(), collectionName))
    {
        library.connect(serverUri());
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server()
    {
        bson_error_t error;
        const DatabaseHandle database(mongoc_client_get_database(m_plain.get(), name().c_str()));
        mongoc_database_drop(database.get(), &error);
    }

    const std::string& name() const { return m_database; }
    mongoc_collection_t* collection() const { return m_collection.get(); }

    /// The flat record with a new id.
    static void makeRecord(OwnedBson& record)
    {
        build(flatRecord().canonicalSteps, record.get());
        bson_oid_t id;
        bson_oid_init(&id, nullptr);
        bson_append_oid(record.get(), "_id", -1, &id);
    }

    void insertMany(std::size_t documents) const
    {
        const BulkHandle bulk(mongoc_collection_create_bulk_operation_with_opts(collection(), nullptr));
        for (std::size_t i = 0; i < documents; ++i)
        {
            OwnedBson record;
            makeRecord(record);
            mongoc_bulk_operation_insert(bulk.get(), record.get());
        }
        bson_error_t error;
        check(mongoc_bulk_operation_execute(bulk.get(), nullptr, &error) != 0, error.message);
    }

    DataBaseClient library; // before the plain client: the first client of a process starts the driver

private:
    std::string m_database;
    ClientHandle m_plain;
    CollectionHandle m_collection;
};

using Results = std::list<ObjectProperties*>;

struct DeleteAll
{
    void operator()(Results* results) const
    {
        for (const ObjectProperties* document : *results)
            delete document;
        delete results;
    }
};

using OwnedResults = std::unique_ptr<Results, DeleteAll>;

OwnedResults findWithLibrary(Server& server)
{
    OwnedResults results(new Results);
    server.library.find(server.name(), collectionName, ObjectProperties(), ObjectProperties(), *results, 0, 0);
    return results;
}

std::size_t findWithDriver(const Server& server)
{
    OwnedBson everything;
    const CursorHandle cursor(
        mongoc_collection_find_with_opts(server.collection(), everything.get(), nullptr, nullptr));
    std::size_t found = 0;
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor.get(), &document))
        ++found;
    return found;
}

double microseconds(std::size_t documents, const std::function<void()>& work)
{
    const double begin = threadSeconds();
    work();
    return 1e6 * (threadSeconds() - begin) / static_cast<double>(documents);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Library and driver in alternating rounds, so that a slow moment of the machine affects both.
void compare(const char* what, std::size_t rounds, std::size_t documents, const std::function<void()>& withLibrary,
             const std::function<void()>& withDriver)
{
    std::vector<double> library;
    std::vector<double> driver;
    std::vector<double> own;
    for (std::size_t round = 0; round < rounds; ++round)
    {
        driver.push_back(microseconds(documents, withDriver));
        library.push_back(microseconds(documents, withLibrary));
        own.push_back(library.back() - driver.back());
    }
    std::printf("%s: own %.2f us CPU per document, library %.2f, driver %.2f, ratio %.2f (%zu rounds of %zu documents "
                "by each)\n",
                what, median(own), median(library), median(driver), median(library) / median(driver), rounds,
                documents);
}

void measureFinds(Server& server, std::size_t documents)
{
    server.insertMany(documents);
    OwnedResults results;
    compare(
        "find", 9, documents,
        [&] {
            results = findWithLibrary(server);
            check(results->size() == documents, "find");
        },
        [&] { check(findWithDriver(server) == documents, "plain find"); });
}

void measureInserts(Server& server, std::size_t documents)
{
    ObjectProperties record;
    build(flatRecord().steps, record);
    std::string id;
    constexpr std::size_t inARow = 50;
    compare(
        "insert", documents / inARow, inARow,
        [&] {
            for (std::size_t i = 0; i < inARow; ++i)
                server.library.write(server.name(), collectionName, record, id);
        },
        [&] {
            bson_error_t error;
            for (std::size_t i = 0; i < inARow; ++i)
            {
                OwnedBson plain;
                Server::makeRecord(plain);
                check(mongoc_collection_insert(server.collection(), MONGOC_INSERT_NONE, plain.get(), nullptr, &error),
                      error.message);
            }
        });
    check(findWithDriver(server) == 2 * (documents / inARow) * inARow, "all inserts");
}

void measureResults(Server& server, std::size_t documents)
{
    for (std::size_t left = documents; left > 0; left -= std::min<std::size_t>(left, 10000))
        server.insertMany(std::min<std::size_t>(left, 10000));
    const double driver = peakOf([&] { check(findWithDriver(server) == documents, "plain find"); });
    OwnedResults results;
    const double library = peakOf([&] { results = findWithLibrary(server); });
    check(results->size() == documents, "find");
    std::printf("result list of %zu documents: peak %.1f MiB above the start, %.0f bytes per document; driver alone "
                "%.1f MiB\n",
                documents, library, library * 1024 * 1024 / static_cast<double>(documents), driver);
}

} // namespace

int main(int argc, char** argv)
try
{
    const std::string action = argc > 2 ? argv[1] : "";
    const std::size_t number = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0;
    Server server;
    if (action == "finds")
        measureFinds(server, number);
    else if (action == "inserts")
        measureInserts(server, number);
    else if (action == "results")
        measureResults(server, number);
    else
        throw std::runtime_error("usage: server_operations finds|inserts|results NUMBER");
    return 0;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "server_operations: %s\n", error.what());
    return 1;
}
