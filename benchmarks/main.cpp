// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include <benchmark/benchmark.h>

#include <malloc.h>

int main(int argc, char** argv)
{
    // The heap of a process that has been running for a while: memory that was freed is used again. Otherwise the
    // benchmark that frees most is charged for giving pages back to the system and asking for them again.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
