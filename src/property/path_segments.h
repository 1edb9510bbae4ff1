#pragma once

#include <cstddef>
#include <string>

/// The segments of a key path, one after the other. A path without "/", the usual one, is handed out as it is; of any
/// other path one segment at a time is copied, since the children can only be searched by a text of its own.
class PathSegments
{
public:
    explicit PathSegments(const std::string& path) : m_path(path) {}

    /// Goes on to the next segment that is not empty; false at the end of the path.
    bool next()
    {
        const std::size_t begin = m_path.find_first_not_of('/', m_end);
        if (begin == std::string::npos)
            return false;
        goTo(begin);
        return true;
    }

    /// Whether no segment follows the current one.
    bool isLast() const noexcept { return m_path.find_first_not_of('/', m_end) == std::string::npos; }

    const std::string& segment() const noexcept { return isWholePath() ? m_path : m_segment; }

    /// Place of the current segment, for goTo().
    std::size_t position() const noexcept { return m_begin; }

    /// Makes the segment that begins at this position the current one.
    void goTo(std::size_t begin)
    {
        m_begin = begin;
        m_end = m_path.find('/', begin);
        if (m_end == std::string::npos)
            m_end = m_path.size();
        if (!isWholePath())
            m_segment.assign(m_path, m_begin, m_end - m_begin);
    }

private:
    bool isWholePath() const noexcept { return m_begin == 0 && m_end == m_path.size(); }

    const std::string& m_path;
    std::string m_segment;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};
