// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "scratch_folder.h"
#include "wire_socket.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace test_support {

/// The tool dbc, running. Ends with the object, if it has not before.
class ToolProcess
{
public:
    enum class Messages
    {
        InAFile,
        OnATerminal
    };

    explicit ToolProcess(std::vector<std::string> arguments, Messages messages = Messages::InAFile);
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    void signal(int number) const;
    /// Until it ends. @return its status; 128 and the signal's number if one ended it, as shells have it
    int wait();

    std::string output() const; ///< what it has written to standard output
    std::string messages();     ///< what it has written to standard error; complete only after wait()
    /// Reads the terminal until the text was on it. False when the tool has ended without it, or
    /// keeps writing other things for the gateway's patience.
    bool showsOnTerminal(const std::string& text);

private:
    bool readTerminal();

    ScratchFolder m_folder;
    FileDescriptor m_terminal;
    std::string m_shown;
    pid_t m_process = -1;
    int m_status = 0;
};

} // namespace test_support
