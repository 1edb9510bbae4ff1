// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Random sequences of operations on the library and on a model of its rules, compared after every step.
// A difference is shrunk to a short sequence and printed with the number that makes it again.

#include "operation.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <iostream>

namespace {

struct Arguments
{
    std::string system;
    std::size_t sequences = 2000;
    std::size_t steps = 50;
    std::uint64_t seed = 1;
    double seconds = 0;
};

// Every sequence has a seed of its own, so that one alone can be run again.
std::vector<Operation> sequenceOf(const System& system, std::uint64_t seed, std::size_t steps)
{
    std::mt19937_64 random(seed);
    std::vector<Operation> sequence(steps);
    for (auto& operation : sequence)
        operation = randomOperation(random, system.operations.size(), system.subjects);
    return sequence;
}

void report(const System& system, std::uint64_t seed, const std::vector<Operation>& sequence)
{
    const auto shortest = shrink(system, sequence);
    std::cout << system.name << ": difference with --seed " << seed << " --sequences 1 --steps " << sequence.size()
              << "\nshrunk to " << shortest.size() << " operations:\n";
    for (const auto& operation : shortest)
        std::cout << "  " << describe(system.operations[operation.kind], operation) << '\n';
    std::cout << system.run(shortest)->text << '\n';
}

bool check(const System& system, const Arguments& arguments)
{
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    const auto timeIsUp = [&] {
        return arguments.seconds > 0 && std::chrono::duration<double>(Clock::now() - begin).count() > arguments.seconds;
    };
    std::size_t done = 0;
    while ((done < arguments.sequences || arguments.seconds > 0) && !timeIsUp())
    {
        const std::uint64_t seed = arguments.seed + done++;
        const auto sequence = sequenceOf(system, seed, arguments.steps);
        if (system.run(sequence))
        {
            report(system, seed, sequence);
            return false;
        }
    }
    std::cout << system.name << ": " << done << " sequences of " << arguments.steps << " operations, seeds from "
              << arguments.seed << ", no difference\n";
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    Arguments arguments;
    CLI::App app("Compares random sequences of operations with a model of the rules");
    app.add_option("--system", arguments.system, "property, document or filter; all of them by default");
    app.add_option("--sequences", arguments.sequences, "how many")->capture_default_str();
    app.add_option("--steps", arguments.steps, "operations in each")->capture_default_str();
    app.add_option("--seed", arguments.seed, "of the first sequence; each further one has the next")
        ->capture_default_str();
    app.add_option("--seconds", arguments.seconds, "for each system, instead of a number of sequences");
    CLI11_PARSE(app, argc, argv);

    bool same = true;
    for (const auto& system : {propertySystem(), documentSystem(), filterSystem()})
    {
        if (arguments.system.empty() || arguments.system == system.name)
            same = check(system, arguments) && same;
    }
    return same ? 0 : 1;
}
