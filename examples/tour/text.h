// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tour {

/// The source files from which this program was compiled. sources.cmake makes
/// the definition.
extern const std::vector<std::string_view> sources;

/// Returns the lines between two lines "//! [name]" of a source file, without
/// the indentation of the first of the two. A part may consist of several
/// pieces.
/// @throws std::logic_error  no file has such a part
std::vector<std::string> partOfSources(const std::string& name);

/// Splits a line at spaces so that, if possible, no part has more than
/// @p width characters.
/// @param indent  number of spaces before each part except the first
std::vector<std::string> wrapped(const std::string& line, std::size_t width,
                                 std::size_t indent);

/// Number of characters of a UTF-8 string.
std::size_t characters(std::string_view text);

} // namespace tour
