#pragma once

#include "dbc/value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A value of JSON text, any dialect.
/// @throws Failure "@p what is not JSON: line 2, column 7: ..."
dbc::Value parseJson(std::string_view text, const std::string& what);

/// The same for a document. @throws Failure also for a value that is not an object
dbc::Value parseDocument(std::string_view text, const std::string& what);

/// A place in a text. Columns count characters, not bytes.
struct Place
{
    std::uint64_t line = 1;
    std::uint64_t column = 1;

    /// The place behind @p text, which begins here.
    void pass(std::string_view text) noexcept;
    std::string text() const { return "line " + std::to_string(line) + ", column " + std::to_string(column); }
};

/// The bytes of a file, or of standard input. A Ctrl-C that is noted ends the input.
class InputFile
{
public:
    static constexpr int end = -1;

    /// @param path  empty for standard input
    /// @throws Failure when the file cannot be read
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    /// The next byte, or end.
    int get() { return m_next < m_filled || fill() ? m_buffer[m_next++] : end; }
    /// The byte that get() returns next.
    int peek() { return m_next < m_filled || fill() ? m_buffer[m_next] : end; }
    /// Passes over a byte order mark at the beginning.
    void skipByteOrderMark();

    /// Bytes taken so far.
    std::uint64_t position() const noexcept { return m_before + m_next; }
    /// Bytes of the whole file; 0 if that is not known, as with a pipe.
    std::uint64_t size() const noexcept { return m_size; }
    /// What messages call it.
    const std::string& name() const noexcept { return m_name; }

private:
    bool fill();

    std::string m_name;
    int m_file = 0;
    std::uint64_t m_size = 0;
    std::uint64_t m_before = 0; // bytes in front of the buffer
    std::size_t m_next = 0;
    std::size_t m_filled = 0;
    std::array<unsigned char, 64 * 1024> m_buffer;
};

/// Reads documents from an input, one after the other. Holds one at a time.
class DocumentReader
{
public:
    virtual ~DocumentReader() = default;

    /// The next document; empty at the end. @throws Failure with the place of what cannot be read
    virtual std::optional<dbc::Value> next() = 0;
    /// Passes over the next document without looking into it; false at the end. @throws Failure as next()
    virtual bool skip() = 0;
    /// The line in which the document of the last next() or skip() begins.
    virtual std::uint64_t line() const = 0;
};

/// JSON documents: on lines, in one array, or side by side.
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
