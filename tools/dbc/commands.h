// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "connection.h"
#include "output.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct GlobalOptions
{
    ConnectionOptions connection;
    OutputOptions output;
};

/// Adds an option with a fixed set of values. Does not use CLI11's transformer, because that shows the numbers of the
/// enumerators in the help and in errors.
template <typename T>
CLI::Option* addChoice(CLI::App& app, const std::string& name, T& target, const std::map<std::string, T>& choices,
                       const std::string& help)
{
    std::vector<std::string> words;
    words.reserve(choices.size());
    for (const auto& choice : choices)
        words.push_back(choice.first);
    return app
        .add_option_function<std::string>(
            name, [&target, choices](const std::string& word) { target = choices.at(word); }, help)
        ->check(CLI::IsMember(words))
        ->type_name("WORD");
}

/// Adds an option for a whole number of 0 or more.
template <typename T>
CLI::Option* addNumber(CLI::App& app, const std::string& name, T& target, const std::string& help)
{
    return app.add_option(name, target, help)
        ->check(CLI::Validator(
            [](const std::string& word) {
                const bool isNumber = !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
                return isNumber ? std::string() : "'" + word + "' is not a whole number of 0 or more";
            },
            ""))
        ->type_name("NUMBER");
}

/// The function of the given command. It returns the exit status.
using Work = std::function<int()>;

/// Makes run(global, *command) the work if the user gives this command.
template <typename Command>
void setWork(CLI::App& app, const GlobalOptions& global, Work& work, const std::shared_ptr<Command>& command,
             int (*run)(const GlobalOptions&, const Command&))
{
    app.callback([&global, &work, command, run] { work = [&global, command, run] { return run(global, *command); }; });
}

// Each function adds commands to the program. The command that the user gives sets @p work.
void addDocumentCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addTransferCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addFileCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addUserCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addUpdateCommand(CLI::App& program, const GlobalOptions& global, Work& work);
void addListCommand(CLI::App& program, const GlobalOptions& global, Work& work);
void addIndexCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addDropCommand(CLI::App& program, const GlobalOptions& global, Work& work);
void addHelpCommand(CLI::App& program, const GlobalOptions& global, Work& work);
void addCheckCommand(CLI::App& program, const GlobalOptions& global, Work& work);
void addSchemaCommand(CLI::App& program, const GlobalOptions& global, Work& work);
void addDoctorCommand(CLI::App& program, const GlobalOptions& global, Work& work);
