// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <string>
#include <vector>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_TOGGLE_COLLECT
#endif

/// CPU time of this thread in seconds. Other processes on a shared machine hardly affect it.
inline double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Measures only @p work, over a row of slots: neither @p prepare nor the destruction of the slots. @p done returns
/// whether the work on a slot was done; it is called before the first measurement. Callgrind counts only the
/// instructions of @p work, for one row of slots.
/// @param fields  number of fields that one call of @p work handles, for the items per second
/// @param bytes   size of the data of one slot: a row has fewer slots if it is large, so that it fits into the caches
template <typename Slot, typename Prepare, typename Work, typename Done>
void measure(benchmark::State& state, std::size_t fields, std::size_t bytes, Prepare prepare, Work work, Done done)
{
    const std::size_t row = std::clamp<std::size_t>(32768 / bytes, 1, 64);
    {
        std::vector<Slot> first(1);
        prepare(first[0]);
        work(first[0]);
        if (!done(first[0]))
            return state.SkipWithError("the work was not done");
    }
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(row)))
    {
        std::vector<Slot> slots(row);
        for (Slot& slot : slots)
            prepare(slot);
        CALLGRIND_TOGGLE_COLLECT;
        const double begin = threadSeconds();
        for (Slot& slot : slots)
        {
            work(slot);
            benchmark::DoNotOptimize(slot);
        }
        const double end = threadSeconds();
        CALLGRIND_TOGGLE_COLLECT;
        state.SetIterationTime(end - begin);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<benchmark::IterationCount>(fields));
    state.counters["fields"] = static_cast<double>(fields);
}

/// Registers a benchmark named operation/shape/library.
template <typename Function>
benchmark::internal::Benchmark* add(const std::string& operation, const std::string& shape, const std::string& library,
                                    Function function)
{
    const std::string name = operation + '/' + shape + '/' + library;
    return benchmark::RegisterBenchmark(name.c_str(), function)->UseManualTime();
}

/// Calls a function for every shape. For `const bool registered = addAll(...)` at namespace scope.
template <typename Shapes, typename Function>
bool addAll(const Shapes& shapes, Function function)
{
    for (const auto* shape : shapes)
        function(*shape);
    return true;
}
