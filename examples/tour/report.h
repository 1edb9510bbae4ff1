// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>

namespace tour {

/// Ctrl-C: unwinds, so that what the tour made on the server is dropped on
/// the way out.
struct Interrupted : std::runtime_error
{
    Interrupted() : std::runtime_error("interrupted") {}
};
/// Makes Ctrl-C end the tour at the next step instead of at once.
void endOnInterrupt();

/// Seconds since the start of the program.
double secondsSinceStart();

/// One step of a chapter. Prints what is done and the code that does it, then
/// how many documents and how fast.
class Step
{
public:
    /// Prints @p what and the part @p code of the tour's own source text, and
    /// starts the clock.
    /// @param code  the name in the two lines "//! [name]" around that part
    /// @throws Interrupted
    Step(const std::string& what, const std::string& code);
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;
    /// Takes the bar of a step that failed off the screen.
    ~Step();
    /// Draws a progress bar when standard output is a terminal, otherwise
    /// nothing. @throws Interrupted
    void progress(std::size_t done, std::size_t total);
    /// Stops the clock, prints the result and returns the seconds.
    /// @param operations  calls of the client in this step
    double done(std::size_t count, const std::string& unit = "documents",
                std::size_t operations = 1);

private:
    void clearBar();

    double m_start = 0;
    std::size_t m_drawn = 0; ///< cells of the bar on the screen, so that it
                             ///< is drawn again only when it grows
    bool m_bar = false;
};

/// Prints what all steps have done, and where to go on.
void summary();

/// Prints the part @p name of the tour's source text, for a step that
/// follows.
void showCode(const std::string& name);
/// Prints a line below a step: what was sent, or what the server answered.
void show(const std::string& line);
/// The same, cut to the width of a line.
void showShort(const std::string& line);
/// Prints a line of advice: a trap, and how to keep clear of it.
void note(const std::string& line);

/// Runs something that the server may refuse: "accepted", or the text of the
/// exception.
std::string answer(const std::function<void()>& operation);

/// The tour ends here unless the server's count is the one that a plain loop
/// over the records gives.
void agree(const std::string& what, std::size_t server, std::size_t records);

} // namespace tour
