#pragma once

#include "dbc/value.h"

#include <cstdint>
#include <istream>
#include <optional>
#include <string>

/// The value of a JSON text, any dialect. @throws Failure that names @p what if the text is not JSON
dbc::Value parseJson(const std::string& text, const std::string& what);
/// The same for a document. @throws Failure that names @p what if the text is not a JSON document
dbc::Value parseDocument(const std::string& text, const std::string& what);

/// Reads JSON documents from a stream, one after the other: on lines, in one array, or just side by side. Holds one
/// document at a time.
class DocumentReader
{
public:
    explicit DocumentReader(std::istream& stream) : m_stream(stream) {}

    /// The next document; empty at the end. @throws Failure with the line of what is not JSON
    std::optional<dbc::Value> next();

    /// Documents read so far.
    std::uint64_t count() const noexcept { return m_count; }

private:
    bool readText();
    void passOver(char between);

    std::istream& m_stream;
    std::string m_text;
    std::uint64_t m_line = 1;
    bool m_inArray = false;
    std::uint64_t m_count = 0;
};
