// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/server.h"

#include <sys/wait.h>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <type_traits>

/// Runs @p side in a new process, so that it does not use memory that was freed before, and returns its result. Call it
/// before the driver is initialised, because the driver cannot be used after a fork.
/// @param wait  called meanwhile with the end of a pipe, which is readable when the process is done, and with the
/// process id
template <typename Side, typename Result = std::invoke_result_t<Side>>
Result inItsOwnProcess(const char* what, Side side, const std::function<void(int pipe, pid_t process)>& wait = {})
{
    static_assert(std::is_trivially_copyable_v<Result>, "goes through a pipe as it is");
    std::array<int, 2> ends{};
    check(::pipe(ends.data()) == 0, "pipe");
    const pid_t process = ::fork();
    check(process >= 0, "fork");
    if (process == 0)
    {
        ::close(ends[0]);
        int status = 1;
        try
        {
            const Result result = side();
            status = ::write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1;
        }
        catch (const std::exception& error)
        {
            std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, error.what());
        }
        std::exit(status); // with the driver's own end
    }
    ::close(ends[1]);
    if (wait)
        wait(ends[0], process);
    Result result;
    const bool isThere = ::read(ends[0], &result, sizeof result) == sizeof result;
    ::close(ends[0]);
    int status = 0;
    ::waitpid(process, &status, 0);
    check(isThere && WIFEXITED(status) && WEXITSTATUS(status) == 0, what);
    return result;
}
