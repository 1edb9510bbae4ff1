// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

// Times and numbers.
#include "example.h"

#include <dbc/access.h>
#include <dbc/build.h>
#include <dbc/values.h>
#include <json_to_properties.h>

#include <chrono>
#include <ctime>
#include <exception>
#include <iomanip>
#include <sstream>

namespace {

void chrono()
{
    section("chrono");
    //! [chrono]
    const auto now = std::chrono::system_clock::now();
    ObjectProperties visit = dbc::document({{"began", dbc::toTime(now)}}); // truncated to milliseconds
    dbc::setTime(visit, "ended", dbc::toTime(now + std::chrono::minutes(20)));

    const dbc::Time began = *dbc::get<dbc::Time>(visit, "began");
    const dbc::Time ended = *dbc::get<dbc::Time>(visit, "ended");
    std::cout << std::chrono::duration_cast<std::chrono::minutes>(ended - began).count() << " minutes\n";
    //! [chrono]
}

void milliseconds()
{
    section("milliseconds");
    //! [milliseconds]
    ObjectProperties visit;
    visit.setValueTime("began", 1500000000000LL); // milliseconds, not the seconds of std::time()
    std::cout << visit.valueAsTime("began", 0) << ' ' << text(visit) << '\n';
    //! [milliseconds]
}

void calendar()
{
    section("calendar");
    //! [calendar]
    std::tm date{};
    std::istringstream("2017-07-14T02:40:00Z") >> std::get_time(&date, "%Y-%m-%dT%H:%M:%SZ");
    ObjectProperties visit;
    dbc::setTime(visit, "began", dbc::toTime(std::chrono::system_clock::from_time_t(timegm(&date))));

    const std::time_t seconds = std::chrono::system_clock::to_time_t(*dbc::get<dbc::Time>(visit, "began"));
    std::cout << std::put_time(std::gmtime(&seconds), "%d.%m.%Y %H:%M UTC") << '\n';
    //! [calendar]
}

void exact()
{
    section("exact");
    //! [exact]
    ObjectProperties account;
    JsonToProperties::convert(R"({"visits": 3, "balance": 5000000000, "rate": 2.5})", &account);
    std::cout << account.valueAsInt32("visits", -1) << ' ' << account.valueAsInt64("visits", -1) << '\n';
    std::cout << account.valueAsInt32("balance", -1) << ' ' << account.valueAsInt64("balance", -1) << '\n';
    //! [exact]
}

void any()
{
    section("any");
    ObjectProperties account;
    JsonToProperties::convert(R"({"visits": 3, "balance": 5000000000, "rate": 2.5})", &account);
    //! [any]
    for (const char* const key : {"visits", "balance", "rate", "missing"})
        std::cout << key << ' ' << dbc::getOr(account, key, -1.0) << '\n';
    std::cout << dbc::getOr(account, "visits", 0LL) << ' ' << dbc::getOr(account, "balance", 0LL) << '\n';

    // 2.5 is not a whole number, and 5,000,000,000 does not fit into an int: getOr() returns the default.
    std::cout << dbc::getOr(account, "rate", 0) << ' ' << dbc::getOr(account, "balance", 0) << '\n';
    //! [any]
}

} // namespace

int main()
try
{
    chrono();
    milliseconds();
    calendar();
    exact();
    any();
}
catch (const std::exception& error)
{
    std::cerr << error.what() << '\n';
    return 1;
}
