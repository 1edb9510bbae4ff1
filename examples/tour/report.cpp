#include "report.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <utility>

namespace tour {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void throwIfInterrupted()
{
    if (interrupted != 0)
    {
        throw Interrupted();
    }
}

bool onTerminal()
{
    static const bool answer = ::isatty(STDOUT_FILENO) != 0;
    return answer;
}

} // namespace

void endOnInterrupt()
{
    const auto remember = [](int) { interrupted = 1; };
    std::signal(SIGINT, remember);
    std::signal(SIGTERM, remember);
}

Step::Step(std::string what) : m_what(std::move(what)), m_start(std::chrono::steady_clock::now())
{
    throwIfInterrupted();
}

Step::~Step()
{
    clearBar();
}

void Step::progress(std::size_t done, std::size_t total)
{
    throwIfInterrupted();
    constexpr std::size_t width = 40;
    const std::size_t cells = total == 0 ? width : done * width / total;
    if (!onTerminal() || (m_bar && cells == m_drawn))
    {
        return;
    }
    m_bar = true;
    m_drawn = cells;
    std::cout << "\r  [" << std::string(cells, '#') << std::string(width - cells, '.') << "] " << done << '/' << total
              << std::flush;
}

void Step::done(std::size_t count, const std::string& unit)
{
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - m_start;
    clearBar();
    const std::string counted = count == 1 && unit.back() == 's' ? unit.substr(0, unit.size() - 1) : unit;
    char figures[96];
    std::snprintf(figures, sizeof figures, "%6zu %-9s %8.3f s", count, counted.c_str(), time.count());
    std::cout << "  " << m_what << std::string(m_what.size() < 58 ? 58 - m_what.size() : 1, ' ') << figures;
    if (count > 1 && time.count() > 0)
    {
        std::snprintf(figures, sizeof figures, " %8.0f/s", static_cast<double>(count) / time.count());
        std::cout << figures;
    }
    std::cout << std::endl;
}

void Step::clearBar()
{
    if (std::exchange(m_bar, false))
    {
        std::cout << "\r\033[K" << std::flush; // back to the first column, and clears the line
    }
}

void title(const std::string& name, const std::string& what)
{
    std::cout << '\n' << name << ": " << what << std::endl;
}

void show(const std::string& line)
{
    std::cout << "      " << line << std::endl;
}

void showShort(const std::string& line)
{
    constexpr std::size_t width = 110;
    if (line.size() <= width)
    {
        show(line);
        return;
    }
    std::size_t end = width;
    while ((static_cast<unsigned char>(line[end]) & 0xC0U) == 0x80U) // not inside a UTF-8 character
    {
        --end;
    }
    show(line.substr(0, end) + " ...");
}

void note(const std::string& line)
{
    std::cout << "    ! " << line << std::endl;
}

std::string answer(const std::function<void()>& operation)
{
    try
    {
        operation();
        return "accepted";
    }
    catch (const std::runtime_error& refused)
    {
        return refused.what();
    }
}

void agree(const std::string& what, std::size_t server, std::size_t records)
{
    if (server != records)
    {
        throw std::runtime_error(what + ": the server answered " + std::to_string(server) +
                                 ", a loop over the records " + std::to_string(records));
    }
}

} // namespace tour
