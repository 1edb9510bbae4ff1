#include "reading_position.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

ReadingPosition::ReadingPosition(std::string what, const struct stat& file, int own, bool quiet)
    : m_device(file.st_dev), m_inode(file.st_ino), m_own(own),
      m_progress(std::move(what), static_cast<std::uint64_t>(file.st_size), quiet, Progress::Unit::Bytes)
{
    if (S_ISREG(file.st_mode) && Progress::isShown(quiet))
        m_watch = std::thread([this] { watch(); });
}

ReadingPosition::~ReadingPosition()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isOver = true;
    }
    m_end.notify_one();
    if (m_watch.joinable())
        m_watch.join();
}

void ReadingPosition::watch()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    do
    {
        m_progress.show(position());
    } while (!m_end.wait_for(lock, std::chrono::milliseconds(100), [this] { return m_isOver; }));
}

// The first line of a descriptor's record is "pos:" and the position.
std::uint64_t ReadingPosition::position() const
{
    std::uint64_t position = 0;
    std::error_code error;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry("/proc/self/fd", error); !error && entry != end;
         entry.increment(error))
    {
        const std::string number = entry->path().filename().string();
        struct stat status = {};
        if (::stat(entry->path().c_str(), &status) != 0 || status.st_dev != m_device || status.st_ino != m_inode ||
            number == std::to_string(m_own))
            continue;
        std::ifstream record("/proc/self/fdinfo/" + number);
        std::string field;
        record >> field >> position;
    }
    return position;
}
