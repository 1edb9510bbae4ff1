// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace test_support {

/// Redirects standard output to a file without a name while an object exists.
class CapturedOutput
{
public:
    CapturedOutput() : m_file(std::tmpfile(), &std::fclose), m_original(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        if (!m_file || m_original < 0 || dup2(fileno(m_file.get()), STDOUT_FILENO) < 0)
            throw std::runtime_error("standard output cannot be captured");
    }

    ~CapturedOutput() { restore(); }

    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// Ends the capture and returns the output.
    std::string text()
    {
        restore();
        std::string result;
        std::rewind(m_file.get());
        for (int byte = std::fgetc(m_file.get()); byte != EOF; byte = std::fgetc(m_file.get()))
            result.push_back(static_cast<char>(byte));
        return result;
    }

private:
    void restore()
    {
        if (m_original < 0)
            return;
        std::fflush(stdout);
        dup2(m_original, STDOUT_FILENO);
        close(m_original);
        m_original = -1;
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_file;
    int m_original;
};

} // namespace test_support
