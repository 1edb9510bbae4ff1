// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace test_support {

/// Owns one file descriptor.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }
    int release();
    void reset();

private:
    int m_descriptor = -1;
};

/// Returns a socket that is bound to a free port of 127.0.0.1 and does not listen. No other process gets the port while
/// the socket is open.
FileDescriptor reservePort(std::uint16_t& port);
/// Returns a socket that listens on a reserved port.
FileDescriptor listenOn(std::uint16_t port);
/// @throws std::runtime_error  the connection cannot be opened
FileDescriptor connectTo(const std::string& host, const std::string& port);

/// These two functions return false if the connection ends first. They do not raise SIGPIPE.
bool receiveAll(int socket, std::uint8_t* data, std::size_t length);
bool sendAll(int socket, const std::uint8_t* data, std::size_t length);

/// Wakes a thread that waits in poll().
class Wakeup
{
public:
    Wakeup();
    int descriptor() const { return m_event.get(); }
    void wake() const;
    void drain() const;

private:
    FileDescriptor m_event;
};

} // namespace test_support
