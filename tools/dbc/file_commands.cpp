// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "connection.h"
#include "database_client.h"
#include "dbc/collection.h"
#include "dbc/cursor.h"
#include "dbc/errors.h"
#include "dbc/file_store.h"
#include "dbc/files.h"
#include "dbc/value.h"
#include "dbc/values.h"
#include "document_walk.h"
#include "failure.h"
#include "interrupt.h"
#include "progress.h"
#include "replaced_file.h"
#include "texts.h"

#include <strings.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

struct FileCommand
{
    std::string database;
    std::string store = "fs";
    std::string name;
    std::string path;
    bool partial = false;
    bool isLong = false;
};

dbc::FileStore storeOf(DataBaseClient& client, const FileCommand& command)
{
    const std::string database =
        command.database.empty() ? defaultDatabase(client, "DATABASE after the command") : command.database;
    // "DATABASE.STORE.files" is split at its first dot, so the name of the database must not contain one.
    if (database.find('.') != std::string::npos)
        throw Failure(UsageError, "the name of a database must not contain a dot");
    if (command.store.empty())
        throw Failure(UsageError, "the name of a store must not be empty");
    return {client, database, command.store};
}

// Size of a regular file; 0 for anything else.
std::uint64_t lengthOf(const std::string& path)
{
    std::error_code error;
    const std::uintmax_t length =
        std::filesystem::is_regular_file(path, error) ? std::filesystem::file_size(path, error) : 0;
    return error ? 0 : length;
}

// Standard output may be the content of a file.
void report(const GlobalOptions& global, const char* what, const std::string& name, std::uint64_t length)
{
    if (!global.connection.quiet)
        std::cerr << what << ' ' << name << ", " << counted(length, "byte") << '\n';
}

// Removes an incomplete upload. Does not throw, because the caller reports the error of the upload.
void removePart(dbc::FileStore& store, const dbc::Value& id)
{
    try
    {
        store.removeById(id);
    }
    catch (const std::exception& error)
    {
        std::cerr << "dbc: the incomplete upload cannot be removed: " << error.what() << "\n"
                  << "dbc: use files rm --partial to remove it\n";
    }
}

std::uint64_t upload(dbc::FileStore& store, const std::string& name, std::istream& source, Progress& progress)
{
    const InterruptWatch watch;
    dbc::UploadOptions options;
    options.id = dbc::Value(dbc::ObjectId{DataBaseClient().createId()});
    options.progress = [&progress](std::uint64_t bytes) {
        progress.show(bytes);
        return !isInterrupted();
    };
    try
    {
        const std::uint64_t length = store.upload(name, source, options).length;
        throwIfInterrupted();        // Ctrl-C ends the input early, so the stored file may be incomplete
        if (std::ferror(stdin) != 0) // std::cin reports an error as the end of the input
            throw Failure(UsageError, "standard input cannot be read");
        return length;
    }
    catch (const std::exception&)
    {
        removePart(store, *options.id);
        throwIfInterrupted(); // instead of Cancelled, or of the driver's error for an interrupted read
        throw;
    }
}

int put(const GlobalOptions& global, const FileCommand& command)
{
    const bool isStandardInput = command.path == "-";
    if (isStandardInput && command.name.empty())
        throw Failure(UsageError, "a file from standard input needs a name: use --name");
    const std::string name =
        command.name.empty() ? std::filesystem::path(command.path).filename().string() : command.name;
    std::ifstream file;
    if (!isStandardInput)
        file.open(command.path, std::ios::binary);
    std::istream& source = isStandardInput ? std::cin : file;
    if (!source)
        throw Failure(UsageError, "cannot read " + command.path + ": " + std::generic_category().message(errno));
    // Checked here, because a directory can be opened, but not read.
    if (name.empty() || std::filesystem::is_directory(command.path))
        throw Failure(UsageError, "cannot read " + command.path);
    const auto client = connect(global.connection);
    dbc::FileStore store = storeOf(*client, command);
    std::uint64_t length = 0;
    {
        Progress progress(name, isStandardInput ? 0 : lengthOf(command.path), global.connection.quiet,
                          Progress::Unit::Bytes);
        length = upload(store, name, source, progress);
    }
    report(global, "stored", name, length);
    return Success;
}

// Returns the number of bytes.
std::uint64_t copyTo(std::ostream& target, const GlobalOptions& global, const FileCommand& command)
{
    const auto client = connect(global.connection);
    dbc::FileStore store = storeOf(*client, command);
    std::uint64_t length = 0;
    if (Progress::isShown(global.connection.quiet)) // saves a query if there is no progress line
    {
        if (const auto info = store.find(command.name))
            length = info->length;
    }
    Progress progress(command.name, length, global.connection.quiet, Progress::Unit::Bytes);
    dbc::DownloadOptions options;
    options.progress = [&progress](std::uint64_t bytes) {
        progress.show(bytes);
        return !isInterrupted();
    };
    const InterruptWatch watch;
    try
    {
        length = store.download(command.name, target, options).length;
    }
    catch (const std::runtime_error& error)
    {
        if (dbc::describe(error).kind == dbc::ErrorKind::NotFound)
            throw Failure(NothingFound, "there is no file " + command.name);
        if (!target)
            throw Failure(UsageError, "the output cannot be written");
        throwIfInterrupted(); // instead of Cancelled, or of the driver's error for an interrupted read
        throw;
    }
    if (!target.flush())
        throw Failure(UsageError, "the output cannot be written");
    return length;
}

// An older file is replaced only when the copy is complete.
int get(const GlobalOptions& global, const FileCommand& command)
{
    std::uint64_t length = 0;
    if (command.path == "-")
        length = copyTo(std::cout, global, command);
    else
    {
        ReplacedFile file(command.path.empty() ? std::filesystem::path(command.name).filename().string()
                                               : command.path);
        length = copyTo(file.stream(), global, command);
        file.commit();
    }
    report(global, "fetched", command.name, length);
    return Success;
}

int list(const GlobalOptions& global, const FileCommand& command)
{
    const auto client = connect(global.connection);
    dbc::ListOptions options;
    options.sort = {{"filename"}, {"uploadDate"}};
    const auto files = storeOf(*client, command).list({}, options);
    for (const dbc::FileInfo& file : files)
    {
        if (command.isLong)
        {
            std::cout << std::setw(12) << file.length << "  " << dateText(file.uploaded) << "  " << idText(file.id)
                      << "  ";
        }
        std::cout << file.name << (dbc::finalFileName(file.name).empty() ? "\n" : " (incomplete)\n");
    }
    return files.empty() ? NothingFound : Success;
}

// True for the files with the name of the command, ignoring case. With --partial, true for the incomplete uploads of
// this name, or for all incomplete uploads without a name.
bool isMeant(const FileCommand& command, const std::string& stored)
{
    const std::string name = command.partial ? dbc::finalFileName(stored) : stored;
    return command.name.empty() ? !name.empty() : ::strcasecmp(name.c_str(), command.name.c_str()) == 0;
}

// Matches id and name, so that an upload that has been renamed to its final name is not removed.
bool removeFile(dbc::FileStore& store, dbc::Collection& records, const dbc::FileInfo& file)
{
    dbc::RemoveOptions options;
    options.writeConcern.emplace().nodes = 1;
    if (records.removeOne({{"_id", file.id}, {"filename", file.name}}, options).removed == 0)
        return false;
    store.removeById(file.id); // removes its chunks
    return true;
}

// Removes the chunks without a file document, which a killed upload leaves.
std::uint64_t removeContentWithoutRecord(dbc::FileStore& store, dbc::Collection& records, dbc::Collection& chunks)
{
    dbc::FindOptions firstChunk;
    firstChunk.projection = {{"files_id", 1}};
    std::vector<dbc::Value> ids;
    forEachDocument(
        [&] {
            return chunks.find({{"n", 0}}, firstChunk);
        },
        [&](dbc::Cursor& cursor) {
            const dbc::Value chunk = cursor.value();
            const dbc::Value* const id = chunk.find("files_id");
            if (id && records.count({{"_id", *id}}) == 0)
                ids.push_back(*id);
        });
    for (const dbc::Value& id : ids)
        store.removeById(id);
    return ids.size();
}

int remove(const GlobalOptions& global, const FileCommand& command)
{
    if (command.name.empty() && !command.partial)
        throw Failure(UsageError, "name a stored file, or use --partial");
    const auto client = connect(global.connection);
    dbc::FileStore store = storeOf(*client, command);
    dbc::Collection records(*client, command.database, command.store + ".files");
    std::uint64_t removed = 0;
    for (const dbc::FileInfo& file : store.list())
        removed += isMeant(command, file.name) && removeFile(store, records, file) ? 1 : 0;
    if (command.partial && command.name.empty())
    {
        dbc::Collection chunks(*client, command.database, command.store + ".chunks");
        removed += removeContentWithoutRecord(store, records, chunks);
    }
    if (!global.connection.quiet)
        std::cout << "removed " << removed << '\n';
    return removed > 0 ? Success : NothingFound;
}

using Action = int (*)(const GlobalOptions&, const FileCommand&);

CLI::App* addCommand(CLI::App& files, const GlobalOptions& global, Work& work, const char* name, const char* help,
                     const std::shared_ptr<FileCommand>& command, Action action)
{
    CLI::App* app = files.add_subcommand(name, help);
    app->add_option("database", command->database, "Database")->required();
    app->add_option("--store", command->store, "Store of the files; default: fs");
    setWork(*app, global, work, command, action);
    return app;
}

} // namespace

void addFileCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    CLI::App* files = program.add_subcommand("files", "Files stored on the server")->require_subcommand(1);
    const auto command = std::make_shared<FileCommand>();
    CLI::App* app =
        addCommand(*files, global, work, "put", "Store a local file, or - for standard input", command, put);
    app->add_option("path", command->path, "Local file")->required()->type_name("FILE");
    app->add_option("--name", command->name, "Name on the server; default: the name of the local file");
    app = addCommand(*files, global, work, "get", "Fetch a stored file", command, get);
    app->add_option("name", command->name, "Name on the server")->required();
    app->add_option("path", command->path, "Local file, or - for standard output; default: the name on the server")
        ->type_name("FILE");
    app = addCommand(*files, global, work, "ls", "List the stored files; incomplete uploads are marked (incomplete)",
                     command, list);
    app->get_option("database")->required(false);
    app->add_flag("-l,--long", command->isLong, "Show the length in bytes, the upload time (UTC) and the id");
    app = addCommand(*files, global, work, "rm", "Remove the stored files with this name, ignoring case", command,
                     remove);
    app->add_option("name", command->name, "Name on the server");
    app->add_flag("--partial", command->partial,
                  "Remove incomplete uploads with this name, or all; running uploads fail");
}
