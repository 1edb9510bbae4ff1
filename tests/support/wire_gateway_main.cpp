// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// usage: wire-gateway SERVER-URI
//
// Prints the connection string to use, and runs until standard input ends or a signal arrives. For FerretDB it is the
// connection string of a gateway that rewrites commands for that server. Other servers are used directly.
#include "test_server.h"

#include <pthread.h>
#include <sys/signalfd.h>

#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>

namespace {

void waitForEnd()
{
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ends, signal);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    const int signals = ::signalfd(-1, &ends, SFD_CLOEXEC);
    for (;;)
    {
        pollfd waiting[] = {{signals, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        ::poll(waiting, 2, -1);
        char ignored[256];
        if (waiting[0].revents != 0 || (waiting[1].revents != 0 && ::read(STDIN_FILENO, ignored, sizeof ignored) <= 0))
            break;
    }
    ::close(signals);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fputs("usage: wire-gateway SERVER-URI\n", stderr);
        return 2;
    }
    try
    {
        using test_support::WireGateway;
        const WireGateway::Rewrite rewrite = test_support::rewriteFor(test_support::serverKindAt(argv[1]));
        std::optional<WireGateway> gateway;
        if (rewrite != WireGateway::Rewrite::Nothing)
        {
            gateway.emplace(argv[1], rewrite);
            gateway->record(false);
        }
        std::printf("%s\n", gateway ? gateway->uri().c_str() : argv[1]);
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
