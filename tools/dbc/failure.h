// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// Exit status of the program.
enum ExitStatus : int
{
    Success = 0,
    NothingFound = 1,
    UsageError = 2,
    ConnectionError = 3,
    ServerRefused = 4,
    Interrupted = 130 // as a shell reports a program that SIGINT ended
};

/// Ends the program with an error message and an exit status.
class Failure : public std::runtime_error
{
public:
    Failure(ExitStatus status, const std::string& text) : std::runtime_error(text), m_status(status) {}
    ExitStatus status() const noexcept { return m_status; }

private:
    ExitStatus m_status;
};

/// Returns the exit status for an exception of the library.
ExitStatus statusOf(const std::exception& error);
