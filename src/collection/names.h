// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "database_client/database_client_d.h"

#include <stdexcept>
#include <string>

namespace dbc {

/// Call this for each name and password that is passed to the driver as a C string: the driver would cut it.
/// @throws std::invalid_argument "<what> contains a zero byte"
inline void checkNoZeroByte(const std::string& text, const char* what)
{
    if (text.find('\0') != std::string::npos)
        throw std::invalid_argument(std::string(what) + " contains a zero byte");
}

/// The same for a name that must not be empty. @throws std::invalid_argument also "<what> is empty"
inline void checkName(const std::string& name, const char* what)
{
    DataBaseClientPrivate::check_argument(name, what);
    checkNoZeroByte(name, what);
}

} // namespace dbc
