#include "progress.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <utility>

Progress::Progress(std::string what, std::uint64_t total, bool quiet, Unit unit)
    : m_what(std::move(what)), m_total(total), m_unit(unit), m_visible(isShown(quiet))
{}

bool Progress::isShown(bool quiet)
{
    return !quiet && ::isatty(STDERR_FILENO) == 1;
}

Progress::~Progress()
{
    if (m_visible)
        std::fputs("\r\x1b[K", stderr);
}

void Progress::show(std::uint64_t done)
{
    const auto now = Clock::now();
    if (!m_visible || now < m_next)
        return;
    m_next = now + std::chrono::milliseconds(100);
    const double seconds = std::chrono::duration<double>(now - m_begin).count();
    const std::string rate = amount(seconds > 0 ? static_cast<double>(done) / seconds : 0);
    if (m_total == 0)
    {
        std::fprintf(stderr, "\r\x1b[K%s %s  %s/s", m_what.c_str(), amount(static_cast<double>(done)).c_str(),
                     rate.c_str());
        return;
    }
    constexpr int width = 30;
    const double share = static_cast<double>(done) / static_cast<double>(m_total);
    const int filled = static_cast<int>((share < 1 ? share : 1) * width);
    std::fprintf(stderr, "\r\x1b[K%s [%.*s%*s] %3.0f%%  %s/s", m_what.c_str(), filled, "##############################",
                 width - filled, "", share * 100, rate.c_str());
}

std::string Progress::amount(double count) const
{
    char text[64];
    if (m_unit == Unit::Bytes)
        std::snprintf(text, sizeof text, "%.1f MiB", count / (1024 * 1024));
    else
        std::snprintf(text, sizeof text, "%.0f", count);
    return text;
}
