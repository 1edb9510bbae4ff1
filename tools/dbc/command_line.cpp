// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "command_line.h"

#include "commands.h"
#include "failure.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

using Words = std::vector<std::string>;

// Number of letters to insert, remove, replace or swap.
std::size_t editDistance(const std::string& left, const std::string& right)
{
    std::vector<std::size_t> before;
    std::vector<std::size_t> last(right.size() + 1);
    std::iota(last.begin(), last.end(), 0U);
    for (std::size_t row = 1; row <= left.size(); ++row)
    {
        std::vector<std::size_t> current{row};
        for (std::size_t column = 1; column <= right.size(); ++column)
        {
            const bool isSame = left[row - 1] == right[column - 1];
            std::size_t least =
                std::min({last[column] + 1, current[column - 1] + 1, last[column - 1] + (isSame ? 0 : 1)});
            if (row > 1 && column > 1 && left[row - 1] == right[column - 2] && left[row - 2] == right[column - 1])
                least = std::min(least, before[column - 2] + 1);
            current.push_back(least);
        }
        before = std::exchange(last, std::move(current));
    }
    return last.back();
}

// Returns the candidate closest to the word; empty if none is close.
std::string closest(const std::string& word, const Words& candidates)
{
    const auto distance = [&word](const std::string& candidate) { return editDistance(word, candidate); };
    const auto best =
        std::min_element(candidates.begin(), candidates.end(), [&](const std::string& left, const std::string& right) {
            return distance(left) < distance(right);
        });
    const std::size_t most = word.size() < 4 ? 1 : 2;
    return best == candidates.end() || distance(*best) > most ? std::string() : *best;
}

Words commandsOf(const CLI::App& app)
{
    Words names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

// The options of the command and of its parents.
Words optionsOf(const CLI::App* app)
{
    Words names;
    for (; app; app = app->get_parent())
    {
        for (const CLI::Option* option : app->get_options())
        {
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        }
    }
    return names;
}

std::string joined(const Words& words)
{
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

// Returns the innermost command of the command line, and its words.
std::pair<const CLI::App*, Words> givenCommand(const CLI::App& program)
{
    const CLI::App* command = &program;
    Words words;
    while (!command->get_subcommands().empty())
    {
        command = command->get_subcommands().back();
        words.push_back(command->get_name());
    }
    return {command, words};
}

std::string unknownCommand(const CLI::App& parent, const Words& before, const std::string& word)
{
    const std::string prefix = before.empty() ? "" : joined(before) + " ";
    const Words commands = commandsOf(parent);
    const std::string meant = closest(word, commands);
    return "unknown command '" + prefix + word + "'; " +
           (meant.empty() ? "there are: " + joined(commands) : "did you mean '" + prefix + meant + "'?");
}

std::string unknownOption(const CLI::App* command, const std::string& word)
{
    const std::string meant = closest(word.substr(0, word.find('=')), optionsOf(command));
    return "unknown option '" + word + "'" + (meant.empty() ? "" : "; did you mean '" + meant + "'?");
}

const CLI::App* commandNamed(const CLI::App& parent, const std::string& name)
{
    const auto found = parent.get_subcommands([&name](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

int help(const CLI::App& program, const Words& words)
{
    const CLI::App* command = &program;
    Words before;
    for (const std::string& word : words)
    {
        const CLI::App* const next = commandNamed(*command, word);
        if (!next)
            throw Failure(UsageError, unknownCommand(*command, before, word));
        command = next;
        before.push_back(word);
    }
    before.insert(before.begin(), program.get_name());
    std::cout << program.get_formatter()->make_help(command, joined(before), CLI::AppFormatMode::Normal);
    return Success;
}

} // namespace

std::string describe(const CLI::App& program, const CLI::ParseError& error)
{
    const bool isRequired = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (!isRequired && !dynamic_cast<const CLI::ExtrasError*>(&error))
        return error.what();
    const auto [command, words] = givenCommand(program);
    const Words unexpected = program.remaining(true);
    const bool wantsCommand = !commandsOf(*command).empty();
    if (unexpected.empty())
        return wantsCommand ? "a command is missing; there are: " + joined(commandsOf(*command)) : error.what();
    const std::string& first = unexpected.front();
    if (first.size() > 1 && first[0] == '-')
        return unknownOption(command, first);
    if (wantsCommand)
        return unknownCommand(*command, words, first);
    const bool takesFile = command->get_option_no_throw("--file") != nullptr;
    return "unexpected argument '" + first + "'" + (takesFile ? "; use -f for a file" : "");
}

void addHelpCommand(CLI::App& program, const GlobalOptions& /*global*/, Work& work)
{
    const auto words = std::make_shared<Words>();
    CLI::App* app = program.add_subcommand("help", "Print the options and arguments of a command");
    app->add_option("command", *words, "Command, such as find, or files put");
    app->callback([&program, &work, words] { work = [&program, words] { return help(program, *words); }; });
}
