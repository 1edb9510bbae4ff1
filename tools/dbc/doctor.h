#pragma once

#include "commands.h"

/// Walks from the connection string to the server and prints a line for each step: what is right, or what is wrong and
/// what to do. @return the exit status
int examineConnection(const GlobalOptions& global);
