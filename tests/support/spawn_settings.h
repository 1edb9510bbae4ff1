// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <spawn.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace test_support {

/// Settings of a child process: no input, output to files, no blocked signals. Signals that end a program have their
/// default action.
class SpawnSettings
{
public:
    /// Appends standard output and standard error to these files, which may be the same file.
    SpawnSettings(const std::string& output, const std::string& messages);
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings();

    /// Starts a program. The first element of @p line is the program. @throws std::system_error
    pid_t spawn(std::vector<std::string> line) const;

private:
    posix_spawn_file_actions_t m_files{};
    posix_spawnattr_t m_attributes{};
};

} // namespace test_support
