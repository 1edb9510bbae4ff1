#pragma once

#include <csignal>

/// While one lives, Ctrl-C and SIGTERM are noted instead of ending the program: for work that looks at isInterrupted()
/// again and again. All other work is ended by them at once.
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

bool isInterrupted() noexcept;

/// @throws Failure with the status Interrupted
void throwIfInterrupted();
