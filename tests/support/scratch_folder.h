// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace test_support {

/// A folder of the test's own, removed with all that is in it. Operations that fail throw std::system_error.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "database_client-test.XXXXXX").string();
        check(::mkdtemp(path.data()) != nullptr, path);
        m_path = path;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path() const { return m_path.string(); }
    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// Writes a file. @return its path
    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream file(path(name), std::ios::binary);
        check(static_cast<bool>(file << content << std::flush), name);
        return path(name);
    }

    std::string read(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    /// In the order of their names.
    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }

private:
    static void check(bool isDone, const std::string& what)
    {
        if (!isDone)
            throw std::system_error(errno, std::generic_category(), what);
    }

    std::filesystem::path m_path;
};

} // namespace test_support
