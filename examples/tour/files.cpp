// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Chapter "files": stores, lists, reads and removes files of this system.
#include "tour.h"

#include <dbc/files.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tour {

namespace {

namespace fs = std::filesystem;

constexpr const char* store =
    "files"; // the store's collections are files.files and files.chunks

struct File
{
    std::string name; ///< name on the server
    std::string path;
    std::size_t size = 0;
    std::uint32_t checksum = 0; ///< CRC-32
};

std::string lowerCase(std::string text)
{
    std::transform(
        text.begin(), text.end(), text.begin(),
        [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// Adds the file to the list, unless it cannot be read, or its name differs
// only in case from that of another file: removeFile() would remove both.
void take(const fs::path& path, const fs::path& folder,
          std::vector<File>& files)
{
    File file;
    file.name = path.lexically_relative(folder.parent_path()).string();
    file.path = path.string();
    const auto sameName = [&](const File& other) {
        return lowerCase(other.name) == lowerCase(file.name);
    };
    std::ifstream content(path, std::ios::binary);
    if (!content || std::any_of(files.begin(), files.end(), sameName))
        return;
    dbc::Crc32 checksum;
    std::array<char, 4096> buffer{};
    while (content.read(buffer.data(), buffer.size()), content.gcount() > 0)
    {
        checksum.add(buffer.data(),
                     static_cast<std::size_t>(content.gcount()));
        file.size += static_cast<std::size_t>(content.gcount());
    }
    file.checksum = checksum.value();
    files.push_back(file);
}

// Real files: the data of the tour, and files of the system.
std::vector<File> someFiles(const std::string& data)
{
    constexpr std::size_t most = 20;
    std::vector<File> files;
    for (const fs::path& folder :
         {fs::path(data), fs::path("/usr/share/common-licenses"),
          fs::path("/usr/share/licenses"), fs::path("/usr/share/doc"),
          fs::path("/usr/local/share")})
    {
        std::error_code none; // leaves out a folder that cannot be read
        fs::recursive_directory_iterator entry(
            folder, fs::directory_options::skip_permission_denied, none);
        for (; !none && entry != fs::recursive_directory_iterator() &&
               files.size() < most;
             entry.increment(none))
        {
            std::error_code unknown;
            if (entry->is_regular_file(unknown) &&
                !entry->is_symlink(unknown))
                take(entry->path(), folder, files);
        }
    }
    if (files.empty())
    {
        throw std::runtime_error("no file to store found in " + data +
                                 " and below /usr/share");
    }
    return files;
}

void storeAll(Tour& tour, const std::vector<File>& files)
{
    Step step("store files of this system", "store_file");
    std::size_t done = 0;
    std::size_t bytes = 0;
    for (const File& file : files)
    {
        //! [store_file]
        tour.client->writeFile(tour.database, store, file.name, file.path);
        //! [store_file]
        bytes += file.size;
        step.progress(++done, files.size());
    }
    step.done(done, "files", done);
    show(std::to_string(bytes) + " bytes");
}

void listAll(Tour& tour, const std::vector<File>& files)
{
    Step step("list them", "list_files");
    //! [list_files]
    std::list<std::string> names;
    tour.client->listFiles(tour.database, store, names);
    //! [list_files]
    step.done(names.size(), "files");
    show("from " + names.front() + " to " + names.back());

    std::vector<std::string> expected;
    std::transform(files.begin(), files.end(), std::back_inserter(expected),
                   [](const File& file) { return file.name; });
    std::sort(expected.begin(), expected.end());
    if (!std::equal(names.begin(), names.end(), expected.begin(),
                    expected.end()))
    {
        throw std::runtime_error(
            "the list of files is not the one that was stored");
    }
}

void readBack(Tour& tour, const std::vector<File>& files)
{
    Step step("read them back and compare checksums", "read_file");
    std::size_t done = 0;
    for (const File& file : files)
    {
        // Any iostream works; this one computes the checksum.
        //! [read_file]
        std::ofstream nowhere("/dev/null");
        dbc::Download download(nowhere);
        tour.client->readFile(tour.database, store, file.name, &download);
        //! [read_file]
        if (download.crc32() != file.checksum ||
            download.bytes() != file.size)
            throw std::runtime_error(file.name + " came back changed");
        step.progress(++done, files.size());
    }
    step.done(done, "files", done);
    const auto& largest = *std::max_element(
        files.begin(), files.end(),
        [](const File& a, const File& b) { return a.size < b.size; });
    char checksum[16];
    std::snprintf(checksum, sizeof checksum, "%08lx",
                  static_cast<unsigned long>(largest.checksum));
    show("the largest: " + largest.name + ", " +
         std::to_string(largest.size) + " bytes, CRC-32 " + checksum);
}

void removeAll(Tour& tour, const std::vector<File>& files)
{
    const File& twice = files.front();
    tour.client->writeFile(tour.database, store, twice.name, twice.path);
    note("several files can have the same name; removeFile() removes all of "
         "them, and ignores case");

    Step step("remove them", "remove_file");
    std::size_t done = 0;
    for (const File& file : files)
    {
        //! [remove_file]
        tour.client->removeFile(tour.database, store, lowerCase(file.name));
        //! [remove_file]
        step.progress(++done, files.size());
    }
    step.done(done, "files", done);
    std::list<std::string> names;
    tour.client->listFiles(tour.database, store, names);
    agree("files left", names.size(), 0);
}

void missing(Tour& tour, const std::string& name)
{
    Step step("read a file that does not exist", "read_missing_file");
    std::stringstream content;
    const std::string said = answer([&] {
        //! [read_missing_file]
        tour.client->readFile(tour.database, store, name, &content);
        //! [read_missing_file]
    });
    step.done(0, "files");
    show(said);
}

} // namespace

void files(Tour& tour)
{
    title("files");
    const std::vector<File> files = someFiles(tour.options.data);
    storeAll(tour, files);
    listAll(tour, files);
    readBack(tour, files);
    removeAll(tour, files);
    missing(tour, files.front().name);
}

} // namespace tour
