// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <csignal>
#include <string>

/// While an object exists, Ctrl-C and SIGTERM do not end the program. The work must check isInterrupted() regularly.
/// After 0.3 seconds, a message on standard error tells the user that a second Ctrl-C ends the program at once. Only
/// one object may exist at a time.
class InterruptWatch
{
public:
    InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

private:
    struct sigaction m_interrupt = {};
    struct sigaction m_terminate = {};
    struct sigaction m_wake = {};
};

/// While an object exists, a signal that ends the program removes a file first. Only one object may exist at a time.
class RemovalOnSignal
{
public:
    explicit RemovalOnSignal(std::string path);
    RemovalOnSignal(const RemovalOnSignal&) = delete;
    RemovalOnSignal& operator=(const RemovalOnSignal&) = delete;
    ~RemovalOnSignal();

private:
    static constexpr std::array<int, 6> ends{SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXFSZ};

    const std::string m_path;
    std::array<struct sigaction, ends.size()> m_before = {};
};

bool isInterrupted() noexcept;

/// @throws Failure with the status Interrupted
void throwIfInterrupted();
