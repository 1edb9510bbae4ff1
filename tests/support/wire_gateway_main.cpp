// usage: wire-gateway SERVER-URI [--ferretdb]
//
// Prints the gateway's URI and runs until standard input ends or a signal comes. With --ferretdb commands are rewritten
// to what that server takes.
#include "wire_gateway.h"

#include <pthread.h>
#include <sys/signalfd.h>

#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

namespace {

void waitForEnd()
{
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    {
        sigaddset(&ends, signal);
    }
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    const int signals = ::signalfd(-1, &ends, SFD_CLOEXEC);
    for (;;)
    {
        pollfd waiting[] = {{signals, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        ::poll(waiting, 2, -1);
        char ignored[256];
        if (waiting[0].revents != 0 || (waiting[1].revents != 0 && ::read(STDIN_FILENO, ignored, sizeof ignored) <= 0))
        {
            break;
        }
    }
    ::close(signals);
}

} // namespace

int main(int argc, char** argv)
{
    const bool forFerretDb = argc == 3 && std::strcmp(argv[2], "--ferretdb") == 0;
    if (argc != 2 && !forFerretDb)
    {
        std::fputs("usage: wire-gateway SERVER-URI [--ferretdb]\n", stderr);
        return 2;
    }
    try
    {
        using test_support::WireGateway;
        WireGateway gateway(argv[1], forFerretDb ? WireGateway::Rewrite::ForFerretDb : WireGateway::Rewrite::Nothing);
        gateway.record(false);
        std::printf("%s\n", gateway.uri().c_str());
        std::fflush(stdout);
        waitForEnd();
        return 0;
    }
    catch (const std::exception& problem)
    {
        std::fprintf(stderr, "wire-gateway: %s\n", problem.what());
        return 1;
    }
}
