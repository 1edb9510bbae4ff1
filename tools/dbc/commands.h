#pragma once

#include "connection.h"
#include "output.h"

#include <CLI/CLI.hpp>

#include <functional>

/// What the options in front of every command say.
struct GlobalOptions
{
    ConnectionOptions connection;
    Dialect dialect = Dialect::Relaxed;
    bool asArray = false;
};

/// The work of the command that was given, and its exit status.
using Work = std::function<int()>;

// Each adds commands to the program; a command that is given sets the work.
void addDocumentCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addTransferCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addFileCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addUserCommands(CLI::App& program, const GlobalOptions& global, Work& work);
void addInspectionCommands(CLI::App& program, const GlobalOptions& global, Work& work);
