#pragma once

#include "interrupt.h"

#include <fstream>
#include <optional>
#include <ostream>
#include <string>

/// A local file that comes into being, or takes an older one's place, only when it is complete. What is written goes
/// into a file beside it, which is gone when the work ends by an exception or a signal. What is no plain file, such as
/// a pipe or a terminal, is written as it is.
class ReplacedFile
{
public:
    /// @throws Failure when the file, or one beside it, cannot be written
    explicit ReplacedFile(const std::string& path);
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    ~ReplacedFile();

    std::ostream& stream() noexcept { return m_stream; }

    /// Puts what was written in the older file's place. @throws Failure when it could not all be written
    void commit();

private:
    std::string m_path; ///< behind links
    std::string m_part; ///< empty when there is none
    std::optional<RemovalOnSignal> m_removal;
    std::ofstream m_stream;
};
