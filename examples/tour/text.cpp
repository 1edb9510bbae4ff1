// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// The tour's own source code, and lines that fit on a screen.
#include "text.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace tour {

namespace {

std::size_t indentation(const std::string& line)
{
    return std::min(line.find_first_not_of(' '), line.size());
}

} // namespace

std::vector<std::string> partOfSources(const std::string& name)
{
    const std::string mark = "//! [" + name + "]";
    std::vector<std::string> lines;
    for (const std::string_view source : sources)
    {
        std::istringstream text{std::string(source)};
        std::optional<std::size_t> indent; // of the line that began the part
        for (std::string line; std::getline(text, line);)
        {
            if (line.substr(indentation(line)) == mark)
            {
                indent =
                    indent ? std::nullopt : std::optional(indentation(line));
            }
            else if (indent)
                lines.push_back(line.substr(std::min(*indent, line.size())));
        }
    }
    if (lines.empty())
        throw std::logic_error("no source file has the part " + name);
    return lines;
}

std::size_t characters(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) {
            return (static_cast<unsigned char>(c) & 0xC0U) !=
                   0x80U; // counts a character at its first byte
        }));
}

std::vector<std::string> wrapped(const std::string& line, std::size_t width,
                                 std::size_t indent)
{
    std::vector<std::string> parts;
    std::string rest = line;
    while (characters(rest) > width)
    {
        // Does not break the line within its indentation.
        const std::size_t from = indentation(rest);
        std::size_t end = std::string::npos;
        for (std::size_t space = rest.find(' ', from);
             space != std::string::npos; space = rest.find(' ', space + 1))
        {
            const std::string_view before(rest.data(), space);
            if (characters(before) > width)
                break;
            end = space;
        }
        if (end == std::string::npos)
            break;
        parts.push_back(rest.substr(0, end));
        rest = std::string(indent, ' ') + rest.substr(end + 1);
    }
    parts.push_back(rest);
    return parts;
}

} // namespace tour
