// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "tool_process.h"

#include "spawn_settings.h"
#include "wire_gateway.h"

#include <sys/wait.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace test_support {
namespace {

void check(bool done, const std::string& what)
{
    if (!done)
        throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

ToolProcess::ToolProcess(std::vector<std::string> arguments, Messages messages)
{
    arguments.insert(arguments.begin(), DBC_PROGRAM);
    std::string target = m_folder.path("messages");
    FileDescriptor otherEnd; // held until the tool has it open: a terminal without one is hung up
    if (messages == Messages::OnATerminal)
    {
        m_terminal = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        check(m_terminal && ::grantpt(m_terminal.get()) == 0 && ::unlockpt(m_terminal.get()) == 0, "no terminal");
        target = ::ptsname(m_terminal.get());
        otherEnd = FileDescriptor(::open(target.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        check(static_cast<bool>(otherEnd), target);
    }
    m_process = SpawnSettings(m_folder.path("output"), target).spawn(std::move(arguments));
}

ToolProcess::~ToolProcess()
{
    if (m_process < 0)
        return;
    ::kill(m_process, SIGKILL);
    wait();
}

void ToolProcess::signal(int number) const
{
    check(::kill(m_process, number) == 0, "kill");
}

int ToolProcess::wait()
{
    while (readTerminal())
    {}
    while (m_process >= 0)
    {
        if (::waitpid(m_process, &m_status, 0) == m_process)
            m_process = -1;
        else
            check(errno == EINTR, "waitpid");
    }
    return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : 128 + WTERMSIG(m_status);
}

std::string ToolProcess::output() const
{
    return m_folder.read("output");
}

std::string ToolProcess::messages()
{
    return m_terminal ? m_shown : m_folder.read("messages");
}

bool ToolProcess::showsOnTerminal(const std::string& text)
{
    const auto end = std::chrono::steady_clock::now() + WireGateway::longestWait;
    while (m_shown.find(text) == std::string::npos)
    {
        if (!readTerminal() || std::chrono::steady_clock::now() > end)
            return false;
    }
    return true;
}

// An error is how the end of the last writer shows.
bool ToolProcess::readTerminal()
{
    if (!m_terminal)
        return false;
    char piece[1024];
    const ssize_t count = ::read(m_terminal.get(), piece, sizeof piece);
    if (count > 0)
        m_shown.append(piece, static_cast<std::size_t>(count));
    return count > 0;
}

} // namespace test_support
