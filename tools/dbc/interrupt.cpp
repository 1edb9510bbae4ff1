#include "interrupt.h"

#include "failure.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <utility>

namespace {

std::atomic<bool> interrupted{false};
std::atomic<const char*> removedOnSignal{nullptr};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<const char*>::is_always_lock_free,
              "a signal handler may only touch what has no lock");

// A signal that comes just before a read would not end it, so the read is woken again and again.
extern "C" void onWake(int /*signal*/)
{
    ::alarm(1);
}

// Takes effect when the handler that calls it returns.
extern "C" void endBy(int signal)
{
    if (const char* const path = removedOnSignal)
        ::unlink(path);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

extern "C" void onInterrupt(int signal)
{
    // The second Ctrl-C ends the program at once: a server that does not answer must not hold it.
    if (interrupted)
        endBy(signal);
    interrupted = true;
    ::alarm(1);
}

} // namespace

InterruptWatch::InterruptWatch()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigaction(SIGINT, &action, &m_interrupt);
    sigaction(SIGTERM, &action, &m_terminate);
    action.sa_handler = onWake;
    action.sa_flags = 0; // a read that waits is ended, not begun again
    sigaction(SIGALRM, &action, &m_wake);
}

InterruptWatch::~InterruptWatch()
{
    sigaction(SIGINT, &m_interrupt, nullptr);
    sigaction(SIGTERM, &m_terminate, nullptr);
    ::alarm(0);
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
        if (m_before[index].sa_handler == SIG_IGN) // as nohup has it
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
