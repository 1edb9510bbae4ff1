// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "report.h"

#include "text.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
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
        throw Interrupted();
}

bool onTerminal()
{
    static const bool answer = ::isatty(STDOUT_FILENO) != 0;
    return answer;
}

constexpr std::size_t screen = 80; // columns

struct Total
{
    std::size_t documents = 0;
    std::size_t files = 0;
    std::size_t operations = 0;
};
Total allSteps;

// If a line is too long, its further lines have @p indent more spaces.
void print(const std::string& front, const std::string& line,
           std::size_t indent)
{
    for (const std::string& part :
         wrapped(line, screen - front.size(), indent))
        std::cout << front << part << '\n';
    std::cout << std::flush;
}

std::string counted(std::size_t count, const std::string& unit)
{
    return std::to_string(count) + ' ' +
           (count == 1 ? unit.substr(0, unit.size() - 1) : unit);
}

} // namespace

void endOnInterrupt()
{
    const auto remember = [](int) { interrupted = 1; };
    std::signal(SIGINT, remember);
    std::signal(SIGTERM, remember);
}

double secondsSinceStart()
{
    static const auto start = std::chrono::steady_clock::now();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                         start)
        .count();
}

Step::Step(const std::string& what, const std::string& code)
{
    throwIfInterrupted();
    std::cout << '\n';
    print("  ", what, 2);
    showCode(code);
    m_start = secondsSinceStart();
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
        return;
    m_bar = true;
    m_drawn = cells;
    std::cout << "\r  [" << std::string(cells, '#')
              << std::string(width - cells, '.') << "] " << done << '/'
              << total << std::flush;
}

double Step::done(std::size_t count, const std::string& unit,
                  std::size_t operations)
{
    const double seconds = secondsSinceStart() - m_start;
    clearBar();
    allSteps.documents += unit == "documents" ? count : 0;
    allSteps.files += unit == "files" ? count : 0;
    allSteps.operations += operations;
    std::cout << "    = " << counted(count, unit);
    char figures[64];
    std::snprintf(figures, sizeof figures, " in %.3f s", seconds);
    std::cout << figures;
    if (count > 1 && seconds > 0)
    {
        std::snprintf(figures, sizeof figures, ", %.0f per second",
                      static_cast<double>(count) / seconds);
        std::cout << figures;
    }
    std::cout << std::endl;
    return seconds;
}

void Step::clearBar()
{
    if (std::exchange(m_bar, false))
    {
        std::cout
            << "\r\033[K"
            << std::flush; // back to the first column, and clears the line
    }
}

void summary()
{
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.1f s", secondsSinceStart());
    std::cout
        << "\nThe tour handled " << counted(allSteps.documents, "documents")
        << " and " << counted(allSteps.files, "files") << "\nin "
        << counted(allSteps.operations, "operations") << " of the client, in "
        << seconds << ".\n"
        << "\nWhat to read next:\n"
           "  README.md                        a first program\n"
           "  examples/01_crud.cpp             small programs, one for each "
           "task\n"
           "  examples/tour/find.cpp           the code of this tour, one "
           "file per chapter\n"
           "  docs/guide/quick_start.md        the guide; scripts/docs makes "
           "HTML pages\n"
           "  docs/guide/dbc.md                the command-line tool\n"
        << std::flush;
}

void showCode(const std::string& name)
{
    for (const std::string& line : partOfSources(name))
    {
        print("    | ", line,
              std::min(line.find_first_not_of(' '), line.size()) + 4);
    }
}

void show(const std::string& line)
{
    print("      ", line, 2);
}

void showShort(const std::string& line)
{
    constexpr std::size_t most = screen - 10; // less 6 spaces and " ..."
    if (characters(line) <= most + 4)
    {
        show(line);
        return;
    }
    std::size_t end = most;
    while (characters(line.substr(0, end)) < most ||
           (static_cast<unsigned char>(line[end]) & 0xC0U) == 0x80U)
        ++end;
    show(line.substr(0, end) + " ...");
}

void note(const std::string& line)
{
    print("    ! ", line, 0);
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
        throw std::runtime_error(
            what + ": the server has " + std::to_string(server) +
            ", a loop over the records has " + std::to_string(records));
    }
}

} // namespace tour
