// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

Progress::Progress(std::string what, std::uint64_t total, bool quiet, Unit unit, bool isForced)
    : m_what(std::move(what)), m_total(total), m_unit(unit), m_isVisible(isShown(quiet, isForced)),
      m_isTerminal(::isatty(STDERR_FILENO) == 1)
{}

bool Progress::isShown(bool quiet, bool isForced)
{
    return isForced || (!quiet && ::isatty(STDERR_FILENO) == 1);
}

Progress::~Progress()
{
    if (m_isVisible && m_isTerminal)
        std::fputs("\r\x1b[K", stderr);
}

void Progress::show(std::uint64_t done, std::uint64_t part)
{
    if (!m_isVisible)
        return;
    const auto now = Clock::now();
    if (now < m_next)
        return;
    m_next = now + std::chrono::milliseconds(m_isTerminal ? 100 : 1000);
    const std::string line = text(done, part, std::chrono::duration<double>(now - m_begin).count());
    std::fprintf(stderr, m_isTerminal ? "\r\x1b[K%s" : "%s\n", line.c_str());
}

std::string Progress::text(std::uint64_t done, std::uint64_t part, double seconds) const
{
    const std::string rate = amount(seconds > 0 ? static_cast<double>(done) / seconds : 0) + "/s";
    if (m_total == 0)
        return m_what + " " + amount(static_cast<double>(done)) + "  " + rate;
    constexpr int width = 30;
    const double share = std::min(static_cast<double>(part) / static_cast<double>(m_total), 1.0);
    const int filled = static_cast<int>(share * width);
    char bar[64];
    std::snprintf(bar, sizeof bar, "[%.*s%*s] %3.0f%%", filled, "##############################", width - filled, "",
                  share * 100);
    return m_what + " " + bar + "  " + rate;
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
