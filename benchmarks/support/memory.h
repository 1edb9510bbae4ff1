// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

/// A field of /proc/self/status, such as VmRSS, in MiB.
inline double mebibytes(const char* field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
    {
        if (line.rfind(field, 0) == 0)
            return std::strtod(line.c_str() + std::strlen(field) + 1, nullptr) / 1024;
    }
    return 0;
}

/// Peak of the resident memory while @p work runs, in MiB above the resident memory at its start.
template <typename Work>
double peakOf(Work work)
{
    std::ofstream("/proc/self/clear_refs") << 5; // the peak starts anew
    const double before = mebibytes("VmRSS");
    work();
    return mebibytes("VmHWM") - before;
}
