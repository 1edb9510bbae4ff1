// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#pragma once

#include "dbc/value.h"

#include <cstdint>
#include <string>

/// 1 document, 2 documents ...
inline std::string counted(std::uint64_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// Returns the 24 hexadecimal digits of an object id, or the JSON of any other value.
std::string idText(const dbc::Value& id);

/// 2020-01-01T00:00:00Z. Fractions of a second are cut off.
std::string dateText(dbc::Time time);

/// 512 B, 1.5 KiB, 20.0 MiB ...
std::string sizeText(double bytes);
