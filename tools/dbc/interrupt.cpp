#include "interrupt.h"

#include "failure.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only touch what has no lock");

extern "C" void onInterrupt(int /*signal*/)
{
    interrupted = true;
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
}

InterruptWatch::~InterruptWatch()
{
    sigaction(SIGINT, &m_interrupt, nullptr);
    sigaction(SIGTERM, &m_terminate, nullptr);
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
