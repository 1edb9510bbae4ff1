#include "commands.h"

#include "dbc/errors.h"
#include "dbc/files.h"
#include "failure.h"
#include "file_store.h"
#include "interrupt.h"
#include "progress.h"
#include "replaced_file.h"

#include <strings.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

struct FileCommand
{
    std::string database;
    std::string store = "fs";
    std::string name;
    std::string path;
    bool partial = false;
};

using SourceFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// Standard input stays open.
SourceFile openSource(const std::string& path)
{
    SourceFile source = path == "-" ? SourceFile(stdin, [](std::FILE*) { return 0; })
                                    : SourceFile(std::fopen(path.c_str(), "rbe"), &std::fclose);
    if (!source)
        throw Failure(UsageError, "cannot read " + path);
    return source;
}

int put(const GlobalOptions& global, const FileCommand& command)
{
    if (command.path == "-" && command.name.empty())
        throw Failure(UsageError, "a file from standard input needs a name: give --name");
    const std::string name =
        command.name.empty() ? std::filesystem::path(command.path).filename().string() : command.name;
    if (name.empty())
        throw Failure(UsageError, "cannot read " + command.path);
    const SourceFile source = openSource(command.path);
    FileStore(connectionString(global.connection), command.database, command.store)
        .upload(source.get(), name, global.connection.quiet);
    return Success;
}

void copyTo(std::ostream& target, const GlobalOptions& global, const FileCommand& command)
{
    const std::string uri = connectionString(global.connection);
    const bool quiet = global.connection.quiet;
    const std::uint64_t length = // costs a query, so only if somebody sees it
        Progress::isShown(quiet) ? FileStore(uri, command.database, command.store).lengthOf(command.name) : 0;
    Progress progress(command.name, length, quiet, Progress::Unit::Bytes);
    dbc::Download download(target, [&progress](std::uint64_t bytes) {
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
        if (dbc::describe(error).kind == dbc::ErrorKind::NotFound)
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

int list(const GlobalOptions& global, const FileCommand& command)
{
    std::list<std::string> names;
    connect(global.connection)->listFiles(command.database, command.store, names);
    for (const std::string& name : names)
        std::cout << name << (dbc::finalFileName(name).empty() ? "\n" : " (incomplete)\n");
    return names.empty() ? NothingFound : Success;
}

int remove(const GlobalOptions& global, const FileCommand& command)
{
    if (command.name.empty() && !command.partial)
        throw Failure(UsageError, "give the name of a stored file, or --partial");
    const auto isAccepted = [&command](const std::string& stored) {
        const std::string name = command.partial ? dbc::finalFileName(stored) : stored;
        return command.name.empty() ? !name.empty() : ::strcasecmp(name.c_str(), command.name.c_str()) == 0;
    };
    const auto result =
        FileStore(connectionString(global.connection), command.database, command.store).remove(isAccepted);
    if (!global.connection.quiet && !result.isAcknowledged)
        std::cout << "sent, not acknowledged\n";
    else if (!global.connection.quiet)
        std::cout << "removed " << result.removed << '\n';
    return result.removed > 0 || !result.isAcknowledged ? Success : NothingFound;
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
    app->add_option("--name", command->name, "Name on the server; the name of the local file unless given");
    app = addCommand(*files, global, work, "get", "Fetch a stored file", command, get);
    app->add_option("name", command->name, "Name on the server")->required();
    app->add_option("path", command->path, "Local file, or - for standard output; the name unless given");
    addCommand(*files, global, work, "ls", "List the stored files; uploads that were cut short are marked (incomplete)",
               command, list);
    app = addCommand(*files, global, work, "rm", "Remove the stored files of a name, ignoring case", command, remove);
    app->add_option("name", command->name, "Name on the server");
    app->add_flag("--partial", command->partial,
                  "Remove incomplete uploads, of this name or of all; running ones fail");
}
