#include "interrupt.h"

#include "failure.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only touch what has no lock");

// A signal that comes just before a read would not end it, so the read is woken again and again.
extern "C" void onWake(int /*signal*/)
{
    ::alarm(1);
}

extern "C" void onInterrupt(int /*signal*/)
{
    interrupted = true;
    ::alarm(1);
}

} // namespace

InterruptWatch::InterruptWatch()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    // The second Ctrl-C ends the program at once: a server that does not answer must not hold it.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
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

bool isInterrupted() noexcept
{
    return interrupted;
}

void throwIfInterrupted()
{
    if (interrupted)
        throw Failure(Interrupted, "interrupted");
}
