// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tour {

/// Source files of this program, as they were when it was compiled.
/// sources.cmake makes the definition.
extern const std::vector<std::string_view> sources;

/// The lines between two lines "//! [name]" of a source file, without the
/// indentation of the first of the two. A part may have several such pieces.
/// @throws std::logic_error no file has such a part
std::vector<std::string> partOfSources(const std::string& name);

/// Splits a line at spaces so that no part has more than @p width characters,
/// where it has such spaces.
/// @param indent  spaces in front of each part but the first
std::vector<std::string> wrapped(const std::string& line, std::size_t width,
                                 std::size_t indent);

/// Number of characters of UTF-8 text.
std::size_t characters(std::string_view text);

} // namespace tour
