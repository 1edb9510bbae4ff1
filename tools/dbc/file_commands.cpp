#include "commands.h"

#include "companion/errors.h"
#include "companion/files.h"
#include "failure.h"
#include "interrupt.h"
#include "progress.h"
#include "replaced_file.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
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
};

int put(const GlobalOptions& global, const FileCommand& command)
{
    if (command.path == "-" && command.name.empty())
        throw Failure(UsageError, "what comes from standard input has no name: give --name");
    if (command.path != "-" && ::access(command.path.c_str(), R_OK) != 0)
        throw Failure(UsageError, "cannot read " + command.path);
    const std::string name =
        command.name.empty() ? std::filesystem::path(command.path).filename().string() : command.name;
    const auto client = connect(global.connection);
    if (command.path == "-")
        companion::writeFile(*client, command.database, command.store, name, std::cin);
    else
        client->writeFile(command.database, command.store, name, command.path);
    return Success;
}

void copyTo(std::ostream& target, const GlobalOptions& global, const FileCommand& command)
{
    Progress progress(command.name, 0, global.connection.quiet);
    companion::Download download(target, [&progress](std::uint64_t bytes) {
        progress.show(bytes);
        return !isInterrupted();
    });
    const InterruptWatch watch;
    try
    {
        connect(global.connection)->readFile(command.database, command.store, command.name, &download);
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

std::list<std::string> names(const GlobalOptions& global, const FileCommand& command)
{
    std::list<std::string> result;
    connect(global.connection)->listFiles(command.database, command.store, result);
    return result;
}

int list(const GlobalOptions& global, const FileCommand& command)
{
    const auto stored = names(global, command);
    for (const std::string& name : stored)
        std::cout << name << '\n';
    return stored.empty() ? NothingFound : Success;
}

int remove(const GlobalOptions& global, const FileCommand& command)
{
    const std::size_t before = names(global, command).size();
    connect(global.connection)->removeFile(command.database, command.store, command.name);
    const std::size_t removed = before - names(global, command).size();
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
