// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include <benchmark/benchmark.h>

#include <malloc.h>

int main(int argc, char** argv)
{
    // malloc does not return freed memory to the system, as in a process that has run for a while. Otherwise the
    // benchmark that frees most would also measure the system calls for returning and requesting memory.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
