// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <spawn.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace test_support {

/// What a child gets instead of the test's own: no input, files for its output, no blocked signals, and those that end
/// a program not ignored.
class SpawnSettings
{
public:
    /// Both files are appended to, and may be the same one.
    SpawnSettings(const std::string& output, const std::string& messages);
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings();

    /// Starts the program that is first in the line. @throws std::system_error
    pid_t spawn(std::vector<std::string> line) const;

private:
    posix_spawn_file_actions_t m_files{};
    posix_spawnattr_t m_attributes{};
};

} // namespace test_support
