// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Files with metadata, partial reads and streams. Needs a server: scripts/with-server.
#include "example.h"

#include "test_server.h"

#include <dbc/file_store.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

struct TemporaryFolder
{
    TemporaryFolder()
    {
        path = (std::filesystem::temp_directory_path() / "database_client_XXXXXX").string();
        if (!::mkdtemp(path.data()))
            throw std::runtime_error("cannot create " + path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path); }

    std::string path;
};

void files(DataBaseClient& client, const std::string& database)
{
    section("files");
    //! [files]
    dbc::FileStore files(client, database);
    dbc::UploadOptions options;
    options.contentType = "text/plain";
    options.metadata = {{"author", "Ada"}};
    std::istringstream source("the first part, the second part");
    const dbc::FileInfo stored = files.upload("notes.txt", source, options);

    dbc::DownloadOptions part;
    part.offset = 16;
    files.download("notes.txt", std::cout, part);
    std::cout << '\n';

    for (const dbc::FileInfo& file : files.list({{"metadata.author", "Ada"}}))
        std::cout << file.name << ", " << file.length << " bytes, " << file.contentType << '\n';
    files.removeById(stored.id);
    //! [files]
}

void reader(DataBaseClient& client, const std::string& database)
{
    section("reader");
    dbc::FileStore files(client, database);
    std::istringstream source("header:content");
    files.upload("data", source);
    //! [reader]
    const std::unique_ptr<dbc::FileReader> file = files.open("data");
    file->seekg(7);
    std::string content;
    std::getline(*file, content);
    std::cout << content << " of " << file->info().length << " bytes\n";
    //! [reader]
}

void progress(DataBaseClient& client, const std::string& database)
{
    section("progress");
    dbc::FileStore files(client, database);
    std::istringstream source(std::string(1000000, 'x'));
    //! [progress]
    constexpr std::uint64_t length = 1000000; // length of the source
    dbc::UploadOptions upload;
    upload.progress = [&](std::uint64_t bytes) {
        std::cout << bytes * 100 / length << " % stored\n";
        return true; // continue
    };
    files.upload("report.txt", source, upload);

    std::ostringstream target;
    dbc::DownloadOptions download;
    download.progress = [](std::uint64_t bytes) { return bytes < 500000; }; // false cancels
    try
    {
        files.download("report.txt", target, download);
    }
    catch (const dbc::Cancelled& cancelled)
    {
        std::cout << cancelled.what() << ", " << target.str().size() << " bytes read\n";
    }
    //! [progress]
}

void local(DataBaseClient& client, const std::string& database)
{
    section("local");
    dbc::FileStore files(client, database);
    const TemporaryFolder folder;
    const std::string path = folder.path + "/report.txt";
    std::ofstream(path) << "one line\n";
    //! [local]
    files.uploadFile("report.txt", path); // throws std::system_error if it cannot be opened

    std::ofstream target(path + ".part", std::ios::binary);
    const dbc::FileInfo file = files.download("report.txt", target);
    target.close(); // sets failbit if the last bytes cannot be written
    if (!target)
        throw std::runtime_error("cannot write " + path);
    std::filesystem::rename(path + ".part", path);
    std::cout << file.length << " bytes\n";
    //! [local]
}

} // namespace

int main()
try
{
    const test_support::ScratchDatabase scratch;
    DataBaseClient client;
    client.connect(test_support::TestServer::instance().uri());
    files(client, scratch.name());
    reader(client, scratch.name());
    progress(client, scratch.name());
    local(client, scratch.name());
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
