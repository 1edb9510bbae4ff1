#pragma once

#include <CLI/CLI.hpp>

#include <string>

/// One line on what is wrong with the command line. Names the command or option that was probably meant.
std::string describe(const CLI::App& program, const CLI::ParseError& error);
