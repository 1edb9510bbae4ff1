// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "scalar_text.h"

#include "dbc/values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <ratio>
#include <string>
#include <string_view>
#include <system_error>

namespace {

constexpr std::string_view digits = "0123456789";

/// Parses a text from left to right.
class Pieces
{
public:
    explicit Pieces(std::string_view text) : m_rest(text) {}

    bool isDone() const { return m_rest.empty(); }
    bool take(char character)
    {
        const bool isThere = !m_rest.empty() && m_rest.front() == character;
        m_rest.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }
    // Reads exactly this number of digits.
    bool number(std::size_t width, int& result)
    {
        const std::string_view piece = m_rest.substr(0, width);
        if (piece.size() != width || piece.find_first_not_of(digits) != std::string_view::npos)
            return false;
        std::from_chars(piece.data(), piece.data() + piece.size(), result);
        m_rest.remove_prefix(width);
        return true;
    }
    // Reads the milliseconds of a fraction of any length.
    bool fraction(int& result)
    {
        const std::size_t length = std::min(m_rest.find_first_not_of(digits), m_rest.size());
        std::string padded(m_rest.substr(0, std::min<std::size_t>(length, 3)));
        padded.resize(3, '0');
        std::from_chars(padded.data(), padded.data() + padded.size(), result);
        m_rest.remove_prefix(length);
        return length > 0;
    }

private:
    std::string_view m_rest;
};

struct Moment
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int milliseconds = 0;
    int zoneMinutes = 0;
};

bool readZone(Pieces& pieces, Moment& moment)
{
    if (pieces.isDone() || pieces.take('Z'))
        return true;
    const bool isEast = pieces.take('+');
    int hours = 0;
    int minutes = 0;
    if ((!isEast && !pieces.take('-')) || !pieces.number(2, hours))
        return false;
    pieces.take(':');
    if (!pieces.isDone() && !pieces.number(2, minutes))
        return false;
    moment.zoneMinutes = (isEast ? 1 : -1) * (hours * 60 + minutes);
    return true;
}

std::optional<Moment> readMoment(std::string_view text)
{
    Pieces pieces(text);
    Moment moment;
    if (!pieces.number(4, moment.year) || !pieces.take('-') || !pieces.number(2, moment.month) || !pieces.take('-') ||
        !pieces.number(2, moment.day))
        return std::nullopt;
    if (pieces.isDone())
        return moment;
    if (!pieces.take('T') && !pieces.take(' '))
        return std::nullopt;
    if (!pieces.number(2, moment.hour) || !pieces.take(':') || !pieces.number(2, moment.minute))
        return std::nullopt;
    if (pieces.take(':') && !pieces.number(2, moment.second))
        return std::nullopt;
    if (pieces.take('.') && !pieces.fraction(moment.milliseconds))
        return std::nullopt;
    return readZone(pieces, moment) && pieces.isDone() ? std::optional<Moment>(moment) : std::nullopt;
}

bool isLeap(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr std::array<int, 12> monthDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int daysOf(int year, int month)
{
    return monthDays.at(static_cast<std::size_t>(month - 1)) + (month == 2 && isLeap(year) ? 1 : 0);
}

// Returns the days since 1970-01-01 in the Gregorian calendar, also for earlier years. In this formula a year begins in
// March, so that a leap day is its last day.
std::int64_t dayNumber(int year, int month, int day)
{
    const std::int64_t y = year - (month <= 2 ? 1 : 0) + 400; // not negative
    const std::int64_t era = y / 400;
    const std::int64_t yearOfEra = y % 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return (era - 1) * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

} // namespace

bool looksLikeTime(std::string_view text)
{
    return readMoment(text).has_value();
}

std::optional<dbc::Time> parseTime(std::string_view text)
{
    const std::optional<Moment> moment = readMoment(text);
    if (!moment || moment->month < 1 || moment->month > 12 || moment->day < 1 ||
        moment->day > daysOf(moment->year, moment->month) || moment->hour > 23 || moment->minute > 59 ||
        moment->second > 59)
        return std::nullopt;
    const std::int64_t minutes = (dayNumber(moment->year, moment->month, moment->day) * 24 + moment->hour) * 60 +
                                 moment->minute - moment->zoneMinutes;
    return dbc::timeFromMilliseconds((minutes * 60 + moment->second) * 1000 + moment->milliseconds);
}

std::string timeText(dbc::Time time)
{
    const std::int64_t milliseconds = dbc::millisecondsOf(time);
    const auto days = std::chrono::floor<std::chrono::duration<std::int64_t, std::ratio<86400>>>(
                          std::chrono::milliseconds(milliseconds))
                          .count();
    if (days < dayNumber(0, 1, 1) || days > dayNumber(9999, 12, 31))
        return {};
    int year = static_cast<int>(1970 + days / 366);
    while (dayNumber(year + 1, 1, 1) <= days)
        ++year;
    while (dayNumber(year, 1, 1) > days)
        --year;
    int month = 1;
    while (month < 12 && dayNumber(year, month + 1, 1) <= days)
        ++month;
    const auto rest = static_cast<int>(milliseconds - days * 86'400'000);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", year, month,
                  static_cast<int>(days - dayNumber(year, month, 1)) + 1, rest / 3'600'000, rest / 60'000 % 60,
                  rest / 1000 % 60, rest % 1000);
    return text.data();
}

bool isObjectIdText(std::string_view text)
{
    return text.size() == 24 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

bool isIdField(std::string_view field)
{
    return field.size() >= 3 && field.substr(field.size() - 3) == "_id";
}

std::optional<double> parseDouble(std::string_view text)
{
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = !text.empty() && result.ptr == text.data() + text.size();
    return isWhole && result.ec == std::errc() ? std::optional<double>(number) : std::nullopt;
}

std::string doubleText(double number)
{
    if (std::isnan(number))
        return "NaN";
    if (std::isinf(number))
        return number < 0 ? "-Infinity" : "Infinity";
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    std::string shortest(text.data(), result.ptr);
    if (shortest.find_first_of(".e") == std::string::npos)
        shortest += ".0";
    return shortest;
}
