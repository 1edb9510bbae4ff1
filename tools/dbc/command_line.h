// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <CLI/CLI.hpp>

#include <string>

/// Describes an error of the command line in one line. Suggests the command or option with the closest name.
std::string describe(const CLI::App& program, const CLI::ParseError& error);
