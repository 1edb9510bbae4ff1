// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Stores a file and reads it back, with progress.
#include "example.h"

#include <dbc/file_store.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>

namespace {

// A local file that is removed at the end.
struct LocalFile
{
    explicit LocalFile(const char* name) : path(name) {}
    LocalFile(const LocalFile&) = delete;
    LocalFile& operator=(const LocalFile&) = delete;
    ~LocalFile() { std::remove(path.c_str()); }

    const std::string path;
};

// Called after each chunk. A function that returns false cancels the transfer.
dbc::FileProgress percentOf(std::uint64_t length)
{
    return [length](std::uint64_t bytes) {
        std::cout << "  " << bytes * 100 / length << " %\n";
        return true;
    };
}

} // namespace

int main(int argc, char** argv)
try
{
    DataBaseClient client;
    client.connect(uriFrom(argc, argv));
    dbc::FileStore files(client, databaseOf(client), "example_files");

    constexpr std::uint64_t length = 1000000;
    const LocalFile original("original_of_example_05.txt");
    std::ofstream(original.path) << std::string(length, 'x');

    std::cout << "upload\n";
    dbc::UploadOptions upload;
    upload.contentType = "text/plain";
    upload.metadata = {{"owner", "Ada"}};
    upload.progress = percentOf(length);
    files.uploadFile("report.txt", original.path, upload);

    for (const dbc::FileInfo& file : files.list({{"metadata.owner", "Ada"}}))
        std::cout << file.name << ": " << file.length << " bytes, " << file.contentType << '\n';

    std::cout << "download\n";
    const LocalFile copy("copy_of_example_05.txt");
    std::ofstream target(copy.path, std::ios::binary);
    dbc::DownloadOptions download;
    download.progress = percentOf(files.find("report.txt").value().length);
    files.download("report.txt", target, download);
    std::cout << target.tellp() << " bytes written\n";

    std::cout << files.remove("report.txt") << " removed\n";
}
catch (const std::exception& problem)
{
    std::cerr << problem.what() << '\n';
    return 1;
}
