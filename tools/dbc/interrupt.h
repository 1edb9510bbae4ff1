#pragma once

#include <array>
#include <csignal>
#include <string>

/// While one lives, Ctrl-C and SIGTERM are noted instead of ending the program: for work that looks at isInterrupted()
/// again and again. If the work goes on for 0.3 seconds, standard error says so, and that a second Ctrl-C ends the
/// program at once. All other work is ended by them at once. One at a time.
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

/// While one lives, a signal that ends the program removes a file first. One at a time.
class RemovalOnSignal
{
public:
    explicit RemovalOnSignal(std::string path);
    RemovalOnSignal(const RemovalOnSignal&) = delete;
    RemovalOnSignal& operator=(const RemovalOnSignal&) = delete;
    ~RemovalOnSignal();

private:
    static constexpr std::array<int, 5> ends{SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXFSZ};

    const std::string m_path;
    std::array<struct sigaction, ends.size()> m_before = {};
};

bool isInterrupted() noexcept;

/// @throws Failure with the status Interrupted
void throwIfInterrupted();
