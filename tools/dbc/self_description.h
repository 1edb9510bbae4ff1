// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <CLI/CLI.hpp>

#include <ostream>
#include <string>
#include <vector>

// Describes the commands and options for completion and the manual page, so that they are listed only once.

/// Adds examples to every command, for its help and the manual page.
void addExamples(CLI::App& program);

/// Writes the possible completions of the last word. Each line has the word, a tab and its description. The line
/// ":file" means file names.
/// @param words  the command line after the name of the program; the last word may be empty
void writeCompletions(const CLI::App& program, const std::vector<std::string>& words, std::ostream& stream);

/// Writes the sections OPTIONS and COMMANDS of the manual page, in man format.
void writeManual(const CLI::App& program, std::ostream& stream);
