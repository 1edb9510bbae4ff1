// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A progress line on standard error. Not shown with --quiet or if standard error is not a terminal.
class Progress
{
public:
    /// Unit of the count.
    enum class Unit
    {
        Documents,
        Bytes ///< shown in MiB
    };

    /// @param total     0 if not known
    /// @param isForced  also without a terminal: prints a line every second
    Progress(std::string what, std::uint64_t total, bool quiet, Unit unit = Unit::Documents, bool isForced = false);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Clears the line.
    ~Progress();

    /// @param done  number so far
    void show(std::uint64_t done) { show(done, done); }
    /// @param done  number so far, for the rate
    /// @param part  number so far in the unit of the total, if that differs
    void show(std::uint64_t done, std::uint64_t part);

    /// True if a progress line is shown. If not, the caller does not need to query the total.
    static bool isShown(bool quiet, bool isForced = false);

private:
    using Clock = std::chrono::steady_clock;

    std::string amount(double count) const;
    std::string text(std::uint64_t done, std::uint64_t part, double seconds) const;

    const std::string m_what;
    const std::uint64_t m_total;
    const Unit m_unit;
    const bool m_isVisible;
    const bool m_isTerminal;
    const Clock::time_point m_begin = Clock::now();
    Clock::time_point m_next = m_begin;
};
