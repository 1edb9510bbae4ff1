// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "interrupt.h"

#include "failure.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <string>
#include <system_error>
#include <utility>

namespace {

std::atomic<bool> interrupted{false};
std::atomic<const char*> removedOnSignal{nullptr};
std::atomic<const char*> unsaidNotice{nullptr};
std::atomic<timer_t> wakeTimer{};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<const char*>::is_always_lock_free &&
                  std::atomic<timer_t>::is_always_lock_free,
              "a signal handler may only touch what has no lock");

// Clears the line first, because the terminal may show a progress bar or "^C".
constexpr const char* terminalNotice =
    "\r\x1b[Kdbc: stopping after the current step; press Ctrl-C again to stop at once\n";
constexpr const char* notice = "dbc: stopping after the current step; press Ctrl-C again to stop at once\n";

// Called before signals can arrive, because a signal handler may set a timer, but not create one.
void createWakeTimer()
{
    static bool isCreated = false;
    if (isCreated)
        return;
    timer_t timer{};
    if (::timer_create(CLOCK_MONOTONIC, nullptr, &timer) != 0) // sends SIGALRM
        throw std::system_error(errno, std::generic_category(), "timer_create");
    wakeTimer = timer;
    isCreated = true;
}

void setWakeTimer(const itimerspec& time) noexcept
{
    ::timer_settime(wakeTimer, 0, &time, nullptr);
}

// The first signal comes after 0.3 seconds, so there is no message if the work ends before that.
constexpr itimerspec soonAndThenEverySecond{{1, 0}, {0, 300'000'000}};

// The signal is repeated, because a signal just before a blocking read does not interrupt the read.
extern "C" void onWake(int /*signal*/)
{
    const char* const text = unsaidNotice.exchange(nullptr);
    if (!text)
        return;
    const int errorBefore = errno;
    const ssize_t ignored = ::write(STDERR_FILENO, text, std::strlen(text));
    static_cast<void>(ignored);
    errno = errorBefore;
}

// The signal is delivered when the handler that calls this function returns.
extern "C" void endBy(int signal)
{
    if (const char* const path = removedOnSignal)
        ::unlink(path);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

extern "C" void onInterrupt(int signal)
{
    // A second Ctrl-C ends the program at once, also if the server does not respond.
    if (interrupted)
        endBy(signal);
    interrupted = true;
    setWakeTimer(soonAndThenEverySecond);
}

} // namespace

InterruptWatch::InterruptWatch()
{
    createWakeTimer();
    unsaidNotice = ::isatty(STDERR_FILENO) == 1 ? terminalNotice : notice;
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigaction(SIGINT, &action, &m_interrupt);
    sigaction(SIGTERM, &action, &m_terminate);
    action.sa_handler = onWake;
    action.sa_flags = 0; // without SA_RESTART: a blocking read fails with EINTR
    sigaction(SIGALRM, &action, &m_wake);
}

InterruptWatch::~InterruptWatch()
{
    sigaction(SIGINT, &m_interrupt, nullptr);
    sigaction(SIGTERM, &m_terminate, nullptr);
    setWakeTimer({});
    sigaction(SIGALRM, &m_wake, nullptr);
}

RemovalOnSignal::RemovalOnSignal(std::string path) : m_path(std::move(path))
{
    removedOnSignal = m_path.c_str();
    struct sigaction action = {};
    action.sa_handler = endBy;
    for (std::size_t index = 0; index < ends.size(); ++index)
    {
        sigaction(ends[index], &action, &m_before[index]);
        if (m_before[index].sa_handler == SIG_IGN) // ignored by nohup, for example: stays ignored
            sigaction(ends[index], &m_before[index], nullptr);
    }
}

RemovalOnSignal::~RemovalOnSignal()
{
    for (std::size_t index = 0; index < ends.size(); ++index)
        sigaction(ends[index], &m_before[index], nullptr);
    removedOnSignal = nullptr;
}

bool isInterrupted() noexcept
{
    return interrupted;
}

void throwIfInterrupted()
{
    if (interrupted)
        throw Failure(Interrupted, "interrupted");
}
