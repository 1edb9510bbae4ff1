#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A line on standard error that counts; silent when that is no terminal or the program is to be quiet.
class Progress
{
public:
    /// What is counted.
    enum class Unit
    {
        Documents,
        Bytes ///< shown in MiB
    };

    /// @param total     0 when it is not known
    /// @param isForced  also without a terminal: then a line of its own every second
    Progress(std::string what, std::uint64_t total, bool quiet, Unit unit = Unit::Documents, bool isForced = false);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Wipes the line.
    ~Progress();

    /// @param done  so many of the total
    void show(std::uint64_t done) { show(done, done); }
    /// @param done  counts for the rate
    /// @param part  so much of the total, which is counted in another unit
    void show(std::uint64_t done, std::uint64_t part);

    /// Whether a line will be seen: a total that is costly to find out need not be, if not.
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
