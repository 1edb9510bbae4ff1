#include "commands.h"

#include "companion/errors.h"
#include "companion/files.h"
#include "failure.h"
#include "interrupt.h"
#include "progress.h"
#include "raw_collection.h"
#include "reading_position.h"
#include "replaced_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

namespace {

struct FileCommand
{
    std::string database;
    std::string store = "fs";
    std::string name;
    std::string path;
};

void store(const GlobalOptions& global, const FileCommand& command, const std::string& name, const std::string& path,
           int own)
{
    struct stat file = {};
    if (::stat(path.c_str(), &file) != 0)
        throw Failure(UsageError, "cannot read " + command.path);
    const auto client = connect(global.connection);
    const ReadingPosition position(name, file, own, global.connection.quiet);
    client->writeFile(command.database, command.store, name, path);
}

// The driver reads files alone, so what comes from a pipe goes into one without a name.
companion::TemporaryFile standardInput(bool quiet)
{
    Progress progress("reading", 0, quiet, Progress::Unit::Bytes);
    std::uint64_t bytes = 0;
    const auto read = [&](char* buffer, std::size_t capacity) {
        std::cin.read(buffer, static_cast<std::streamsize>(capacity));
        if (std::cin.bad())
            throw Failure(UsageError, "standard input cannot be read");
        const auto count = static_cast<std::size_t>(std::cin.gcount());
        progress.show(bytes += count);
        return count;
    };
    try
    {
        return companion::temporaryFile(read);
    }
    catch (const std::system_error&)
    {
        throw Failure(UsageError, "cannot write a temporary file");
    }
}

int put(const GlobalOptions& global, const FileCommand& command)
{
    if (command.path == "-" && command.name.empty())
        throw Failure(UsageError, "what comes from standard input has no name: give --name");
    if (command.path != "-" && ::access(command.path.c_str(), R_OK) != 0)
        throw Failure(UsageError, "cannot read " + command.path);
    const std::string name =
        command.name.empty() ? std::filesystem::path(command.path).filename().string() : command.name;
    if (command.path != "-")
    {
        store(global, command, name, command.path, -1);
        return Success;
    }
    const companion::TemporaryFile input = standardInput(global.connection.quiet);
    store(global, command, name, companion::path(input), ::fileno(input.get()));
    return Success;
}

// 0 when there is no such file, or nobody will see it. Of several files with one name it may be another's.
std::uint64_t lengthOf(const std::string& uri, const FileCommand& command, bool quiet)
{
    std::uint64_t length = 0;
    if (!Progress::isShown(quiet))
        return length;
    OwnedBson query;
    BSON_APPEND_UTF8(query.get(), "filename", command.name.c_str());
    RawCollection::FindOptions options;
    options.limit = 1;
    RawCollection(uri, command.database + "." + command.store + ".files")
        .find(*query.get(), options, [&length](const RawCollection::Document& document) {
            bson_iter_t iter;
            if (bson_iter_init_find(&iter, document.bson, "length"))
                length = static_cast<std::uint64_t>(bson_iter_as_int64(&iter));
        });
    return length;
}

void copyTo(std::ostream& target, const GlobalOptions& global, const FileCommand& command)
{
    const std::string uri = connectionString(global.connection);
    const bool quiet = global.connection.quiet;
    Progress progress(command.name, lengthOf(uri, command, quiet), quiet, Progress::Unit::Bytes);
    companion::Download download(target, [&progress](std::uint64_t bytes) {
        progress.show(bytes);
        return !isInterrupted();
    });
    const InterruptWatch watch;
    try
    {
        connect(uri)->readFile(command.database, command.store, command.name, &download);
    }
    catch (const std::runtime_error& error)
    {
        if (companion::describe(error).kind == companion::ErrorKind::NotFound)
            throw Failure(NothingFound, "no file is named " + command.name);
        throwIfInterrupted(); // Cancelled, or what the driver says of a read that was woken
        throw;
    }
    if (!target.flush())
        throw Failure(UsageError, "the output cannot be written");
}

// A copy that ends half-way leaves an older file as it was.
int get(const GlobalOptions& global, const FileCommand& command)
{
    if (command.path == "-")
    {
        copyTo(std::cout, global, command);
        return Success;
    }
    ReplacedFile file(command.path.empty() ? std::filesystem::path(command.name).filename().string() : command.path);
    copyTo(file.stream(), global, command);
    file.commit();
    return Success;
}

std::list<std::string> names(DataBaseClient& client, const FileCommand& command)
{
    std::list<std::string> result;
    client.listFiles(command.database, command.store, result);
    return result;
}

int list(const GlobalOptions& global, const FileCommand& command)
{
    const auto stored = names(*connect(global.connection), command);
    for (const std::string& name : stored)
        std::cout << name << '\n';
    return stored.empty() ? NothingFound : Success;
}

int remove(const GlobalOptions& global, const FileCommand& command)
{
    const auto client = connect(global.connection);
    const std::size_t before = names(*client, command).size();
    client->removeFile(command.database, command.store, command.name);
    const std::size_t removed = before - names(*client, command).size();
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
    app->add_option("--store", command->store, "Store of the files; fs unless given");
    app->callback([=, &global, &work] { work = [=, &global] { return action(global, *command); }; });
    return app;
}

} // namespace

void addFileCommands(CLI::App& program, const GlobalOptions& global, Work& work)
{
    CLI::App* files = program.add_subcommand("files", "Files stored on the server")->require_subcommand(1);
    const auto command = std::make_shared<FileCommand>();
    CLI::App* app =
        addCommand(*files, global, work, "put", "Store a local file, or - for standard input", command, put);
    app->add_option("path", command->path, "Local file")->required();
    app->add_option("--name", command->name, "Name on the server; that of the file unless given");
    app = addCommand(*files, global, work, "get", "Fetch a stored file", command, get);
    app->add_option("name", command->name, "Name on the server")->required();
    app->add_option("path", command->path, "Local file, or - for standard output; the name unless given");
    addCommand(*files, global, work, "ls", "List the stored files", command, list);
    app = addCommand(*files, global, work, "rm", "Remove a stored file, upper and lower case taken as equal", command,
                     remove);
    app->add_option("name", command->name, "Name on the server")->required();
}
