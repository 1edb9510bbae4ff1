#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

/// Whether the path is one segment and nothing else, as most are: it is then the key of a child as it stands.
inline bool isSingleSegment(const std::string& path) noexcept
{
    const std::string_view view = path; // whose find() is inlined
    return !view.empty() && view.find('/') == std::string_view::npos;
}

/// The segments of a key path, one after the other. A path without "/", the usual one, is handed out as it is; of any
/// other path one segment at a time is copied, since the children can only be searched by a text of its own.
class PathSegments
{
public:
    explicit PathSegments(const std::string& path) noexcept
        : m_path(path), m_begin(path.data()), m_end(m_begin), m_pathEnd(m_begin + path.size())
    {}

    /// Goes on to the next segment that is not empty; false at the end of the path.
    bool next()
    {
        const char* const begin = nextBegin();
        if (begin == m_pathEnd)
            return false;
        goTo(begin);
        return true;
    }

    /// Whether no segment follows the current one.
    bool isLast() const noexcept { return nextBegin() == m_pathEnd; }

    const std::string& segment() const noexcept { return isWholePath() ? m_path : m_segment; }

    /// Place of the current segment, for goTo().
    const char* position() const noexcept { return m_begin; }

    /// Makes the segment that begins at this position the current one.
    void goTo(const char* begin)
    {
        const auto* const slash = static_cast<const char*>(std::memchr(begin, '/', rest(begin)));
        m_begin = begin;
        m_end = slash ? slash : m_pathEnd;
        if (isWholePath())
            return;
        m_segment.clear(); // what follows is then an append(), which costs half of an assign()
        m_segment.append(m_begin, static_cast<std::size_t>(m_end - m_begin));
    }

private:
    const char* nextBegin() const noexcept
    {
        const char* begin = m_end;
        while (begin != m_pathEnd && *begin == '/')
            ++begin;
        return begin;
    }

    std::size_t rest(const char* begin) const noexcept { return static_cast<std::size_t>(m_pathEnd - begin); }

    bool isWholePath() const noexcept { return m_begin == m_path.data() && m_end == m_pathEnd; }

    const std::string& m_path;
    std::string m_segment;
    const char* m_begin;
    const char* m_end;
    const char* m_pathEnd;
};
