// What do collections and cursors add to the plain driver, and what do batches save over single writes?
// - inserts DOCUMENTS: CPU time per document of insertMany() beside the driver's bulk write with the BSON ready made,
// and
//   documents per second beside a loop over write()
// - cursors DOCUMENTS: CPU time per document of a cursor in each form above a plain cursor, and the peak of the memory
// Median of rounds taken in turn.
//
// usage: scripts/with-server server_collections inserts|cursors NUMBER

#include "database_client.h"
#include "dbc/collection.h"
#include "dbc/database.h"
#include "driver/mongoc_handles.h"
#include "support/measure.h"
#include "support/memory.h"
#include "support/server.h"
#include "support/shapes.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const char* const collectionName = "records";

/// A database of its own, dropped at the end, for the library and the plain driver.
class Server
{
public:
    Server()
        : m_name("benchmark_" + std::to_string(getpid())), m_plain(mongoc_client_new(serverUri())),
          m_collection(mongoc_client_get_collection(m_plain.get(), m_name.c_str(), collectionName))
    {
        client.connect(serverUri());
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() { dbc::Database(client, m_name).drop(); }

    const std::string& name() const { return m_name; }
    mongoc_collection_t* plain() const { return m_collection.get(); }
    dbc::Collection collection() { return {client, m_name, collectionName}; }

    DataBaseClient client; // before the plain client: the first client of a process starts the driver

private:
    std::string m_name;
    ClientHandle m_plain;
    CollectionHandle m_collection;
};

using Work = std::function<void()>;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// CPU time per document of each work, in turns, so that what slows the machine down meets all.
std::vector<double> microseconds(std::size_t rounds, std::size_t documents, const std::vector<Work>& works)
{
    std::vector<std::vector<double>> times(works.size());
    for (std::size_t round = 0; round < rounds; ++round)
    {
        for (std::size_t index = 0; index < works.size(); ++index)
        {
            const double begin = threadSeconds();
            works[index]();
            times[index].push_back(1e6 * (threadSeconds() - begin) / static_cast<double>(documents));
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& each : times)
        medians.push_back(median(each));
    return medians;
}

double documentsPerSecond(std::size_t documents, const Work& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    return static_cast<double>(documents) / took.count();
}

void insertPlain(const Server& server, const bson_t* record, std::size_t documents)
{
    const BulkHandle bulk(mongoc_collection_create_bulk_operation_with_opts(server.plain(), nullptr));
    for (std::size_t i = 0; i < documents; ++i)
        mongoc_bulk_operation_insert_with_opts(bulk.get(), record, nullptr, nullptr);
    bson_error_t error;
    check(mongoc_bulk_operation_execute(bulk.get(), nullptr, &error) != 0, error.message);
}

void measureInserts(Server& server, std::size_t documents)
{
    const Shape& shape = flatRecord();
    bson_t record;
    bson_init_static(&record, shape.canonicalBytes.data(), shape.canonicalBytes.size());
    const dbc::Value value = dbc::Value::fromBson(shape.canonicalBytes.data(), shape.canonicalBytes.size());
    ObjectProperties properties;
    build(shape.steps, properties);
    dbc::Collection target = server.collection();
    const std::vector<dbc::Value> values(documents, value);
    const std::vector<ObjectProperties> all(documents, properties);

    const std::vector<double> times =
        microseconds(7, documents,
                     {[&] { insertPlain(server, &record, documents); }, [&] { target.insertMany(values); },
                      [&] { target.insertMany(all); }});
    std::printf("insertMany of %zu documents of 12 fields: driver %.2f us CPU per document, Value %.2f (%.2f times), "
                "ObjectProperties %.2f (%.2f times)\n",
                documents, times[0], times[1], times[1] / times[0], times[2], times[2] / times[0]);

    const std::size_t single = std::min<std::size_t>(documents, 1000);
    const double loop = documentsPerSecond(single, [&] {
        for (std::size_t i = 0; i < single; ++i)
            server.client.write(server.name(), collectionName, properties);
    });
    const double many = documentsPerSecond(documents, [&] { target.insertMany(all); });
    std::printf("documents per second: write() in a loop %.0f, insertMany %.0f (%.1f times)\n", loop, many,
                many / loop);
    check(target.count({}) == static_cast<std::int64_t>(22 * documents + single), "all inserts");
}

std::size_t findPlain(const Server& server)
{
    OwnedBson everything;
    const CursorHandle cursor(mongoc_collection_find_with_opts(server.plain(), everything.get(), nullptr, nullptr));
    std::size_t found = 0;
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor.get(), &document))
        ++found;
    return found;
}

template <typename Form>
std::size_t findAs(Server& server)
{
    std::size_t found = 0;
    for (Form document : server.collection().find({}))
    {
        benchmark::DoNotOptimize(document);
        ++found;
    }
    return found;
}

void measureCursors(Server& server, std::size_t documents)
{
    const Shape& shape = flatRecord();
    const dbc::BsonView record{shape.canonicalBytes.data(), shape.canonicalBytes.size()};
    std::size_t left = documents;
    server.collection().insertMany([&] { return left-- > 0 ? std::optional<dbc::BsonView>(record) : std::nullopt; });

    const auto all = [documents](std::size_t found) { check(found == documents, "find"); };
    const std::vector<Work> works = {
        [&] { all(findPlain(server)); }, [&] { all(findAs<const ObjectProperties&>(server)); },
        [&] { all(findAs<const dbc::Value&>(server)); }, [&] { all(findAs<dbc::BsonView>(server)); }};
    const char* const names[] = {"plain driver", "ObjectProperties", "Value", "BsonView"};
    const std::vector<double> times = microseconds(7, documents, works);
    for (std::size_t index = 0; index < works.size(); ++index)
        std::printf("cursor over %zu documents of 12 fields as %s: %.2f us CPU per document, own %.2f, peak %.1f MiB\n",
                    documents, names[index], times[index], times[index] - times[0], peakOf(works[index]));
}

} // namespace

int main(int argc, char** argv)
try
{
    const std::string action = argc > 2 ? argv[1] : "";
    const std::size_t number = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0;
    Server server;
    if (action == "inserts")
        measureInserts(server, number);
    else if (action == "cursors")
        measureCursors(server, number);
    else
        throw std::runtime_error("usage: server_collections inserts|cursors NUMBER");
    return 0;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "server_collections: %s\n", error.what());
    return 1;
}
