// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "replaced_file.h"

#include "failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <ios>
#include <optional>
#include <random>
#include <string>
#include <system_error>

namespace {

[[noreturn]] void throwCannotWrite(const std::string& path, int error)
{
    throw Failure(UsageError, "cannot write " + path + ": " + std::generic_category().message(error));
}

// A random name, because another program may be writing the same file.
std::string nameBeside(const std::string& path)
{
    std::random_device random;
    return path + "." + std::to_string(random()) + ".part";
}

// Requires write permission for the older file and keeps its mode, as if that file were overwritten.
void createFor(const std::string& part, const std::string& path, const std::optional<mode_t>& mode)
{
    if (mode && ::access(path.c_str(), W_OK) != 0)
        throwCannotWrite(path, errno);
    const int file = ::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        throwCannotWrite(path, errno);
    if (mode)
        ::fchmod(file, *mode);
    ::close(file);
}

// Flushes the file to disk before the rename, so that the file is complete also after a power failure.
bool isOnDisk(const std::string& path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool done = file >= 0 && ::fsync(file) == 0;
    if (file >= 0)
        ::close(file);
    return done;
}

} // namespace

ReplacedFile::ReplacedFile(const std::string& path) : m_path(path)
{
    std::error_code error;
    if (std::filesystem::is_symlink(path, error))
        m_path = std::filesystem::weakly_canonical(path, error).string();
    struct stat older = {};
    const bool isThere = ::stat(m_path.c_str(), &older) == 0;
    if (isThere && !S_ISREG(older.st_mode))
    {
        m_stream.open(m_path, std::ios::binary);
        if (!m_stream)
            throwCannotWrite(m_path, errno);
        return;
    }
    const std::string part = nameBeside(m_path);
    m_removal.emplace(part);
    createFor(part, m_path, isThere ? std::optional<mode_t>(older.st_mode & 07777U) : std::nullopt);
    m_part = part;
    m_stream.open(m_part, std::ios::binary);
}

ReplacedFile::~ReplacedFile()
{
    m_stream.close();
    if (!m_part.empty())
        std::remove(m_part.c_str());
}

void ReplacedFile::commit()
{
    m_stream.close();
    if (!m_stream || (!m_part.empty() && !isOnDisk(m_part)))
        throwCannotWrite(m_path, errno);
    if (m_part.empty())
        return;
    if (std::rename(m_part.c_str(), m_path.c_str()) != 0)
        throwCannotWrite(m_path, errno);
    m_part.clear();
}
