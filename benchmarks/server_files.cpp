// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// How much memory does it take to store and read large files, and how much of it does the library take?
// - stores MIB: peak memory and CPU time while a file is stored, by the driver and by the library
// - reads MIB [KIB]: the same while a file is read. Plain inserts store its chunks before, by default of 255 KiB
//
// Driver and library run in separate processes, so that neither uses memory that the other has freed. Progress is
// printed to standard error.
//
// usage: scripts/with-server server_files stores MIB | reads MIB [KIB]

#include "database_client.h"
#include "driver/mongoc_handles.h"
#include "support/measure.h"
#include "support/memory.h"
#include "support/own_process.h"
#include "support/server.h"

#include <sys/stat.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <streambuf>
#include <vector>

namespace {

const char* const storeName = "fs";
const char* const fileName = "large";
constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// A database with a unique name, dropped at the end.
class Database
{
public:
    Database() : m_name("benchmark_" + std::to_string(::getpid())) {}

    const std::string& name() const { return m_name; }

    void drop() const
    {
        const ClientHandle client(mongoc_client_new(serverUri()));
        bson_error_t error{};
        const DatabaseHandle database(mongoc_client_get_database(client.get(), m_name.c_str()));
        check(mongoc_database_drop(database.get(), &error), error.message);
    }

private:
    const std::string m_name;
};

/// A file in the directory for temporary files, removed at the end.
class LocalFile
{
public:
    explicit LocalFile(std::size_t mib)
    {
        const int file = ::mkstemp(path);
        check(file >= 0, "temporary file");
        const std::vector<char> block(mebibyte, 'x');
        for (std::size_t i = 0; i < mib; ++i)
            check(::write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size()), "temporary file");
        ::close(file);
    }
    LocalFile(const LocalFile&) = delete;
    LocalFile& operator=(const LocalFile&) = delete;
    ~LocalFile() { ::unlink(path); }

    char path[32] = "/tmp/benchmark_file_XXXXXX";
};

// --- one side in a process of its own ------------------------------------------------------------------------------

/// The memory and time of the driver or the library.
struct Cost
{
    double peak = 0;         ///< MiB above the start
    double milliseconds = 0; ///< of CPU
    double largestReply = 0; ///< MiB; 0 when nobody looked
};

Cost costOf(const std::function<void()>& work)
{
    Cost cost;
    const double begin = threadSeconds();
    cost.peak = peakOf(work);
    cost.milliseconds = 1e3 * (threadSeconds() - begin);
    return cost;
}

// Returns the position of the process in the file, from /proc.
double mebibytesRead(pid_t process, const char* path)
{
    const std::string place = "/proc/" + std::to_string(process);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(place + "/fd", error))
    {
        if (std::filesystem::read_symlink(entry.path(), error) != path)
            continue;
        std::ifstream record(place + "/fdinfo/" + entry.path().filename().string());
        std::string field;
        double position = 0;
        record >> field >> position;
        return position / static_cast<double>(mebibyte);
    }
    return 0;
}

void showUntilReadable(int pipe, pid_t process, const char* what, const char* path)
{
    constexpr int interval = 5000;
    std::fprintf(stderr, "%s\n", what);
    pollfd waiting{pipe, POLLIN, 0};
    for (int seconds = 0; ::poll(&waiting, 1, interval) == 0;)
    {
        seconds += interval / 1000;
        std::fprintf(stderr, "%s: %d s", what, seconds);
        if (path)
            std::fprintf(stderr, ", %.0f MiB", mebibytesRead(process, path));
        std::fputc('\n', stderr);
    }
}

Cost showingProgress(const char* what, const char* path, const std::function<Cost()>& side)
{
    return inItsOwnProcess(what, side, [&](int pipe, pid_t process) { showUntilReadable(pipe, process, what, path); });
}

void print(const char* what, std::size_t mib, const Cost& library, const Cost& driver)
{
    const double own = std::round(10 * (library.peak - driver.peak)) / 10 + 0.0; // without a "-0.0"
    std::printf("file of %zu MiB %s: peak %.1f MiB above the start, driver alone %.1f, library's own %.1f; "
                "CPU %.0f ms, driver alone %.0f, ratio %.2f\n",
                mib, what, library.peak, driver.peak, own, library.milliseconds, driver.milliseconds,
                library.milliseconds / driver.milliseconds);
}

// --- the plain driver ------------------------------------------------------------------------------------------------

/// The driver, used without the library.
class PlainStore
{
public:
    explicit PlainStore(const Database& database) : m_client(startDriver())
    {
        const std::unique_ptr<mongoc_apm_callbacks_t, DestroyWith<mongoc_apm_callbacks_destroy>> callbacks(
            mongoc_apm_callbacks_new());
        mongoc_apm_set_command_succeeded_cb(callbacks.get(), noteReply);
        mongoc_client_set_apm_callbacks(m_client.get(), callbacks.get(), &m_largestReply);
        bson_error_t error{};
        m_store.reset(mongoc_client_get_gridfs(m_client.get(), database.name().c_str(), storeName, &error));
        check(m_store != nullptr, error.message);
    }

    mongoc_gridfs_t* get() const { return m_store.get(); }
    double largestReply() const { return m_largestReply / static_cast<double>(mebibyte); }

private:
    static mongoc_client_t* startDriver()
    {
        mongoc_init();
        std::atexit(mongoc_cleanup);
        return mongoc_client_new(serverUri());
    }

    static void noteReply(const mongoc_apm_command_succeeded_t* event)
    {
        auto& largest = *static_cast<double*>(mongoc_apm_command_succeeded_get_context(event));
        largest = std::max(largest, static_cast<double>(mongoc_apm_command_succeeded_get_reply(event)->len));
    }

    double m_largestReply = 0;
    const ClientHandle m_client;
    GridFsHandle m_store;
};

Cost storeWithDriver(const Database& database, const char* path)
{
    const PlainStore store(database);
    return costOf([&] {
        mongoc_gridfs_file_opt_t options{};
        options.filename = fileName;
        // The next call reads the stream to its end and frees it.
        mongoc_stream_t* const source = mongoc_stream_file_new_for_path(path, O_RDONLY, 0);
        check(source != nullptr, "opening the local file");
        const GridFsFileHandle file(mongoc_gridfs_create_file_from_stream(store.get(), source, &options));
        check(file != nullptr && mongoc_gridfs_file_save(file.get()), "storing with the driver");
    });
}

Cost readWithDriver(const Database& database, std::size_t size)
{
    const PlainStore store(database);
    Cost cost = costOf([&] {
        bson_error_t error{};
        const GridFsFileHandle file(mongoc_gridfs_find_one_by_filename(store.get(), fileName, &error));
        check(file != nullptr, error.message);
        std::array<char, 4096> buffer;
        mongoc_iovec_t piece{buffer.data(), buffer.size()};
        std::size_t count = 0;
        for (ssize_t got = 0; (got = mongoc_gridfs_file_readv(file.get(), &piece, 1, 1, 0)) > 0;)
            count += static_cast<std::size_t>(got);
        check(count == size, "reading with the driver");
    });
    cost.largestReply = store.largestReply();
    return cost;
}

// --- the library -----------------------------------------------------------------------------------------------------

/// Counts the bytes that are written and discards them.
class CountingBuffer : public std::streambuf
{
public:
    std::size_t count() const { return m_count; }

private:
    std::streamsize xsputn(const char*, std::streamsize size) override
    {
        m_count += static_cast<std::size_t>(size);
        return size;
    }
    int_type overflow(int_type character) override
    {
        ++m_count;
        return traits_type::not_eof(character);
    }

    std::size_t m_count = 0;
};

// Connects, and opens the store once, like the driver.
void open(DataBaseClient& library, const Database& database)
{
    library.connect(serverUri());
    std::list<std::string> names;
    library.listFiles(database.name(), storeName, names);
}

Cost storeWithLibrary(const Database& database, const char* path)
{
    DataBaseClient library;
    open(library, database);
    return costOf([&] { library.writeFile(database.name(), storeName, fileName, path); });
}

Cost readWithLibrary(const Database& database, std::size_t size)
{
    DataBaseClient library;
    open(library, database);
    CountingBuffer buffer;
    std::iostream stream(&buffer);
    const Cost cost = costOf([&] { library.readFile(database.name(), storeName, fileName, &stream); });
    check(buffer.count() == size, "reading with the library");
    return cost;
}

// --- stores and reads ------------------------------------------------------------------------------------------------

void dropInItsOwnProcess(const Database& database)
{
    showingProgress("dropping the database", nullptr, [&] {
        DataBaseClient().isConnected(); // the first client of the process starts the driver
        database.drop();
        return Cost();
    });
}

// Drops the database in between, because the time to store a chunk may grow with the number of stored chunks.
void measureStores(const Database& database, std::size_t mib)
{
    const LocalFile file(mib);
    const Cost driver = showingProgress("storing with the plain driver", file.path,
                                        [&] { return storeWithDriver(database, file.path); });
    dropInItsOwnProcess(database);
    const Cost library =
        showingProgress("storing with the library", file.path, [&] { return storeWithLibrary(database, file.path); });
    dropInItsOwnProcess(database);
    print("stored", mib, library, driver);
}

void insert(const CollectionHandle& collection, const bson_t& document)
{
    bson_error_t error{};
    check(mongoc_collection_insert_one(collection.get(), &document, nullptr, nullptr, &error), error.message);
}

// Inserts the documents of a stored file, without the driver's updates of each chunk.
Cost insertFile(const Database& database, std::size_t size, std::size_t chunkSize)
{
    const PlainStore store(database); // makes the indexes
    bson_oid_t id;
    bson_oid_init(&id, nullptr);
    const std::vector<std::uint8_t> bytes(chunkSize, 'x');
    const CollectionHandle chunks(mongoc_collection_copy(mongoc_gridfs_get_chunks(store.get())));
    std::int32_t number = 0;
    for (std::size_t left = size; left > 0; ++number)
    {
        const std::size_t now = std::min(left, chunkSize);
        left -= now;
        OwnedBson chunk;
        BSON_APPEND_OID(chunk.get(), "files_id", &id);
        BSON_APPEND_INT32(chunk.get(), "n", number);
        BSON_APPEND_BINARY(chunk.get(), "data", BSON_SUBTYPE_BINARY, bytes.data(), static_cast<std::uint32_t>(now));
        insert(chunks, *chunk.get());
    }
    const CollectionHandle files(mongoc_collection_copy(mongoc_gridfs_get_files(store.get())));
    OwnedBson record;
    BSON_APPEND_OID(record.get(), "_id", &id);
    BSON_APPEND_INT64(record.get(), "length", static_cast<std::int64_t>(size));
    BSON_APPEND_INT32(record.get(), "chunkSize", static_cast<std::int32_t>(chunkSize));
    BSON_APPEND_DATE_TIME(record.get(), "uploadDate", 0);
    BSON_APPEND_UTF8(record.get(), "filename", fileName);
    insert(files, *record.get());
    return {};
}

void measureReads(const Database& database, std::size_t mib, std::size_t chunkKib)
{
    const std::size_t size = mib * mebibyte;
    showingProgress("inserting the chunks", nullptr, [&] { return insertFile(database, size, chunkKib * 1024); });
    const Cost driver =
        showingProgress("reading with the plain driver", nullptr, [&] { return readWithDriver(database, size); });
    const Cost library =
        showingProgress("reading with the library", nullptr, [&] { return readWithLibrary(database, size); });
    dropInItsOwnProcess(database);
    print("read", mib, library, driver);
    std::printf("file of %zu MiB read: chunks of %zu KiB, largest reply of the server %.1f MiB\n", mib, chunkKib,
                driver.largestReply);
}

} // namespace

int main(int argc, char** argv)
try
{
    const std::string action = argc > 2 ? argv[1] : "";
    const std::size_t mib = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0;
    const std::size_t chunkKib = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 255;
    const Database database;
    if (action == "stores" && mib > 0)
        measureStores(database, mib);
    else if (action == "reads" && mib > 0 && chunkKib > 0)
        measureReads(database, mib, chunkKib);
    else
        throw std::runtime_error("usage: server_files stores MIB | reads MIB [KIB]");
    return 0;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "server_files: %s\n", error.what());
    return 1;
}
