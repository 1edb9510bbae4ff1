// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>

namespace tour {

/// Thrown after Ctrl-C, so that destructors drop what the tour has created on
/// the server.
struct Interrupted : std::runtime_error
{
    Interrupted() : std::runtime_error("interrupted") {}
};
/// Makes Ctrl-C end the tour at the next step instead of at once.
void endOnInterrupt();

/// Seconds since the start of the program.
double secondsSinceStart();

/// One step of a chapter. Prints a description and the code of the step, and
/// then the number of documents and the time.
class Step
{
public:
    /// Prints @p what and a part of the tour's own source code, and starts
    /// the clock.
    /// @param code  the name in the two lines "//! [name]" around this part
    /// @throws Interrupted
    Step(const std::string& what, const std::string& code);
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
    /// Clears the progress bar if the step has failed.
    ~Step();
    /// Draws a progress bar if standard output is a terminal.
    /// @throws Interrupted
    void progress(std::size_t done, std::size_t total);
    /// Stops the clock, prints the result and returns the seconds.
    /// @param operations  calls of the client in this step
    double done(std::size_t count, const std::string& unit = "documents",
                std::size_t operations = 1);

private:
    void clearBar();

    double m_start = 0;
    std::size_t m_drawn = 0; ///< cells on the screen; the bar is drawn again
                             ///< only if it has more
    bool m_bar = false;
};

/// Prints the totals of all steps, and what to read next.
void summary();

/// Prints the part @p name of the tour's source code.
void showCode(const std::string& name);
/// Prints a line below a step: what was sent, or a reply of the server.
void show(const std::string& line);
/// The same, cut to the width of a line.
void showShort(const std::string& line);
/// Prints a line of advice.
void note(const std::string& line);

/// Runs an operation that the server may reject. Returns "accepted", or the
/// text of the exception.
std::string answer(const std::function<void()>& operation);

/// Ends the tour with an error if the number from the server differs from the
/// number that a loop over the records has counted.
void agree(const std::string& what, std::size_t server, std::size_t records);

} // namespace tour
