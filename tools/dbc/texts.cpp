// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "texts.h"

#include "dbc/value.h"
#include "dbc/values.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <iomanip>
#include <ios>
#include <sstream>
#include <string>

std::string idText(const dbc::Value& id)
{
    const auto objectId = id.get<dbc::ObjectId>();
    return objectId ? objectId->text : id.toJson();
}

std::string dateText(dbc::Time time)
{
    const auto seconds =
        static_cast<std::time_t>(std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count());
    std::tm parts = {};
    std::ostringstream text;
    if (::gmtime_r(&seconds, &parts))
        text << std::put_time(&parts, "%Y-%m-%dT%H:%M:%SZ");
    return text.str();
}

std::string sizeText(double bytes)
{
    static constexpr std::array units{"B", "KiB", "MiB", "GiB", "TiB"};
    std::size_t unit = 0;
    for (; bytes >= 1024 && unit + 1 < units.size(); ++unit)
        bytes /= 1024;
    std::ostringstream text;
    text << std::fixed << std::setprecision(unit == 0 ? 0 : 1) << bytes << ' ' << units[unit];
    return text.str();
}
