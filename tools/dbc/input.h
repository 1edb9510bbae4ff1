// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Parses a JSON value of any dialect.
/// @throws Failure "@p what is not JSON: line 2, column 7: ..."
dbc::Value parseJson(std::string_view text, const std::string& what);

/// The same for a document. @throws Failure also if the value is not an object
dbc::Value parseDocument(std::string_view text, const std::string& what);

/// Line and column in a text. Columns count characters, not bytes.
struct Place
{
    std::uint64_t line = 1;
    std::uint64_t column = 1;

    /// Moves the position to the end of @p text, which begins at this position.
    void pass(std::string_view text) noexcept;
    std::string text() const { return "line " + std::to_string(line) + ", column " + std::to_string(column); }
};

/// Reads the bytes of a file or of standard input. Ctrl-C ends the input.
class InputFile
{
public:
    static constexpr int end = -1;

    /// @param path  empty for standard input
    /// @throws Failure if the file cannot be read
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    /// Returns the next byte, or the end marker.
    int get() { return m_next < m_filled || fill() ? m_buffer[m_next++] : end; }
    /// Returns the next byte without moving past it.
    int peek() { return m_next < m_filled || fill() ? m_buffer[m_next] : end; }
    /// Skips a byte order mark at the beginning.
    void skipByteOrderMark();

    /// Number of bytes read so far.
    std::uint64_t position() const noexcept { return m_before + m_next; }
    /// Size of the file; 0 if not known, as for a pipe.
    std::uint64_t size() const noexcept { return m_size; }
    /// Name for messages.
    const std::string& name() const noexcept { return m_name; }

private:
    bool fill();

    std::string m_name;
    int m_file = 0;
    std::uint64_t m_size = 0;
    std::uint64_t m_before = 0; // bytes before the buffer
    std::size_t m_next = 0;
    std::size_t m_filled = 0;
    std::array<unsigned char, 64 * 1024> m_buffer;
};

/// Reads documents one by one.
class DocumentReader
{
public:
    virtual ~DocumentReader() = default;

    /// Returns the next document; empty at the end. @throws Failure with line and column of invalid input
    virtual std::optional<dbc::Value> next() = 0;
    /// Skips the next document without parsing it. Returns false at the end. @throws Failure as next()
    virtual bool skip() = 0;
    /// The number of the first line of the last document.
    virtual std::uint64_t line() const = 0;
};

/// Reads JSON documents: one per line, elements of one array, or one after the other.
class JsonReader : public DocumentReader
{
public:
    explicit JsonReader(InputFile& input) : m_input(input) { m_input.skipByteOrderMark(); }

    std::optional<dbc::Value> next() override;
    bool skip() override { return readText(); }
    std::uint64_t line() const override { return m_begin.line; }

private:
    bool readText();
    [[noreturn]] void throwUnfinished(const char* what) const;
    void passOver(char between);

    InputFile& m_input;
    std::string m_text;
    Place m_begin; // of the document
    Place m_place; // of the next byte
    bool m_inArray = false;
};
