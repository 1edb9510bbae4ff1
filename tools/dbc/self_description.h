#pragma once

#include <CLI/CLI.hpp>

#include <ostream>
#include <string>
#include <vector>

// What the program says of itself, so that nothing else has a list of commands and options.

/// Gives every command examples, for its help and the manual page.
void addExamples(CLI::App& program);

/// Writes what the last of the words may become, for the completion of a shell: a line each, with a tab between the
/// word and what it means. The line ":file" stands for the names of files.
/// @param words  of the command line behind the name of the program; the last may be empty
void writeCompletions(const CLI::App& program, const std::vector<std::string>& words, std::ostream& stream);

/// Writes the sections OPTIONS and COMMANDS of the manual page, in the language of man.
void writeManual(const CLI::App& program, std::ostream& stream);
