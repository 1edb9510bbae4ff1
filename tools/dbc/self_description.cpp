// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "self_description.h"

#include "query_words.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Words = std::vector<std::string>;

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::App* commandNamed(const CLI::App& app, const std::string& name)
{
    for (const CLI::App* command : commandsOf(app))
    {
        if (command->get_name() == name)
            return command;
    }
    return nullptr;
}

// "-f" and "--file".
Words namesOf(const CLI::Option& option)
{
    Words names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

bool takesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

// CLI11 names the type "WORD:{always,auto,never}".
Words choicesOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    const std::size_t begin = type.find('{');
    const std::size_t end = type.find('}', begin == std::string::npos ? 0 : begin);
    Words choices;
    if (begin == std::string::npos || end == std::string::npos)
        return choices;
    std::istringstream list(type.substr(begin + 1, end - begin - 1));
    for (std::string choice; std::getline(list, choice, ',');)
        choices.push_back(choice);
    return choices;
}

std::string typeOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return type.substr(0, type.find(':'));
}

// Returns the first part of a description, for one line of a completion list.
std::string summaryOf(const std::string& description)
{
    return description.substr(0, std::min(description.find_first_of(";\n"), description.find(": ")));
}

// --- completion ----------------------------------------------------------------------------------------------------

class Completion
{
public:
    Completion(const CLI::App& program, std::ostream& stream)
        : m_program(program), m_command(&program), m_stream(stream)
    {}

    void pass(const std::string& word)
    {
        if (m_pending)
            m_pending = nullptr; // the word is its value
        else if (isOption(word))
        {
            const CLI::Option* const option = optionNamed(word.substr(0, word.find('=')));
            if (option && takesValue(*option) && word.find('=') == std::string::npos)
                m_pending = option;
        }
        else if (const CLI::App* const command = commandNamed(m_isHelp ? *m_helped : *m_command, word))
            enter(*command);
        else
            ++m_positionals;
    }

    void complete(const std::string& word)
    {
        if (m_pending)
            return writeValues(*m_pending, "", word);
        const std::size_t sign = word.find('=');
        if (isOption(word) && sign != std::string::npos)
        {
            const CLI::Option* const option = optionNamed(word.substr(0, sign));
            return option ? writeValues(*option, word.substr(0, sign + 1), word) : void();
        }
        if (isOption(word) || word == "-")
            return writeOptions(word);
        for (const CLI::App* command : commandsOf(m_isHelp ? *m_helped : *m_command))
            write(command->get_name(), summaryOf(command->get_description()), word);
        if (const CLI::Option* const positional = nextPositional())
            writeValues(*positional, "", word);
    }

private:
    static bool isOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

    // The words after "help" are the name of a command.
    void enter(const CLI::App& command)
    {
        if (m_isHelp)
            m_helped = &command;
        else
            m_command = &command;
        if (command.get_name() == "help")
        {
            m_isHelp = true;
            m_helped = &m_program;
        }
    }

    const CLI::Option* optionNamed(const std::string& name) const
    {
        for (const CLI::App* app = m_command; app; app = app->get_parent())
        {
            for (const CLI::Option* option : app->get_options())
            {
                const Words names = namesOf(*option);
                if (std::find(names.begin(), names.end(), name) != names.end())
                    return option;
            }
        }
        return nullptr;
    }

    const CLI::Option* nextPositional() const
    {
        const auto positionals =
            m_command->get_options([](const CLI::Option* option) { return option->get_positional(); });
        return m_positionals < positionals.size() ? positionals[m_positionals] : nullptr;
    }

    void writeOptions(const std::string& word)
    {
        std::set<std::string> written; // every command has its own --help
        for (const CLI::App* app = m_command; app; app = app->get_parent())
        {
            for (const CLI::Option* option : app->get_options())
            {
                for (const std::string& name : namesOf(*option))
                {
                    if (written.insert(name).second)
                        write(name, summaryOf(option->get_description()), word);
                }
            }
        }
    }

    void writeValues(const CLI::Option& option, const std::string& prefix, const std::string& word)
    {
        if (typeOf(option) == "FILE")
            m_stream << ":file\n";
        for (const std::string& choice : choicesOf(option))
            write(prefix + choice, "", word);
    }

    void write(const std::string& candidate, const std::string& meaning, const std::string& word)
    {
        if (candidate.compare(0, word.size(), word) == 0)
            m_stream << candidate << '\t' << meaning << '\n';
    }

    const CLI::App& m_program;
    const CLI::App* m_command;
    const CLI::App* m_helped = nullptr;
    bool m_isHelp = false;
    const CLI::Option* m_pending = nullptr;
    std::size_t m_positionals = 0;
    std::ostream& m_stream;
};

// --- the manual page -----------------------------------------------------------------------------------------------

std::string escaped(std::string_view text)
{
    std::string result;
    bool beginsLine = true;
    for (const char character : text)
    {
        if (beginsLine && (character == '.' || character == '\''))
            result += "\\&";
        if (character == '-')
            result += "\\-";
        else if (character == '\\')
            result += "\\e";
        else if (character == '\n')
            result += "\n.br\n";
        else
            result += character;
        beginsLine = character == '\n';
    }
    return result;
}

void writeOption(const CLI::Option& option, std::ostream& stream)
{
    std::string names;
    for (const std::string& name : namesOf(option))
        names.append(names.empty() ? "" : ", ").append(name);
    stream << ".TP\n\\fB" << escaped(option.get_positional() ? option.get_name(true) : names) << "\\fR";
    if (takesValue(option) && !option.get_positional())
        stream << " \\fI" << escaped(typeOf(option)) << "\\fR";
    const bool isQuery = option.get_description() == queryHelp; // too long for every command
    stream << '\n'
           << (isQuery ? "Query: one JSON document, or conditions; see QUERIES" : escaped(option.get_description()));
    const Words choices = choicesOf(option);
    for (std::size_t index = 0; index < choices.size(); ++index)
        stream << (index == 0 ? ". One of " : ", ") << escaped(choices[index]);
    stream << ".\n";
}

// Writes the arguments, then the options. Leaves out the --help of commands, because all have it.
void writeOptionsOf(const CLI::App& app, std::ostream& stream)
{
    for (const bool isPositional : {true, false})
    {
        for (const CLI::Option* option : app.get_options())
        {
            if (option->get_positional() == isPositional && (option != app.get_help_ptr() || !app.get_parent()))
                writeOption(*option, stream);
        }
    }
}

std::string argumentsOf(const CLI::App& app)
{
    std::string text;
    for (const CLI::Option* option : app.get_options())
    {
        if (!option->get_positional())
            continue;
        std::string name = option->get_name(true);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char letter) { return std::toupper(letter); });
        const bool isList = option->get_items_expected_max() > 1;
        text += option->get_required() ? " " + name + (isList ? "..." : "") : " [" + name + (isList ? "...]" : "]");
    }
    return text;
}

void writeExamples(const CLI::App& app, std::ostream& stream)
{
    std::istringstream footer(app.get_footer());
    std::string line;
    if (!std::getline(footer, line) || line != "Examples:")
        return;
    stream << ".PP\nExamples:\n.PP\n.nf\n";
    while (std::getline(footer, line))
        stream << escaped(line) << '\n';
    stream << ".fi\n";
}

void writeCommand(const CLI::App& app, const std::string& parents, std::ostream& stream)
{
    const std::string name = parents + " " + app.get_name();
    for (const CLI::App* command : commandsOf(app))
        writeCommand(*command, name, stream);
    if (!commandsOf(app).empty())
        return;
    stream << ".SS \"" << escaped(name + argumentsOf(app)) << "\"\n" << escaped(app.get_description()) << ".\n";
    writeOptionsOf(app, stream);
    writeExamples(app, stream);
}

} // namespace

void writeCompletions(const CLI::App& program, const std::vector<std::string>& words, std::ostream& stream)
{
    Completion completion(program, stream);
    for (std::size_t index = 0; index + 1 < words.size(); ++index)
        completion.pass(words[index]);
    completion.complete(words.empty() ? std::string() : words.back());
}

void writeManual(const CLI::App& program, std::ostream& stream)
{
    stream << ".SH OPTIONS\nThese options may come before or after the command.\n";
    writeOptionsOf(program, stream);
    stream << ".SH COMMANDS\n";
    for (const CLI::App* command : commandsOf(program))
        writeCommand(*command, program.get_name(), stream);
}
