// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "spawn_settings.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <system_error>

namespace test_support {

SpawnSettings::SpawnSettings(const std::string& output, const std::string& messages)
{
    constexpr int write = O_WRONLY | O_CREAT | O_APPEND | O_NOCTTY;
    posix_spawn_file_actions_init(&m_files);
    posix_spawnattr_init(&m_attributes);
    posix_spawn_file_actions_addopen(&m_files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&m_files, STDOUT_FILENO, output.c_str(), write, 0600);
    posix_spawn_file_actions_addopen(&m_files, STDERR_FILENO, messages.c_str(), write, 0600);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&m_attributes, &signals);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        sigaddset(&signals, signal);
    posix_spawnattr_setsigdefault(&m_attributes, &signals);
    posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

SpawnSettings::~SpawnSettings()
{
    posix_spawn_file_actions_destroy(&m_files);
    posix_spawnattr_destroy(&m_attributes);
}

pid_t SpawnSettings::spawn(std::vector<std::string> line) const
{
    std::vector<char*> arguments;
    arguments.reserve(line.size() + 1);
    for (std::string& argument : line)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    pid_t process = -1;
    const int failure = ::posix_spawnp(&process, arguments.front(), &m_files, &m_attributes, arguments.data(), environ);
    if (failure != 0)
        throw std::system_error(failure, std::generic_category(), "cannot start " + line.front());
    return process;
}

} // namespace test_support
