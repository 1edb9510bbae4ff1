// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "interrupt.h"

#include <fstream>
#include <optional>
#include <ostream>
#include <string>

/// A local file that is created, or replaces an older one, only when it is complete. Output goes to a temporary file
/// next to it, which is removed after an exception or a signal. A pipe or a terminal is written directly.
class ReplacedFile
{
public:
    /// @throws Failure if the file or the temporary file cannot be written
    explicit ReplacedFile(const std::string& path);
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    ~ReplacedFile();

    std::ostream& stream() noexcept { return m_stream; }

    /// Replaces the older file by the temporary one. @throws Failure if a write failed
    void commit();

private:
    std::string m_path; ///< with links resolved
    std::string m_part; ///< the temporary file; empty if the target is written directly
    std::optional<RemovalOnSignal> m_removal;
    std::ofstream m_stream;
};
