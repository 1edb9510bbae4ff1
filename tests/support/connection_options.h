// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace test_support {

/// Returns the connection string @p uri with @p options added, such as "a=1&b=2". @p uri may have no path and no query.
/// The driver uses the last of several options with the same name, so the added options apply.
inline std::string withOptions(std::string uri, const std::string& options)
{
    const std::size_t scheme = uri.find("://");
    const std::size_t host = scheme == std::string::npos ? 0 : scheme + 3;
    if (uri.find_first_of("/?", host) == std::string::npos)
        uri += '/';
    if (uri.find('?', host) == std::string::npos)
        uri += '?';
    else if (uri.back() != '?' && uri.back() != '&')
        uri += '&';
    return uri + options;
}

} // namespace test_support
