// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How fast is insertMany() with a real server, and how much memory does a cursor take?
// - inserts DOCUMENTS: documents per second of insertMany(), compared with a loop over write()
// - cursors DOCUMENTS: peak memory of a cursor over a collection in each form, compared with a cursor of the driver.
//   Each runs in its own process
//
// usage: scripts/with-server server_collections inserts|cursors NUMBER

#include "database_client.h"
#include "dbc/collection.h"
#include "dbc/database.h"
#include "driver/mongoc_handles.h"
#include "support/measure.h"
#include "support/memory.h"
#include "support/own_process.h"
#include "support/server.h"
#include "support/shapes.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const char* const collectionName = "records";

const std::string& databaseName()
{
    static const std::string name = "benchmark_" + std::to_string(::getpid());
    return name;
}

/// A client of the library, and the collection.
class Library
{
public:
    Library() { m_client.connect(serverUri()); }

    DataBaseClient& client() { return m_client; }
    dbc::Collection collection() { return {m_client, databaseName(), collectionName}; }
    void drop() { dbc::Database(m_client, databaseName()).drop(); }

private:
    DataBaseClient m_client;
};

double documentsPerSecond(std::size_t documents, const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    return static_cast<double>(documents) / took.count();
}

void measureInserts(std::size_t documents)
{
    ObjectProperties properties;
    build(flatRecord().steps, properties);
    const std::vector<ObjectProperties> all(documents, properties);
    Library library;
    dbc::Collection target = library.collection();

    // In alternating rounds, so that a slow moment of the machine affects both.
    constexpr int rounds = 3;
    const std::size_t single = std::min<std::size_t>(documents, 1000);
    std::vector<double> loop;
    std::vector<double> many;
    for (int round = 0; round < rounds; ++round)
    {
        loop.push_back(documentsPerSecond(single, [&] {
            for (std::size_t i = 0; i < single; ++i)
                library.client().write(databaseName(), collectionName, properties);
        }));
        many.push_back(documentsPerSecond(documents, [&] { target.insertMany(all); }));
    }
    const auto stored = static_cast<std::size_t>(target.count({}));
    library.drop();
    check(stored == rounds * (documents + single), "all inserts");
    std::sort(loop.begin(), loop.end());
    std::sort(many.begin(), many.end());
    std::printf(
        "insertMany of %zu documents of 12 fields: %.0f documents per second, write() in a loop %.0f, ratio %.1f\n",
        documents, many[rounds / 2], loop[rounds / 2], many[rounds / 2] / loop[rounds / 2]);
}

int storeDocuments(std::size_t documents)
{
    const Shape& shape = flatRecord();
    const dbc::BsonView record{shape.canonicalBytes.data(), shape.canonicalBytes.size()};
    std::size_t left = documents;
    Library library;
    library.collection().insertMany([&] { return left-- > 0 ? std::optional<dbc::BsonView>(record) : std::nullopt; });
    return 0;
}

std::size_t findPlain(mongoc_client_t* client)
{
    const OwnedBson everything;
    const CollectionHandle collection(mongoc_client_get_collection(client, databaseName().c_str(), collectionName));
    const CursorHandle cursor(mongoc_collection_find_with_opts(collection.get(), everything.get(), nullptr, nullptr));
    std::size_t found = 0;
    const bson_t* document = nullptr;
    while (mongoc_cursor_next(cursor.get(), &document))
        ++found;
    return found;
}

double peakOfPlain(std::size_t documents)
{
    DataBaseClient().isConnected(); // the first client of the process starts the driver
    const ClientHandle client(mongoc_client_new(serverUri()));
    bson_error_t error{};
    OwnedBson ping;
    BSON_APPEND_INT32(ping.get(), "ping", 1);
    check(mongoc_client_command_simple(client.get(), "admin", ping.get(), nullptr, nullptr, &error), error.message);
    return peakOf([&] { check(findPlain(client.get()) == documents, "find"); });
}

template <typename Form>
double peakOfForm(std::size_t documents)
{
    Library library;
    library.collection().findOne({});
    return peakOf([&] {
        std::size_t found = 0;
        for (Form document : library.collection().find({}))
        {
            benchmark::DoNotOptimize(document);
            ++found;
        }
        check(found == documents, "find");
    });
}

void measureCursors(std::size_t documents)
{
    databaseName(); // the same in every process
    flatRecord();
    inItsOwnProcess("insertMany", [&] { return storeDocuments(documents); });
    const double plain = inItsOwnProcess("find with the driver", [&] { return peakOfPlain(documents); });
    const double trees =
        inItsOwnProcess("find as ObjectProperties", [&] { return peakOfForm<const ObjectProperties&>(documents); });
    const double values = inItsOwnProcess("find as Value", [&] { return peakOfForm<const dbc::Value&>(documents); });
    const double views = inItsOwnProcess("find as BsonView", [&] { return peakOfForm<dbc::BsonView>(documents); });
    Library().drop();
    std::printf("cursor over %zu documents of 12 fields: peak of the driver alone %.1f MiB above the start, "
                "as ObjectProperties %+.1f MiB, as Value %+.1f, as BsonView %+.1f\n",
                documents, plain, trees - plain, values - plain, views - plain);
}

} // namespace

int main(int argc, char** argv)
try
{
    const std::string action = argc > 2 ? argv[1] : "";
    const std::size_t number = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0;
    if (action == "inserts" && number > 0)
        measureInserts(number);
    else if (action == "cursors" && number > 0)
        measureCursors(number);
    else
        throw std::runtime_error("usage: server_collections inserts|cursors NUMBER");
    return 0;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "server_collections: %s\n", error.what());
    return 1;
}
