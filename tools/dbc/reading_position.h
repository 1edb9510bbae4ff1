#pragma once

#include "progress.h"

#include <sys/stat.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

/// While one lives, shows how far this process has read a file that someone else in it has open: the driver, which
/// tells nobody how far it came. The kernel knows.
class ReadingPosition
{
public:
    /// @param file  status of the file; nothing is shown of what is no plain file, since that has no position
    /// @param own   a descriptor of the file that does not count, or -1
    ReadingPosition(std::string what, const struct stat& file, int own, bool quiet);
    ReadingPosition(const ReadingPosition&) = delete;
    ReadingPosition& operator=(const ReadingPosition&) = delete;
    ~ReadingPosition();

private:
    void watch();
    std::uint64_t position() const;

    const dev_t m_device;
    const ino_t m_inode;
    const int m_own;
    Progress m_progress;
    std::mutex m_mutex;
    std::condition_variable m_end;
    bool m_isOver = false;
    std::thread m_watch; // none when nobody sees it
};
