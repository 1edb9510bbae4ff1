// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string>
#include <utility>

namespace test_support {

/// Replaces every @p from by @p to.
inline std::string withEach(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
        text.replace(place, from.size(), to);
    return text;
}

/// Converts a text of the driver to that of libmongoc 1.23, so that tests need one expected text for all versions. The
/// differences are the spaces in empty documents and arrays of JSON, and the error for an empty key.
inline std::string inWordsOf123(std::string text)
{
    text = withEach(std::move(text), "{ }", "{  }");
    text = withEach(std::move(text), "[ ]", "[  ]");
    return withEach(std::move(text), "Element key cannot be an empty string", "empty key");
}

} // namespace test_support
