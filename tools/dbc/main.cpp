// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "command_line.h"
#include "commands.h"
#include "connection.h"
#include "dbc/version.h"
#include "failure.h"
#include "interrupt.h"
#include "output.h"
#include "self_description.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace {

std::string versions()
{
    return std::string("dbc ") + DBC_VERSION + "\nlibdatabase_client " + dbc::libraryVersion() + "\nlibmongoc " +
           dbc::driverVersion();
}

void addGlobalOptions(CLI::App& program, GlobalOptions& global)
{
    static const std::map<std::string, std::optional<Dialect>> dialects{
        {"relaxed", Dialect::Relaxed}, {"canonical", Dialect::Canonical}, {"legacy", Dialect::Legacy}};
    static const std::map<std::string, ColorMode> colors{
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    program
        .add_option("--uri", global.connection.uri,
                    "Connection string, mongodb://HOST:PORT/DATABASE; default: the server on this machine")
        ->envname("DBC_URI");
    program.add_option("--user", global.connection.user,
                       "User name; the password comes from --password-file, DBC_PASSWORD or a prompt");
    program
        .add_option("--password-file", global.connection.passwordFile,
                    "File whose first line is the password of --user")
        ->type_name("FILE");
    addChoice(
        program, "--dialect", global.output.dialect, dialects,
        "JSON dialect of the output; default: canonical for export, because it keeps all types, otherwise relaxed");
    program.add_flag("--array", global.output.asArray, "Write one JSON array instead of one document per line");
    program.add_flag("--pretty", global.output.isPretty, "Write one field per line");
    addChoice(program, "--color", global.output.color, colors,
              "Colours for keys, strings and numbers; default: auto, which means on a terminal unless NO_COLOR is set");
    program.add_flag("-q,--quiet", global.connection.quiet, "No progress and no summary");
    program.set_version_flag("-V,--version", versions, "Print the versions of the program, the library and the driver");
}

int runAndFlush(const Work& work)
{
    const int status = work();
    if (!std::cout.flush())
        throw Failure(UsageError, "the output cannot be written");
    return status;
}

int run(const Work& work)
{
    try
    {
        return runAndFlush(work);
    }
    catch (const Failure& failure)
    {
        std::cerr << "dbc: " << failure.what() << '\n';
        return failure.status();
    }
    catch (const std::exception& error)
    {
        if (isInterrupted()) // the driver reports an interrupted call as a broken connection
        {
            std::cerr << "dbc: interrupted\n";
            return Interrupted;
        }
        std::cerr << "dbc: " << error.what() << '\n';
        const ExitStatus status = statusOf(error);
        if (status == ConnectionError)
            std::cerr << "dbc: run 'dbc doctor' to find the reason; --uri or DBC_URI names the server\n";
        return status;
    }
}

// Handles the options for shell completion and the manual page, which are not in the help.
bool describesItself(const CLI::App& program, const std::string& option, const std::vector<std::string>& words)
{
    if (option == "--complete")
        writeCompletions(program, words, std::cout);
    else if (option == "--manual")
        writeManual(program, std::cout);
    else
        return false;
    return true;
}

// Otherwise a connection could get the number of a standard stream that is closed, and receive what is written to it.
// Opened in the wrong direction, so that reading and writing still fail.
void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        if (::fcntl(stream, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

int start(int argumentCount, char** arguments)
{
    occupyStandardStreams();
    CLI::App program("Documents, files and users of a MongoDB server, from the command line.", "dbc");
    program.footer("Exit status: 0 success, 1 nothing found, 2 usage error, 3 connection error, 4 rejected by the "
                   "server or because of losses, 130 interrupted.");
    program.require_subcommand(1);
    program.fallthrough();
    GlobalOptions global;
    Work work;
    addGlobalOptions(program, global);
    for (const auto add :
         {addDocumentCommands, addUpdateCommand, addTransferCommands, addListCommand, addIndexCommands, addDropCommand,
          addFileCommands, addUserCommands, addCheckCommand, addSchemaCommand, addDoctorCommand, addHelpCommand})
        add(program, global, work);
    addExamples(program);
    if (argumentCount > 1 && describesItself(program, arguments[1], {arguments + 2, arguments + argumentCount}))
        return Success;
    try
    {
        program.parse(argumentCount, arguments);
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == 0) // --help and --version
            return program.exit(error);
        std::cerr << "dbc: " << describe(program, error) << '\n';
        return UsageError;
    }
    hidePasswords(argumentCount, arguments);
    silenceDriver();
    return run(work);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    try
    {
        return start(argumentCount, arguments);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "dbc: %s\n", error.what());
        return UsageError;
    }
}
